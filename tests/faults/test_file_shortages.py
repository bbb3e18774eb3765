"""Files that change while the daemon may not read them, or lacks memory or descriptors: a reply is
correct or missing, and correct again as soon as possible."""

import ctypes
import os
import resource

import pytest
from daemon import wait_for_next_second
from http_client import Client, get
from shim import LIBRARY, Shim
from spoilt import SpoiltDaemon

OLD, NEW, SMALL = "1", "2", 2000


def replace(path, text):
    with open(path + ".new", "w", encoding="ascii") as file:
        file.write(text)
    os.rename(path + ".new", path)


def fetch():
    with Client() as client:
        client.send(get("/page.css"))
        reply = client.read_reply()
    return int(reply.head.split()[1]), reply.body


def ask_and_leave():
    """Everything up to the close; nothing when the daemon closes before it has read the request."""
    try:
        with Client() as client:
            client.send(get("/page.css", "Connection: close\r\n"))
            return client.read_to_end()
    except ConnectionError:
        return b""


class Unprivileged(SpoiltDaemon):
    """Drops root's right to read every file, because tests run as root."""

    _CAPABILITIES = {"CAP_DAC_OVERRIDE": 1, "CAP_DAC_READ_SEARCH": 2}
    _PR_CAPBSET_DROP = 24

    def _prepare(self):
        super()._prepare()
        for number in self._CAPABILITIES.values():
            assert ctypes.CDLL(None).prctl(self._PR_CAPBSET_DROP, number, 0, 0, 0) == 0


def test_next_second_withholds_a_file_that_was_made_unreadable(tmp_path):
    daemon = Unprivileged(tmp_path / "daemon").start()
    try:
        path = os.path.join(daemon.folder, "web_root/page.css")
        assert fetch()[0] == 200
        os.chmod(path, 0)
        wait_for_next_second()
        assert fetch()[0] in (403, 404)
        os.chmod(path, 0o644)
        wait_for_next_second()
        assert fetch()[0] == 200
    finally:
        daemon.stop()


@pytest.mark.skipif(not os.path.exists(LIBRARY), reason="no library to preload")
def test_truth_is_told_once_memory_is_there_again(tmp_path):
    shim = Shim(tmp_path / "shim")
    daemon = SpoiltDaemon(tmp_path / "daemon", env=shim.env).start()
    try:
        path = os.path.join(daemon.folder, "web_root/page.css")
        for after in range(12):
            text = (OLD, NEW)[after % 2] * (SMALL + after)
            replace(path, text)
            wait_for_next_second()
            shim.fail(after=after)
            reply = ask_and_leave()
            shim.stop_failing()
            assert not reply or reply.endswith(b"\r\n\r\n" + text.encode()), after
            assert fetch()[1] == text.encode()
    finally:
        daemon.stop()


def test_truth_is_told_while_clients_use_up_the_descriptors(tmp_path):
    daemon = SpoiltDaemon(tmp_path / "daemon", limits={resource.RLIMIT_NOFILE: 20}).start()
    try:
        path = os.path.join(daemon.folder, "web_root/page.css")
        fetch()
        clients = [Client() for _ in range(40)]
        for text in (OLD * SMALL, NEW * SMALL):
            replace(path, text)
            wait_for_next_second()
            assert fetch()[1] == text.encode()
        for client in clients:
            client.close()
    finally:
        daemon.stop()
