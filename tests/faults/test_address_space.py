"""Clients make the daemon reach its memory limit: all of them are closed, the service stays."""

import contextlib
import resource
import socket

from daemon import wait_until
from device import answer
from http_client import Client, get

SHORT = "CWebCtrl::DetectSvc, out of memory, all connections are closed.\n"


def served():
    """The whole reply, or nothing when earlier requests have caused this connection to close,
    too."""
    with contextlib.suppress(EOFError, ConnectionError), Client() as client:
        client.send(get("/get_LangInfo"))
        return client.read_reply().body


def half_body():
    sock = socket.create_connection(("127.0.0.1", 80), timeout=60)
    with contextlib.suppress(OSError):  # the service has closed it
        sock.sendall(b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: 1000000\r\n\r\n" + b"x" * 900000)
    return sock


def serves(device):
    device.play(otherwise=answer('<stDisplay strLanguage="CN"/>'))
    wait_until(lambda: served() == b'{ "strLanguage": "CN", "result": 1 }', "an answer")


def test_address_space_used_up(spoilt, device):
    """Bodies that never end, three times, with less memory than they may use."""
    daemon = spoilt()
    pid = daemon.process.pid
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        size = next(int(line.split()[1]) << 10 for line in file if line.startswith("VmSize"))
    resource.prlimit(pid, resource.RLIMIT_AS, (size + (4 << 20),) * 2)
    for _ in range(3):
        daemon.mark()
        socks = []
        while SHORT not in daemon.stdout.since_mark():
            socks.append(half_body())
            assert len(socks) < 200
        serves(device)
        for sock in socks:
            sock.close()


def test_24_mib_have_room_for_all_that_clients_may_hold(spoilt, device):
    daemon = spoilt(limits={resource.RLIMIT_AS: 24 << 20})
    daemon.mark()
    socks = [half_body() for _ in range(100)]
    serves(device)
    assert SHORT not in daemon.stdout.since_mark()
    for sock in socks:
        sock.close()
