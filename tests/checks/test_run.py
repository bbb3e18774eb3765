"""What scripts/run.sh tells a person who begins with the simulated recorder, run to its end."""

import os
import re
import shutil
import signal
import socket
import subprocess
import sys
from xml.sax.saxutils import quoteattr

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests/blackbox"))

import netns  # noqa: E402

PASSWORDS = ["admin456", "a&b <c> \"d\" 'e' &amp;", "密码"]


@pytest.fixture(scope="module", autouse=True)
def network():
    try:
        folder = netns.enter()
    except netns.NotAllowed as error:
        pytest.skip(str(error))
    yield
    netns.leave(folder)


@pytest.fixture(scope="module")
def tree(tmp_path_factory):
    """A copy of the scripts, with everything installed and built."""
    tree = tmp_path_factory.mktemp("tree")
    shutil.copytree(os.path.join(ROOT, "scripts"), tree / "scripts")
    (tree / "bin").mkdir()
    for path in (tree / "scripts/install-deps.sh", tree / "bin/cmake"):
        path.write_text("#!/bin/sh\n")
        path.chmod(0o755)
    (tree / "build/release").mkdir(parents=True)
    (tree / "build/release/bin").symlink_to(os.path.dirname(os.environ["WEBCTRL_BIN"]))
    return tree


class Run:
    """run.sh until it is ready, and what it has told."""

    def __init__(self, tree):
        environment = {**os.environ, "PATH": f"{tree}/bin:{os.environ['PATH']}"}
        self._process = subprocess.Popen(
            [tree / "scripts/run.sh"], env=environment, start_new_session=True, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)  # fmt: skip
        self.told = ""
        while "Ctrl-C stops both" not in self.told:
            line = self._process.stdout.readline()
            assert line, self.told
            self.told += line

    def password(self):
        return re.search(r"with the password (.*):$", self.told, re.M)[1]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.killpg(self._process.pid, signal.SIGINT)
        self._process.communicate(timeout=20)


def change_password(password):
    """As the daemon does it, but with every character escaped that has to be."""
    user = f"<USER_0 strFD_UserPWD={quoteattr(password)} />"
    text = (
        f'<VariCfgSec Action="DEVICE_SET"><stUserSec><stCustomUser>{user}</stCustomUser>'
        "</stUserSec></VariCfgSec>"
    )
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as device:
        device.settimeout(20)
        device.sendto(text.encode("gbk"), ("127.0.0.1", 6000))
        assert b'Result="0"' in device.recv(65536)


def test_the_password_is_that_of_the_recorder(tree):
    expected = "admin123"
    for password in [*PASSWORDS, None]:
        with Run(tree) as run:
            assert run.password() == expected
            if password:
                change_password(password)
        expected = password
