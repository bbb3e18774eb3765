"""The servers of the speed comparison, in a private network namespace, and requests to them."""

import http.client
import os
import shutil
import subprocess
import sys
import time

ENDPOINTS = ["get_BaseInfo", "get_SystemInfo", "export_CfgFile"]
FILES = {"1k.html": 1000, "20k.html": 20000, "200k.html": 200000}


def get(port, path):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=10)
    connection.request("GET", path)
    response = connection.getresponse()
    return response.status, response.read()


def get_tag(port, path):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=10)
    connection.request("GET", path)
    response = connection.getresponse()
    response.read()
    return response.getheader("ETag")


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
        # From now on without log and trace files, like the other servers.
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
