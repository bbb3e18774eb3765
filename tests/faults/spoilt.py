"""A daemon with limits on its resources, or without the streams that a program usually has."""

import os
import resource
import socket
import subprocess

from daemon import Daemon, Output, wait_until


def full_pipe():
    """The write end of a full pipe, and the read end to keep it open."""
    reader, writer = os.pipe()
    os.set_blocking(writer, False)
    try:
        while True:
            os.write(writer, b"x" * 65536)
    except BlockingIOError:
        os.set_blocking(writer, True)
    return writer, reader


def dead_pipe():
    reader, writer = os.pipe()
    os.close(reader)
    return writer, None


def full_socket():
    """Like the pipe, but with the kind of stream that a service manager provides."""
    ours, theirs = socket.socketpair()
    return theirs.detach(), ours.detach()


class SpoiltDaemon(Daemon):
    """limits: {resource: value, or (soft, hard)}. output: a function that returns a descriptor for
    standard output and error, and one to keep open; or "closed". By default the output goes to
    files as usual."""

    def __init__(self, folder, limits=None, output=None, env=None, closed=()):
        super().__init__(folder, env=env)
        self._limits, self._output, self._closed = limits or {}, output, closed
        self._kept = None

    def _prepare(self):
        for name, value in self._limits.items():
            resource.setrlimit(name, value if isinstance(value, tuple) else (value, value))
        for number in self._closed:
            os.close(number)

    def spawn(self):
        self.stdout = Output(os.path.join(self.folder, "stdout.txt"))
        self.stderr = Output(os.path.join(self.folder, "stderr.txt"))
        out, err = self.stdout.file, self.stderr.file
        if self._output:
            out, self._kept = self._output()
            err = out
        self.process = subprocess.Popen(
            [self.program],
            stdin=subprocess.DEVNULL,
            stdout=out,
            stderr=err,
            cwd=self.folder,
            env=self._env,
            preexec_fn=self._prepare,
        )
        if self._output:
            os.close(out)
        return self

    def start(self):
        assert not self._listens(), "another daemon is there"
        self.spawn()
        wait_until(self._serves, "the daemon on port 80")
        self.mark()
        return self

    def _serves(self):
        assert self.is_alive(), f"the daemon ended: {self.stdout.text()} {self.stderr.text()}"
        return self._listens()

    def _listens(self):
        with socket.socket() as sock:
            return sock.connect_ex(("127.0.0.1", 80)) == 0

    def stop(self):
        super().stop()
        if self._kept is not None:
            os.close(self._kept)


def _naps(daemon):
    """How often the main thread and how often the others have gone to sleep by themselves."""
    counts = {}
    for thread in os.listdir(f"/proc/{daemon.process.pid}/task"):
        with open(f"/proc/{daemon.process.pid}/task/{thread}/status", encoding="ascii") as file:
            line = next(line for line in file if line.startswith("voluntary_ctxt_switches"))
        counts[int(thread)] = int(line.split()[1])
    return counts.pop(daemon.process.pid), sum(counts.values())


def is_at_rest(daemon):
    """Whether the service sleeps as it should while the main thread, which only sleeps, does so once.

    Twice is right. A busy loop never goes to sleep, and a service that is woken for nothing does so
    all the time.
    """
    seen = [_naps(daemon)]

    def another():
        naps = _naps(daemon)
        if naps[0] != seen[-1][0]:
            seen.append(naps)
        return len(seen) == 3

    wait_until(another, "two naps of the main thread")
    (main_before, before), (main_after, after) = seen[1:]
    return 1 <= (after - before) / (main_after - main_before) <= 10
