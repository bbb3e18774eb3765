"""A refusal reaches the client, even one that is still sending; soon after, the connection ends."""

import time

import pytest
from edge import EdgeClient, head, set_number, settle

_MEBIBYTE = 1 << 20
LONG_BODY = b"a" * (3 * _MEBIBYTE)
# How long a refused client may continue to send before its connection ends.
_LONGEST_GOODBYE_SEC = 30

REFUSED = {
    "a length above the limit": (set_number(f"Content-Length: {len(LONG_BODY)}", body=b""), 413),
    "a chunk above the limit": (set_number("Transfer-Encoding: chunked", body="300000\r\n"), 413),
    "no length": (set_number(body=b""), 411),
    "a broken head": (set_number("X : a", body=b""), 400),
    "two lengths": (set_number("Content-Length: 3", "Content-Length: 3145728", body=b""), 400),
    "an unknown method": (head("GETT /page.css HTTP/1.1"), 501),
    "another coding": (set_number("Transfer-Encoding: gzip", body=b""), 501),
    "another version": (head("GET /page.css HTTP/2.0"), 505),
    "a long request line": (b"GET /" + b"a" * 9000, 414),
    "a long head": (head("GET /page.css HTTP/1.1", "Cookie: " + "c" * 9000), 431),
}
EACH = pytest.mark.parametrize("request_bytes, status", REFUSED.values(), ids=REFUSED)


def expect(client, status):
    reply = client.read_reply_to()
    assert reply.status == status and reply.has_right_reason() and reply.says_closed()


@EACH
def test_refusal_reaches_a_client_that_sends_all_first(rig, request_bytes, status):
    """Three mebibytes are sent before the first byte is read, and no reset destroys the reply."""
    rig.device.play()
    with EdgeClient() as client:
        client.send(request_bytes + LONG_BODY)
        expect(client, status)
        assert client.read_end() == b""
    settle()
    assert rig.device.requests == []


@EACH
def test_refusal_and_end_come_while_the_client_is_silent(rig, request_bytes, status):
    with EdgeClient() as client:
        client.send(request_bytes)
        expect(client, status)
        assert client.read_end() == b""


@pytest.mark.parametrize("what", ["a broken head", "a length above the limit", "a long head"])
def test_refused_client_that_sends_on_and_on_loses_its_connection(rig, what):
    request_bytes, status = REFUSED[what]
    before = rig.daemon.count_idle_descriptors()
    with EdgeClient() as client:
        client.send(request_bytes)
        expect(client, status)
        begin = time.monotonic()
        with pytest.raises(ConnectionError):
            while time.monotonic() - begin < _LONGEST_GOODBYE_SEC:
                client.send(b"a" * 4096)
                time.sleep(0.01)
    settle()
    assert rig.daemon.count_idle_descriptors() == before


def test_refused_client_that_leaves_is_forgotten_at_once(rig):
    before = rig.daemon.count_idle_descriptors()
    for request_bytes, _ in REFUSED.values():
        with EdgeClient() as client:
            client.send(request_bytes)
    settle()
    assert rig.daemon.count_idle_descriptors() == before


def test_refused_clients_keep_nobody_waiting(rig):
    clients = [EdgeClient() for _ in range(50)]
    for client in clients:
        client.send(REFUSED["a broken head"][0])
    begin = time.monotonic()
    settle()
    assert time.monotonic() - begin < 1
    for client in clients:
        expect(client, 400)
        client.close()
