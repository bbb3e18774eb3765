"""How much of the service a thousand clients may use, and what the others notice."""

import contextlib
import itertools
import re
import resource
import socket
import struct
import threading
import time

import pytest
from daemon import wait_until
from device import REFUSED, SILENCE, change
from http_client import STANDARD_HEAD, Client, get, post
from spoilt import is_at_rest

MEBIBYTE = 1 << 20
CLIENTS = 1000
STYLE = b"body { color: page }"
HALF_HEAD = b"GET /page.css HTTP/1.1\r\nHost: re"
# How much all clients together may make the service hold; the fragments that the allocator cannot
# use meanwhile; how much may be left when they have gone.
HELD, ALLOCATOR, GIVEN_BACK = 8 * MEBIBYTE, 8 * MEBIBYTE, 2 * MEBIBYTE
# One exchange with a device that does not answer, and a margin for a busy machine.
EXCHANGE_SEC, SLACK_SEC = 5, 1.5


@pytest.fixture(scope="module", autouse=True)
def descriptors():
    hard = resource.getrlimit(resource.RLIMIT_NOFILE)[1]
    resource.setrlimit(resource.RLIMIT_NOFILE, (min(4096, hard), hard))


@pytest.fixture
def clients():
    """Creates clients whose connections are reset at the end, so that nothing of them remains."""
    with contextlib.ExitStack() as stack:

        def make(data=b""):
            client = stack.enter_context(Crowding())
            with contextlib.suppress(OSError):
                client.send(data)
            return client

        yield make


class Crowding(Client):
    def __init__(self):
        super().__init__()
        self._sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))

    def send_what_fits(self, data):
        """Sends as much as the daemon accepts before it closes or stops reading."""
        self._sock.settimeout(0.05)
        with contextlib.suppress(OSError):
            self._sock.sendall(data)

    def drip(self):
        with contextlib.suppress(OSError):
            self._sock.send(b"x", socket.MSG_DONTWAIT)


def ask(client):
    client.send(get("/page.css"))
    return client.read_reply().body == STYLE


def count_closed(clients):
    return sum(client.is_closed() for client in clients)


def test_thousand_idle_connections_stay_and_cost_nothing(spoilt, device, clients):
    daemon = spoilt()
    silent = [clients() for _ in range(CLIENTS // 2)]
    kept = [clients() for _ in range(CLIENTS // 2)]
    assert all(map(ask, kept))
    for _ in range(100):
        assert ask(clients())
    assert is_at_rest(daemon)
    assert count_closed(silent + kept) == 0
    assert all(map(ask, kept + silent))


@pytest.mark.parametrize("places", [4096, 512], ids=["with places for all", "with places for half"])
@pytest.mark.parametrize("data", [b"", HALF_HEAD, b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: 900\r\n\r\na"])
def test_no_request_on_a_kept_connection_meets_a_close(spoilt, device, clients, places, data):
    """834 requests from ten clients while a thousand others send byte by byte and reconnect when
    closed."""
    spoilt(limits={resource.RLIMIT_NOFILE: places})
    kept = [clients() for _ in range(10)]
    assert all(map(ask, kept))
    slow = [clients(data) for _ in range(CLIENTS)]
    turns = itertools.cycle(range(CLIENTS))
    for k in range(834):
        for place in itertools.islice(turns, 4):
            slow[place].drip()
            if slow[place].is_closed():
                slow[place].close()
                slow[place] = clients(data)
        assert ask(kept[k % len(kept)]), k


def test_those_that_never_asked_go_first_and_the_oldest_of_them(spoilt, device, clients):
    """Sending byte by byte does not make a client count as newer."""
    spoilt(limits={resource.RLIMIT_NOFILE: 256})
    kept = [clients() for _ in range(60)]
    assert all(map(ask, kept))
    slow = [clients(HALF_HEAD) for _ in range(100)]
    for _ in range(3):
        for client in slow[:50]:
            client.drip()
        assert ask(kept[0])
    newcomers = []
    while not count_closed(slow):
        newcomers.append(clients())
        assert ask(newcomers[-1]) and len(newcomers) < 256
    for _ in range(20):
        newcomers.append(clients())
        assert ask(newcomers[-1])
    gone = [client.is_closed() for client in slow]
    assert gone == sorted(gone, reverse=True) and 20 <= sum(gone) < 50
    assert count_closed(kept + newcomers) == 0


def memory(daemon, what):
    """Resident memory in bytes: now ("VmRSS") or the peak since forget_peak() ("VmHWM")."""
    with open(f"/proc/{daemon.process.pid}/status", encoding="ascii") as file:
        return int(re.search(rf"{what}:\s*(\d+) kB", file.read())[1]) * 1024


def forget_peak(daemon):
    with open(f"/proc/{daemon.process.pid}/clear_refs", "w", encoding="ascii") as file:
        file.write("5")


BODY = post("/set_LangInfo", b"a" * (MEBIBYTE - 1))
SMALL_CHUNKS = b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n" + b"1\r\na\r\n" * 200000
# What each client sends, and how many of them there are.
ATTACKS = {
    "bodies that lack a byte": (BODY[:-1], 127),
    "halves of bodies": (BODY[: MEBIBYTE // 2], 200),
    "chunks of a byte": (SMALL_CHUNKS, 100),
    "heads that lack a byte": (get("/page.css", "Cookie: " + "c" * 8000 + "\r\n")[:-1], CLIENTS),
    "requests behind each other": (get("/page.css") * 20000, 100),
    "large pages that nobody reads": (get("/large.bin") * 1000, 200),
    "refused bodies": (post("/set_LangInfo", b"a" * (2 * MEBIBYTE)), 100),
}


@pytest.mark.parametrize("what", ATTACKS)
def test_memory_that_clients_hold_is_bounded_and_given_back(spoilt, device, clients, what):
    daemon = spoilt()
    data, count = ATTACKS[what]
    for _ in range(5):
        with Client() as client:
            assert ask(client)
            client.send(get("/large.bin"))
            client.read_reply()
    before, descriptors = memory(daemon, "VmRSS"), daemon.count("fd")
    forget_peak(daemon)
    attackers = [clients() for _ in range(count)]
    for client in attackers:
        client.send_what_fits(data)
    with Client() as client:
        assert ask(client)
    assert memory(daemon, "VmHWM") - before < HELD + ALLOCATOR
    for client in attackers:
        client.close()
    wait_until(lambda: daemon.count("fd") <= descriptors, "the connections to be forgotten")
    with Client() as client:
        assert ask(client)
    wait_until(lambda: memory(daemon, "VmRSS") - before <= GIVEN_BACK, "the memory")


def test_client_that_has_broken_off_is_not_carried_out(spoilt, device):
    """An honest client waits for the current exchange and for no other."""
    spoilt()
    device.play(otherwise=SILENCE)
    gone = [Crowding() for _ in range(5)]
    gone[0].send(get("/get_LangInfo"))
    device.wait_for_requests(1)
    for client in gone[1:]:
        client.send(get("/get_LangInfo") + post("/set_DeviceNo", "strFD_DeviceNo=1"))
    for client in gone:
        client.close()
    begin = time.monotonic()
    with Client() as client:
        assert ask(client)
    assert time.monotonic() - begin < EXCHANGE_SEC + SLACK_SEC
    assert len(device.requests) == 1


def test_client_that_has_only_ended_is_carried_out(spoilt, device):
    spoilt()
    device.play(otherwise=REFUSED)
    with Client() as client:
        client.send(post("/set_DeviceNo", "strFD_DeviceNo=1") * 3)
        client.end_of_requests()
        assert client.read_to_end().count(STANDARD_HEAD) == 3
    assert len(device.requests) == 3


PIPELINING, BEHIND_EACH_OTHER, HONEST = 100, 300, 200


def test_honest_client_waits_for_one_request_of_each_other(spoilt, device, clients):
    """Measured by the device's queries between an honest request and its reply."""
    spoilt()
    device.play(otherwise=REFUSED)
    crowd = [clients() for _ in range(PIPELINING)]
    flood = post("/set_DeviceNo", "strFD_DeviceNo=1") * BEHIND_EACH_OTHER
    senders = [threading.Thread(target=client.send_what_fits, args=(flood,)) for client in crowd]
    for sender in senders:
        sender.start()
    device.wait_for_requests(PIPELINING)
    waits = []
    with Client() as client:
        for k in range(HONEST):
            asked = len(device.requests)
            client.send(post("/set_DeviceNo", f"strFD_DeviceNo=honest{k}"))
            client.read_reply()
            mine = change(f'<stBaseInfo strFD_DeviceNo="honest{k}"/>')
            waits.append(device.requests.index(mine, asked) - asked)
    for sender in senders:
        sender.join()
    assert len(device.requests) < PIPELINING * BEHIND_EACH_OTHER, "the crowd was served before"
    waits.sort()
    assert waits[HONEST * 99 // 100 - 1] <= PIPELINING + 5, waits
