"""Costs of a request that do not depend on the machine: instructions and system calls."""

import http.client
import os
import re
import signal
import subprocess
import tempfile

from servers import ENDPOINTS, FILES, wait_for


def count_instructions(work, command, port, handler, path):
    """Instructions in the HTTP event handler per request, by callgrind."""
    rounds = 50
    out = os.path.join(work, "callgrind.out")
    process = subprocess.Popen(
        ["valgrind", "-q", "--tool=callgrind", f"--callgrind-out-file={out}",
         f"--toggle-collect={handler}", *command],
        stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
    )
    try:
        wait_for(port)
        subprocess.run(["callgrind_control", "-z", str(process.pid)], check=True,
                       capture_output=True)
        connection = http.client.HTTPConnection("127.0.0.1", port)
        for _ in range(rounds):
            connection.request("GET", path)
            connection.getresponse().read()
    finally:
        process.terminate()
        process.wait()
    with open(out, encoding="ascii") as file:
        total = re.search(r"^(?:totals|summary): (\d+)", file.read(), re.MULTILINE).group(1)
    return int(total) // rounds


def print_instructions(bench):
    bench.start_daemon()
    daemon = bench.processes.pop()
    daemon.terminate()
    daemon.wait()
    webctrl = [os.path.join(bench.work, "webctrl")]
    floor = [os.path.join(bench.folder, "floor"), "81", bench.web_root, bench.replays]
    print(f"{'instructions a request':<28} {'webctrl':>9} {'floor':>9} {'ratio':>7}")
    for name in [*ENDPOINTS, *FILES]:
        own = count_instructions(bench.work, webctrl, 80, "HttpEvent*", f"/{name}")
        least = count_instructions(bench.work, floor, 81, "*OnEvent*", f"/{name}")
        print(f"{name:<28} {own:>9} {least:>9} {own / least:>7.2f}", flush=True)


def count_system_calls(pids, command):
    """System calls per request of these processes while the load runs, by strace."""
    handle, out = tempfile.mkstemp(prefix="calls-")
    os.close(handle)
    targets = [f"-p{pid}" for pid in pids]
    tracer = subprocess.Popen(["strace", "-c", "-f", "-o", out, *targets], stderr=subprocess.PIPE)
    try:
        tracer.stderr.readline()  # attached
        done = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    finally:
        tracer.send_signal(signal.SIGINT)
        tracer.wait()
    with open(out, encoding="ascii") as file:
        total = int(re.search(r"^100\.00 +\S+ +\S+ +(\d+)", file.read(), re.MULTILINE).group(1))
    os.unlink(out)
    return total / int(re.search(r"(\d+) requests in", done).group(1))


def print_system_calls(servers, wrk, tags):
    print(f"{'system calls a request':<25}" + "".join(f" {name:>9}" for name in servers))
    for name in [*FILES, "304"]:
        row = f"{name:<25}"
        for server, (port, pids) in servers.items():
            fields = ["-H", f"If-None-Match: {tags[server]}"] if name == "304" else []
            path = "/1k.html" if name == "304" else f"/{name}"
            command = [*wrk, "-c16", *fields, f"http://127.0.0.1:{port}{path}"]
            row += f" {count_system_calls(pids, command):>9.2f}"
        print(row, flush=True)
