"""How long a connection lasts, Expect before a body, and the gate's missing reply."""

import pytest
from edge import (
    ALONE_AND_NOT,
    CLOSED,
    CONTINUE,
    EITHER,
    GOOD,
    KEPT,
    LENGTH,
    NUMBER,
    NUMBER_FORM,
    SET_DONE,
    EdgeClient,
    Row,
    carried_out,
    each_met,
    get_page,
    head,
    meet,
    page,
    set_number,
    settle,
)
from http_client import STANDARD_HEAD, get


# Version, header lines, and what happens to the connection: the same for pages and endpoints.
LASTING = [
    ("1.1", [], KEPT),
    ("1.1", ["Connection: keep-alive"], KEPT),
    ("1.1", ["Connection: close"], CLOSED),
    ("1.1", ["Connection: CLOSE"], CLOSED),
    ("1.1", ["connection:close"], CLOSED),
    ("1.1", ["Connection: \tclose \t"], CLOSED),
    ("1.1", ["Connection: keep-alive, close"], CLOSED),
    ("1.1", ["Connection: close, keep-alive"], CLOSED),
    ("1.1", ["Connection: te ,close"], CLOSED),
    ("1.1", ["Connection: ,,close,"], CLOSED),
    ("1.1", ["Connection: Upgrade, Close", "Upgrade: h2c"], CLOSED),
    ("1.1", ["Connection: te", "Connection: close"], CLOSED),
    ("1.1", ["Connection: close", "Connection: keep-alive"], CLOSED),
    ("1.1", ["Connection: closed"], KEPT),
    ("1.1", ["Connection: x-close"], KEPT),
    ("1.1", ["Connection: x", "X-Connection: close"], KEPT),
    ("1.1", ["Proxy-Connection: close"], KEPT),
    ("1.1", ["Connection:"], KEPT),
    ("1.1", ["Connection: Upgrade", "Upgrade: websocket"], KEPT),
    ("1.0", [], CLOSED),
    ("1.0", ["Connection: keep-alive"], KEPT),
    ("1.0", ["Connection: Keep-Alive, te"], KEPT),
    ("1.0", ["Connection: te"], CLOSED),
    ("1.0", ["Connection: close"], CLOSED),
    ("1.0", ["Connection: keep-alive, close"], CLOSED),
    ("1.0", ["Keep-Alive: max=5"], CLOSED),
    ("1.0", ["Proxy-Connection: keep-alive"], CLOSED),
]
LASTS = pytest.mark.parametrize(
    "version, lines, after", LASTING, ids=[f"{row[0]} {'|'.join(row[1])!r}" for row in LASTING]
)


@ALONE_AND_NOT
@LASTS
def test_connection_behind_an_endpoint(rig, version, lines, after, behind):
    meet(rig, carried_out("a set", set_number(LENGTH, *lines, version=version), after), behind)


@ALONE_AND_NOT
@LASTS
def test_connection_behind_a_page(rig, version, lines, after, behind):
    request = head(f"GET /page.css HTTP/{version}", "Host: recorder", *lines)
    reply = meet(rig, page("a page", request, after), behind)
    assert reply.says_closed() == (after == CLOSED)


@ALONE_AND_NOT
@LASTS
def test_connection_behind_a_missing_page(rig, version, lines, after, behind):
    request = head(f"GET /missing HTTP/{version}", "Host: recorder", *lines)
    meet(rig, Row("a missing page", request, 404, after), behind)


@pytest.mark.parametrize("lines", [["Connection: close"], ["Connection: keep-alive"], []])
@pytest.mark.parametrize("version", ["1.0", "1.1"])
def test_endpoint_keeps_its_head(rig, version, lines):
    with EdgeClient() as client:
        client.send(head(f"GET /get_cpu_usage HTTP/{version}", *lines))
        assert client.read_reply_to().head == STANDARD_HEAD


def test_what_comes_later_behind_the_last_reply_is_not_carried_out(rig):
    rig.device.play()
    with EdgeClient() as client:
        client.send(get("/page.css", "Connection: close\r\n"))
        reply = client.read_reply_to()
        client.send(GOOD)
        assert client.read_end() == b"" and reply.says_closed()
    settle()
    assert rig.device.requests == []


def test_older_client_that_keeps_its_connection_is_told_so(rig):
    with EdgeClient() as client:
        client.send(head("GET /page.css HTTP/1.0", "Connection: keep-alive"))
        assert client.read_reply_to().header("Connection").lower() == "keep-alive"


EXPECTS = "Expect: 100-continue"


@pytest.mark.parametrize("expects", [EXPECTS, "expect: 100-CONTINUE", "Expect:100-continue"])
@pytest.mark.parametrize("coded", [False, True], ids=["length", "chunks"])
def test_client_is_told_to_continue_before_its_body(rig, expects, coded):
    rig.device.play()
    body = f"{len(NUMBER_FORM):x}\r\n{NUMBER_FORM}\r\n0\r\n\r\n" if coded else NUMBER_FORM
    with EdgeClient() as client:
        client.send(set_number("Transfer-Encoding: chunked" if coded else LENGTH, expects, body=""))
        assert client.read_head() == CONTINUE
        assert rig.device.requests == []
        client.send(body.encode() + GOOD)
        reply = client.read_reply_to()
        assert (reply.interim, reply.body) == (0, SET_DONE)
        assert client.read_reply_to() == (STANDARD_HEAD, SET_DONE, 0)
    assert rig.device.requests[0] == NUMBER and len(rig.device.requests) == 2


def test_continue_comes_behind_the_replies_before_it(rig):
    rig.device.play()
    with EdgeClient() as client:
        client.send(get("/large.bin") + get_page() + set_number(LENGTH, EXPECTS, body=""))
        assert [client.read_reply_to().interim for _ in range(2)] == [0, 0]
        assert client.read_head() == CONTINUE
        client.send(NUMBER_FORM.encode())
        assert client.read_reply_to().body == SET_DONE


EXPECTATIONS = [
    carried_out("the body is there already", set_number(LENGTH, EXPECTS)),
    page("there is no body", get_page(EXPECTS)),
    page("a body of no bytes", get_page(EXPECTS, "Content-Length: 0")),
    Row("something else", set_number(LENGTH, "Expect: tea"), 417, EITHER),
    Row("something else of a page", get_page("Expect: tea"), 417, EITHER),
    Row("something more", set_number(LENGTH, "Expect: 100-continue, tea"), 417, EITHER),
    Row("something like it", set_number(LENGTH, "Expect: 100-continued"), 417, EITHER),
    Row("something else in a second line", set_number(LENGTH, EXPECTS, "Expect: tea"), 417, EITHER),
    Row("another version", head("GET /page.css HTTP/2.0", EXPECTS), 505, CLOSED),
]

test_expectation = each_met(EXPECTATIONS)


def test_older_client_expects_nothing(rig):
    """It would mistake 100 Continue for its reply."""
    rig.device.play()
    with EdgeClient() as client:
        client.send(set_number(LENGTH, EXPECTS, body="", version="1.0"))
        settle()
        assert client.pending() == b""
        client.send(NUMBER_FORM.encode())
        reply = client.read_reply_to()
        assert (reply.interim, reply.body) == (0, SET_DONE)
        assert client.read_end() == b""


GATED = get("/page.css?time=1")


@pytest.mark.parametrize("lines", ["", "Connection: close\r\n", "Range: bytes=0-4\r\n", "If-None-Match: *\r\n"])
@pytest.mark.parametrize("method", ["GET", "HEAD"])
def test_refusal_of_the_gate_is_silence(rig, method, lines):
    request = get("/page.css?time=1", lines).replace(b"GET", method.encode())
    rig.ask_unanswered(request, "DoHttpRequeset error!")


def test_gate_keeps_the_connection_for_what_is_behind(rig):
    rig.device.play()
    with EdgeClient() as client:
        client.send(GATED + get_page() + GATED + GOOD)
        assert client.read_reply_to().status == 200
        assert client.read_reply_to().body == SET_DONE
        settle()
        assert client.pending() == b"" and not client.is_closed()
