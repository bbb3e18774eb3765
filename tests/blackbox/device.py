"""The device application's side: a scripted one, and the simulated recorder."""

import os
import select
import socket
import subprocess
import threading
import time

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DEVSIM = os.environ.get("DEVSIM_BIN") or os.path.join(_ROOT, "build/release/bin/devsim")

HOST, PORT = "127.0.0.1", 6000
OTHER_HOST, OTHER_PORT = "127.0.0.2", 6001

ACCEPTED = b'<VariCfgSec Action="DEVICE_SET" Result="0"/>'
REFUSED = b'<VariCfgSec Action="DEVICE_SET" Result="1"/>'
UNUSABLE = b"no XML at all"
SILENCE = None


def query(section):
    return f'<VariCfgSec Action="DEVICE_QUERY">{section}</VariCfgSec>'.encode()


def change(section):
    return f'<VariCfgSec Action="DEVICE_SET">{section}</VariCfgSec>'.encode()


def answer(section):
    text = f'<VariCfgSec Action="DEVICE_QUERY" Result="0">{section}</VariCfgSec>'
    return text.encode("gbk")


VERSION_QUERY = query("<stVersion />")


def version(channels):
    """The answer with the number of video channels."""
    return answer(f'<stVersion VideoCnt="{channels}"/>')


def from_other_port(data):
    return lambda device, source: device.send(data, source, device.other_port)


def from_other_host(data):
    return lambda device, source: device.send(data, source, device.other_host)


def _bound(host, port):
    sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    sock.bind((host, port))
    return sock


class ScriptedDevice:
    """Answers each datagram with the next step of its script and keeps what it received.

    A step is the reply's bytes, SILENCE, or a function of (device, source address). Datagrams
    beyond the script get `otherwise`. Only the thread reads the socket; a test reads `requests`
    after the HTTP reply, when the exchange is over.
    """

    def __init__(self):
        self.main = _bound(HOST, PORT)
        self.other_port = _bound(HOST, OTHER_PORT)
        self.other_host = _bound(OTHER_HOST, PORT)
        self._stop_reader, self._stop_writer = os.pipe()
        self.play()
        self._thread = threading.Thread(target=self._run)
        self._thread.start()

    def play(self, *steps, otherwise=REFUSED):
        self.requests, self.sources = [], []
        self._steps, self._otherwise = list(steps), otherwise

    def send(self, data, target, sock=None):
        (sock or self.main).sendto(data, target)

    def wait_for_requests(self, count):
        deadline = time.monotonic() + 60
        while len(self.requests) < count and time.monotonic() < deadline:
            time.sleep(0.01)
        return self.requests

    def close(self):
        os.write(self._stop_writer, b"x")
        self._thread.join()
        for sock in (self.main, self.other_port, self.other_host):
            sock.close()
        os.close(self._stop_reader)
        os.close(self._stop_writer)

    def _run(self):
        while self._stop_reader not in select.select([self._stop_reader, self.main], [], [])[0]:
            data, source = self.main.recvfrom(65536)
            step = self._steps.pop(0) if self._steps else self._otherwise
            self.sources.append(source)
            self.requests.append(data)
            if callable(step):
                step(self, source)
            elif step is not SILENCE:
                self.send(step, source)


class SimulatedRecorder:
    """The program devsim with its document in a test folder."""

    def __init__(self, folder, *options):
        self._state = os.path.join(folder, "recorder.xml")
        self._output = os.path.join(folder, "devsim.txt")
        with open(self._output, "wb") as output:
            self._process = subprocess.Popen(
                [DEVSIM, "--state", self._state, *options], stdout=output, stderr=output
            )
        deadline = time.monotonic() + 60
        while b"listening" not in self.output() and time.monotonic() < deadline:
            assert self._process.poll() is None, self.output()
            time.sleep(0.01)

    def output(self):
        with open(self._output, "rb") as file:
            return file.read()

    def document(self):
        """The settings as the recorder stores them, in GBK."""
        with open(self._state, "rb") as file:
            return file.read()

    def close(self):
        self._process.terminate()
        self._process.wait()
