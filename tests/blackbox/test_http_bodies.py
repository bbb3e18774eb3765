"""Where a body begins and ends: lengths, codings, chunks, and requests without a body."""

import contextlib

import pytest
from device import change
from edge import (
    EITHER,
    GOOD,
    LENGTH,
    NUMBER_FORM,
    EdgeClient,
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
    settle,
)
from http_client import post

MEBIBYTE = 1 << 20
SIZE = len(NUMBER_FORM)
CHUNKED = "Transfer-Encoding: chunked"
CHUNKS = f"{SIZE:x}\r\n{NUMBER_FORM}\r\n0\r\n\r\n"


def chunked(body):
    return set_number(CHUNKED, body=body)


def coded(*lines, version="1.1"):
    """A chunked set with these header lines."""
    return set_number(*lines, body=CHUNKS, version=version)


LENGTHS = [
    carried_out("zeros in front", set_number(f"Content-Length: 000000{SIZE}")),
    page("a GET with a body of a length", get_page(LENGTH) + NUMBER_FORM.encode()),
    page("a length of 0", get_page("Content-Length: 0")),
    refused("two lengths that differ", set_number(LENGTH, "Content-Length: 3")),
    refused("two equal lengths", set_number(LENGTH, LENGTH)),
    refused("two lengths in one line", set_number(f"Content-Length: {SIZE}, {SIZE}")),
    refused("two different ones in one line", set_number(f"Content-Length: {SIZE}, 3")),
    refused("two lengths of 0", get_page("Content-Length: 0", "Content-Length: 0")),
    refused("an empty length", set_number("Content-Length:")),
    refused("a sign in front", set_number(f"Content-Length: +{SIZE}")),
    refused("a negative length", set_number(f"Content-Length: -{SIZE}")),
    refused("a negative 0", set_number("Content-Length: -0")),
    refused("a hexadecimal length", set_number("Content-Length: 0x15")),
    refused("a length with a point", set_number(f"Content-Length: {SIZE}.0")),
    refused("a length with an exponent", set_number("Content-Length: 2e1")),
    refused("a word", set_number("Content-Length: many")),
    refused("a word behind the number", set_number(f"Content-Length: {SIZE} bytes")),
    refused("two numbers with a blank between", set_number("Content-Length: 2 1")),
    refused("a quoted number", set_number(f'Content-Length: "{SIZE}"')),
    refused("digits that are not ASCII", set_number("Content-Length: \xb2\xb9")),
    refused("a NUL behind the number", set_number(f"Content-Length: {SIZE}\0")),
    refused("a list that ends with a comma", set_number(f"Content-Length: {SIZE},")),
    refused("a length of 2^63", set_number("Content-Length: 9223372036854775808"), (400, 413)),
    refused("a length of 2^64 more", set_number(f"Content-Length: {2**64 + SIZE}"), (400, 413)),
    refused("a length of 2^32 more", set_number(f"Content-Length: {2**32 + SIZE}"), 413),
    refused("a length of 300 digits", set_number(f"Content-Length: {'9' * 300}"), (400, 413)),
    refused("an invalid length of a GET", get_page("Content-Length: -1")),
    refused("an underscore for the hyphen", set_number(f"Content_Length: {SIZE}"), 411),
]

CODINGS = [
    carried_out("chunked", coded(CHUNKED)),
    carried_out("chunked in capitals", coded("TRANSFER-ENCODING: CHUNKED")),
    carried_out("chunked with blanks around", coded("Transfer-Encoding: \t chunked  ")),
    page("a GET in chunks", get_page(CHUNKED) + CHUNKS.encode()),
    refused("length and coding", coded(LENGTH, CHUNKED)),
    refused("coding and length", coded(CHUNKED, LENGTH)),
    refused("coding and a length of 0", coded(CHUNKED, "Content-Length: 0")),
    refused("coding and a length that is none", coded(CHUNKED, "Content-Length: x")),
    refused("another coding and a length", set_number("Transfer-Encoding: identity", LENGTH), (400, 501)),
    refused("a coding on version 1.0", coded(CHUNKED, version="1.0")),
    refused("one with keep-alive", coded(CHUNKED, "Connection: keep-alive", version="1.0")),
    refused("gzip", coded("Transfer-Encoding: gzip"), 501),
    refused("identity", coded("Transfer-Encoding: identity"), 501),
    refused("a word that contains chunked", coded("Transfer-Encoding: xchunked"), 501),
    refused("a word that begins with chunked", coded("Transfer-Encoding: chunkedx"), 501),
    refused("gzip, then chunked", coded("Transfer-Encoding: gzip, chunked"), 501),
    refused("the same in two lines", coded("Transfer-Encoding: gzip", CHUNKED), 501),
    refused("chunked, then gzip", coded("Transfer-Encoding: chunked, gzip"), (400, 501)),
    refused("the same in two lines, behind", coded(CHUNKED, "Transfer-Encoding: gzip"), (400, 501)),
    refused("chunked, then identity", coded(CHUNKED, "Transfer-Encoding: identity"), (400, 501)),
    refused("chunked twice", coded("Transfer-Encoding: chunked, chunked"), (400, 501)),
    refused("chunked in two lines", coded(CHUNKED, CHUNKED), (400, 501)),
    refused("chunked with a parameter", coded("Transfer-Encoding: chunked;q=1"), (400, 501)),
    refused("chunked in quotation marks", coded('Transfer-Encoding: "chunked"'), (400, 501)),
    refused("chunked behind a control character", coded("Transfer-Encoding: \x0bchunked"), (400, 501)),
    refused("chunked behind a letter above 127", coded("Transfer-Encoding: \xa0chunked"), (400, 501)),
    refused("an empty coding", coded("Transfer-Encoding:"), (400, 501)),
    Row("an empty one in front", coded("Transfer-Encoding:", CHUNKED), (200, 400, 501), EITHER, 1),
    refused("a NUL behind chunked", coded(CHUNKED + "\0")),
    refused("an underscore for the hyphen", coded("Transfer_Encoding: chunked"), 411),
]

CHUNKS_SERVED = [
    carried_out("three chunks", chunked("6\r\nstrFD_\r\nb\r\nDeviceNo=12\r\n4\r\n3456\r\n0\r\n\r\n")),
    carried_out("a chunk for each byte", chunked("".join(f"1\r\n{c}\r\n" for c in NUMBER_FORM) + "0\r\n\r\n")),
    carried_out("a size in capitals", chunked("B\r\nstrFD_Devic\r\nA\r\neNo=123456\r\n0\r\n\r\n")),
    carried_out("zeros in front of a size", chunked("00000000000" + CHUNKS)),
    carried_out("many zeros for the end", chunked(CHUNKS.replace("\r\n0\r\n", "\r\n00000000\r\n"))),
    carried_out("an extension", chunked(CHUNKS.replace("15\r\n", "15;a=b\r\n"))),
    carried_out("one without a value", chunked(CHUNKS.replace("15\r\n", "15;a\r\n"))),
    carried_out("one in quotation marks", chunked(CHUNKS.replace("15\r\n", '15;a="b;c"\r\n'))),
    carried_out("two", chunked(CHUNKS.replace("15\r\n", "15;a=b;c\r\n"))),
    carried_out("one at the end", chunked(CHUNKS.replace("\r\n0\r\n", "\r\n0;a=b\r\n"))),
    carried_out("a trailer field", chunked(CHUNKS[:-2] + "T: a\r\n\r\n")),
    carried_out("many trailer fields", chunked(CHUNKS[:-2] + "T: a\r\n" * 50 + "\r\n")),
    carried_out("a length for a trailer", chunked(CHUNKS[:-2] + "Content-Length: 100\r\n\r\n")),
    carried_out("a coding for a trailer", chunked(CHUNKS[:-2] + "Transfer-Encoding: gzip\r\n\r\n")),
    carried_out("a Host for a trailer", chunked(CHUNKS[:-2] + "Host: other\r\n\r\n")),
    carried_out("a close for a trailer", chunked(CHUNKS[:-2] + "Connection: close\r\n\r\n")),
]

BROKEN = [
    "zz\r\n", "\r\n", "-1\r\na\r\n", "+1\r\na\r\n", "0x1\r\na\r\n", " 1\r\na\r\n", "1_0\r\n", "1.\r\na\r\n",
    "g\r\n", ";a\r\n", "1\nx", "1\ra\r\n", "1\r\naX", "1\r\na\nX", "1\r\na\rX", "1\r\nab\r\n0\r\n\r\n", "1;a\nb\r\n",
    "1;a\rb\r\n", "1;a\0b\r\n", "1\0\r\na\r\n", "0\r\nT\r\n\r\n", "0\r\nT : a\r\n\r\n", "0\r\nT: a\r\n b\r\n\r\n",
    "0\r\nT: a\rb\r\n\r\n", "0\r\nT: a\0\r\n\r\n", "0\r\n: a\r\n\r\n", "0\r\n\rX", "1\r\na\r\n\r\n0\r\n\r\n",
]  # fmt: skip
TOO_LARGE = ["FFFFFFFFFFFFFFFF\r\nx", "10000000000000001\r\nx", "8000000000000000\r\nx", "f" * 400 + "\r\nx"]
ENDLESS = ["1;" + "a" * 20000, "0" * 20000, "0\r\n" + "T: a\r\n" * 4000, "0\r\nT: " + "a" * 20000]

BROKEN_CHUNKS = [
    *(refused(repr(chunks), chunked(chunks)) for chunks in BROKEN),
    *(refused(f"much too large: {chunks:.8}", chunked(chunks), (400, 413)) for chunks in TOO_LARGE),
    *(refused(f"without an end: {chunks:.8}", chunked(chunks), (400, 413, 431)) for chunks in ENDLESS),
    Row("a blank behind a size", chunked(CHUNKS.replace("15\r\n", "15 \r\n")), (200, 400), EITHER, 1),
    Row("a blank in front of an extension", chunked(CHUNKS.replace("15\r\n", "15 ;a\r\n")), (200, 400), EITHER, 1),
    Row("a blank in an extension", chunked(CHUNKS.replace("15\r\n", "15; a = b\r\n")), (200, 400), EITHER, 1),
]

NO_LENGTH = [
    refused(f"{method} of {what}{' with a type' if lines else ''}", head(f"{method} {what} HTTP/{version}", *lines), 411)
    for method in ("POST", "PUT")
    for what in ("/set_DeviceNo", "/get_cpu_usage", "/page.css", "/missing", "/")
    for version, lines in (("1.1", ()), ("1.1", ("Content-Type: application/x-www-form-urlencoded",)))
]
NO_LENGTH += [
    refused("version 1.0", set_number(version="1.0"), 411),
    refused("version 1.0 with keep-alive", set_number("Connection: keep-alive", version="1.0"), 411),
    refused("a body behind it", set_number(), 411),
    refused("a request behind it", set_number(body=GOOD), 411),
    refused("an expectation", set_number("Expect: 100-continue", body=""), 411),
]

TOO_MUCH = [
    refused("one byte too much", set_number(f"Content-Length: {MEBIBYTE + 1}", body=""), 413),
    refused("one byte too much for a page", head("POST /page.css HTTP/1.1", f"Content-Length: {MEBIBYTE + 1}"), 413),
    refused("a GET of too much", get_page(f"Content-Length: {2 * MEBIBYTE}"), 413),
    refused("much too much", set_number("Content-Length: 1000000000", body="a"), 413),
    refused("too much that is expected", set_number("Content-Length: 2000000", "Expect: 100-continue", body=""), 413),
    refused("a chunk of too much", chunked(f"{MEBIBYTE + 1:x}\r\n"), 413),
    refused("chunks of too much", chunked((f"{1 << 16:x}\r\n" + "a" * (1 << 16) + "\r\n") * 17), 413),
    refused("small chunks of too much", chunked(("400\r\n" + "a" * 1024 + "\r\n") * 1025), 413),
]

test_length = each_met(LENGTHS)
test_coding = each_met(CODINGS)
test_chunks_that_are_served = each_met(CHUNKS_SERVED)
test_chunks_that_are_refused = each_met(BROKEN_CHUNKS)
test_body_of_unknown_length_is_refused_at_once = each_met(NO_LENGTH)
test_body_above_the_limit_is_refused = each_met(TOO_MUCH)


@pytest.mark.parametrize("row", **by_sentence(CHUNKS_SERVED + BROKEN_CHUNKS[: len(BROKEN)]))
def test_chunks_byte_by_byte(rig, row):
    start = row.request.index(b"\r\n\r\n")
    meet(rig, row, behind=True, places=range(start, len(row.request) + 1))


INNER = post("/set_DeviceNo", "strFD_DeviceNo=666666")
TWO_READINGS = [
    ("a length that covers one", set_number(f"Content-Length: {len(INNER)}", body=INNER), 200),
    ("chunks around one", chunked(f"{len(INNER):x}\r\n{INNER.decode()}\r\n0\r\n\r\n"), 200),
    ("a page's body", get_page(f"Content-Length: {len(INNER)}") + INNER, 200),
    ("a missing page's body", head("GET /missing HTTP/1.1", f"Content-Length: {len(INNER)}") + INNER, 404),
    ("a page's chunks", get_page(CHUNKED) + f"{len(INNER):x}\r\n{INNER.decode()}\r\n0\r\n\r\n".encode(), 200),
    ("an unchanged page's body", get_page("If-None-Match: *", f"Content-Length: {len(INNER)}") + INNER, 304),
    ("a body of another method on a page", get_page(f"Content-Length: {len(INNER)}").replace(b"GET", b"PUT") + INNER, 501),
    ("a body of OPTIONS", get_page(f"Content-Length: {len(INNER)}").replace(b"GET", b"OPTIONS") + INNER, 204),
    ("a short length beside a coding", set_number("Content-Length: 5", CHUNKED, body=b"0\r\n\r\n" + INNER), 400),
    ("a long length beside a coding", set_number(f"Content-Length: {len(INNER) + 5}", CHUNKED, body=b"0\r\n\r\n" + INNER), 400),
    ("the shorter of two lengths", set_number("Content-Length: 0", f"Content-Length: {len(INNER)}", body=INNER), 400),
    ("behind a bare LF in an extension", chunked(f"0;\n\r\n\r\n{INNER.decode()}"), 400),
    ("behind a length that is expected in vain", set_number(f"Content-Length: {len(INNER)}", "Expect: tea", body=INNER), 417),
]


@pytest.mark.parametrize("sentence, request_bytes, status", TWO_READINGS, ids=[row[0] for row in TWO_READINGS])
@pytest.mark.parametrize("cut", [0, 1, 16, 64])
def test_request_inside_a_body_is_never_carried_out(rig, sentence, request_bytes, status, cut):
    rig.device.play()
    with EdgeClient() as client:
        # A slow client that was refused may find its connection closed while it is still sending.
        with contextlib.suppress(ConnectionError):
            client.send_cut(request_bytes, range(cut, len(request_bytes), cut) if cut else ())
        reply = client.read_reply_to()
        assert reply.status == status and reply.has_right_reason()
        with contextlib.suppress(OSError):
            client.end_of_requests()
            assert client.read_end() == b""
    settle()
    assert change('<stBaseInfo strFD_DeviceNo="666666"/>') not in rig.device.requests


@pytest.mark.parametrize("data", [
    set_number(LENGTH)[:-1],
    set_number(LENGTH, body=""),
    chunked(CHUNKS[:-1]),
    chunked(CHUNKS[:-2]),
    chunked(CHUNKS[:-5]),
    set_number(LENGTH)[:-SIZE - 2],
    get_page()[:-1],
    b"POST /set_DeviceNo HT",
])  # fmt: skip
def test_request_that_ends_too_early_is_not_carried_out(rig, data):
    """Its sender has ended the stream: it gets a refusal or nothing, and the connection closes."""
    rig.device.play()
    with EdgeClient() as client:
        client.send(data)
        client.end_of_requests()
        assert client.read_end()[:13] in (b"", b"HTTP/1.1 400 ")
    settle()
    assert rig.device.requests == []
