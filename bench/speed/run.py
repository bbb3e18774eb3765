#!/usr/bin/python3
"""Compares the daemon's speed with a floor and with other servers, as ratios in one run.

Everything runs in a private network namespace: the simulated recorder, the daemon on port 80, the
floor on 81, lighttpd with FastCGI on 82, busybox httpd with CGI on 83. The replies are compared
byte for byte first. Load goes to one server at a time, in short slices in turn, so that whatever
else the machine does meets all of them alike. Nothing is asserted about time: a table is printed.

The simulated recorder and the servers share one processor, as they do on a recorder, and the load
comes from another one, as it does from a browser. With --spread they run wherever there is room;
each exchange then waits for idle processors to wake up, whichever server asks for it.

  run.py [--bin FOLDER] [--slices N] [--seconds S] [--spread] [--instructions]
"""

import argparse
import http.client
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))
sys.path.insert(0, os.path.join(ROOT, "tests/blackbox"))
import netns  # noqa: E402

ENDPOINTS = ["get_BaseInfo", "get_SystemInfo", "export_CfgFile"]
FILES = {"1k.html": 1000, "20k.html": 20000, "200k.html": 200000}
CLOCK = re.compile(rb"\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")  # the one value that differs by the second


def get(port, path):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=10)
    connection.request("GET", path)
    response = connection.getresponse()
    return response.status, response.read()


def raw_get(port, path):
    """The reply's bytes with their chunk framing."""
    done = subprocess.run(
        ["curl", "-s", "-i", "--raw", f"http://127.0.0.1:{port}{path}"],
        check=True,
        capture_output=True,
    )
    return done.stdout


def wait_for(port):
    for _ in range(200):
        try:
            get(port, "/1k.html")
            return
        except OSError:
            time.sleep(0.05)
    sys.exit(f"no server on port {port}")


def cpu_seconds(pids):
    """Time on a processor of these processes' threads, with their ended children's."""
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
    """Keeps what is started from now on to one processor; returns what starts it on another."""
    processors = sorted(os.sched_getaffinity(0))
    if len(processors) < 2:
        return []
    os.sched_setaffinity(0, processors[:1])
    return ["taskset", "-c", str(processors[1])]


class Bench:
    def __init__(self, folder, work):
        self.folder, self.work = folder, work
        self.web_root = os.path.join(work, "web_root")
        self.replays = os.path.join(work, "replays")
        self.processes = []

    def start(self, *command, output=subprocess.DEVNULL, **options):
        process = subprocess.Popen(
            command, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL, **options
        )
        self.processes.append(process)
        return process

    def stop(self):
        for process in reversed(self.processes):
            process.terminate()
            process.wait()

    def lay_out(self):
        os.makedirs(self.web_root)
        for name, size in FILES.items():
            with open(os.path.join(self.web_root, name), "w", encoding="ascii") as file:
                file.write(("0123456789abcde\n" * (size // 16 + 1))[:size])
        shutil.copy(os.path.join(self.folder, "webctrl"), self.work)

    def start_daemon(self):
        log = os.path.join(self.work, "device.log")
        self.start(os.path.join(self.folder, "devsim"), "--log", log)
        trace = os.path.join(self.work, "trace")
        with open(trace, "wb") as file:
            daemon = self.start(os.path.join(self.work, "webctrl"), output=file)
        wait_for(80)
        for name in ENDPOINTS:
            self.take_down(name, log, trace)
        # From now on without the files, like everything else.
        self.stop()
        self.processes.clear()
        self.start(os.path.join(self.folder, "devsim"))
        daemon = self.start(os.path.join(self.work, "webctrl"))
        wait_for(80)
        return daemon.pid

    def take_down(self, name, log, trace):
        """One request of the endpoint as constants for the others: datagram, traces, reply."""
        folder = os.path.join(self.replays, name)
        os.makedirs(folder)
        mark, log_mark = os.path.getsize(trace), os.path.getsize(log)
        reply = raw_get(80, f"/{name}")
        time.sleep(0.2)
        with open(trace, "rb") as file:
            file.seek(mark)
            traces = file.read()
        with open(log, encoding="ascii") as file:
            file.seek(log_mark)
            line = next(line for line in file if line.startswith("recv "))
        request = eval("b" + line.split(" ", 4)[4])  # our own simulator's escapes
        for part, text in (("request", request), ("trace", traces), ("reply", reply)):
            with open(os.path.join(folder, part), "wb") as file:
                file.write(text)

    def start_lighttpd(self):
        conf = os.path.join(self.work, "lighttpd.conf")
        with open(conf, "w", encoding="ascii") as file:
            file.write(
                f"""server.document-root = "{self.web_root}"
server.port = 82
server.bind = "127.0.0.1"
server.modules = ("mod_fastcgi")
server.max-keep-alive-requests = 1000000
index-file.names = ("index.html")
mimetype.assign = (".html" => "text/html")
fastcgi.server = ("/fcgi/" => ((
  "bin-path" => "{os.path.join(self.folder, "gateway")}",
  "socket" => "{self.work}/fcgi.sock",
  "bin-environment" => ("REPLAYS" => "{self.replays}"),
  "max-procs" => 1, "check-local" => "disable")))
"""
            )
        server = self.start("/usr/sbin/lighttpd", "-D", "-f", conf)
        wait_for(82)
        children = f"/proc/{server.pid}/task/{server.pid}/children"
        with open(children, encoding="ascii") as file:
            return [server.pid, *map(int, file.read().split())]

    def start_busybox(self):
        folder = os.path.join(self.work, "busybox", "cgi-bin")
        os.makedirs(folder)
        for name in ENDPOINTS:
            script = os.path.join(folder, name)
            shutil.copy(os.path.join(self.folder, "gateway"), script)
        home = os.path.dirname(folder)
        for name in FILES:
            shutil.copy(os.path.join(self.web_root, name), home)
        server = self.start(
            "busybox", "httpd", "-f", "-p", "127.0.0.1:83", "-h", home,
            env={**os.environ, "REPLAYS": self.replays},
        )
        wait_for(83)
        return server.pid


def check_alike(servers, paths):
    """Every server gives the same body for what it serves; else nothing below means anything."""
    reference = CLOCK.sub(b"", get(80, paths["webctrl"])[1])
    for name, (port, _) in servers.items():
        status, body = get(port, paths[name])
        if status != 200 or CLOCK.sub(b"", body) != reference:
            sys.exit(f"{name} answers {paths[name]} otherwise: {status} {body[:200]!r}")


def measure(servers, paths, connections, slices, seconds, elsewhere=()):
    """(requests/s, processor seconds per request, median ms) by server."""
    totals = {name: [0, 0.0, 0.0, []] for name in servers}
    for _ in range(slices):
        for name, (port, pids) in servers.items():
            before = cpu_seconds(pids)
            done = subprocess.run(
                [*elsewhere, "wrk", "-t1", f"-c{connections}", f"-d{seconds}s", "--latency",
                 f"http://127.0.0.1:{port}{paths[name]}"],
                check=True, capture_output=True, text=True,
            ).stdout
            # What is still under way must not meet the next server's exchanges at port 4999.
            time.sleep(0.2)
            count, span = re.search(r"(\d+) requests in ([\d.]+)s", done).groups()
            # A server that closes after each reply counts as read errors; those are no faults.
            if re.search(r"Non-2xx|connect [1-9]|timeout [1-9]", done):
                sys.exit(f"{name}: {done}")
            value, unit = re.search(r"50%\s+([\d.]+)(us|ms|s)", done).groups()
            total = totals[name]
            total[0] += int(count)
            total[1] += float(span)
            total[2] += cpu_seconds(pids) - before
            total[3].append(float(value) * {"us": 1e-3, "ms": 1, "s": 1e3}[unit])
    return {
        name: (count / span, cpu / count, sorted(medians)[len(medians) // 2])
        for name, (count, span, cpu, medians) in totals.items()
    }


def print_rows(title, results):
    floor = results["floor"]
    for name, (rate, cpu, median) in results.items():
        print(
            f"{title:<28} {name:<9} {rate:>9.0f} {rate / floor[0]:>7.2f} {cpu * 1e6:>9.1f} "
            f"{cpu / floor[1]:>7.2f} {median:>9.2f}",
            flush=True,
        )


def run_comparison(bench, slices, seconds, elsewhere):
    daemon = bench.start_daemon()
    floor = bench.start(os.path.join(bench.folder, "floor"), "81", bench.web_root, bench.replays).pid
    wait_for(81)
    fast = bench.start_lighttpd()
    cgi = bench.start_busybox()
    own = {"webctrl": (80, [daemon]), "floor": (81, [floor])}
    others = {"lighttpd": (82, fast), "busybox": (83, [cgi])}
    print(f"{'what':<28} {'server':<9} {'req/s':>9} {'/floor':>7} {'us cpu':>9} {'/floor':>7} "
          f"{'median ms':>9}")
    for name in ENDPOINTS:
        paths = {"webctrl": f"/{name}", "floor": f"/{name}", "lighttpd": f"/fcgi/{name}",
                 "busybox": f"/cgi-bin/{name}"}
        check_alike({**own, **others}, paths)
        for connections in (1, 16):
            # One exchange at a time holds port 4999, so a CGI program serves one connection only.
            servers = {**own, **others} if connections == 1 else {**own, "lighttpd": others["lighttpd"]}
            print_rows(f"{name}, {connections} conn.",
                       measure(servers, paths, connections, slices, seconds, elsewhere))
    for name in FILES:
        paths = dict.fromkeys((*own, *others), f"/{name}")
        check_alike({**own, **others}, paths)
        print_rows(f"{name}, 16 conn.",
                   measure({**own, "lighttpd": others["lighttpd"]}, paths, 16, slices, seconds,
                           elsewhere))


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


def run_instructions(bench):
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
            run_instructions(bench)
        else:
            elsewhere = [] if arguments.spread else share_one_processor()
            run_comparison(bench, arguments.slices, arguments.seconds, elsewhere)
    finally:
        bench.stop()
        shutil.rmtree(work)


if __name__ == "__main__":
    main()
