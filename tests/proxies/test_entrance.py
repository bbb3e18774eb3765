"""The way in from outside admits only permitted clients, and passes on their requests unchanged."""

import re

import pytest
import yaml
from device import ACCEPTED, change
from documents import read
from endpoints import routes
from entrance import NAME, Guest, answer, came
from http_client import Client, get, post
from test_limits import constants

SET = change('<stNetWorkMode ucFD_NetType="2"/>')
SETTING = ("-d", "ucFD_NetWType=2")
OWN = f"Origin: https://{NAME}"
FOREIGN = "Origin: https://example.com"
SITE = "Sec-Fetch-Site: "
FOLLOWED = [SITE + "cross-site", "Sec-Fetch-Mode: navigate"]
EMBEDDED = [SITE + "cross-site", "Sec-Fetch-Mode: no-cors"]
# Browsers that may send neither Origin nor Sec-Fetch-Site with a form.
FIREFOX_60 = "User-Agent: Mozilla/5.0 (X11; Linux x86_64; rv:60.0) Gecko/20100101 Firefox/60.0"
IE_11 = "User-Agent: Mozilla/5.0 (Windows NT 10.0; WOW64; Trident/7.0; rv:11.0) like Gecko"
PAGE_WANTED = "Accept: text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8"

# What the daemon reads of a request.
PASSED = {"host", "connection", "referer", "accept-encoding", "if-none-match", "if-modified-since",
          "if-range", "range", "content-length"}  # fmt: skip

MANY_FIELDS = [
    "Cookie: jsession=1", "X-Forwarded-For: 1.2.3.4", "Upgrade: websocket", "TE: trailers",
    "Connection: keep-alive, Upgrade", "Keep-Alive: timeout=5", "Proxy-Authorization: Basic eA==",
    "Expect: 100-continue", "Content-Type: text/plain", f"Referer: https://{NAME}/login.html",
]  # fmt: skip

PAGE = yaml.safe_load(read("docs/openapi.yaml"))
MEANT_FOR_POST = ("/set_", "/import_", "/cmp_")


@pytest.fixture
def guest(entrance):
    return Guest(entrance)


def own(*fields):
    return [word for field in fields for word in ("-H", field)]


@pytest.mark.parametrize("uri", ["/", "/other.css", "/missing", "/get_Login", "/set_DeviceNo"])
@pytest.mark.parametrize("words", [[], ["-u", "technician:wrong"], ["-u", "nobody:"]])
def test_nothing_is_told_without_the_login(entrance, relay, uri, words):
    relay.end_passages()
    method = ["-d", "x=1"] if uri.startswith("/set") else []
    reply = Guest(entrance, login=False).ask(uri, *words, *method)
    assert reply.status == 401 and reply.headers["www-authenticate"] == 'Basic realm="Recorder"'
    assert "set-cookie" not in reply.headers
    assert came(relay) == []


def endpoint_request(uri):
    """The form of an endpoint as a generated client would send it; None for a query."""
    (operation,) = PAGE["paths"][uri].values()
    content = operation.get("requestBody", {}).get("content", {})
    fields = content["application/x-www-form-urlencoded"]["schema"]["properties"] if content else {}
    return "&".join(f"{name}={field['example']}" for name, field in fields.items()) or None


def without_clock(body):
    return re.sub(rb'("strFD_CurTime|"time|"result)": "?[\d :-]+', b"", body)


@pytest.fixture(scope="module")
def visitor(entrance):
    """A client that keeps the cookie, and so has no request limit."""
    return Guest(entrance, keep=True)


@pytest.mark.parametrize("uri", routes())
def test_endpoint_answers_as_without_the_way_in(rig, visitor, uri):
    form = endpoint_request(uri)
    assert (form is not None) == uri.startswith(MEANT_FOR_POST)
    rig.device.play()
    with Client() as client:
        client.send(get(uri) if form is None else post(uri, form))
        direct = client.read_reply()
    sent = list(rig.device.requests)
    rig.device.play()
    reply = visitor.ask(uri, *(["--data", form] if form else []))
    assert reply.status == 200
    assert without_clock(reply.body) == without_clock(direct.body)
    assert rig.device.requests == sent


def test_pages_come_as_they_are(rig, entrance, visitor):
    reply = visitor.ask("/large.bin")
    assert (reply.status, reply.body) == (200, b"0123456789abcdef" * 16384)
    tag = reply.headers["etag"]
    assert visitor.ask("/large.bin", *own(f"If-None-Match: {tag}")).status == 304
    part = visitor.ask("/large.bin", "-r", "16-31")
    assert (part.status, part.body) == (206, b"0123456789abcdef")
    assert visitor.ask("/missing").status == 404
    assert visitor.ask("/other.css", "-I").headers["content-length"] == "21"


def test_pages_read_the_clock_of_the_recorder(relay, visitor):
    clock = b"Date: Thu, 01 Jan 2026 00:00:00 GMT"
    relay.told = lambda data: re.sub(rb"Date: [^\r]+", clock, data)
    try:
        reply = visitor.ask("/other.css")
    finally:
        relay.told = bytes
    assert f"Date: {reply.headers['date']}" == clock.decode()


def test_the_daemon_sees_nothing_that_it_has_no_use_for(relay, guest):
    relay.end_passages()
    assert guest.ask("/set_NetWModeInfo", *SETTING, *own(*MANY_FIELDS)).status == 200
    assert guest.ask("/other.css?a=%20b", "--compressed", *own(*MANY_FIELDS)).status == 200
    passages = came(relay)
    assert [len(passage) for passage in passages] == [1, 1]
    for (request,) in passages:
        names = {name.decode() for name, _ in request.headers}
        assert names <= PASSED and {"host", "referer"} <= names
        assert (b"connection", b"close") in request.headers
    assert [passage[0].start for passage in passages] == [
        b"POST /set_NetWModeInfo HTTP/1.1", b"GET /other.css?a=%20b HTTP/1.1"]  # fmt: skip


# Who requests what, and whether it is allowed.
REQUESTS = [
    ("a script", "/set_NetWModeInfo", SETTING, [], 200),
    ("the pages", "/set_NetWModeInfo", SETTING, [OWN, SITE + "same-origin"], 200),
    ("an old browser with the pages", "/set_NetWModeInfo", SETTING, [OWN], 200),
    ("another site", "/set_NetWModeInfo", SETTING, [FOREIGN, SITE + "cross-site"], 403),
    ("another site in an old browser", "/set_NetWModeInfo", SETTING, [FOREIGN], 403),
    ("a page without an origin", "/set_NetWModeInfo", SETTING, ["Origin: null"], 403),
    ("a name that begins alike", "/set_NetWModeInfo", SETTING, [f"{OWN}.example.com"], 403),
    ("a name that ends sooner", "/set_NetWModeInfo", SETTING, [OWN[:-1]], 403),
    ("the same name without TLS", "/set_NetWModeInfo", SETTING, [f"Origin: http://{NAME}"], 403),
    ("a neighbour", "/set_NetWModeInfo", SETTING, [SITE + "same-site"], 403),
    ("a form of another site", "/set_NetWModeInfo", SETTING, [FOREIGN, *FOLLOWED], 403),
    ("a link of another site", "/set_NetWModeInfo", [], FOLLOWED, 403),
    ("an import of another site", "/import_CfgFile", ["-d", "x=1"], [FOREIGN], 403),
    ("a sign-in of another site", "/cmp_UserSecurity", ["-d", "x=1"], [FOREIGN], 403),
    ("another site that reads", "/get_NetWModeInfo", [], [SITE + "cross-site"], 403),
    ("a link to a reply", "/get_NetWModeInfo", [], FOLLOWED, 403),
    ("a typed address of a set", "/set_NetWModeInfo", [], [SITE + "none"], 405),
    ("a script that forgot the form", "/import_CfgFile", [], [], 405),
    ("a script with another method", "/get_NetWModeInfo", ["-X", "DELETE"], [], 405),
    ("a script that uploads", "/other.css", ["-T", "/dev/null"], [], 405),
    ("a link to the pages", "/other.css", [], FOLLOWED, 200),
    ("another site that embeds", "/other.css", [], EMBEDDED, 403),
    ("a form of another site in 2018", "/set_NetWModeInfo", SETTING, [FIREFOX_60], 403),
    ("a form of another site in IE 11", "/set_NetWModeInfo", SETTING, [IE_11], 403),
    ("a form with a wrong cookie", "/set_NetWModeInfo", SETTING,
     [FIREFOX_60, "Cookie: webctrl_entry=0"], 403),
    ("an import of another site in 2018", "/import_CfgFile", ["-d", "x=1"], [FIREFOX_60], 403),
    ("a sign-in of another site in 2018", "/cmp_UserSecurity", ["-d", "x=1"], [FIREFOX_60], 403),
    ("a link to the pages in 2018", "/other.css", [], [FIREFOX_60, PAGE_WANTED], 200),
]  # fmt: skip


@pytest.mark.parametrize("row", REQUESTS, ids=[row[0] for row in REQUESTS])
def test_pages_of_other_sites_change_and_read_nothing(rig, relay, guest, row):
    _, uri, words, fields, status = row
    relay.end_passages()
    rig.device.play()
    assert guest.ask(uri, *words, *own(*fields)).status == status
    assert len(came(relay)) == (status == 200)
    sets = [request for request in rig.device.requests if b"DEVICE_SET" in request]
    assert sets == ([SET] if status == 200 and uri.startswith("/set") else [])


@pytest.mark.parametrize("browser", [FIREFOX_60, IE_11])
def test_pages_in_a_browser_of_before_2020_may_change_settings(rig, entrance, browser):
    guest = Guest(entrance, keep=True)
    assert guest.ask("/", *own(browser, PAGE_WANTED)).status == 200
    rig.device.play()
    assert guest.ask("/set_NetWModeInfo", *SETTING, *own(browser)).status == 200
    assert rig.device.requests == [SET]
    foreign = own(browser, FOREIGN)
    assert guest.ask("/set_NetWModeInfo", *SETTING, *foreign).status == 403


# Who asks while the daemon is away, and the status; none for a connection that just ends.
WAITING = [
    ("a person", [SITE + "none", "Sec-Fetch-Mode: navigate", FIREFOX_60, PAGE_WANTED], 502),
    ("a script of the pages", [SITE + "same-origin", "Sec-Fetch-Mode: cors", FIREFOX_60], None),
    ("a person in 2018", [FIREFOX_60, PAGE_WANTED], 502),
    ("a script of the pages in 2018", [FIREFOX_60, "Accept: */*"], None),
    ("a script of the pages in IE 11", [IE_11, "Accept: application/json"], None),
    ("a script", ["Accept: */*"], 502),
    ("a script that names nothing", ["Accept:", "User-Agent:"], 502),
]


@pytest.mark.parametrize("row", WAITING, ids=[row[0] for row in WAITING])
def test_people_alone_get_a_page_while_the_daemon_is_away(relay, guest, row):
    _, fields, status = row
    relay.told = lambda data: b""
    try:
        reply = guest.ask("/get_LangInfo", *own(*fields))
    finally:
        relay.told = bytes
    assert reply.status == status
    assert (b"does not answer" in reply.body) == (status is not None)


def test_no_page_shows_the_recorder_in_a_frame(guest):
    assert guest.ask("/").headers["content-security-policy"] == "frame-ancestors 'none'"


def test_the_largest_configuration_can_be_imported(rig, guest, tmp_path):
    head, tail = "<VariCfgSec><stWifi strFD_SSID=\"", "\"/></VariCfgSec>"
    name = "车" * ((30719 - len(head + tail)) // 3)
    text = f"{head}{name}{tail}".encode()
    assert 30716 < len(text) <= 30719
    (tmp_path / "form").write_text("strFD_CfgPara=" + "".join(f"%{byte:02X}" for byte in text))
    rig.device.play()
    reply = guest.ask("/import_CfgFile", "--data", f"@{tmp_path}/form")
    assert reply.body == b'{"result": 1 }'
    assert rig.device.requests == [change(f'<stWifi strFD_SSID="{name}" />').decode().encode("gbk")]


def test_a_body_has_the_limit_of_the_daemon(relay, guest, tmp_path):
    relay.end_passages()
    (tmp_path / "most").write_bytes(b"a" * 1048576)
    (tmp_path / "more").write_bytes(b"a" * 1048577)
    assert guest.ask("/set_LangInfo", "--data-binary", f"@{tmp_path}/more").status == 413
    assert came(relay) == []
    assert guest.ask("/set_LangInfo", "--data-binary", f"@{tmp_path}/most").status == 200


def test_lines_that_pass_are_no_longer_than_the_daemon_takes(relay, guest):
    relay.end_passages()
    assert guest.ask(f"/other.css?{'a' * 4100}").status == 414
    assert guest.ask("/other.css", *own(f"Referer: {'a' * 4100}")).status == 400
    assert came(relay) == []
    longest = guest.ask(f"/other.css?{'a' * 4000}", *own(f"Referer: {'a' * 3500}"))
    assert (longest.status, longest.body) == (200, b"body { color: other }")


def test_the_longest_exchanges_have_time_in_a_row_of_requests():
    waits = int(re.search(r"proxy_read_timeout (\d+)s;", read("packaging/proxy/webctrl.conf"))[1])
    of = constants()
    assert waits >= 4 * (of["kImportTimeoutSec"] + of["kRestartPauseSec"])
    assert f"504 after {waits} seconds" in read("docs/deployment.md")


def test_a_set_is_sent_once_whatever_becomes_of_it(rig, relay, guest):
    relay.end_passages()
    rig.device.play()
    relay.told = lambda data: b""  # the daemon exits before it has answered
    try:
        assert guest.ask("/set_NetWModeInfo", *SETTING).status == 502
    finally:
        relay.told = bytes
    assert len(came(relay)) == 1
    assert rig.device.requests == [SET]


def test_a_request_during_the_restart_of_the_service_waits(rig, guest):
    rig.device.play(ACCEPTED)
    changing = guest.start("/set_NetWModeInfo", *SETTING)
    rig.device.wait_for_requests(1)
    page = guest.ask("/other.css")
    assert (page.status, page.body) == (200, b"body { color: other }")
    assert answer(changing).body == b'{"result": 1 }'
    assert rig.device.requests == [SET]
