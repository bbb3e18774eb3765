#!/usr/bin/python3
"""Prints how much room the daemon needs: on disk, in memory, on its stack, on the heap.

  run.py [--requests N] [--objects N]

Started by scripts/footprint.sh, which builds what is measured. The sizes come from the link map of
the ARM executable. Memory is measured in a network namespace with the simulated recorder: with the
static build for this machine, which differs from a recorder's only in the processor, and with the
ordinary build. The heap is measured with the ordinary build and a counting library. Exits with 1
when memory grows from one round of requests to the next, or beyond the targets below.
"""

import argparse
import mmap
import os
import re
import shutil
import struct
import subprocess
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
BUILD = os.path.join(ROOT, "build")
sys.path.insert(0, os.path.join(ROOT, "tests/blackbox"))
import daemon  # noqa: E402
import device  # noqa: E402
import linkmap  # noqa: E402
import netns  # noqa: E402
from http_client import Client, get, post  # noqa: E402

ARM = os.path.join(BUILD, "armhf/image/opt/webctrl/bin/webctrl")
ARM_MAP = os.path.join(BUILD, "armhf/CBB/WebCtrl/webctrl.map")
STATIC = os.path.join(BUILD, "footprint/static/bin/webctrl")
USUAL = os.path.join(BUILD, "release/bin/webctrl")
STACK_TEST = os.path.join(BUILD, "release/bin/webctrl_stack_test")
HEAP_COUNT = os.path.join(BUILD, "footprint/libheap_count.so")

MOST_DISK = 1_200_000
MOST_RESIDENT_KB = 3 * 1024
# The C library may still touch a page or two of its bookkeeping for the first time.
MOST_GROWTH_KB = 64

REQUESTS = (
    ("/get_BaseInfo", get("/get_BaseInfo")),
    ("/get_SystemInfo", get("/get_SystemInfo")),
    ("/get_GB28181Info", get("/get_GB28181Info")),
    ("/get_cpu_usage", get("/get_cpu_usage")),
    ("/cmp_UserSecurity", post("/cmp_UserSecurity", "strFD_Name=admin&strFD_Passwd=none")),
    ("/export_CfgFile", get("/export_CfgFile")),
    ("a small page", get("/index.html")),
    ("a file of 256 KiB", get("/large.bin")),
)


def table(title, head, rows):
    cells = [[str(cell) for cell in row] for row in (head, *rows)]
    widths = [max(len(row[i]) for row in cells) for i in range(len(head))]
    print(f"\n{title}\n")
    for row in cells:
        first, *rest = (cell.rjust(width) for cell, width in zip(row, widths))
        print("  " + "  ".join([row[0].ljust(len(first)), *rest]).rstrip())


def print_disk(most_objects):
    kinds, objects = linkmap.by_owner(ARM_MAP)
    rows = sorted(kinds.items(), key=lambda item: -sum(item[1].values()))
    rows = [(name, *(count[kind] for kind in linkmap.KINDS), sum(count.values()))
            for name, count in rows]
    rows.append(("all", *(sum(column) for column in list(zip(*rows))[1:])))
    table("The ARM executable by owner, bytes (zeroed data takes memory, no room on the disk)",
          ("", *linkmap.KINDS, "all"), rows)
    table(f"Its {most_objects} largest objects", ("", "object", "bytes"),
          sorted(((owner, name, size) for owner, sizes in objects.items()
                  for name, size in sizes.items()), key=lambda row: -row[2])[:most_objects])
    pages = sum(os.path.getsize(os.path.join(folder, name))
                for folder, _, names in os.walk(os.path.join(os.path.dirname(ARM), "web_root"))
                for name in names)
    size = os.path.getsize(ARM)
    table("On the recorder's disk", ("", "bytes"),
          [("stripped executable", size), ("pages", pages), ("aim for the executable", MOST_DISK)])
    return size < MOST_DISK


def ask(client, request):
    client.send(request)
    return client.read_reply()


def ask_many(count):
    with Client() as client:
        for i in range(count):
            ask(client, REQUESTS[i % len(REQUESTS)][1])


def memory(pid):
    """Kilobytes: all resident pages, and those that do not belong to a file."""
    with open(f"/proc/{pid}/smaps_rollup", encoding="ascii") as file:
        text = file.read()
    return [int(re.search(rf"^{name}:\s+(\d+) kB", text, re.M).group(1))
            for name in ("Rss", "Anonymous")]


def start(program, folder, **env):
    daemon.PROGRAM = program
    return daemon.Daemon(os.path.join(folder, "daemon"), env=env).start()


def measure_memory(title, program, folder, count):
    """Rows for the table, and whether the targets are met."""
    process = start(program, folder)
    try:
        found = [memory(process.process.pid)]
        for requests in (count, count, count):
            ask_many(requests)
            found.append(memory(process.process.pid))
    finally:
        process.stop()
        shutil.rmtree(process.folder)
    rows = [(title if i == 0 else "", f"after {i * count} requests" if i else "idle", *kilobytes)
            for i, kilobytes in enumerate(found)]
    return rows, found[-1][0] < MOST_RESIDENT_KB, found[-1][1] - found[1][1] <= MOST_GROWTH_KB


def print_memory(folder, count):
    small, _, steady = measure_memory("static", STATIC, folder, count)
    usual, _, usual_steady = measure_memory("shared libraries", USUAL, folder, count)
    table("Memory, KiB (the last column: heap, stacks and data, which no other process shares)",
          ("", "", "resident", "own"), small + usual)
    within = small[-1][2] < MOST_RESIDENT_KB
    print(f"\n  static, after all: {'below' if within else 'ABOVE'} the aim of {MOST_RESIDENT_KB} KiB;"
          f" growth: {'none' if steady and usual_steady else 'YES'}")
    return within and steady and usual_steady


class HeapCounts:
    """The preloaded library's counts so far: allocated, freed, bytes, moved."""

    def __init__(self, path):
        with open(path, "rb") as file:
            self._map = mmap.mmap(file.fileno(), 32, access=mmap.ACCESS_READ)

    def read(self):
        return struct.unpack("4Q", self._map[:32])


def print_heap(folder, count):
    path = os.path.join(folder, "counts")
    process = start(USUAL, folder, LD_PRELOAD=HEAP_COUNT, HEAPCOUNT_FILE=path)
    rows = []
    try:
        counts = HeapCounts(path)
        with Client() as client:
            for name, request in REQUESTS:
                # The first ones allocate room that later ones reuse.
                for _ in range(10):
                    length = len(ask(client, request).body)
                before = counts.read()
                for _ in range(count):
                    ask(client, request)
                taken, returned, size, moved = (
                    now - then for now, then in zip(counts.read(), before))
                rows.append((name, length, f"{taken / count:.1f}", f"{moved / count:.1f}",
                             f"{size / count:.0f}", taken - returned))
    finally:
        process.stop()
    table(f"The heap, for each request ({count} of each on one connection)",
          ("", "reply", "blocks", "moved", "bytes asked for", f"kept of {count}"), rows)
    return all(abs(row[-1]) < count for row in rows)


def print_stack():
    """The deepest paths that the stack test finds."""
    if not os.access(STACK_TEST, os.X_OK):
        print(f"\nThe deepest stack: no {STACK_TEST}")
        return False
    done = subprocess.run([STACK_TEST], capture_output=True, text=True, check=False)
    rows = [(name.strip(), int(used), int(spare)) for name, used, spare in
            re.findall(r"^(.+?)\s+(\d+) bytes used,\s+(\d+) spare", done.stdout, re.M)]
    table("The server thread's stack, bytes (the three deepest request paths)",
          ("", "used", "spare"), sorted(rows, key=lambda row: -row[1])[:3])
    return done.returncode == 0 and bool(rows)


def measure_running(count):
    folder = netns.enter()
    recorder = device.SimulatedRecorder(folder)
    try:
        return [print_memory(folder, count), print_heap(folder, 200)]
    finally:
        recorder.close()
        netns.leave(folder)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--requests", type=int, default=10000, help="in each round (10000)")
    parser.add_argument("--objects", type=int, default=12, help="how many objects to name (12)")
    options = parser.parse_args()
    good = [print_disk(options.objects), print_stack()]
    sys.stdout.flush()
    try:
        good += measure_running(options.requests)
    except netns.NotAllowed as error:
        print(f"\nMemory and heap: not measured, {error}")
    sys.exit(0 if all(good) else 1)


if __name__ == "__main__":
    main()
