"""The device application of the soak test: correct answers, and now and then none, a wrong or a
late one."""

import re
import select
import socket
import time

import model
from device import HOST, OTHER_PORT, PORT

# One in this many answers is wrong; every this many seconds one is missing or late.
_WRONG_EVERY = 40
_SILENT_EVERY_SEC = 15.0

_QUERY = re.compile(rb'<VariCfgSec Action="DEVICE_QUERY">(?:<(\w+)[^>]*>)?</VariCfgSec>')
_CHANGE = re.compile(
    rb'<VariCfgSec Action="DEVICE_SET"><stSubStream [^<>]*uiFD_BitRate="(\d+)" /></VariCfgSec>'
)
_MIRROR = b'<VariCfgSec Action="DEVICE_SET"><stVideoMirror>'
_SPOILT = [
    lambda data: b"",
    lambda data: b"no XML at all",
    lambda data: data[:20],
    lambda data: data.replace(b"VariCfgSec", b"Other"),
    lambda data: b'<VariCfgSec Result="0" Action="DEVICE_QUERY"><a/></VariCfgSec>',
    lambda data: b" " * 30001 + data,
    lambda data: b'<Other Action="">' + b"<a>" * 100,
]


class Recorder:
    def __init__(self, state):
        self._state = state
        self._main = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self._main.bind((HOST, PORT))
        self._other = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self._other.bind((HOST, OTHER_PORT))
        self._next_silence = time.monotonic() + _SILENT_EVERY_SEC / 2
        self._held = None  # an answer that will come late: its number and bytes
        self._silences = 0

    def run(self):
        while not self._state.stopped:
            if not select.select([self._main], [], [], 0)[0]:
                self._state.add("rests")
            if select.select([self._main], [], [], 0.1)[0]:
                self._serve(*self._main.recvfrom(65536))

    def _serve(self, data, source):
        state = self._state
        count = state.add("exchanges")
        reply, section = self._reply(data)
        if self._skip(reply, section):
            return
        if self._held and section == "stSubStream":
            number, late = self._held
            self._held = None
            state.put("last_late", number)
            state.add("late")
            # Not followed by the true one, which could reach the next exchange.
            self._main.sendto(late, source)
            return
        if count % _WRONG_EVERY == 0:
            self._spoil(reply, source, count // _WRONG_EVERY)
        else:
            self._main.sendto(reply, source)

    def _reply(self, data):
        """The correct answer, and the section of a query."""
        if match := _QUERY.fullmatch(data):
            section = (match[1] or b"").decode()
            # Noted before it is sent, so that no browser sees it before the other processes know
            # it.
            return model.answer(section, self._state.add("number")), section
        result = 1
        if match := _CHANGE.fullmatch(data):
            if not self._state.arrive(int(match[1])):
                self._turn_down(data)
        elif data.startswith(_MIRROR):
            # A message may come here after a hostile datagram has ended its exchange.
            result = 0 if self._state.accepting else 1
        else:
            self._turn_down(data)
        return b'<VariCfgSec Action="DEVICE_SET" Result="%d"/>' % result, None

    def _turn_down(self, data):
        if self._state.add("uninvited") <= 5:
            print(f"nobody asked for {data[:200]!r}", flush=True)

    def _skip(self, reply, section):
        """Whether to stay silent now; every second silence is followed by the late answer."""
        if time.monotonic() < self._next_silence or self._state.accepting:
            return False
        if self._silences % 2 == 1 and section != "stSubStream":
            return False
        self._state.add("troubles")
        if self._silences % 2 == 1:
            self._held = self._state.number, reply
        self._silences += 1
        self._next_silence = time.monotonic() + _SILENT_EVERY_SEC
        return True

    def _spoil(self, reply, source, turn):
        self._state.add("troubles")
        if turn % (len(_SPOILT) + 1) == 0:
            self._other.sendto(reply, source)
            return
        self._main.sendto(_SPOILT[turn % len(_SPOILT)](reply), source)
