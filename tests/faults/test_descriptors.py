"""A low descriptor limit means fewer clients, but no busy loop."""

import resource
import socket

import pytest
from daemon import wait_until
from device import ACCEPTED, answer
from http_client import Client, get, post
from spoilt import is_at_rest

LANGUAGE = answer('<stDisplay strLanguage="CN"/>')

# The limit, and how many of 200 idle clients stay connected: 12 descriptors are for other uses.
LIMITS = [(10, 1), (18, 6), (20, 8), (32, 20), (64, 52), (128, 116), (1024, 200), (4096, 200)]


def ask(request):
    with Client() as client:
        client.send(request)
        return client.read_reply().body


def is_closed(sock):
    try:
        return sock.recv(1) == b""
    except BlockingIOError:
        return False
    except ConnectionError:
        return True


def works(device):
    device.play(LANGUAGE)
    assert ask(get("/get_LangInfo")) == b'{ "strLanguage": "CN", "result": 1 }'
    assert ask(get("/large.bin")) == b"0123456789abcdef" * 16384


@pytest.mark.parametrize("limit, places", LIMITS)
def test_limit_reached(spoilt, device, limit, places):
    if limit > resource.getrlimit(resource.RLIMIT_NOFILE)[1]:
        pytest.skip("the machine's own limit is lower")
    daemon = spoilt(limits={resource.RLIMIT_NOFILE: limit})
    socks = [socket.create_connection(("127.0.0.1", 80)) for _ in range(200)]
    for sock in socks:
        sock.setblocking(False)
    wait_until(lambda: sum(not is_closed(sock) for sock in socks) == places, f"{places} places")
    works(device)
    assert is_at_rest(daemon)
    for sock in socks:
        sock.close()
    works(device)
    device.play(ACCEPTED)
    assert ask(post("/set_LangInfo", "strLanguage=CN")) == b'{"result": 1 }'
    works(device)


def test_limit_is_raised_to_what_clients_need(spoilt, device):
    """As far as the parent process allows: the daemon starts with 256 of 4,096."""
    if resource.getrlimit(resource.RLIMIT_NOFILE)[1] < 4096:
        pytest.skip("the machine's own limit is lower")
    daemon = spoilt(limits={resource.RLIMIT_NOFILE: (256, 4096)})
    with open(f"/proc/{daemon.process.pid}/limits", encoding="ascii") as file:
        row = next(line for line in file if line.startswith("Max open files"))
    assert row.split()[3] == "2100"
    works(device)
