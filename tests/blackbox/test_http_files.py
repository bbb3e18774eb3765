"""Files: conditions, ranges, HEAD, methods, and missing files."""

import email.utils
import os

import pytest
from edge import (
    ALONE_AND_NOT,
    CLOSED,
    EITHER,
    KEPT,
    STYLE,
    EdgeClient,
    Row,
    by_sentence,
    get_page,
    head,
    meet,
    page,
)
from http_client import get

SIZE = len(STYLE)
# When the page was changed, in HTTP's three forms of a date.
CHANGED = 1700000001
DATE = email.utils.formatdate(CHANGED, usegmt=True)
EARLIER = email.utils.formatdate(CHANGED - 1, usegmt=True)
LATER = email.utils.formatdate(CHANGED + 1, usegmt=True)
RFC850_DATE = "Tuesday, 14-Nov-23 22:13:21 GMT"
ASCTIME_DATE = "Tue Nov 14 22:13:21 2023"


@pytest.fixture(autouse=True)
def changed(rig):
    os.utime(path_of(rig, "page.css"), (CHANGED, CHANGED))


def path_of(rig, name):
    return os.path.join(rig.daemon.folder, "web_root", name)


def ask(request):
    with EdgeClient() as client:
        client.send(request)
        return client.read_reply_to(request.split(b" ")[0].decode())


def etag():
    return ask(get_page()).header("Etag")


def test_page_tells_its_date_and_its_tag(rig):
    reply = ask(get_page())
    assert reply.header("Last-Modified") == DATE
    assert reply.header("Etag").startswith('"') and reply.header("Etag").endswith('"')
    assert reply.header("Content-Length") == str(SIZE)
    assert reply.body == STYLE


# "{etag}" stands for the page's tag. Every row is requested with GET and, with the same result,
# HEAD.
CONDITIONS = [
    ("its tag", ["If-None-Match: {etag}"], 304),
    ("its tag, called weak", ["If-None-Match: W/{etag}"], 304),
    ("its tag last in a list", ['If-None-Match: "a", "b,c", {etag}'], 304),
    ("its tag in a list without blanks", ['If-None-Match: "a",{etag},"b"'], 304),
    ("its weak tag in a list", ['If-None-Match: W/"a", W/{etag}'], 304),
    ("its tag in a list with empty places", ["If-None-Match: , ,{etag},"], 304),
    ("its tag in the second of two lines", ['If-None-Match: "a"', "If-None-Match: {etag}"], 304),
    ("any tag", ["If-None-Match: *"], 304),
    ("another tag", ['If-None-Match: "a"'], 200),
    ("an empty tag", ['If-None-Match: ""'], 200),
    ("its tag inside another one", ['If-None-Match: "a{inner}b"'], 200),
    ("its tag without quotation marks", ["If-None-Match: {inner}"], 200),
    ("the begin of its tag", ["If-None-Match: {start}"], 200),
    ("an asterisk in quotation marks", ['If-None-Match: "*"'], 200),
    ("its date", [f"If-Modified-Since: {DATE}"], 304),
    ("a later date", [f"If-Modified-Since: {LATER}"], 304),
    ("an earlier date", [f"If-Modified-Since: {EARLIER}"], 200),
    ("its date in the form of RFC 850", [f"If-Modified-Since: {RFC850_DATE}"], 304),
    ("its date in the form of asctime", [f"If-Modified-Since: {ASCTIME_DATE}"], 304),
    ("no date", ["If-Modified-Since: yesterday"], 200),
    ("an empty date", ["If-Modified-Since:"], 200),
    ("a date that never was", ["If-Modified-Since: Tue, 99 Nov 2033 22:13:21 GMT"], 200),
    ("its tag and an earlier date", ["If-None-Match: {etag}", f"If-Modified-Since: {EARLIER}"], 304),
    ("another tag and its date", ['If-None-Match: "a"', f"If-Modified-Since: {DATE}"], 200),
    ("its tag and a range", ["If-None-Match: {etag}", "Range: bytes=0-4"], 304),
    ("its tag, to be there", ["If-Match: {etag}"], 200),
    ("any tag, to be there", ["If-Match: *"], 200),
    ("another tag, to be there", ['If-Match: "a"'], 412),
    ("its weak tag, to be there", ["If-Match: W/{etag}"], 412),
    ("its date, not to be later", [f"If-Unmodified-Since: {DATE}"], 200),
    ("an earlier date, not to be later", [f"If-Unmodified-Since: {EARLIER}"], 412),
]


def with_tag(lines):
    tag = etag()
    places = {"{etag}": tag, "{inner}": tag.strip('"'), "{start}": tag[:-3] + '"'}
    for name, value in places.items():
        lines = [line.replace(name, value) for line in lines]
    return lines


@ALONE_AND_NOT
@pytest.mark.parametrize("method", ["GET", "HEAD"])
@pytest.mark.parametrize("sentence, lines, status", CONDITIONS, ids=[row[0] for row in CONDITIONS])
def test_condition(rig, method, sentence, lines, status, behind):
    request = get_page(*with_tag(lines)).replace(b"GET", method.encode())
    reply = meet(rig, Row(sentence, request, status, KEPT, 0, STYLE), behind)
    if status in (200, 304):
        assert reply.header("Etag") == etag()


def test_condition_on_a_page_that_is_missing_or_an_endpoint_counts_for_nothing(rig):
    missing = head("GET /missing HTTP/1.1", "If-None-Match: *", f"If-Modified-Since: {LATER}")
    meet(rig, Row("missing", missing, 404), behind=True)
    assert ask(get("/get_cpu_usage", "If-None-Match: *\r\n")).status == 200


# Status, and the first and last byte of the part, or None for the whole page.
RANGES = [
    ("the start", "bytes=0-4", 206, (0, 4)),
    ("one byte", "bytes=0-0", 206, (0, 0)),
    ("the last byte", "bytes=19-19", 206, (19, 19)),
    ("up to the end", "bytes=5-", 206, (5, 19)),
    ("all", "bytes=0-", 206, (0, 19)),
    ("more than there is", "bytes=0-999999", 206, (0, 19)),
    ("more than 2^64", "bytes=7-99999999999999999999", 206, (7, 19)),
    ("the last five", "bytes=-5", 206, (15, 19)),
    ("the last of more than there are", "bytes=-100", 206, (0, 19)),
    ("the last of more than 2^64", "bytes=-99999999999999999999", 206, (0, 19)),
    ("a unit in capitals", "Bytes=0-4", 206, (0, 4)),
    ("zeros in front", "bytes=0000-0004", 206, (0, 4)),
    ("behind the end", "bytes=20-", 416, None),
    ("far behind the end", "bytes=99999999999999999999-", 416, None),
    ("the last none", "bytes=-0", 416, None),
    ("two parts", "bytes=0-1,3-4", 200, None),
    ("two parts that overlap", "bytes=0-9, 5-14", 200, None),
    ("start and end", "bytes=0-0,-1", 200, None),
    ("another unit", "lines=0-4", 200, None),
    ("the end in front of the start", "bytes=5-2", 200, None),
    ("words", "bytes=a-b", 200, None),
    ("no numbers", "bytes=-", 200, None),
    ("nothing", "bytes=", 200, None),
    ("one number", "bytes=5", 200, None),
    ("a sign", "bytes=+0-4", 200, None),
    ("two hyphens", "bytes=0--4", 200, None),
    ("hexadecimal", "bytes=0x0-0x4", 200, None),
    ("a word behind", "bytes=0-4x", 200, None),
    ("no unit", "0-4", 200, None),
]


@ALONE_AND_NOT
@pytest.mark.parametrize("sentence, value, status, part", RANGES, ids=[row[0] for row in RANGES])
def test_range(rig, sentence, value, status, part, behind):
    body = STYLE[part[0] : part[1] + 1] if part else STYLE
    row = Row(sentence, get_page(f"Range: {value}"), status, KEPT, 0, body)
    reply = meet(rig, row, behind)
    expected = {206: f"bytes {part[0]}-{part[1]}/{SIZE}" if part else "", 416: f"bytes */{SIZE}"}
    assert reply.header("Content-Range") == expected.get(status)
    if status != 416:
        assert reply.header("Content-Length") == str(len(body))


@pytest.mark.parametrize("method", ["HEAD", "POST"])
def test_range_is_for_get_alone(rig, method):
    request = get_page("Range: bytes=0-4", "Content-Length: 0").replace(b"GET", method.encode())
    reply = meet(rig, page(method, request), behind=True)
    assert reply.header("Content-Length") == str(SIZE)


IF_RANGE = [
    ("its tag", "{etag}", 206),
    ("another tag", '"a"', 200),
    ("its tag, called weak", "W/{etag}", 200),
    ("an earlier date", EARLIER, 200),
    ("a later date", LATER, 200),
]


@pytest.mark.parametrize("sentence, value, status", IF_RANGE, ids=[row[0] for row in IF_RANGE])
def test_range_of_the_page_that_the_client_knows(rig, sentence, value, status):
    lines = with_tag([f"If-Range: {value}", "Range: bytes=0-4"])
    body = STYLE[:5] if status == 206 else STYLE
    meet(rig, Row(sentence, get_page(*lines), status, KEPT, 0, body), behind=True)


def without_date(reply):
    return [line for line in reply.head.split(b"\r\n") if not line.startswith(b"Date:")]


HEADS = [
    ("a page", get("/page.css")),
    ("an index", get("/")),
    ("a large page", get("/large.bin")),
    ("a page with includes", get("/both.shtml")),
    ("a missing page", get("/missing")),
    ("a folder without a slash", get("/folder")),
    ("a folder without an index", get("/folder/")),
    ("an endpoint", get("/get_cpu_usage")),
    ("an endpoint that asks the device", get("/get_LangInfo")),
    ("another endpoint", get("/get_GB28181Info")),
    ("a page that is not to be there", get_page("If-Match: *x")),
    ("behind the end", get("/missing", "Range: bytes=99-\r\n")),
]


@pytest.mark.parametrize("sentence, request_bytes", HEADS, ids=[row[0] for row in HEADS])
def test_head_is_the_same_without_its_body(rig, sentence, request_bytes):
    os.makedirs(path_of(rig, "folder"), exist_ok=True)
    rig.device.play()
    whole = ask(request_bytes)
    with EdgeClient() as client:
        client.send(request_bytes.replace(b"GET", b"HEAD") + get_page("Connection: close"))
        alone = client.read_reply_to("HEAD")
        if not alone.says_closed():
            assert client.read_reply_to().body == STYLE
        assert client.read_end() == b""
    assert without_date(alone) == without_date(whole)
    assert alone.body == b""


@ALONE_AND_NOT
@pytest.mark.parametrize("what", ["*", "/page.css", "/", "/large.bin", "/both.shtml"])
def test_options_tell_what_is_allowed(rig, what, behind):
    row = Row(what, head(f"OPTIONS {what} HTTP/1.1", "Host: recorder"), 204)
    reply = meet(rig, row, behind)
    assert {"GET", "HEAD", "POST", "OPTIONS"} >= set(reply.header("Allow").split(", ")) >= {"GET", "HEAD"}
    assert reply.header("Content-Length") is None and reply.header("Transfer-Encoding") is None


MISSING = [
    Row("a missing page", get("/missing"), 404),
    Row("a missing page in a folder", get("/no/such/page.css"), 404),
    Row("a missing page, its head", get("/missing").replace(b"GET", b"HEAD"), 404),
    Row("a missing page, posted", head("POST /missing HTTP/1.1", "Content-Length: 3") + b"a=b", 404),
    Row("a missing page for the last time", get("/missing", "Connection: close\r\n"), 404, CLOSED),
    Row("a folder without an index", get("/folder/"), 501, EITHER),
    Row("a program", get("/program.cgi"), 501, EITHER),
    Row("a folder without a slash", get("/folder"), 301, EITHER),
]


@ALONE_AND_NOT
@pytest.mark.parametrize("row", **by_sentence(MISSING))
def test_page_that_cannot_be_served(rig, row, behind):
    os.makedirs(path_of(rig, "folder"), exist_ok=True)
    with open(path_of(rig, "program.cgi"), "w", encoding="ascii") as file:
        file.write("#!/bin/sh\n")
    meet(rig, row, behind)


INCLUDES = {
    "a missing page": b'<!--#include virtual="missing.html" -->',
    "a missing page beside it": b'<!--#include file="missing.html" -->',
    "a page by its path": b'<!--#include abspath="/nowhere/missing.html" -->',
    "itself": b'<!--#include file="bad.shtml" -->',
    "no name": b"<!--#include nothing -->",
    "a name without an end": b'<!--#include file="' + b"a" * 9000,
    "a command": b'<!--#exec "id" -->',
}


@pytest.mark.parametrize("what", INCLUDES)
def test_error_in_an_include_shows_no_path(rig, what):
    with open(path_of(rig, "bad.shtml"), "wb") as file:
        file.write(b"[" + INCLUDES[what] + b"]")
    reply = ask(get("/bad.shtml"))
    assert reply.status == 200 and reply.body.startswith(b"[")
    for part in (rig.daemon.folder.encode(), b"web_root", b"/nowhere", b"/tmp"):
        assert part not in reply.body.replace(INCLUDES[what], b"")
