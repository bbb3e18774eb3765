"""Several requests on one connection, sent without waiting for the replies."""

import contextlib
import os
import socket
import struct
import threading
import time

import pytest
from daemon import wait_until
from device import REFUSED, SILENCE, answer
from edge import LARGE, NUMBER, STYLE, EdgeClient, settle
from http_client import Client, get, post

LANGUAGE = answer('<stDisplay strLanguage="CN"/>')
SHOWS_CHINESE = b'{ "strLanguage": "CN", "result": 1 }'


@pytest.fixture
def client(rig):
    rig.device.play()
    with EdgeClient() as client:
        yield client


def nothing_was_asked(rig):
    settle()
    assert rig.device.requests == []


def test_files_are_sent_one_behind_the_other(client):
    for _ in range(20):
        client.send(get("/large.bin") + get("/page.css") + get("/large.bin"))
        assert [client.read_reply().body for _ in range(3)] == [LARGE, STYLE, LARGE]
    assert client.pending() == b""


def test_request_that_arrives_while_a_file_is_sent_waits_for_its_end(rig, client):
    path = os.path.join(rig.daemon.folder, "web_root", "huge.bin")
    with open(path, "wb") as file:
        file.write(LARGE * 64)  # more than an unread connection can hold
    client.send(get("/huge.bin"))
    client.await_start()
    client.send(get("/page.css"))
    wait_until(client.has_arrived, "the second request")
    assert [client.read_reply().body for _ in range(2)] == [LARGE * 64, STYLE]
    os.remove(path)


def test_thirty_files_asked_for_at_once_all_come(client):
    client.send(get("/page.css") * 30)
    assert [client.read_reply().body for _ in range(30)] == [STYLE] * 30


def test_client_that_has_ended_gets_all_replies(client):
    client.send(get("/large.bin") + get("/page.css") * 3)
    client.end_of_requests()
    assert [client.read_reply().body for _ in range(4)] == [LARGE, STYLE, STYLE, STYLE]
    assert client.read_to_end() == b""


def test_others_have_their_turn_between_the_requests(rig):
    served = threading.Event()
    in_time = []

    def hold(device, source):
        in_time.append(served.wait(4))
        device.send(LANGUAGE, source)

    rig.device.play(SILENCE, hold, LANGUAGE, LANGUAGE, LANGUAGE)
    with Client() as many, Client() as other:
        many.send(get("/get_LangInfo") * 5)
        wait_until(lambda: len(rig.device.requests) == 1, "the first request")
        other.send(get("/page.css"))
        assert other.read_reply().body == STYLE
        served.set()
        shown = [many.read_reply().body for _ in range(5)]
    assert shown == [b'{ "strLanguage": "EN", "result": 0 }'] + [SHOWS_CHINESE] * 4
    assert in_time == [True], "all of them went first"


def test_finished_reply_does_not_wait_for_the_device_of_another_client(rig):
    rig.silent_device()
    with Client() as first, Client() as second:
        # The first one sends last, so the system reports it first even while the daemon is still
        # busy with it.
        for client in (second, first):
            client.send(get("/page.css"))
            client.read_reply()
        rig.daemon.pause()
        first.send(get("/page.css"))
        second.send(get("/get_LangInfo"))
        rig.daemon.resume()
        assert first.read_reply().body == STYLE
        assert second.pending() == b"", "both replies left when the device's time was up"
        second.read_reply()


def test_requests_of_a_client_that_broke_off_are_forgotten(rig):
    rig.device.play(SILENCE, otherwise=REFUSED)
    sock = socket.create_connection(("127.0.0.1", 80))
    sock.sendall(post("/set_LangInfo", "strLanguage=CN") * 5)
    wait_until(lambda: len(rig.device.requests) == 1, "the first request")
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    sock.close()
    settle()
    assert len(rig.device.requests) <= 2, "one more may have been begun"


CHUNKED = b"POST /set_DeviceNo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
BODIES = [
    ("in one chunk", b"15\r\nstrFD_DeviceNo=123456\r\n0\r\n\r\n"),
    ("in two chunks", b"f\r\nstrFD_DeviceNo=\r\n6\r\n123456\r\n0\r\n\r\n"),
]


@pytest.mark.parametrize("sentence, body", BODIES, ids=[row[0] for row in BODIES])
@pytest.mark.parametrize("pieces", [1, 2, 1000])
def test_body_in_chunks_ends_where_it_ends(rig, client, sentence, body, pieces):
    """Also when the network splits it anywhere; the request after it is separate."""
    rig.device.play(REFUSED)
    data = CHUNKED + body + get("/page.css")
    client.send_cut(data, range(0, len(data), max(1, len(data) // pieces)))
    assert client.read_reply().body == b'{"result": 1 }'
    assert client.read_reply().body == STYLE
    assert rig.device.requests == [NUMBER]


def test_end_of_chunks_inside_a_chunk_is_data(rig, client):
    rig.device.play(REFUSED)
    client.send(CHUNKED + b"5\r\n0\r\n\r\n\r\n")
    settle()
    assert rig.device.requests == [], "half a body was carried out"
    client.send(b"10\r\nstrFD_DeviceNo=1\r\n0\r\n\r\n")
    assert client.read_reply().body == b'{"result": 1 }'
    assert len(rig.device.requests) == 1


def test_nothing_behind_a_reply_that_closes_is_carried_out(rig):
    rig.device.play()
    for behind in (CHUNKED + BODIES[0][1], post("/set_DeviceNo", "strFD_DeviceNo=123")):
        with Client() as client:
            client.send(get("/nothing.css", "Connection: close\r\n") + behind)
            assert client.read_reply().head.startswith(b"HTTP/1.1 404 ")
            assert client.read_to_end() == b""
    nothing_was_asked(rig)


def test_what_arrives_later_behind_a_reply_that_closes_is_not_carried_out(rig):
    """Above all, not a request inside the body of another one, where the first segment ends."""
    rig.device.play()
    inner = post("/set_DeviceNo", "strFD_DeviceNo=123")
    start = get("/nothing.css", "Connection: close\r\n")
    start += b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: 30000\r\n\r\n"
    for segment in (16384, 8192, 1460):
        with Client() as client:
            client.send(start.ljust(segment, b"x") + inner * 100)
            with contextlib.suppress(ConnectionError):
                client.read_to_end()
    nothing_was_asked(rig)


def test_request_behind_a_file_that_closes_is_not_carried_out(rig):
    path = os.path.join(rig.daemon.folder, "web_root", "medium.bin")
    with open(path, "wb") as file:
        file.write(LARGE[:20000])
    rig.device.play()
    for _ in range(20):
        with Client() as client:
            client.send(get("/medium.bin", "Connection: close\r\n") + post("/set_DeviceNo", "strFD_DeviceNo=123"))
            client.end_of_requests()
            assert client.read_to_end().partition(b"\r\n\r\n")[2] == LARGE[:20000]
    nothing_was_asked(rig)


@pytest.mark.parametrize("rest", [b"X\r\n\r\n", b"\0", b"GET\r\n\r\n"])
def test_reply_comes_although_what_follows_is_broken(rig, rest):
    rig.device.play(REFUSED)
    with Client() as client:
        client.send(post("/set_DeviceNo", "strFD_DeviceNo=123456") + rest)
        assert client.read_reply().body == b'{"result": 1 }'
        assert client.read_reply().head.startswith(b"HTTP/1.1 400 Bad Request\r\n")
        assert client.read_to_end() == b""
    assert rig.device.requests == [NUMBER]


def test_reply_that_ends_with_the_connection_ends_at_once(rig):
    """An idle service sleeps for up to a second. If each of the twenty waited for that, they would
    take twenty seconds."""
    rig.device.play()
    begin = time.monotonic()
    for _ in range(10):
        for uri in ("/nothing.css", "/both.shtml"):
            with Client() as client:
                client.send(get(uri, "Connection: close\r\n"))
                client.read_to_end()
    assert time.monotonic() - begin < 10, "they waited for the service to wake up"


def test_file_that_is_cut_while_it_is_sent_closes_the_connection(rig):
    path = os.path.join(rig.daemon.folder, "web_root", "shrinking.bin")
    with open(path, "wb") as file:
        file.truncate(32 << 20)
    rig.device.play()
    with EdgeClient() as client:
        client.send(get("/shrinking.bin"))
        client.await_start()
        os.truncate(path, 100000)
        head, _, body = client.read_to_end().partition(b"\r\n\r\n")
        assert head.startswith(b"HTTP/1.1 200 ") and len(body) < 32 << 20
    os.remove(path)
    assert rig.get("/get_LangInfo", LANGUAGE).body == SHOWS_CHINESE
