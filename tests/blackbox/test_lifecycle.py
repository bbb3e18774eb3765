"""The process: its start, every way that the start can fail, and the restart after an accepted
set."""

import ctypes
import os
import socket
import subprocess

import pytest
from daemon import (
    FILES,
    LOGGER_ERROR,
    PROGRAM,
    RESET,
    SERVER_THREAD,
    START,
    Daemon,
    command,
    fill_web_root,
    wait_until,
)
from device import ACCEPTED, change
from http_client import Client, get, post

INIT = "CWebCtrl::Init, ip:127.0.0.1, port:6000."
ROOT = "web server current absolute path:"
IFCONFIG = "/sbin/ifconfig lo 127.0.0.1\n"
LANGUAGE = change('<stDisplay strLanguage="CN" />')


@pytest.fixture
def start(tmp_path):
    """Creates daemons, which are stopped at the end of the test."""
    started = []

    def make(**options):
        started.append(Daemon(tmp_path / f"d{len(started)}", **options))
        return started[-1]

    yield make
    for daemon in started:
        if daemon.process and daemon.is_alive():
            daemon.stop()


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def page(uri="/index.html"):
    with Client() as client:
        client.send(get(uri))
        return client.read_reply().body


def test_start_prints_its_steps_and_runs_ifconfig_once(start):
    daemon = start().spawn()
    daemon.stdout.expect(
        INIT,
        f"{ROOT}{daemon.folder}/web_root",
        LOGGER_ERROR,
        SERVER_THREAD,
        f"{RESET}Starting web server on port 80",
    )
    assert daemon.stderr.text() == ""
    assert read(daemon.ifconfig_log) == IFCONFIG
    assert page() == b"<html>index</html>"


def test_cpu_usage_draws_from_the_unseeded_generator(start):
    libc = ctypes.CDLL(None)
    libc.srand(1)
    start().start()
    for _ in range(5):
        percent = int(libc.rand() / 2147483647.0 * 100.0)
        assert page("/get_cpu_usage") == b'{ "strFD_SSID": "new ", "result": %d }' % percent


def test_second_daemon_cannot_bind_and_lives_on_without_server(start):
    first = start().start()
    second = start().spawn()
    second.stderr.expect("Cannot bind to 80")
    wait_until(lambda: second.count("task") == first.count("task") - 1, "the thread to end")
    second.stdout.expect(
        INIT, f"{ROOT}{second.folder}/web_root", LOGGER_ERROR, SERVER_THREAD, tail=RESET
    )
    assert second.is_alive()
    assert page() == b"<html>index</html>"


def test_missing_web_root_ends_the_server_thread(start):
    daemon = start(web_root=None).spawn()
    daemon.stderr.expect("Cannot find web_root directory, exiting")
    daemon.stdout.expect(
        INIT, f"{ROOT}{daemon.folder}/web_root", LOGGER_ERROR, SERVER_THREAD, tail=RESET
    )
    assert daemon.is_alive()


def name_for_path_of(folder, length):
    return "w" * (length - len(str(folder)) - 1)


def test_executable_path_of_127_characters_is_accepted(start, tmp_path):
    daemon = start(name=name_for_path_of(tmp_path / "d0", 127)).start()
    assert len(daemon.program) == 127
    assert page() == b"<html>index</html>"


def test_executable_path_of_128_characters_is_an_error(start, tmp_path):
    daemon = start(name=name_for_path_of(tmp_path / "d0", 128)).spawn()
    assert daemon.process.wait() == 255
    daemon.stdout.expect(INIT, "***Error***")
    assert daemon.stderr.text() == ""


def test_web_root_path_is_cut_to_126_characters(tmp_path):
    folder = tmp_path / ("f" * (119 - len(str(tmp_path)) - 1))
    daemon = Daemon(folder, web_root=None).spawn()
    cut = f"{folder}/web_root"[:126]
    assert cut.endswith("/web_ro")
    daemon.stderr.expect("Cannot find web_root directory, exiting")
    daemon.stdout.wait_for(f"{ROOT}{cut}\n")
    daemon.stop()
    fill_web_root(cut)
    daemon.start()
    assert page() == b"<html>index</html>"
    daemon.stop()


def test_program_started_through_a_link_serves_the_folder_of_the_file(start, tmp_path):
    daemon = start()
    link = tmp_path / "link"
    os.symlink(daemon.program, link)
    program, daemon.program = daemon.program, str(link)
    daemon.start()
    assert f"{ROOT}{os.path.dirname(program)}/web_root\n" in daemon.stdout.text()


def test_device_ports_are_not_held_between_exchanges(start):
    start().start()
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sock:
        sock.bind(("192.0.2.10", 4999))


def accepted_set(device):
    device.play(ACCEPTED)
    with Client() as client:
        client.send(post("/set_LangInfo", "strLanguage=CN"))
        assert client.read_reply().body == b'{"result": 1 }'
    assert device.requests == [LANGUAGE]


def test_accepted_set_starts_a_second_server_that_cannot_bind(start, device):
    daemon = start().start()
    accepted_set(device)
    daemon.stderr.expect("Cannot bind to 80")
    daemon.stdout.wait_for("tid=")
    lines = daemon.stdout.since_mark().replace(RESET, "").splitlines()
    assert lines[0] == START and lines[2] == "CWebCtrl::set_LangInfo, lang:CN."
    assert sum("CLogger not init." in line for line in lines) == 1
    assert sum("CWebCtrl::DetectSvc, tid=" in line for line in lines) == 1
    assert not any("already started" in line for line in lines)
    assert not any("Starting web server" in line for line in lines)
    assert read(daemon.ifconfig_log) == IFCONFIG * 2


def test_five_restarts_in_a_row_leave_threads_and_descriptors_as_they_were(start, device):
    daemon = start().start()
    page()
    threads, descriptors = daemon.count("task"), daemon.count_idle_descriptors()
    for _ in range(5):
        accepted_set(device)
    wait_until(lambda: daemon.stderr.text() == "Cannot bind to 80\n" * 5, "five failed binds")
    wait_until(lambda: daemon.count("task") == threads, "the threads to end")
    assert page() == b"<html>index</html>"
    assert daemon.count_idle_descriptors() == descriptors
    assert read(daemon.ifconfig_log) == IFCONFIG * 6
    daemon.stdout.wait_for(FILES)


@pytest.mark.offline
@pytest.mark.parametrize("option, begin", [("--version", "webctrl "), ("--help", "Usage: webctrl")])
def test_program_prints_what_it_is_asked_for_and_ends(option, begin):
    done = subprocess.run(command(option), capture_output=True, text=True, timeout=60)
    assert (done.returncode, done.stderr) == (0, "")
    assert done.stdout.startswith(begin)


@pytest.mark.offline
def test_version_that_cannot_be_printed_is_a_failure():
    with open("/dev/full", "w", encoding="ascii") as full:
        assert subprocess.run(command("--version"), stdout=full, timeout=60).returncode == 1


@pytest.mark.parametrize("arguments", [["--verbose"], ["--version", "--help"], ["-h"], [""]])
def test_other_arguments_change_nothing_of_a_start(start, arguments):
    daemon = start(arguments=arguments).start()
    assert daemon.stdout.text().startswith(f"{INIT}\n{ROOT}{daemon.folder}/web_root\n")
    assert page() == b"<html>index</html>"


@pytest.mark.offline
def test_program_is_there():
    assert os.access(PROGRAM, os.X_OK), "set WEBCTRL_BIN to the built daemon"
