#!/usr/bin/python3
"""Works the release build as hard as possible, with browsers, attackers and a bad device at once.

usage: soak.py [--seconds N] [--seed N]

WEBCTRL_BIN names the daemon, FAULT_SHIM_LIB the library that reports its heap's size. Runs in its
own network namespace; exits with 77 where that is not possible. The daemon's output is a pipe that
nobody reads. All traffic pauses after the first minute (a third of shorter runs) and at the end. The
daemon must then have as much memory and as many descriptors and threads as before, apart from what
each restart leaves behind by design: that is measured at the end, by restarts without other traffic.
Every answered request is checked (model.py).
"""

import argparse
import multiprocessing
import os
import socket
import subprocess
import sys
import tempfile
import time

_HERE = os.path.dirname(os.path.abspath(__file__))
sys.path[:0] = [_HERE] + [os.path.join(os.path.dirname(_HERE), name) for name in ("blackbox", "faults")]

import measure  # noqa: E402
import netns  # noqa: E402
from browser import Browser, Broken, Connection  # noqa: E402
from daemon import Daemon  # noqa: E402
from hostile import SECRET, Flood, HostileClient  # noqa: E402
from http_client import post  # noqa: E402
from recorder import Recorder  # noqa: E402
from shim import LIBRARY, Shim  # noqa: E402
from state import State  # noqa: E402

_EXIT_SKIPPED = 77
_RESTART_EVERY_SEC = 20
_RESTARTS_MEASURED = 3
# How much a restart may leave behind, and how far two idle samples may differ.
_MOST_PER_RESTART = 1024
_HEAP_TOLERANCE = 512
_RESIDENT_TOLERANCE_KIB = 512


class SilentDaemon(Daemon):
    """The daemon with its output in a pipe that nobody reads."""

    def spawn(self):
        self._reader, writer = os.pipe()
        self.process = subprocess.Popen(
            [self.program], stdin=subprocess.DEVNULL, stdout=writer, stderr=writer,
            cwd=self.folder, env=self._env,
        )
        os.close(writer)
        return self

    def start(self):
        self.spawn()
        measure.wait_until(self._listens, "the daemon")
        return self

    def _listens(self):
        with socket.socket() as sock:
            return sock.connect_ex(("127.0.0.1", 80)) == 0

    def stop(self):
        was_alive = self.is_alive()
        self.process.terminate()
        self.process.wait()
        os.close(self._reader)
        return was_alive


class Workers:
    """The processes that create the traffic, and how to pause them."""

    def __init__(self, state, bodies):
        self._state = state
        self._held = multiprocessing.sharedctypes.RawArray("b", len(bodies))
        self._results = multiprocessing.SimpleQueue()
        self._processes = [
            multiprocessing.Process(target=self._work, args=(index, make), daemon=True)
            for index, make in enumerate(bodies)
        ]
        for process in self._processes:
            process.start()

    def _work(self, index, make):
        def acknowledge():
            self._held[index] = 1
            time.sleep(0.02)

        body = make()
        try:
            body.run(acknowledge)
        except Exception as error:  # anything that ends a worker ends the run, with its name
            body.wrong.append(f"{type(body).__name__} ended: {error!r}")
        self._results.put((type(body).__name__, body.counts, body.wrong, getattr(body, "longest", 0)))

    def hold(self):
        for index in range(len(self._held)):
            self._held[index] = 0
        self._state.put("paused", 1)
        measure.wait_until(lambda: all(self._held), "the traffic to pause")

    def go_on(self):
        self._state.put("paused", 0)

    def stop(self):
        self._state.put("stopped", 1)
        results = [self._results.get() for _ in self._processes]
        for process in self._processes:
            process.join()
        return results


def restart(state):
    """One set that the device accepts, which causes a restart. The exchange may fail like any
    other."""
    state.put("accepting", 1)
    try:
        connection = Connection()
        connection.ask(post("/set_MirrorInfo", "strFD_UpDown=1"))
        connection.close()
    except Broken:
        pass
    state.put("accepting", 0)


def traffic(state, seconds):
    """Lets the traffic run, with a restart now and then."""
    end = time.monotonic() + seconds
    while (left := end - time.monotonic()) > 0:
        time.sleep(min(left, _RESTART_EVERY_SEC))
        restart(state)


def starts(daemon):
    """How often the service has started: it sets the loopback address each time."""
    with open(daemon.ifconfig_log, encoding="ascii") as file:
        return len(file.readlines())


def report(seconds, state, samples, restarts, per_restart, results):
    print(f"soak of {seconds} s: {state.exchanges} exchanges, {state.troubles} spoilt by the device,")
    print(f"  {state.late} late answers, {state.datagrams} hostile datagrams in {state.floods} bursts")
    for name, sample in samples.items():
        print(f"  {name}: {sample}")
    print(f"  {restarts} restarts between them, each leaves {per_restart} bytes of heap")
    for name, numbers, wrong, longest in results:
        longest = f", slowest answer {longest:.2f} s" if longest else ""
        print(f"  {name}: {dict(numbers)}{longest}")
        for line in wrong[:20]:
            print(f"    WRONG {line}")


def judge(state, first, last, restarts, per_restart, results):
    """The reasons why this soak has failed."""
    grown = last.heap_bytes - first.heap_bytes - per_restart * restarts
    answered = sum(numbers["answered"] for _, numbers, _, _ in results)
    return [
        text
        for failed, text in [
            (any(wrong for _, _, wrong, _ in results), "wrong answers"),
            (answered == 0, "no answer at all"),
            (state.uninvited, f"{state.uninvited} sets that nobody asked for reached the device"),
            (first.threads != last.threads, "another number of threads"),
            (first.descriptors != last.descriptors, "another number of descriptors"),
            (abs(grown) > _HEAP_TOLERANCE, f"{grown} bytes of heap beyond the restarts' share"),
            (not 0 <= per_restart <= _MOST_PER_RESTART, "more than a manager left by a restart"),
            (last.resident_kib > first.resident_kib + _RESIDENT_TOLERANCE_KIB, "more memory"),
        ]
        if failed
    ]


def make_daemon(folder):
    shim = Shim(os.path.join(folder, "shim"))
    # Without its per-thread cache the allocator reports exactly what is in use.
    daemon = SilentDaemon(folder, env={**shim.env, "GLIBC_TUNABLES": "glibc.malloc.tcache_count=0"})
    with open(os.path.join(folder, "secret.txt"), "wb") as file:
        file.write(SECRET)
    os.symlink("../secret.txt", os.path.join(folder, "web_root", "link.txt"))
    os.symlink("..", os.path.join(folder, "web_root", "folder"))
    return daemon, shim


def pages(folder):
    names = ("page.css", "other.css", "large.bin")
    return {"/" + name: open(os.path.join(folder, "web_root", name), "rb").read() for name in names}


def soak(seconds, seed, folder):
    daemon, shim = make_daemon(folder)
    state = State()
    recorder = multiprocessing.Process(target=lambda: Recorder(state).run(), daemon=True)
    recorder.start()
    daemon.start()
    try:
        problems = work(daemon, shim, state, seconds, seed)
    finally:
        lived = daemon.stop()
    recorder.join()
    return problems if lived else [*problems, f"the daemon ended with {daemon.process.returncode}"]


def work(daemon, shim, state, seconds, seed):
    """Runs all traffic and measurements; returns what is wrong."""
    samples, pid = {}, daemon.process.pid
    files = pages(daemon.folder)
    workers = Workers(state, [
        lambda: Browser(state, files, seed),
        lambda: Browser(state, files, seed + 1),
        lambda: HostileClient(state, seed + 2),
        lambda: Flood(state, seed + 3),
    ])
    minute = min(60, seconds // 3)
    traffic(state, minute)
    workers.hold()
    restart(state)  # the first one allocates what all later ones reuse
    samples[f"after {minute} s"] = first = measure.take(pid, shim)
    begun = starts(daemon)
    workers.go_on()
    traffic(state, seconds - minute)
    workers.hold()
    samples["at the end"] = last = measure.take(pid, shim)
    restarts = starts(daemon) - begun
    for _ in range(_RESTARTS_MEASURED):
        restart(state)
    left = measure.take(pid, shim).heap_bytes - last.heap_bytes
    per_restart = left // (starts(daemon) - begun - restarts)
    results = workers.stop()
    report(seconds, state, samples, restarts, per_restart, results)
    return judge(state, first, last, restarts, per_restart, results)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seconds", type=int, default=1800)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    if not os.path.exists(LIBRARY):
        print("FAULT_SHIM_LIB names no library")
        return _EXIT_SKIPPED
    try:
        base = netns.enter()
    except netns.NotAllowed as error:
        print(error)
        return _EXIT_SKIPPED
    multiprocessing.set_start_method("fork")
    folder = tempfile.mkdtemp(prefix="soak-", dir=base)
    problems = soak(options.seconds, options.seed, folder)
    print("\n".join(problems) or "no fault")
    netns.leave(base)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
