"""Requests up to their limits are served; descriptors stay limited, whatever clients do."""

import pytest
from edge import GOOD, SET_DONE, EdgeClient
from http_client import Client, get, post

MEBIBYTE = 1024 * 1024
LANGUAGE_SET = b'<VariCfgSec Action="DEVICE_SET"><stDisplay strLanguage="CN" /></VariCfgSec>'


def served(client):
    client.send(get("/page.css"))
    return client.read_reply().body == b"body { color: page }"


def test_request_head_of_almost_8_kib_is_served(rig):
    padding = "c" * (8192 - len(get("/page.css", "Cookie: \r\n")) - 1)
    request = get("/page.css", f"Cookie: {padding}\r\n")
    assert len(request) == 8191
    assert rig.ask(request, head=None).body == b"body { color: page }"


CHUNKED = b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n"
# The sizes of chunks count as well.
IN_CHUNKS = 1000000


def form(size):
    return b"strLanguage=CN&".ljust(size, b"a")


def chunks(size):
    data = form(IN_CHUNKS)
    parts = (data[at : at + size] for at in range(0, len(data), size))
    return CHUNKED + b"".join(b"%x\r\n%s\r\n" % (len(part), part) for part in parts) + b"0\r\n\r\n"


LARGEST = {
    "with a length": post("/set_LangInfo", form(MEBIBYTE)),
    "in a chunk": chunks(IN_CHUNKS),
    "in chunks": chunks(1024),
}


@pytest.mark.parametrize("how", LARGEST)
def test_body_up_to_the_limit_is_carried_out(rig, how):
    assert rig.ask(LARGEST[how]).body == SET_DONE
    assert rig.device.requests == [LANGUAGE_SET]


def test_two_large_bodies_behind_each_other_are_both_carried_out(rig):
    rig.device.play()
    with EdgeClient() as client:
        client.send(LARGEST["in chunks"] + LARGEST["with a length"])
        assert [client.read_reply_to().body for _ in range(2)] == [SET_DONE] * 2
    assert rig.device.requests == [LANGUAGE_SET] * 2


def test_small_request_behind_a_large_body_is_one_of_its_own(rig):
    rig.device.play()
    with EdgeClient() as client:
        client.send(LARGEST["with a length"] + GOOD)
        assert [client.read_reply_to().body for _ in range(2)] == [SET_DONE] * 2
    assert len(rig.device.requests) == 2


def test_flood_of_silent_connections_keeps_descriptors_bounded(rig):
    before = rig.daemon.count_idle_descriptors()
    for _ in range(3):
        clients = [Client() for _ in range(400)]
        with Client() as newcomer:
            assert served(newcomer)
        for client in clients:
            client.close()
    assert rig.daemon.count_idle_descriptors() == before
