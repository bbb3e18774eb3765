"""A thousand clients that send nothing, or only part of a request, do not block the others."""

import contextlib
import resource
import socket
import struct
import time

import pytest
from device import answer
from http_client import Client, get

CLIENTS = 1000
# The longest duration of an exchange with the device; the service handles one request at a time.
_EXCHANGE_SEC = 5

LANGUAGE = answer('<stDisplay strLanguage="CN"/>')
SET = b"POST /set_LangInfo HTTP/1.1\r\n%sstrLanguage=C"

KINDS = {
    "nothing": b"",
    "half a head": b"GET /get_LangInfo HTTP/1.1\r\nHost: re",
    "half a body": SET % b"Content-Length: 20\r\n\r\n",
    "half of a long body": SET % b"Content-Length: 900000\r\n\r\n" + b"x" * 4000,
    "a body that has no length": SET % b"\r\n",
    "half a chunk": SET % b"Transfer-Encoding: chunked\r\n\r\ne\r\n",
    "whole requests whose replies nobody reads": get("/large.bin"),
}


@pytest.fixture(scope="module", autouse=True)
def descriptors():
    limits = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (min(4096, limits[1]), limits[1]))


@contextlib.contextmanager
def crowd(data):
    socks = []
    try:
        for _ in range(CLIENTS):
            socks.append(socket.create_connection(("127.0.0.1", 80), timeout=60))
            socks[-1].setblocking(False)
            # They reset at the end: an orderly end would also end some bodies.
            socks[-1].setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
            if data:
                socks[-1].send(data)
        yield socks
    finally:
        for sock in socks:
            sock.close()


def served(rig):
    """A file and an exchange on separate connections, each answered in time."""
    rig.device.play(LANGUAGE)
    for uri, body in (("/page.css", b"body { color: page }"), ("/get_LangInfo", b'{ "strLanguage": "CN", "result": 1 }')):
        begin = time.monotonic()
        with Client() as client:
            client.send(get(uri))
            assert client.read_reply().body == body
        assert time.monotonic() - begin < _EXCHANGE_SEC
    assert len(rig.device.requests) == 1, "half a request was carried out"


@pytest.mark.parametrize("kind", KINDS)
def test_well_behaved_client_is_served_among(rig, kind):
    rig.device.play()
    before = rig.daemon.count_idle_descriptors()
    with crowd(KINDS[kind]) as socks:
        served(rig)
        # One more byte from each, as slowly as possible.
        for sock in socks:
            try:
                sock.send(b"x")
            except OSError:
                pass
        served(rig)
    served(rig)
    assert rig.daemon.count_idle_descriptors() == before


def test_client_that_is_just_being_served_is_not_the_one_to_go(rig):
    """Far more newcomers than connections are kept, while a large page is being sent."""
    rig.device.play()
    with Client() as client:
        newcomers = []
        for _ in range(20):
            client.send(get("/large.bin"))
            newcomers += [socket.create_connection(("127.0.0.1", 80)) for _ in range(20)]
            assert client.read_reply().body == b"0123456789abcdef" * 16384
        for sock in newcomers:
            sock.close()
