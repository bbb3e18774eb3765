"""The way in of packaging/proxy, installed with the commands of docs/deployment.md.

Debian's nginx runs with its own configuration. Copies that exist only in this test's mount
namespace hide the files that it reads and writes on the machine.
"""

import itertools
import os
import shutil
import subprocess
from collections import namedtuple

import netns
from daemon import wait_until
from documents import ROOT, blocks, commands
from reading import requests

PASSWORD = "correct horse"
USER = f"technician:{PASSWORD}"
NAME = "recorder"
_NGINX = shutil.which("nginx", path=os.environ["PATH"] + ":/usr/sbin")
_COVERED = ["/etc/nginx", "/run", "/usr/share/doc", "/var/lib/nginx", "/var/log/nginx"]
_EXAMPLES = "/usr/share/doc/webctrl/examples/proxy"

Answer = namedtuple("Answer", "code status headers body")
_guests = itertools.count(2)


def why_not():
    """The reason why this machine cannot run Debian's nginx; None when it can."""
    with open("/proc/self/uid_map", encoding="ascii") as file:
        all_users = int(file.read().split()[2]) > 65536
    if not _NGINX or not os.path.exists("/etc/nginx/nginx.conf"):
        return "nginx is not installed"
    if os.geteuid() != 0 or not all_users:
        return "nginx changes its user, which root alone may"
    return None


def setup_commands():
    (block,) = [block for block in blocks("docs/deployment.md") if block.kind == "console setup"]
    return "\n".join(command for command, _ in commands(block.text))


class Entrance:
    """nginx on port 443, in front of `port` of the daemon's machine."""

    def __init__(self, folder, port=80):
        self.folder = str(folder)
        self._cover()
        self._set_up(port)
        self._start()

    def _cover(self):
        for path in _COVERED:
            copy = os.path.join(self.folder, path[1:])
            if path == "/etc/nginx":
                shutil.copytree(path, copy, symlinks=True)
            os.makedirs(copy, exist_ok=True)
            netns.cover(path, copy)
        shutil.copytree(os.path.join(ROOT, "packaging/proxy"), _EXAMPLES)

    def _set_up(self, port):
        """Every command as written, except systemd's."""
        script = setup_commands().replace("systemctl restart nginx", "echo done")
        done = subprocess.run(
            ["bash", "-e", "-o", "pipefail", "-c", script], input=PASSWORD + "\n",
            capture_output=True, text=True,
        )  # fmt: skip
        assert done.returncode == 0 and done.stdout.endswith("done\n"), done.stderr
        self.certificate = "/etc/nginx/webctrl/certificate.pem"
        site = "/etc/nginx/sites-available/webctrl"
        with open(site, encoding="utf-8") as file:
            text = file.read()
        with open(site, "w", encoding="utf-8") as file:
            file.write(text.replace("server 127.0.0.1:80;", f"server 127.0.0.1:{port};"))

    def _start(self):
        with open(os.path.join(self.folder, "nginx.txt"), "wb") as output:
            self._process = subprocess.Popen(
                [_NGINX, "-g", "daemon off;"], stdin=subprocess.DEVNULL, stdout=output, stderr=output
            )
        wait_until(self._answers, "nginx")

    def _answers(self):
        with open(os.path.join(self.folder, "nginx.txt"), encoding="utf-8") as file:
            assert self._process.poll() is None, file.read()
        return Guest(self, login=False).ask("/").status == 401

    def log(self):
        with open("/var/log/nginx/access.log", encoding="utf-8") as file:
            return file.read()

    def close(self):
        self._process.terminate()
        self._process.wait()
        for path in reversed(_COVERED):
            netns.uncover(path)


class Guest:
    """curl with its own address, so that one test's guesses do not count for another."""

    def __init__(self, entrance, login=True, keep=False, address=None):
        self._entrance = entrance
        self.address = address or f"127.0.1.{next(_guests)}"
        self._words = ["-u", USER] if login else []
        jar = os.path.join(entrance.folder, f"{self.address}.jar")
        self._words += ["-b", jar, "-c", jar] if keep else []

    def _start(self, uri, *words):
        command = [
            "curl", "-s", "-m", "100", "--http1.1", "--cacert", self._entrance.certificate,
            "--resolve", f"{NAME}:443:127.0.0.1", "--interface", self.address, *self._words, *words,
            f"https://{NAME}{uri}",
        ]  # fmt: skip
        return subprocess.Popen(command, stdout=subprocess.PIPE)

    def start(self, uri, *words):
        return self._start(uri, "-i", *words)

    def ask(self, uri, *words):
        return answer(self.start(uri, *words))

    def statuses(self, uris, *words):
        """The status of each request of a row, as curl spells rows: /?[1-9]."""
        row = self._start(uris, "-o", "/dev/null", "-w", "%{http_code} ", *words)
        return [int(status) for status in row.communicate()[0].split()]


def came(relay):
    """The requests that the daemon has received since the last call."""
    return [list(requests(passage.sent)) for passage in relay.end_passages()]


def answer(process):
    """What curl got: its exit status, and the last reply's status, field lines and body."""
    text = process.communicate()[0]
    code = process.returncode
    if code:
        return Answer(code, None, {}, b"")
    head, _, body = text.partition(b"\r\n\r\n")
    while head.split(b"\r\n")[0].split()[1] == b"100":
        head, _, body = body.partition(b"\r\n\r\n")
    line, *fields = head.decode("latin-1").split("\r\n")
    pairs = [field.split(": ", 1) for field in fields]
    return Answer(0, int(line.split()[1]), {name.lower(): value for name, value in pairs}, body)
