"""The recorder's pages in Chromium, through the way in from outside."""

import contextlib
import http.server
import json
import os
import re
import shutil
import subprocess
import threading

import pytest
from daemon import PROGRAM, Daemon, wait_until
from device import SimulatedRecorder
from entrance import PASSWORD, Entrance, Guest, why_not

HERE = os.path.dirname(os.path.abspath(__file__))
CHROMIUM = os.environ.get("CHROMIUM") or "/usr/bin/chromium"
URL = "https://recorder"
SETTINGS_PASSWORD = "admin123"  # of the simulated recorder's default settings
FOREIGN_PORT = 8083
SET = f"{URL}/set_NetWModeInfo"
# What another site's page tries: a script, an image and a form.
FOREIGN_PAGE = f"""<!DOCTYPE html><meta charset="utf-8"><form method="post" action="{SET}">
<input name="ucFD_NetWType" value="3"></form><img src="{SET}?picture"><script>
const how = {{method: 'POST', mode: 'no-cors', credentials: 'include', body: 'ucFD_NetWType=3'}};
fetch('{SET}?script', how).finally(() => document.forms[0].submit());</script>"""


class Browser:
    def __init__(self):
        words = ["node", os.path.join(HERE, "browser.mjs")]
        self._process = subprocess.Popen(
            words, env={**os.environ, "CHROMIUM": CHROMIUM}, text=True,
            stdin=subprocess.PIPE, stdout=subprocess.PIPE,
        )  # fmt: skip
        assert self._answer() == "ready"

    def _answer(self):
        answer = json.loads(self._process.stdout.readline())
        assert "error" not in answer, answer["error"]
        return answer.get("value")

    def tell(self, what, argument=None):
        self._process.stdin.write(json.dumps({"do": what, "with": argument}) + "\n")
        self._process.stdin.flush()
        return self._answer()

    def enter(self):
        self.tell("open", {"username": "technician", "password": PASSWORD})

    def close(self):
        self._process.stdin.close()
        self._process.wait()
        self._process.stdout.close()


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    return tmp_path_factory.mktemp("pages")


@pytest.fixture(scope="module")
def recorder(folder):
    recorder = SimulatedRecorder(str(folder), "--log", str(folder / "devsim.log"))
    yield recorder
    recorder.close()


@pytest.fixture(scope="module")
def daemon(folder):
    daemon = Daemon(folder, web_root=None)
    shutil.copytree(os.path.join(os.path.dirname(PROGRAM), "web_root"), folder / "web_root")
    daemon.start()
    yield daemon
    daemon.stop()


@pytest.fixture(scope="module")
def entrance(daemon, recorder, tmp_path_factory):
    if reason := why_not():
        pytest.skip(reason)
    entrance = Entrance(tmp_path_factory.mktemp("entrance"))
    yield entrance
    entrance.close()


@pytest.fixture(scope="module")
def browser(entrance):
    if not os.access(CHROMIUM, os.X_OK):
        pytest.skip(f"no browser at {CHROMIUM}")
    browser = Browser()
    yield browser
    browser.close()


@pytest.fixture
def sets(folder):
    """The sets that the recorder has received."""

    def sets():
        with open(folder / "devsim.log", encoding="utf-8", errors="replace") as file:
            return re.findall(r'^recv .*DEVICE_SET.*$', file.read(), re.M)

    return sets


def test_no_page_without_the_login(browser):
    browser.tell("open")
    with pytest.raises(AssertionError, match="ERR_INVALID_AUTH_CREDENTIALS"):
        browser.tell("goto", f"{URL}/login.html")


def test_a_setting_can_be_changed(browser, recorder):
    browser.enter()
    browser.tell("signIn", SETTINGS_PASSWORD)
    change = {"form": "mobile", "path": "stMobileGNet/strFD_Apn", "value": "outside"}
    assert browser.tell("save", change) == "applied"
    assert b'strFD_Apn="outside"' in recorder.document()
    assert "webctrl_entry" not in browser.tell("run", "document.cookie")


# As many as somebody opens at once; the proxy allows 100 requests at a time and 20 more a second.
LOADS = 6


def test_nobody_at_the_pages_meets_a_limit(browser, entrance):
    browser.enter()
    browser.tell("signIn", SETTINGS_PASSWORD)
    for number in range(LOADS):  # each number is another address, so that the browser asks anew
        page = ("status", "network", "platforms", "video")[number % 4]
        assert browser.tell("goto", f"{URL}/app.html?{number}#/{page}") == 200
    assert '" 429 ' not in entrance.log()


@contextlib.contextmanager
def foreign_site():
    class Site(http.server.BaseHTTPRequestHandler):
        def do_GET(self):
            self.send_response(200)
            self.send_header("Content-Type", "text/html")
            self.end_headers()
            self.wfile.write(FOREIGN_PAGE.encode())

        def log_message(self, *_):
            pass

    server = http.server.HTTPServer(("127.0.0.1", FOREIGN_PORT), Site)
    threading.Thread(target=server.serve_forever).start()
    yield f"http://127.0.0.1:{FOREIGN_PORT}/"
    server.shutdown()
    server.server_close()


def test_a_page_of_another_site_changes_nothing(browser, entrance, sets):
    browser.enter()
    assert browser.tell("goto", f"{URL}/login.html") == 200
    before = sets()
    with foreign_site() as address:
        browser.tell("goto", address)
        for method, query in (("GET", "?picture"), ("POST", "?script"), ("POST", "")):
            refused = f'"{method} /set_NetWModeInfo{query} HTTP/1.1" 403'
            wait_until(lambda: refused in entrance.log(), refused)
    assert sets() == before


def test_people_wait_for_the_daemon_with_words(browser, entrance, daemon):
    browser.enter()
    assert browser.tell("goto", f"{URL}/login.html") == 200
    daemon.stop()
    try:
        # To the pages' scripts it looks as if the recorder itself did not answer.
        fetched = browser.tell("run", "fetch('/get_LangInfo').then(() => 'answered', () => 'lost')")
        assert fetched == "lost"
        assert Guest(entrance).ask("/get_LangInfo").status == 502
        assert browser.tell("goto", f"{URL}/login.html") == 502
        assert "does not answer" in browser.tell("text")
    finally:
        daemon.start()
    browser.tell("waitFor", "#password")  # nobody has touched the browser
