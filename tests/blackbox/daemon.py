"""The real executable in its own folder, with its output in files, stopped by its process id.

WEBCTRL_BIN names the executable (default: build/release/bin/webctrl). WEBCTRL_RUNNER is put before
the command line, so that "valgrind -q" (see valgrind.supp) or an emulator can run every test.
"""

import os
import re
import shlex
import shutil
import signal
import socket
import subprocess
import time

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ.get("WEBCTRL_BIN") or os.path.join(_ROOT, "build/release/bin/webctrl")
_RUNNER = shlex.split(os.environ.get("WEBCTRL_RUNNER", ""))

# Ends a wait that would otherwise never end; no test measures time with it.
PATIENCE = 120

_CLOCK_REALTIME_COARSE = 5

_REPORTS = re.compile(r"Sanitizer|runtime error:|^==\d+==", re.MULTILINE)

# In an expected line: any decimal number (a source line, a thread id, a length).
N = "{n}"


def trace(name):
    return f"FUN:{name}, LINE:{N}."


START = "--------------------------DoHttpRequeset, start."
FILES = "------------others-------mg_serve_http."
REFUSED_LINE = "\033[31m\033[1mDoHttpRequeset error!"
RESET = "\033[0m"
LOGGER_ERROR = f"\033[31m\033[1m[Logger          ]<ERROR@log, L{N}>:CLogger not init."
SERVER_THREAD = f"{RESET}\033[35m\033[1m[LOG  ]<@DetectSvc, L144>:CWebCtrl::DetectSvc, tid={N}"


def wait_until(condition, what):
    deadline = time.monotonic() + PATIENCE
    while not condition():
        assert time.monotonic() < deadline, f"in vain: {what}"
        time.sleep(0.01)


def clock():
    """The second that time() returns to the daemon: that clock is some milliseconds late."""
    return int(time.clock_gettime(_CLOCK_REALTIME_COARSE))


def wait_for_next_second():
    """Waits until the daemon sees a later second, whichever clock it reads."""
    now = int(time.time())
    wait_until(lambda: clock() > now, "the next second")


def fill_web_root(folder):
    """A small web root whose pages contain their names, so that a reply shows which one was
    served."""
    os.makedirs(folder, exist_ok=True)
    pages = {
        "index.html": "<html>index</html>",
        "page.css": "body { color: page }",
        "sets.css": "body { color: sets }",
        "other.css": "body { color: other }",
        "both.shtml": "[<!--#call setting1 -->|<!--#call setting2 -->]",
        "other.shtml": "[<!--#call setting3 -->|<!--#call -->]",
        "large.bin": "0123456789abcdef" * 16384,
    }
    for name, text in pages.items():
        with open(os.path.join(folder, name), "w", encoding="ascii") as file:
            file.write(text)


def _has_connections():
    """Whether a socket of port 80 is connected or is waiting for the daemon to close it."""
    with open("/proc/net/tcp", encoding="ascii") as file:
        rows = [line.split() for line in file.readlines()[1:]]
    return any(row[1].endswith(":0050") and row[3] in ("01", "08") for row in rows)


class Output:
    """One output file of the daemon, read from a mark onwards."""

    def __init__(self, path):
        self._path = path
        self.file = open(path, "wb")
        self._mark = 0

    def text(self):
        with open(self._path, encoding="utf-8", errors="surrogateescape", newline="") as file:
            return file.read()

    def mark(self):
        self._mark = len(self.text())

    def since_mark(self):
        return self.text()[self._mark :]

    def wait_for(self, piece):
        wait_until(lambda: piece in self.since_mark(), f"{piece!r} in {self.since_mark()!r}")

    def expect_in_order(self, *lines):
        """Expects these lines since the mark in this order; others may come between them."""
        pattern = re.compile(
            "".join(f"^{re.escape(line)}$(?s:.*)".replace(re.escape(N), r"\d+") for line in lines),
            re.MULTILINE,
        )
        text = self.since_mark().replace(RESET, "")
        assert pattern.search(text), f"{lines} in {text!r}"
        self.mark()

    def expect(self, *lines, tail=""):
        """Expects exactly these lines (and an unfinished one) since the mark, once all are
        written."""
        text = "".join(line + "\n" for line in lines) + tail
        pattern = re.compile(re.escape(text).replace(re.escape(N), r"\d+"))
        deadline = time.monotonic() + 5
        while not pattern.fullmatch(self.since_mark()) and time.monotonic() < deadline:
            time.sleep(0.005)
        if not pattern.fullmatch(self.since_mark()):
            assert self.since_mark() == text
        self.mark()


def command(*arguments, program=PROGRAM):
    return [*_RUNNER, program, *arguments]


class Daemon:
    """One process. start() returns when it serves; spawn() returns at once, for starts that fail.

    env changes its environment; None removes a variable.
    """

    def __init__(self, folder, name="webctrl", web_root="web_root", env=None, arguments=()):
        self._arguments = arguments
        self.folder = str(folder)
        os.makedirs(self.folder, exist_ok=True)
        self.program = os.path.join(self.folder, name)
        shutil.copy(PROGRAM, self.program)
        if web_root:
            fill_web_root(os.path.join(self.folder, web_root))
        self.ifconfig_log = os.path.join(self.folder, "ifconfig.log")
        env = {**os.environ, "IFCONFIG_LOG": self.ifconfig_log, "TZ": "CST-8", **(env or {})}
        self._env = {name: value for name, value in env.items() if value is not None}
        self.process = None

    def spawn(self):
        self.stdout = Output(os.path.join(self.folder, "stdout.txt"))
        self.stderr = Output(os.path.join(self.folder, "stderr.txt"))
        self.process = subprocess.Popen(
            command(*self._arguments, program=self.program),
            stdin=subprocess.DEVNULL,
            stdout=self.stdout.file,
            stderr=self.stderr.file,
            cwd=self.folder,
            env=self._env,
        )
        return self

    def start(self):
        self.spawn()
        wait_until(self._serves, "the daemon on port 80")
        self._threads = self.count("task")
        self.mark()
        return self

    def _serves(self):
        assert self.is_alive(), f"the daemon ended: {self.stdout.text()} {self.stderr.text()}"
        if "Starting web server on port 80\n" not in self.stdout.text():
            return False
        socket.create_connection(("127.0.0.1", 80)).close()
        return True

    def is_alive(self):
        return self.process.poll() is None

    def mark(self):
        self.stdout.mark()
        self.stderr.mark()

    def count(self, what):
        """Entries of a folder of the process: "task" (threads) or "fd" (descriptors)."""
        return len(os.listdir(f"/proc/{self.process.pid}/{what}"))

    def count_idle_descriptors(self):
        """The descriptors once all client connections are closed and restarted threads have
        ended."""
        wait_until(lambda: not _has_connections(), "the connections to close")
        wait_until(lambda: self.count("task") == self._threads, "the restarted threads to end")
        return self.count("fd")

    def pause(self):
        os.kill(self.process.pid, signal.SIGSTOP)
        wait_until(lambda: self._state() == "T", "the daemon to stand still")

    def resume(self):
        os.kill(self.process.pid, signal.SIGCONT)

    def _state(self):
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            return file.read().rpartition(")")[2].split()[0]

    def stop(self):
        """Ends the process; it must still be alive, and no checker may have complained."""
        was_alive = self.is_alive()
        if was_alive:
            self.process.terminate()
            self.process.wait()
        self.stdout.file.close()
        self.stderr.file.close()
        assert was_alive, f"the daemon ended with {self.process.returncode}"
        self.check_reports()

    def check_reports(self):
        text = self.stderr.text()
        assert not _REPORTS.search(text), text
