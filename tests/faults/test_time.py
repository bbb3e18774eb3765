"""The system time jumps while the service runs."""

import os
import re
import socket
import time

import pytest
from device import ACCEPTED, SILENCE, answer
from http_client import Client, get, post
from shim import LIBRARY, Shim
from spoilt import SpoiltDaemon

pytestmark = pytest.mark.skipif(not os.path.exists(LIBRARY), reason="no library to preload")

DAY = 86400
JUMPS = {
    "an hour ahead": 3600,
    "a day back": -DAY,
    "ten years ahead": 3650 * DAY,
    "back to 1970": None,
    "beyond 2038": 20 * 365 * DAY,
    "beyond 2106": 90 * 365 * DAY,
}
LANGUAGE = answer('<stDisplay strLanguage="CN"/>')
USERS = answer('<stUserSec><stCustomUser><USER_0 strFD_UserPWD="p"/></stCustomUser></stUserSec>')


@pytest.fixture(scope="module")
def clock(tmp_path_factory):
    folder = tmp_path_factory.mktemp("clock")
    shim = Shim(folder / "shim")
    daemon = SpoiltDaemon(folder / "daemon", env={**shim.env, "TZ": "UTC"}).start()
    yield shim
    daemon.stop()


def ask(request):
    with Client() as client:
        client.send(request)
        return client.read_reply()


def jump(clock, name):
    seconds = JUMPS[name]
    clock.seconds_ahead = 1000 - int(time.time()) if seconds is None else seconds


@pytest.mark.parametrize("name", JUMPS)
def test_service_works_on_after_a_jump(clock, device, name):
    with Client() as kept:
        for ahead in (True, False):
            if ahead:
                jump(clock, name)
            else:
                clock.seconds_ahead = 0
            kept.send(get("/page.css"))
            assert kept.read_reply().body == b"body { color: page }"
            device.play(LANGUAGE)
            assert ask(get("/get_LangInfo")).body == b'{ "strLanguage": "CN", "result": 1 }'


@pytest.mark.parametrize("name", JUMPS)
def test_clock_that_is_shown_is_the_system_s(clock, device, name):
    jump(clock, name)
    device.play(answer('<stBaseInfo strFD_DeviceNo="1"/>'))
    body = ask(get("/get_BaseInfo")).body.decode()
    shown = re.search(r'"strFD_CurTime": "(\d{4})-', body)[1]
    clock_now = time.time() + clock.seconds_ahead
    clock.seconds_ahead = 0
    assert shown in {time.strftime("%Y", time.gmtime(clock_now + skew)) for skew in (-10, 0)}


def test_jump_in_the_middle_of_an_exchange_changes_no_time_out(clock, device):
    def jump_and_answer(peer, source):
        jump(clock, "ten years ahead")
        peer.send(LANGUAGE, source)

    device.play(jump_and_answer)
    assert ask(get("/get_LangInfo")).body == b'{ "strLanguage": "CN", "result": 1 }'
    device.play(lambda *_: jump(clock, "a day back"), otherwise=SILENCE)
    assert ask(get("/get_LangInfo")).body == b'{ "strLanguage": "EN", "result": 0 }'
    clock.seconds_ahead = 0


def test_jump_in_a_restart_ends_it_none_the_less(clock, device):
    def jump_and_accept(peer, source):
        jump(clock, "a day back")
        peer.send(ACCEPTED, source)

    device.play(jump_and_accept)
    assert ask(post("/set_LangInfo", "strLanguage=CN")).body == b'{"result": 1 }'
    clock.seconds_ahead = 0
    device.play(LANGUAGE)
    assert ask(get("/get_LangInfo")).body == b'{ "strLanguage": "CN", "result": 1 }'


def is_answered(session):
    """Whether the gate serves the style sheet; a later request is answered meanwhile."""
    with Client() as client:
        client.send(get(f"/page.css?time=1&SessionID={session}"))
        ask(get("/get_cpu_usage"))
        return client.pending() != b""


def test_session_lasts_half_an_hour_of_the_system_s_time(clock, device):
    device.play(USERS)
    reply = ask(post("/cmp_UserSecurity?login.html", "strFD_AdminPasswd=p"))
    session = re.search(rb'"jsession": "([0-9a-f]{32})"', reply.body)[1].decode()
    assert is_answered(session)
    # Back in time: its last use is in the future, so it stays.
    clock.seconds_ahead = -DAY
    assert is_answered(session)
    # From this use on, the earlier time counts.
    clock.seconds_ahead = -DAY + 1700
    assert is_answered(session)
    clock.seconds_ahead = -DAY + 1700 + 1900
    assert not is_answered(session)
    clock.seconds_ahead = 0


def test_jump_ahead_ends_every_session(clock, device):
    device.play(USERS)
    reply = ask(post("/cmp_UserSecurity?login.html", "strFD_AdminPasswd=p"))
    session = re.search(rb'"jsession": "([0-9a-f]{32})"', reply.body)[1].decode()
    device.play(USERS)
    ask(post("/cmp_UserSecurity?login.html", "strFD_AdminPasswd=p"))
    clock.seconds_ahead = DAY
    assert not is_answered(session)
    clock.seconds_ahead = 0


def test_many_idle_clients_after_a_jump_back(clock, device):
    """Traffic decides which one is closed first, not the clock: the latest one stays."""
    socks = [socket.create_connection(("127.0.0.1", 80)) for _ in range(100)]
    clock.seconds_ahead = -DAY
    with Client() as latest:
        latest.send(get("/page.css"))
        latest.read_reply()
        socks += [socket.create_connection(("127.0.0.1", 80)) for _ in range(100)]
        latest.send(get("/page.css"))
        assert latest.read_reply().body == b"body { color: page }"
    clock.seconds_ahead = 0
    for sock in socks:
        sock.close()
