"""Everybody else on the bus network: requests and datagrams that no browser and no device sends."""

import os
import random
import socket
import struct
import time
from collections import Counter

from http_client import get
from netns import ETH0_ADDRESS

SECRET = b"a secret outside the web root"
# Part of everything here that looks like a set: it must never reach the device.
_SET = b"POST /set_SubStreamInfo HTTP/1.1\r\n%sucFD_SFrameRate=99&uiFD_SBitRate=999999999"
_LANGUAGE = b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: %s\r\n\r\nstrLanguage=CN"
_KEPT = 300
_PATHS = [
    b"/../secret.txt",
    b"/%2e%2e/secret.txt",
    b"/..%2fsecret.txt",
    b"/%2e%2e%2fsecret.txt",
    b"/%252e%252e/secret.txt",
    b"//..//secret.txt",
    b"/....//secret.txt",
    b"/..\\secret.txt",
    b"/link.txt",
    b"/folder/secret.txt",
    b"/page.css%00/../secret.txt",
    b"/page.css/../../secret.txt",
    b"http://127.0.0.1/../secret.txt",
    b"/%ff%fe%00",
]
_LENGTHS = [b"-1", b"-49", b"18446744073709551615", b"4294967296", b"0x10", b"1e9"]


class HostileClient:
    def __init__(self, state, seed):
        self._state = state
        self._random = random.Random(seed)
        self._kept = []
        self.counts = Counter()
        self.wrong = []
        self._attacks = [
            (self._stay, lambda: b""),
            (self._stay, lambda: b"GET /get_LangI"),
            (self._stay, lambda: get("/get_SubStreamInfo")[:-2]),
            (self._stay, lambda: _SET % b"Content-Length: 90000\r\n\r\n"),
            (self._stay, lambda: _SET % b"\r\n"),
            (self._stay, lambda: get("/export_CfgFile") * 20),
            (self._stay, lambda: get("/large.bin")),
            (self._stay, lambda: b"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nfffff\r\nx"),
            (self._break, lambda: _SET % b"\r\n"),
            (self._break, lambda: get("/get_cpu_usage") * 50),
            (self._break, lambda: get("/get_SubStreamInfo") * 3),
            (self._leave, lambda: b""),
            (self._leave, lambda: self._random.randbytes(self._random.randrange(1, 4000)) + b"\r\n\r\n"),
            (self._leave, self._odd_length),
            (self._leave, lambda: b"GET / HTTP/1.1\r\nCookie: " + b"c" * 9000),
            (self._leave, lambda: b"GET / HTTP/1.1\r\n" + b"a: b\r\n" * 900 + b"\r\n"),
            (self._leave, lambda: b"GET / HTTP/1.1\r\nUpgrade: websocket\r\nSec-WebSocket-Key: x\r\n\r\n\xff\xff"),
            (self._leave, lambda: b"POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n-1\r\nx\r\n0\r\n\r\n"),
            (self._leave, lambda: b"POST / HTTP/1.1\r\nContent-Length: 900000\r\n\r\n" + b"x" * 100000),
            (self._look_outside, lambda: b""),
            (self._drip, lambda: b""),
        ]

    def run(self, acknowledge):
        while not self._state.stopped:
            if self._state.paused:
                self._close_all()
                acknowledge()
                continue
            attack, data = self._random.choice(self._attacks)
            try:
                attack(data())
            except OSError:
                self.counts["refused"] += 1
            self.counts["attacks"] += 1
        self._close_all()

    def _close_all(self):
        for sock in self._kept:
            sock.close()
        self._kept.clear()

    def _odd_length(self):
        return _LANGUAGE % self._random.choice(_LENGTHS)

    def _open(self, data):
        sock = socket.create_connection(("127.0.0.1", 80), timeout=30)
        sock.setblocking(False)
        if data:
            sock.send(data)
        return sock

    def _stay(self, data):
        sock = self._open(data)
        # An orderly end would end a body without a length, and so complete the request.
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        self._kept.append(sock)
        if len(self._kept) > _KEPT:
            self._kept.pop(0).close()

    def _break(self, data):
        sock = self._open(data)
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        sock.close()

    def _leave(self, data):
        self._open(data).close()

    def _drip(self, _data):
        if self._kept:
            self._random.choice(self._kept).send(b"x")

    def _look_outside(self, _data):
        path = self._random.choice(_PATHS)
        with socket.create_connection(("127.0.0.1", 80), timeout=30) as sock:
            sock.sendall(b"GET %s HTTP/1.1\r\nConnection: close\r\n\r\n" % path)
            sock.shutdown(socket.SHUT_WR)
            reply = b""
            while data := sock.recv(65536):
                reply += data
        if SECRET in reply:
            self.wrong.append(f"{path!r} was served")


class Flood:
    """Datagrams to the daemon's own port, in bursts at full rate."""

    _BURST_SEC, _QUIET_SEC = 1.0, 4.0

    def __init__(self, state, seed):
        self._state = state
        self._random = random.Random(seed)
        self._socks = [socket.socket(socket.AF_INET, socket.SOCK_DGRAM) for _ in range(3)]
        # Another host's port 6000 counts as the device's, so this one sends no complete answer.
        self._socks[0].bind((ETH0_ADDRESS, 6000))
        self.counts, self.wrong = Counter(), []

    def run(self, acknowledge):
        while not self._state.stopped:
            if self._state.paused:
                acknowledge()
                continue
            self._burst()
            self._wait(self._QUIET_SEC)

    def _wait(self, seconds):
        end = time.monotonic() + seconds
        while time.monotonic() < end and not self._state.paused and not self._state.stopped:
            time.sleep(0.01)

    def _burst(self):
        payloads = [
            b"",
            b"<",
            self._random.randbytes(20000),
            b'<VariCfgSec Result="0" Action="DEVICE_QUERY"><a/></VariCfgSec>',
            b"<a>" * 9000,
            os.urandom(100),
        ]
        self._state.put("flooding", 1)
        self._state.add("floods")
        end = time.monotonic() + self._BURST_SEC
        while time.monotonic() < end and not self._state.paused:
            for sock in self._socks:
                sock.sendto(self._random.choice(payloads), (ETH0_ADDRESS, 4999))
            self._state.add("datagrams", len(self._socks))
        # The same goes for what the daemon has sent meanwhile: its answers can reach later
        # exchanges.
        rests = self._state.rests
        while self._state.rests < rests + 2 and not self._state.paused and not self._state.stopped:
            time.sleep(0.01)
        self._wait(0.2)
        self._state.put("flooding", 0)
