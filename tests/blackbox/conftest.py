"""Fixtures of the black-box tests: the private namespace, the daemon, the device, the client."""

import os
import subprocess
import sys

import netns
import pytest
from daemon import Daemon
from device import SILENCE, ScriptedDevice
from http_client import STANDARD_HEAD, Client, get, post

# CTest's exit status for "skipped".
_EXIT_SKIPPED = 77

_state = {"reason": None, "folder": None}


def pytest_addoption(parser):
    parser.addoption(
        "--shards", type=int, default=1, help="share the tests among this many sessions at a time"
    )
    parser.addoption("--shard", type=int, help="run this share of them only, counted from 0")


def pytest_cmdline_main(config):
    """Tests that mostly wait run side by side: each share has its own session, namespace and
    daemon."""
    if config.option.shards == 1 or config.option.shard is not None:
        return None
    command = [sys.executable, "-m", "pytest", *config.invocation_params.args]
    sessions = [
        subprocess.Popen([*command, f"--shard={k}"], stdout=subprocess.PIPE)
        for k in range(config.option.shards)
    ]
    for session in sessions:
        print(session.communicate()[0].decode(errors="replace"), end="", flush=True)
    codes = {session.returncode for session in sessions}
    return 1 if codes - {pytest.ExitCode.OK, _EXIT_SKIPPED} else min(codes)


def pytest_configure(config):
    config.addinivalue_line("markers", "offline: needs no namespace, so it runs everywhere")
    try:
        _state["folder"] = netns.enter()
    except netns.NotAllowed as error:
        _state["reason"] = str(error)
        return
    # Sessions run side by side, and any of them clears the usual folder when it ends.
    config.option.basetemp = os.path.join(_state["folder"], "tests")


def pytest_unconfigure(config):
    if _state["folder"]:
        netns.leave(_state["folder"])


def pytest_collection_modifyitems(config, items):
    if config.option.shard is not None:
        items[:] = items[config.option.shard :: config.option.shards]
    if _state["reason"]:
        for item in items:
            if not item.get_closest_marker("offline"):
                item.add_marker(pytest.mark.skip(reason=_state["reason"]))


def pytest_sessionfinish(session):
    if (
        _state["reason"]
        and session.exitstatus == pytest.ExitCode.OK
        and not any(item.get_closest_marker("offline") for item in session.items)
    ):
        session.exitstatus = _EXIT_SKIPPED


class Rig:
    """The daemon between a browser and a device."""

    def __init__(self, daemon, device):
        self.daemon, self.device = daemon, device

    def ask(self, request, *steps, head=STANDARD_HEAD):
        """One request on its own connection; meanwhile the device plays the steps."""
        self.device.play(*steps)
        self.daemon.mark()
        with Client() as client:
            client.send(request)
            reply = client.read_reply()
            assert client.pending() == b"", "more than one reply"
        if head:
            assert reply.head == head
        return reply

    def get(self, uri, *steps, head=STANDARD_HEAD):
        return self.ask(get(uri), *steps, head=head)

    def post(self, uri, form, *steps):
        return self.ask(post(uri, form), *steps)

    def ask_unanswered(self, request, last_line, *steps):
        """A request that deliberately gets no reply; returns once the daemon is done with it.

        The proof that nothing comes: the daemon serves one request after another, and two later
        requests get complete replies while this connection is still silent and open.
        """
        self.device.play(*steps)
        self.daemon.mark()
        with Client() as client:
            client.send(request)
            self.daemon.stdout.wait_for(last_line)
            text = self.daemon.stdout.since_mark()
            for _ in range(2):
                with Client() as other:
                    other.send(get("/get_cpu_usage"))
                    other.read_reply()
            assert not client.is_closed()
            assert client.pending() == b""
        return text

    def silent_device(self):
        self.device.play(otherwise=SILENCE)


@pytest.fixture(scope="module")
def device():
    device = ScriptedDevice()
    yield device
    device.close()


@pytest.fixture(scope="module")
def daemon(tmp_path_factory):
    daemon = Daemon(tmp_path_factory.mktemp("recorder")).start()
    yield daemon
    daemon.stop()


@pytest.fixture
def rig(daemon, device):
    return Rig(daemon, device)
