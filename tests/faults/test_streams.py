"""Nobody reads what the daemon prints, or it has nowhere to print."""

import os
import signal

import pytest
from daemon import wait_until
from device import answer
from http_client import Client, get
from spoilt import dead_pipe, full_pipe, full_socket

LANGUAGE = answer('<stDisplay strLanguage="CN"/>')
GOOD = b'{ "strLanguage": "CN", "result": 1 }'


def full_disk():
    return os.open("/dev/full", os.O_WRONLY), None


STREAMS = [
    ("a full pipe that nobody reads", {"output": full_pipe}),
    ("a pipe whose reader has gone", {"output": dead_pipe}),
    ("a full socket that nobody reads", {"output": full_socket}),
    ("a full disk", {"output": full_disk}),
    ("output closed", {"closed": (1,)}),
    ("errors closed", {"closed": (2,)}),
    ("all three closed", {"closed": (0, 1, 2)}),
]


def work(device, requests):
    device.play(*[LANGUAGE] * requests)
    with Client() as client:
        for _ in range(requests):
            client.send(get("/get_LangInfo"))
            assert client.read_reply().body == GOOD
        assert client.pending() == b"", "a trace in a reply"
    assert len(device.requests) == requests


@pytest.mark.parametrize("sentence, trouble", STREAMS, ids=[row[0] for row in STREAMS])
def test_service_works_with(spoilt, device, sentence, trouble):
    daemon = spoilt(**trouble)
    work(device, 200)
    for number in range(3):
        assert os.path.exists(f"/proc/{daemon.process.pid}/fd/{number}")
        assert "socket" not in os.readlink(f"/proc/{daemon.process.pid}/fd/{number}") or "output" in trouble
    work(device, 1)


def test_pipe_that_is_emptied_again_is_written_again(spoilt, device):
    ends = {}

    def pipe():
        writer, ends["reader"] = full_pipe()
        return writer, ends["reader"]

    spoilt(output=pipe)
    work(device, 20)
    os.set_blocking(ends["reader"], False)
    try:
        while os.read(ends["reader"], 65536):
            pass
    except BlockingIOError:
        pass
    work(device, 1)
    assert b"get_LangInfo" in os.read(ends["reader"], 65536)


def test_pipe_of_others_keeps_its_mode(spoilt, device):
    """A shell that shares the pipe still blocks until its reader reads."""
    ends = {}

    def pipe():
        writer, reader = full_pipe()
        ends["other writer"] = os.dup(writer)
        return writer, reader

    spoilt(output=pipe)
    work(device, 1)
    assert os.get_blocking(ends["other writer"])
    os.close(ends["other writer"])


def test_clients_that_leave_raise_no_signal(spoilt, device):
    """Sending to a closed connection is an error and does not end the process."""
    daemon = spoilt()
    for _ in range(50):
        with Client() as client:
            client.send(get("/large.bin") * 3)
    work(device, 5)
    with open(f"/proc/{daemon.process.pid}/status", encoding="ascii") as file:
        ignored = int(dict(line.split(":") for line in file)["SigIgn"], 16)
    assert ignored & 1 << signal.SIGPIPE - 1


def test_pipe_signal_ends_nothing(spoilt, device):
    daemon = spoilt()
    os.kill(daemon.process.pid, signal.SIGPIPE)
    work(device, 1)
    wait_until(daemon.is_alive, "the daemon")
