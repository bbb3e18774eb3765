"""A daemon with its pages, the simulated recorder and a shell, for the examples of one document."""

import os
import re
import shutil
import socket
import subprocess

from daemon import PROGRAM, Daemon, wait_until
from device import SimulatedRecorder

_RECEIVED = re.compile(rb'^recv \S+ \S+ \d+ "(.*)"$', re.M)
_ESCAPE = re.compile(rb"\\(x[0-9a-f]{2}|.)", re.S)


def _plain(match):
    code = match[1]
    return bytes([int(code[1:], 16)]) if code[:1] == b"x" and len(code) == 3 else code


class Terminal:
    """A program that a document tells its reader to start in a separate terminal."""

    # What each prints when it is ready.
    SIGNS = {"devsim": b"control on", "webctrl": b"Starting web server"}

    def __init__(self, folder, command):
        name = os.path.basename(command.split()[0])
        path = os.path.join(folder, f"{name}.txt")
        words = ["bash", "-c", f"exec {command}"]
        with open(path, "wb") as output:
            self._process = subprocess.Popen(words, cwd=folder, stdout=output, stderr=output)
        wait_until(lambda: self._says(path, self.SIGNS[name]), f"{name} to be ready")

    def _says(self, path, sign):
        with open(path, "rb") as file:
            text = file.read()
        assert self._process.poll() is None, text
        return sign in text

    def close(self):
        self._process.terminate()
        self._process.wait()


class Recorder:
    """Everything runs in `folder`; the shell keeps its variables from command to command.

    `programs` may hold another daemon ("webctrl") and other settings ("devsim_default.xml");
    `started` are the commands of a document that tells its reader to start both programs.
    """

    def __init__(self, folder, programs=None, started=()):
        self.folder = str(folder)
        self._closing = []
        if started:
            self._start_as_told(started)
        else:
            self._start_device(programs)
            self._start_daemon(programs)
        self._shell = subprocess.Popen(
            ["bash"], cwd=self.folder, env={**os.environ, "LC_ALL": "C.UTF-8"},
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        )  # fmt: skip

    def _start_as_told(self, commands):
        os.makedirs(self._path("build/release"))
        os.symlink(os.path.dirname(PROGRAM), self._path("build/release/bin"))
        for command in commands:
            self._closing.append(Terminal(self.folder, command).close)

    def _start_device(self, programs):
        options = ["--log", self._path("devsim.log"), "--control", "6001"]
        if programs:
            options += ["--defaults", os.path.join(programs, "devsim_default.xml")]
        self._closing.append(SimulatedRecorder(self.folder, *options).close)

    def _start_daemon(self, programs):
        daemon = Daemon(self.folder, web_root=None)
        shutil.copytree(os.path.join(os.path.dirname(PROGRAM), "web_root"), self._path("web_root"))
        if programs:
            shutil.copy(os.path.join(programs, "webctrl"), daemon.program)
        self._closing.append(daemon.start().stop)

    def _path(self, name):
        return os.path.join(self.folder, name)

    def run(self, command):
        """The output of a command, without its last line end."""
        self._shell.stdin.write(b"{ %s\n} </dev/null; printf '\\0'\n" % command.encode())
        self._shell.stdin.flush()
        output = bytearray()
        while (byte := self._shell.stdout.read(1)) != b"\0":
            assert byte, f"the shell ended: {output!r}"
            output += byte
        if "/dev/udp/" in command:
            self._command("nothing")  # a command was sent: it is executed before this one
        return output.decode(errors="replace").removesuffix("\n")

    def order(self, command):
        """Sends the simulated recorder a command and waits until it is executed."""
        answer = self._command(command)
        assert answer == b"ok", (command, answer)

    @staticmethod
    def _command(text):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as control:
            control.settimeout(60)
            control.sendto(text.encode(), ("127.0.0.1", 6001))
            return control.recv(1000)

    def received(self):
        """Every datagram that the device application has received so far, as text."""
        with open(self._path("devsim.log"), "rb") as file:
            lines = _RECEIVED.findall(file.read())
        return [_ESCAPE.sub(_plain, line).decode("utf-8", "replace") for line in lines]

    def close(self):
        self._shell.stdin.close()
        self._shell.wait()
        self._shell.stdout.close()
        for close in reversed(self._closing):
            close()
