"""What goes wrong around the service: the network, the port, the device, the pages."""

import contextlib
import os
import shutil
import socket
import subprocess
import time

import netns
import pytest
from device import ACCEPTED, HOST, PORT, SILENCE, answer
from http_client import Client, get, post
from daemon import Daemon, fill_web_root, wait_for_next_second, wait_until

LANGUAGE = answer('<stDisplay strLanguage="CN"/>')
GOOD = b'{ "strLanguage": "CN", "result": 1 }'
FAILED = b'{ "strLanguage": "EN", "result": 0 }'


def ip(*words):
    subprocess.run(("ip", *words), check=True)


@contextlib.contextmanager
def eth0_without_address(_rig):
    netns.remove_eth0_address()
    yield
    netns.restore_eth0_address()


@contextlib.contextmanager
def eth0_absent(_rig):
    ip("link", "set", "eth0", "down")
    ip("link", "set", "eth0", "name", "gone0")
    yield
    ip("link", "set", "gone0", "name", "eth0")
    ip("link", "set", "eth0", "up")


@contextlib.contextmanager
def eth0_down(_rig):
    ip("link", "set", "eth0", "down")
    yield
    ip("link", "set", "eth0", "up")


@contextlib.contextmanager
def port_4999_taken(_rig):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sock:
        sock.bind((netns.ETH0_ADDRESS, 4999))
        yield


@contextlib.contextmanager
def port_4999_taken_everywhere(_rig):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sock:
        sock.bind(("0.0.0.0", 4999))
        yield


@contextlib.contextmanager
def no_device(rig):
    rig.device.close()
    yield
    rig.device.__init__()


@contextlib.contextmanager
def web_root_removed(rig):
    root = os.path.join(rig.daemon.folder, "web_root")
    shutil.rmtree(root)
    yield
    fill_web_root(root)


@contextlib.contextmanager
def web_root_is_a_file(rig):
    root = os.path.join(rig.daemon.folder, "web_root")
    shutil.rmtree(root)
    with open(root, "w", encoding="ascii") as file:
        file.write("no folder")
    yield
    os.remove(root)
    fill_web_root(root)


def restart_without_answer(device, _source):
    device.main.close()
    device.main = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    device.main.bind((HOST, PORT))


def restart_and_answer(device, source):
    restart_without_answer(device, source)
    device.send(LANGUAGE, source)


IN_USE = "CUdpCtrlSocketSvr::OpenSvrSocket, Server Bind Failed. Error:Address already in use\n"
NO_SOCKET = "CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:6000][len:"
RECEIVED = "CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS 127.0.0.1]"

# The fault, what the device does, what the browser gets, what is printed, the status of pages
# meanwhile.
ROWS = [
    (eth0_without_address, LANGUAGE, GOOD, (RECEIVED,), b"200"),
    (eth0_absent, LANGUAGE, GOOD, (RECEIVED,), b"200"),
    (eth0_down, LANGUAGE, GOOD, (RECEIVED,), b"200"),
    (port_4999_taken, LANGUAGE, FAILED, (IN_USE, NO_SOCKET), b"200"),
    (port_4999_taken_everywhere, LANGUAGE, FAILED, (IN_USE, NO_SOCKET), b"200"),
    (no_device, None, FAILED, (), b"200"),
    (contextlib.nullcontext, restart_without_answer, FAILED, (), b"200"),
    (contextlib.nullcontext, restart_and_answer, GOOD, (RECEIVED,), b"200"),
    (web_root_removed, LANGUAGE, GOOD, (RECEIVED,), b"404"),
    (web_root_is_a_file, LANGUAGE, GOOD, (RECEIVED,), b"501"),
]


def ask(request):
    with Client() as client:
        client.send(request)
        return client.read_reply()


@pytest.mark.parametrize(
    "trouble, step, body, lines, pages", ROWS, ids=[f"{row[0].__name__}-{getattr(row[1], '__name__', '')}" for row in ROWS]
)
def test_trouble(rig, trouble, step, body, lines, pages):
    rig.daemon.mark()
    with trouble(rig):
        if step:
            rig.device.play(step)
        assert ask(get("/get_LangInfo")).body == body
        wait_for_next_second()  # after which files are checked again
        page = ask(get("/page.css"))
        assert page.head.startswith(b"HTTP/1.1 %s " % pages)
        printed = rig.daemon.stdout.since_mark()
        assert all(line in printed for line in lines), printed
    rig.device.play(LANGUAGE)
    assert ask(get("/get_LangInfo")).body == GOOD
    wait_for_next_second()
    assert ask(get("/page.css")).body == b"body { color: page }"
    rig.daemon.stderr.expect()


def test_web_root_is_a_link_that_is_turned(rig):
    root = os.path.join(rig.daemon.folder, "web_root")
    os.rename(root, root + "-1")
    shutil.copytree(root + "-1", root + "-2")
    with open(root + "-2/page.css", "w", encoding="ascii") as file:
        file.write("another")
    try:
        for version, body in (("1", b"body { color: page }"), ("2", b"another")) * 2:
            os.symlink("web_root-" + version, root)
            wait_until(lambda: ask(get("/page.css")).body == body, "the other pages")
            os.remove(root)
    finally:
        os.rename(root + "-1", root)


def test_set_on_a_taken_port_reaches_nobody(rig):
    rig.device.play()
    with port_4999_taken(rig):
        assert ask(post("/set_LangInfo", "strLanguage=CN")).body == b'{"result": 0 }'
    assert rig.device.requests == []


def test_set_that_a_restarting_device_lost_is_not_sent_again(rig):
    rig.device.play(restart_without_answer)
    assert ask(post("/set_LangInfo", "strLanguage=CN")).body == b'{"result": 0 }'
    assert len(rig.device.requests) == 1


def test_restart_without_pages_leaves_the_service_at_work(rig):
    """The restarted server finds its port taken before it looks for the pages."""
    with web_root_removed(rig):
        rig.device.play(ACCEPTED)
        assert ask(post("/set_LangInfo", "strLanguage=CN")).body == b'{"result": 1 }'
        rig.daemon.stderr.expect("Cannot bind to 80")
        rig.device.play(LANGUAGE)
        assert ask(get("/get_LangInfo")).body == GOOD
    assert ask(get("/page.css")).body == b"body { color: page }"


def test_silence_is_not_shortened_by_a_signal(rig):
    """SIGSTOP and SIGCONT in the middle of a wait for the device."""

    def interrupt(_device, _source):
        rig.daemon.pause()
        rig.daemon.resume()

    rig.device.play(interrupt, otherwise=SILENCE)
    begin = time.monotonic()
    assert ask(get("/get_LangInfo")).body == FAILED
    assert time.monotonic() - begin > 4.5
    rig.device.play(LANGUAGE)
    assert ask(get("/get_LangInfo")).body == GOOD


def test_executable_whose_path_cannot_be_read_is_an_error(tmp_path):
    daemon = Daemon(tmp_path / "daemon")
    without_proc = 'mount -t tmpfs none /proc && exec "$0"'
    done = subprocess.run(
        ["unshare", "--mount", "sh", "-c", without_proc, daemon.program],
        cwd=daemon.folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60,
    )
    assert (done.returncode, done.stderr) == (255, "")
    assert done.stdout == "CWebCtrl::Init, ip:127.0.0.1, port:6000.\n***Error***\n"
