"""The daemon's resources: threads, descriptors, resident pages, heap in use."""

import os
import time
from collections import namedtuple

Sample = namedtuple("Sample", "threads descriptors resident_kib heap_bytes")


def wait_until(condition, what, seconds=60):
    deadline = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > deadline:
            raise TimeoutError(what)
        time.sleep(0.05)


def _connections():
    """The table rows of connections that the daemon has, or that are still closing."""
    with open("/proc/net/tcp", encoding="ascii") as file:
        rows = [line.split() for line in file.readlines()[1:]]
    # Local port 80 (hexadecimal), in any state but LISTEN and TIME_WAIT.
    return [row for row in rows if row[1].endswith(":0050") and row[3] not in ("0A", "06")]


def _status(pid, name):
    with open(f"/proc/{pid}/status", encoding="ascii") as file:
        for line in file:
            if line.startswith(name + ":"):
                return int(line.split()[1])
    raise KeyError(name)


def take(pid, shim):
    """A sample of the idle daemon: no client, no thread of a restart, the main thread asleep."""
    wait_until(lambda: not _connections(), "the connections to close")
    wait_until(lambda: _status(pid, "Threads") == 2, "the threads of restarts to end")
    sleeps = shim.sleeps
    wait_until(lambda: shim.sleeps >= sleeps + 2, "the heap's figure")
    return Sample(
        _status(pid, "Threads"),
        len(os.listdir(f"/proc/{pid}/fd")),
        _status(pid, "VmRSS"),
        shim.heap_in_use,
    )
