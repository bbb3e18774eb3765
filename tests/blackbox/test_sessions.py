"""The session gate: a style sheet with a time stamp is served only to known sessions."""

import hashlib
import re

import pytest
from daemon import FILES, REFUSED_LINE, RESET, START, Daemon, clock, wait_for_next_second
from device import answer
from http_client import get, post

SECTION = answer(
    '<stUserSec><stCustomUser><USER_0 strFD_UserPWD="right"/></stCustomUser></stUserSec>'
)
UNKNOWN = "0" * 32


@pytest.fixture
def daemon(tmp_path):
    """Sessions live as long as the process, so each test has its own."""
    daemon = Daemon(tmp_path / "recorder").start()
    yield daemon
    daemon.stop()


def log_in(rig, password="right"):
    form = f"strUserName=admin&strFD_AdminPasswd={password}"
    request = post("/cmp_UserSecurity", form, "Referer: http://recorder/login.html\r\n")
    reply = rig.ask(request, SECTION)
    return re.match(rb'\{ "jsession": "([0-9a-f]{32})"', reply.body)[1].decode()


def sheet(session, name="page.css"):
    return get(f"/{name}?time=1&SessionID={session}")


def passes(rig, request):
    return rig.ask(request, head=None).head.startswith(b"HTTP/1.1 200 OK\r\n")


def is_refused(rig, request):
    rig.ask_unanswered(request, REFUSED_LINE)
    return True


def test_refused_request_gets_no_answer_and_one_red_line(rig):
    rig.daemon.mark()
    text = rig.ask_unanswered(get("/page.css?time=1"), REFUSED_LINE + "\n")
    assert text.startswith(f"{START}\n{REFUSED_LINE}\n")
    rig.daemon.stdout.wait_for(REFUSED_LINE + "\n" + RESET)


def test_sheet_without_session_is_refused_even_before_the_first_login(rig):
    assert is_refused(rig, get("/page.css?time=1"))
    assert is_refused(rig, get("/sets.css?time=1"))


def test_any_session_passes_before_the_first_login(rig):
    assert passes(rig, sheet(UNKNOWN))
    rig.daemon.stdout.expect(START, FILES)
    assert passes(rig, sheet("x", "sets.css"))
    log_in(rig)
    assert is_refused(rig, sheet(UNKNOWN))


def test_session_of_a_wrong_password_passes(rig):
    assert passes(rig, sheet(log_in(rig, "wrong")))


def test_login_without_the_login_page_adds_no_session(rig):
    reply = rig.post("/cmp_UserSecurity", "strFD_AdminPasswd=right", SECTION)
    assert reply.body == b'{ "jsession": "", "result": 1 }'
    assert passes(rig, sheet(UNKNOWN))


def test_gate_reads_the_whole_request_text(rig):
    session = log_in(rig)
    wrong = session[::-1] if session != session[::-1] else UNKNOWN
    passing = [
        ("the known session", sheet(session)),
        ("for either sheet", sheet(session, "sets.css")),
        ("text behind the 32 characters", sheet(session + "0")),
        ("any separator", get(f"/page.css?time=1&SessionID:{session}")),
        ("the session in a cookie", get("/page.css?time=1", f"Cookie: SessionID={session}\r\n")),
        ("another sheet", get("/other.css?time=1")),
        ("a sheet without time", get("/page.css")),
        ("TIME in capitals", get("/page.css?TIME=1")),
    ]
    for sentence, request in passing:
        assert passes(rig, request), sentence
    refused = [
        ("no session", get("/page.css?time=1")),
        ("an unknown session", sheet(wrong)),
        (
            "the session in capitals",
            sheet(session.upper() if session.upper() != session else wrong),
        ),
        ("31 characters", sheet(session[:31])),
        ("no characters", get("/page.css?time=1&SessionID=")),
        ("two separators", get(f"/page.css?time=1&SessionID=={session}")),
        (
            "the first of two sessions counts",
            get(f"/page.css?time=1&SessionID={wrong}&SessionID={session}"),
        ),
        (
            "a page that a sheet's page refers to",
            get("/index.html", "Referer: /page.css?time=1\r\n"),
        ),
        ("sheet and time in the body", post("/index.html", "page.css time")),
        ("time in front of the sheet", get("/sets.css", "X-Uptime: 1\r\n")),
        ("an endpoint, too", get("/get_cpu_usage?page.css,time")),
        ("a key cut off by the end of the text", post("/page.css?time=1", "SessionID")),
        (
            "a session cut off by the end of the text",
            post("/page.css?time=1", f"SessionID={session[:9]}"),
        ),
    ]
    for sentence, request in refused:
        assert is_refused(rig, request), sentence
    assert passes(rig, sheet(session))


def test_sixth_login_pushes_the_first_out(rig):
    first = log_in(rig)
    wait_for_next_second()
    for _ in range(4):
        last = log_in(rig)
    assert passes(rig, sheet(first))
    last = log_in(rig)
    assert is_refused(rig, sheet(first))
    assert passes(rig, sheet(last))


def test_session_is_the_md5_of_the_login_second_in_decimal(rig):
    before = clock()
    session = log_in(rig)
    seconds = range(before, clock() + 1)
    digests = {hashlib.md5(str(second).encode()).hexdigest(): second for second in seconds}
    assert session in digests
    out = rig.daemon.stdout.since_mark()
    assert f"\033[33m\033[1mstrtime = {digests[session]}\n\033[0m" in out
    assert f"\033[33m\033[1mmd5 = {session}\n\033[0m" in out
