"""Request lines and heads: what is served, what is refused, and what happens to the connection."""

import pytest
from edge import (
    ALONE_AND_NOT,
    CLOSED,
    EITHER,
    KEPT,
    LARGE,
    LENGTH,
    NUMBER_FORM,
    SET_DONE,
    Row,
    by_sentence,
    carried_out,
    each_met,
    get_page,
    head,
    meet,
    page,
    refused,
    set_number,
)



def line(text):
    """A request with this first line."""
    return head(text, "Host: recorder")


def with_line(text):
    """A set that would be executed without this line in its head."""
    return set_number(LENGTH, text)


REQUEST_LINES = [
    page("a line as browsers send it", get_page()),
    page("an empty line in front", b"\r\n" + get_page()),
    page("three empty lines in front", b"\r\n\r\n\r\n" + get_page()),
    page("the absolute form", line("GET http://recorder/page.css HTTP/1.1")),
    page("the absolute form with a port", line("GET http://recorder:80/page.css HTTP/1.1")),
    page("scheme and host in capitals", line("GET HTTP://RECORDER/page.css HTTP/1.1")),
    page("the absolute form with a query", line("GET http://recorder/page.css?a=b HTTP/1.1")),
    page("a query with a question mark", line("GET /page.css?a?b HTTP/1.1")),
    page("a name in percent signs", line("GET /p%61ge.css HTTP/1.1")),
    page("a higher minor version", line("GET /page.css HTTP/1.2")),
    Row("the absolute form without a path", line("GET http://recorder HTTP/1.1"), 200, KEPT, 0, b"<html>index</html>"),
    Row("a path of 7,000 characters", line(f"GET /{'a' * 7000} HTTP/1.1"), 404),
    refused("one word", line("GET")),
    refused("no version", line("GET /page.css")),
    refused("no target", line("GET  HTTP/1.1")),
    refused("two blanks in front of the target", line("GET  /page.css HTTP/1.1")),
    refused("two blanks behind the target", line("GET /page.css  HTTP/1.1")),
    refused("a TAB for a blank", line("GET\t/page.css HTTP/1.1")),
    refused("a blank in front", line(" GET /page.css HTTP/1.1")),
    refused("a blank behind", line("GET /page.css HTTP/1.1 ")),
    refused("four words", line("GET /page.css HTTP/1.1 more")),
    refused("a blank in the target", line("GET /page.css and more HTTP/1.1")),
    refused("a control character in the target", line("GET /page\x01.css HTTP/1.1")),
    refused("a delete character in the target", line("GET /page\x7f.css HTTP/1.1")),
    refused("a NUL in the target", line("GET /page.css\0 HTTP/1.1")),
    refused("a bare CR in the target", line("GET /page\r.css HTTP/1.1")),
    refused("a bare CR behind the version", line("GET /page.css HTTP/1.1\rX")),
    refused("a path without a slash", line("GET page.css HTTP/1.1")),
    refused("a fragment", line("GET /page.css#top HTTP/1.1")),
    refused("an absolute form without a host", line("GET http:///page.css HTTP/1.1")),
    refused("an asterisk for a page", line("GET * HTTP/1.1")),
    refused("a NUL for a method", line("\0 /page.css HTTP/1.1")),
    refused("a method in brackets", line("(GET) /page.css HTTP/1.1")),
    refused("a method with a control character", line("GE\x01T /page.css HTTP/1.1")),
    refused("a protocol in small letters", line("GET /page.css http/1.1")),
    refused("another protocol", line("GET /page.css FTP/1.1")),
    refused("a version without a point", line("GET /page.css HTTP/11")),
    refused("a version without a minor number", line("GET /page.css HTTP/1.")),
    refused("a version with two digits behind the point", line("GET /page.css HTTP/1.10")),
    refused("a version with a zero in front", line("GET /page.css HTTP/01.1")),
    refused("a version with a blank", line("GET /page.css HTTP/ 1.1")),
    refused("binary data", b"\x16\x03\x01\x02\0\x01\0\x01\xfc\x03\x03\r\n\r\n"),
    refused("version 2.0", line("GET /page.css HTTP/2.0"), 505),
    refused("version 2.1", line("GET /page.css HTTP/2.1"), 505),
    refused("version 3.0", line("GET /page.css HTTP/3.0"), 505),
    refused("version 9.9", line("GET /page.css HTTP/9.9"), 505),
    refused("a set of version 2.0", set_number(LENGTH, version="2.0"), 505),
    refused("the preface of version 2.0", b"PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n", (400, 501, 505)),
    refused("version 0.9", line("GET /page.css HTTP/0.9"), (400, 505)),
    refused("a method that nobody knows", line("FOO /page.css HTTP/1.1"), 501),
    refused("one on an endpoint", line("FOO /get_cpu_usage HTTP/1.1"), 501),
    refused("a method that only begins like one", line("GETT /page.css HTTP/1.1"), 501),
    refused("a method that ends too early", line("GE /page.css HTTP/1.1"), 501),
    refused("a method in small letters", line("get /page.css HTTP/1.1"), 501),
    refused("a method of 100 letters", line(f"{'M' * 100} /page.css HTTP/1.1"), 501),
    refused("a method with a point", line("M.SEARCH /page.css HTTP/1.1"), 501),
    refused("a line of 9,000 characters", line(f"GET /{'a' * 9000} HTTP/1.1"), 414),
    refused("one that does not end", b"GET /" + b"a" * 9000, 414),
    refused("a long query", line(f"GET /page.css?{'a' * 9000} HTTP/1.1"), 414),
]

SERVED_HEADS = [
    carried_out("a TAB in a value", with_line("X: a\tb")),
    carried_out("a TAB in front of a value", set_number(LENGTH.replace(" ", "\t"))),
    carried_out("blanks around a value", set_number(LENGTH.replace(" ", "  \t ") + "  ")),
    carried_out("blanks and TABs around a value", with_line("X: \t a \t ")),
    carried_out("no blank in front of a value", set_number(LENGTH.replace(" ", ""))),
    carried_out("an empty value", with_line("X:")),
    carried_out("a value of blanks", with_line("X:   ")),
    carried_out("a colon in a value", with_line("X: a:b: c")),
    carried_out("letters above 127 in a value", with_line("X: \xc3\xa4\xff")),
    carried_out("every sign that a name may have", with_line("!#$%&'*+-.^_`|~09azAZ: x")),
    carried_out("a name in capitals", set_number(LENGTH.upper())),
    carried_out("a name in small letters", set_number(LENGTH.lower())),
    carried_out("one name twice", with_line("X: a\r\nX: b")),
    carried_out("60 lines", set_number(*(f"X-{k}: {k}" for k in range(58)), LENGTH)),
    carried_out("100 lines", set_number(*(f"X-{k}: {k}" for k in range(98)), LENGTH)),
    carried_out("a value of 7,000 characters", with_line("Cookie: " + "c" * 7000)),
    carried_out("an unknown protocol to change to", with_line("Connection: Upgrade\r\nUpgrade: h2c")),
    carried_out("no Host line", head("POST /set_DeviceNo HTTP/1.1", LENGTH) + NUMBER_FORM.encode()),
    carried_out("an empty Host line", head("POST /set_DeviceNo HTTP/1.1", "Host:", LENGTH) + NUMBER_FORM.encode()),
    page("a Host with a port", head("GET /page.css HTTP/1.1", "Host: 192.0.2.10:80")),
    page("a Host in brackets", head("GET /page.css HTTP/1.1", "Host: [2001:db8::1]:80")),
]

REFUSED_HEADS = [
    refused("a blank in front of a colon", with_line("X : a")),
    refused("a TAB in front of a colon", with_line("X\t: a")),
    refused("a blank in front of the length's colon", set_number(LENGTH.replace(":", " :"))),
    refused("a blank in front of the coding's colon", set_number(LENGTH, "Transfer-Encoding : chunked")),
    refused("a folded line", with_line("X: a\r\n b")),
    refused("a line folded with a TAB", with_line("X: a\r\n\tb")),
    refused("a folded length", set_number("Content-Length:\r\n " + str(len(NUMBER_FORM)))),
    refused("a folded line of blanks only", with_line("X: a\r\n  ")),
    refused("a folded line at the head's begin", head("GET /page.css HTTP/1.1", " Host: recorder")),
    refused("a line without a colon", with_line("X")),
    refused("a name of no letters", with_line(": a")),
    refused("a blank in a name", with_line("X Y: a")),
    refused("a bracket in a name", with_line("X(Y): a")),
    refused("a quotation mark in a name", with_line('"X": a')),
    refused("a letter above 127 in a name", with_line("X\xe4: a")),
    refused("a control character in a name", with_line("X\x01: a")),
    refused("a NUL in a name", with_line("X\0: a")),
    refused("a NUL in a value", with_line("X: a\0b")),
    refused("a NUL in front of a value", with_line("X:\0a")),
    refused("a bare CR in a name", with_line("X\rY: a")),
    refused("a bare CR in a value", with_line("X: a\rContent-Length: 0")),
    refused("a bare CR behind a value", with_line("X: a\r\r")),
    refused("a bare CR for an empty line", get_page().removesuffix(b"\r\n") + b"\rX\r\n\r\n"),
    refused("two Host lines", with_line("Host: other")),
    refused("two equal Host lines", with_line("Host: recorder")),
    refused("two Host lines, one empty", with_line("host:")),
    refused("a blank in Host", head("GET /page.css HTTP/1.1", "Host: a b")),
    refused("a path in Host", head("GET /page.css HTTP/1.1", "Host: recorder/page.css")),
    refused("a user in Host", head("GET /page.css HTTP/1.1", "Host: me@recorder")),
    refused("two Host names in one line", head("GET /page.css HTTP/1.1", "Host: one, two")),
    refused("a line of 9,000 characters", with_line("Cookie: " + "c" * 9000), 431),
    refused("a name of 9,000 characters", with_line("c" * 9000 + ": x"), 431),
    refused("a line that does not end", get_page()[:-2] + b"Cookie: " + b"c" * 9000, 431),
    refused("2,000 short lines", get_page(*["a: b"] * 2000), 431),
    refused("a long line and a long head", line(f"GET /{'a' * 7000} HTTP/1.1\r\nCookie: {'c' * 2000}"), 431),
]

SERVERS_CHOICE = [
    Row("a TAB behind the length", set_number(LENGTH + "\t"), (200, 400), EITHER, 1),
    Row("a bare LF behind the request line", b"GET /page.css HTTP/1.1\nHost: recorder\r\n\r\n", (200, 400), EITHER),
    Row("a bare LF behind a header line", b"GET /page.css HTTP/1.1\r\nHost: recorder\n\r\n", (200, 400), EITHER),
    Row("a bare LF for an empty line", b"GET /page.css HTTP/1.1\r\nHost: recorder\r\n\n", (200, 400), EITHER),
]

test_request_line = each_met(REQUEST_LINES)
test_head_that_is_served = each_met(SERVED_HEADS)
test_head_that_is_refused = each_met(REFUSED_HEADS)
test_what_a_server_may_take_or_not = each_met(SERVERS_CHOICE)


METHODS = ["GET", "HEAD", "POST", "PUT", "DELETE", "OPTIONS", "PATCH", "TRACE"]


@ALONE_AND_NOT
@pytest.mark.parametrize("method", METHODS)
def test_endpoint_does_not_look_at_the_method(rig, method, behind):
    request = set_number(LENGTH).replace(b"POST", method.encode())
    meet(rig, carried_out(method, request), behind)


@ALONE_AND_NOT
@pytest.mark.parametrize("method", ["PUT", "DELETE", "PATCH", "TRACE", "PROPFIND", "MKCOL", "COPY", "MOVE"])
def test_file_has_no_other_methods(rig, method, behind):
    request = get_page("Content-Length: 3").replace(b"GET", method.encode()) + b"a=b"
    meet(rig, Row(method, request, 501, EITHER), behind)


def test_tunnel_is_refused(rig):
    row = refused("CONNECT", head("CONNECT recorder:80 HTTP/1.1", "Host: recorder"), (400, 501))
    meet(rig, row, behind=True)


@ALONE_AND_NOT
def test_post_of_a_file_serves_it(rig, behind):
    request = get_page("Content-Length: 3").replace(b"GET", b"POST") + b"a=b"
    meet(rig, page("POST", request), behind)


CUT = [
    carried_out("a set", set_number(LENGTH)),
    carried_out("a set in chunks", set_number("Transfer-Encoding: chunked", body="a;x=y\r\nstrFD_Devi\r\n00b\r\nceNo=123456\r\n0\r\nT: a\r\n\r\n")),
    page("a page behind empty lines", b"\r\n\r\n" + get_page("X: a\tb")),
    refused("a folded line", set_number(LENGTH, "X: a\r\n b")),
    refused("a bare CR", set_number(LENGTH, "X: a\rb")),
    refused("two lengths", set_number(LENGTH, LENGTH)),
    refused("version 2.0", line("GET /page.css HTTP/2.0"), 505),
    refused("an unknown method", line("GETT /page.css HTTP/1.1"), 501),
    refused("no length", set_number(body=""), 411),
    Row("a missing page", line("GET /missing HTTP/1.1"), 404),
    Row("a large page", line("GET /large.bin HTTP/1.1"), 200, KEPT, 0, LARGE),
    page("a page for the last time", get_page("Connection: close"), CLOSED),
    Row("a set for the last time", set_number(LENGTH, "Connection: close"), 200, CLOSED, 1, SET_DONE),
]


@pytest.mark.parametrize("row", **by_sentence(CUT))
def test_every_byte_may_come_alone(rig, row):
    meet(rig, row, behind=False, places=range(len(row.request)))


@pytest.mark.parametrize("row", **by_sentence(CUT))
def test_request_may_be_cut_anywhere(rig, row):
    """Cut once at each place; the good request comes in one piece with the part after the cut."""
    for place in range(1, len(row.request) + 1):
        meet(rig, row, behind=True, places=[place])
