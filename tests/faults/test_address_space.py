"""The limit of memory is reached by what clients send: all of them go, the service stays."""

import contextlib
import resource
import socket

from daemon import wait_until
from device import answer
from http_client import Client, get

SHORT = "CWebCtrl::DetectSvc, out of memory, all connections are closed.\n"


def served():
    """The whole reply, or nothing when what came before has closed this connection, too."""
    with contextlib.suppress(EOFError, ConnectionError), Client() as client:
        client.send(get("/get_LangInfo"))
        return client.read_reply().body


def half_body():
    sock = socket.create_connection(("127.0.0.1", 80), timeout=60)
    with contextlib.suppress(OSError):  # closed by the service
        sock.sendall(b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: 1000000\r\n\r\n" + b"x" * 900000)
    return sock


def test_address_space_used_up(spoilt, device):
    """Bodies that never end, three times over."""
    daemon = spoilt(limits={resource.RLIMIT_AS: 24 << 20})
    for _ in range(3):
        daemon.mark()
        socks = []
        while SHORT not in daemon.stdout.since_mark():
            socks.append(half_body())
            assert len(socks) < 200
        device.play(otherwise=answer('<stDisplay strLanguage="CN"/>'))
        wait_until(lambda: served() == b'{ "strLanguage": "CN", "result": 1 }', "an answer")
        for sock in socks:
            sock.close()
