#!/usr/bin/python3
"""Compares the daemon's speed with a floor and with other servers, as ratios in one run.

Everything runs in a private network namespace: the simulated recorder, the daemon on port 80, the
floor on 81, lighttpd with FastCGI on 82, busybox httpd with CGI on 83. First the replies are
compared byte for byte. Load goes to one server at a time, in short slices in turn, so that other
work on the machine affects all of them equally. Figures are the medians of the slices, ratios the
medians of the slices' ratios. Times are only printed, in a table, never asserted. Below it are the
system calls of a file request, counted in separate runs.

The simulated recorder and the servers share one processor, as on a recorder, and the load comes
from another one, as from a browser. With --spread they run on any processor; each exchange then
waits for idle processors to wake up, whichever server makes it.

  run.py [--bin FOLDER] [--slices N] [--seconds S] [--spread] [--instructions]
"""

import argparse
import os
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tests/blackbox"))
import netns  # noqa: E402

from counts import print_instructions, print_system_calls  # noqa: E402
from servers import ENDPOINTS, FILES, Bench, get, get_tag, wait_for  # noqa: E402

CLOCK = re.compile(rb"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")  # the only value that changes every second


def cpu_seconds(pids):
    """Processor time of these processes' threads and of their finished children."""
    total = 0
    for pid in pids:
        for task in os.listdir(f"/proc/{pid}/task"):
            with open(f"/proc/{pid}/task/{task}/schedstat", encoding="ascii") as file:
                total += int(file.read().split()[0]) / 1e9
        with open(f"/proc/{pid}/stat", encoding="ascii") as file:
            fields = file.read().rpartition(")")[2].split()
        total += (int(fields[13]) + int(fields[14])) / os.sysconf("SC_CLK_TCK")
    return total


def share_one_processor():
    """Restricts processes started from now on to one processor; returns a prefix that starts one on
    another."""
    processors = sorted(os.sched_getaffinity(0))
    if len(processors) < 2:
        return []
    os.sched_setaffinity(0, processors[:1])
    return ["taskset", "-c", str(processors[1])]


def check_alike(servers, paths):
    """Checks that every server sends the same bodies; otherwise the figures would mean nothing."""
    reference = CLOCK.sub(b"", get(80, paths["webctrl"])[1])
    for name, (port, _) in servers.items():
        status, body = get(port, paths[name])
        if status != 200 or CLOCK.sub(b"", body) != reference:
            sys.exit(f"{name} answers {paths[name]} otherwise: {status} {body[:200]!r}")


def load(command, pids):
    """One slice: (requests/s, processor seconds per request, median ms)."""
    before = cpu_seconds(pids)
    done = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    # Unfinished exchanges must not collide with the next server's at port 4999.
    time.sleep(0.2)
    spent = cpu_seconds(pids) - before
    # The tool counts a close after each reply as a read error; that is not a fault.
    if re.search(r"Non-2xx|connect [1-9]|timeout [1-9]", done):
        sys.exit(f"{command[-1]}: {done}")
    count, span = re.search(r"(\d+) requests in ([\d.]+)s", done).groups()
    value, unit = re.search(r"50%\s+([\d.]+)(us|ms|s)", done).groups()
    return (int(count) / float(span), spent / int(count),
            float(value) * {"us": 1e-3, "ms": 1, "s": 1e3}[unit])


def measure(servers, wrk, paths, connections, slices, tags=None):
    """The slices of each server, in turn."""
    results = {name: [] for name in servers}
    for _ in range(slices):
        for name, (port, pids) in servers.items():
            fields = ["-H", f"If-None-Match: {tags[name]}"] if tags else []
            command = [*wrk, f"-c{connections}", *fields, f"http://127.0.0.1:{port}{paths[name]}"]
            results[name].append(load(command, pids))
    return results


def ratio(own, other, at):
    """The median of the slices' ratios: other load affects neighbouring slices equally."""
    return statistics.median(a[at] / b[at] for a, b in zip(own, other))


def print_rows(title, results):
    for name, slices in results.items():
        rate, spent, median = (statistics.median(column) for column in zip(*slices))
        row = f"{title:<25} {name:<9} {rate:>8.0f} {spent * 1e6:>7.1f} {median:>7.2f}"
        for other in ("floor", "lighttpd"):
            for at in (0, 1):
                known = other in results
                row += f" {ratio(slices, results[other], at):>7.2f}" if known else f" {'-':>7}"
        print(row, flush=True)


def run_comparison(bench, wrk, slices):
    daemon = bench.start_daemon()
    floor = bench.start(os.path.join(bench.folder, "floor"), "81", bench.web_root, bench.replays).pid
    wait_for(81)
    fast = bench.start_lighttpd()
    own = {"webctrl": (80, [daemon]), "floor": (81, [floor])}
    lighttpd = {"lighttpd": (82, fast)}
    busybox = {"busybox": (83, [bench.start_busybox()])}
    print(f"{'':<25} {'':<9} {'':>8} {'us of':>7} {'median':>7} {'/floor':>15} {'/lighttpd':>15}")
    print(f"{'what':<25} {'server':<9} {'req/s':>8} {'cpu':>7} {'ms':>7}"
          + f" {'req/s':>7} {'cpu':>7}" * 2)
    for name in ENDPOINTS:
        paths = {"webctrl": f"/{name}", "floor": f"/{name}", "lighttpd": f"/fcgi/{name}",
                 "busybox": f"/cgi-bin/{name}"}
        check_alike({**own, **lighttpd, **busybox}, paths)
        # One exchange at a time holds port 4999, so a CGI program serves one connection only.
        print_rows(f"{name}, 1 conn.",
                   measure({**own, **lighttpd, **busybox}, wrk, paths, 1, slices))
        print_rows(f"{name}, 16 conn.", measure({**own, **lighttpd}, wrk, paths, 16, slices))
    for name in FILES:
        servers = {**own, **lighttpd}
        paths = dict.fromkeys(servers, f"/{name}")
        check_alike(servers, paths)
        print_rows(f"{name}, 16 conn.", measure(servers, wrk, paths, 16, slices))
    # The library's own 304 closes the connection, so there is no floor.
    servers = {"webctrl": own["webctrl"], **lighttpd}
    tags = {name: get_tag(port, "/1k.html") for name, (port, _) in servers.items()}
    paths = dict.fromkeys(servers, "/1k.html")
    print_rows("1k.html, 304, 16 conn.", measure(servers, wrk, paths, 16, slices, tags))
    print_system_calls(servers, wrk, tags)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--bin", default=os.path.join(ROOT, "build/bench/bin"))
    parser.add_argument("--slices", type=int, default=6)
    parser.add_argument("--seconds", type=int, default=1)
    parser.add_argument("--spread", action="store_true")
    parser.add_argument("--instructions", action="store_true")
    arguments = parser.parse_args()
    netns.enter()
    work = tempfile.mkdtemp(prefix="speed-")
    bench = Bench(os.path.abspath(arguments.bin), work)
    try:
        bench.lay_out()
        if arguments.instructions:
            print_instructions(bench)
        else:
            elsewhere = [] if arguments.spread else share_one_processor()
            wrk = [*elsewhere, "wrk", "-t1", f"-d{arguments.seconds}s", "--latency"]
            run_comparison(bench, wrk, arguments.slices)
    finally:
        bench.stop()
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
