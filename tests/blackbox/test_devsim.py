"""The simulated recorder alone: what it answers, stores and logs, and how its faults work.

It runs on free ports of 127.0.0.1. Asking again shows that it sent nothing: it serves one datagram
after another, so an unwanted answer would have arrived first.
"""

import ast
import os
import random
import shlex
import signal
import socket
import subprocess
import xml.etree.ElementTree as ElementTree

import pytest

pytestmark = pytest.mark.offline

BINARY = os.environ.get("DEVSIM_BIN", "build/release/bin/devsim")
WAIT = 10  # seconds; only a broken simulator needs them
DISPLAY = b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay></VariCfgSec>'
WHOLE = b'<VariCfgSec Action="DEVICE_QUERY"></VariCfgSec>'
SET_US = b'<VariCfgSec Action="DEVICE_SET"><stDisplay strLanguage="US" /></VariCfgSec>'
ACCEPTED = b'<VariCfgSec Action="DEVICE_SET" Result="0" />'
REFUSED = b'<VariCfgSec Action="DEVICE_SET" Result="1" />'
STALE = b'<VariCfgSec Action="DEVICE_QUERY" Result="99"><stStale /></VariCfgSec>'

# The size of the daemon's reply buffer for each of its queries.
CAPACITIES = {
    b"<stLockOfPassword>": 256,
    b"<stDisplay>": 512,
    b"<stBaseInfo>": 512,
    b"<stUserSec>": 2048,
    b"<stVideoMirror>": 2048,
    b'<stMainStream StartChn="0">': 2048,
    b"<stSubStream>": 2048,
    b"<stNetWorkMode>": 2048,
    b"<stCMS>": 2048,
    b"<stWifi>": 2048,
    b"<stWifiAp>": 2048,
    b"<stMobileGNet>": 2048,
    b"<stGB28181>": 2048,
    b"<stLocalEth0>": 2048,
    b"<stVersion />": 2048,
    b"<stSystemInfo />": 2048,
}


class Devsim:
    def __init__(self, folder, *options):
        self.log_path = folder / "devsim.log"
        command = [BINARY, "--port", "0", "--control", "0", "--log", str(self.log_path), *options]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE, text=True)
        self.address = self._announced("devsim: listening on ")
        self.control_address = self._announced("devsim: control on ")
        self.socket = None
        self.new_client()

    def new_client(self):
        """A new socket, which no answer to an earlier test can reach."""
        if self.socket:
            self.socket.close()
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.bind(("127.0.0.1", 0))
        self.socket.settimeout(WAIT)

    def _announced(self, lead):
        line = self.process.stdout.readline()
        assert line.startswith(lead)
        host, port = line[len(lead) :].strip().split(":")
        return host, int(port)

    def send(self, message):
        self.socket.sendto(message, self.address)

    def receive(self):
        return self.socket.recv(65536)

    def ask(self, message):
        self.send(message)
        return self.receive()

    def query(self, section):
        return self.ask(b'<VariCfgSec Action="DEVICE_QUERY">%s</VariCfgSec>' % section)

    def control(self, command):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as control:
            control.settimeout(WAIT)
            control.sendto(command.encode(), self.control_address)
            return control.recv(1024).decode()

    def fault(self, text):
        assert self.control("fault " + text) == "ok"

    def language(self):
        return ElementTree.fromstring(self.ask(DISPLAY)).find("stDisplay").get("strLanguage")

    def log(self):
        """Each datagram as (verb, from, to, bytes)."""
        rows = []
        for line in self.log_path.read_text().splitlines():
            verb, source, target, length, text = line.split(" ", 4)
            rows.append((verb, source, target, ast.literal_eval("b" + text)))
            assert len(rows[-1][3]) == int(length)
        return rows

    def stop(self):
        self.socket.close()
        self.process.send_signal(signal.SIGTERM)
        return self.process.wait(WAIT)


@pytest.fixture(scope="module")
def shared_sim(tmp_path_factory):
    sim = Devsim(tmp_path_factory.mktemp("devsim"))
    yield sim
    assert sim.stop() == 0


@pytest.fixture
def sim(shared_sim):
    assert shared_sim.control("clear") == "ok"
    assert shared_sim.control("reset") == "ok"
    shared_sim.new_client()
    return shared_sim


@pytest.mark.parametrize("section", CAPACITIES)
def test_query_of_section_fits_the_daemons_buffer(sim, section):
    reply = sim.query(section)
    name = section.strip(b"</> ").split(b" ")[0]
    assert reply.startswith(b'<VariCfgSec Action="DEVICE_QUERY" Result="0"><%s' % name)
    assert len(reply) <= CAPACITIES[section]
    assert len(ElementTree.fromstring(reply.decode("gbk"))) == 1


def test_whole_configuration_is_gbk_and_fits_an_export(sim):
    reply = sim.ask(WHOLE)
    assert sim.ask(b'<VariCfgSec Action="DEVICE_QUERY" />') == reply
    text = reply.decode("gbk")
    assert len(reply) < 24000
    assert len(text.encode("utf-8")) < 30000
    root = ElementTree.fromstring(text)
    assert root.find("stWifi").get("strFD_SSID") == "公交车队-0123"
    names = [section.tag for section in root]
    assert len(names) == len(set(names)) == 37


def test_identities_have_the_right_form(sim):
    root = ElementTree.fromstring(sim.ask(WHOLE).decode("gbk"))
    status = root.find("stSystemInfo")
    for key, length in (("IMEI", 15), ("ICCID", 20)):
        digits = [int(digit) for digit in status.get(key)]
        doubled = [sum(divmod(2 * digit, 10)) for digit in digits[-2::-2]]
        assert len(digits) == length
        assert (sum(digits[-1::-2]) + sum(doubled)) % 10 == 0
    assert "\r\nRevision: " in status.get("ATI")
    ids = [item.get("strFD_LensId") for item in root.find("stGB28181/stGB28181SubID")]
    assert len(set(ids)) == 8
    assert {len(number) for number in ids} == {20}


def test_start_channel_chooses_items(sim):
    reply = ElementTree.fromstring(sim.query(b'<stMainStream StartChn="6">'))
    assert [item.tag for item in reply.find("stMainStream/stVideoPara")] == ["VChn_6", "VChn_7"]


@pytest.mark.parametrize("section", [b"<stNobody>", b"</stDisplay>", b"<stDisplay", b"<!-- -->"])
def test_query_that_names_no_known_section_is_refused(sim, section):
    assert sim.query(section) == b'<VariCfgSec Action="DEVICE_QUERY" Result="1" />'


def test_set_changes_the_named_attribute_only(sim):
    before = sim.ask(DISPLAY)
    assert sim.ask(SET_US) == ACCEPTED
    assert sim.ask(DISPLAY) == before.replace(b'"CN"', b'"US"')


def test_set_creates_what_is_missing(sim):
    message = b'<stDisplay bNew="1"><stNew><Item_0 x="2" /></stNew></stDisplay><stOther y="3" />'
    assert sim.ask(b'<VariCfgSec Action="DEVICE_SET">%s</VariCfgSec>' % message) == ACCEPTED
    root = ElementTree.fromstring(sim.ask(WHOLE).decode("gbk"))
    assert root.find("stDisplay").get("bNew") == "1"
    assert root.find("stDisplay/stNew/Item_0").get("x") == "2"
    assert root.find("stOther").get("y") == "3"


def test_set_of_one_child_keeps_the_others(sim):
    item = b'<stMainStream StartChn="0"><stVideoPara><VChn_0 uiFD_BitRate="777" /></stVideoPara>'
    message = b'<VariCfgSec Action="DEVICE_SET">%s</stMainStream></VariCfgSec>' % item
    before = sim.query(b"<stMainStream>")
    assert sim.ask(message) == ACCEPTED
    assert sim.query(b"<stMainStream>") == before.replace(b'"2048"', b'"777"', 1)


def test_export_can_be_imported_again(sim):
    exported = sim.ask(WHOLE)
    sim.ask(SET_US)
    assert sim.ask(exported.replace(b'DEVICE_QUERY" Result="0"', b'DEVICE_SET"', 1)) == ACCEPTED
    assert sim.ask(WHOLE) == exported


def test_values_keep_their_bytes(sim):
    name = "东营".encode("gbk") + b"|{}\\ a&amp;b <x> &#x0D;"
    message = b'<VariCfgSec Action="DEVICE_SET"><stWifi strFD_SSID="%s" /></VariCfgSec>' % name
    assert sim.ask(message) == ACCEPTED
    printed = name.replace(b"<x>", b"&lt;x&gt;")
    assert b' strFD_SSID="%s" ' % printed in sim.query(b"<stWifi>")


def nested(depth):
    inner = b"<a>" * (depth - 2) + b'<b x="1" />' + b"</a>" * (depth - 2)
    return b'<VariCfgSec Action="DEVICE_SET">%s</VariCfgSec>' % inner


def test_set_may_be_nested_to_depth_32(sim):
    assert sim.ask(nested(32)) == ACCEPTED
    assert sim.ask(nested(33)) == REFUSED
    assert sim.ask(nested(4000)) == REFUSED


@pytest.mark.parametrize(
    "body",
    [
        b"",
        b"<stDisplay>",
        b"<stDisplay></stWifi>",
        b'<stDisplay strLanguage="US></stDisplay>',
        b"<stDisplay strLanguage=US />",
        b"<stDisplay strLanguage />",
        b'<stDisplay strLanguage="US" strLanguage="CN" />',
        b'<stDisplay strLanguage="U"S" />',
        b'<stDisplay strLanguage="&#xZZ;" />',
        b'<!-- no --><stDisplay strLanguage="US" />',
        b'<![CDATA[x]]><stDisplay strLanguage="US" />',
        b'<stDisplay strLanguage="US" /></VariCfgSec><VariCfgSec>',
        b'<stDisplay strLanguage="US" bNew="%s" />' % (b"x" * 29000),
    ],
)
def test_unusable_set_is_refused_whole(sim, body):
    before = sim.ask(WHOLE)
    assert sim.ask(b'<VariCfgSec Action="DEVICE_SET">%s</VariCfgSec>' % body) == REFUSED
    assert sim.ask(WHOLE) == before


def test_settings_never_outgrow_one_message(sim):
    for number in range(20):
        section = b'<stFill_%d x="%s" />' % (number, b"y" * 4000)
        reply = sim.ask(b'<VariCfgSec Action="DEVICE_SET">%s</VariCfgSec>' % section)
    assert reply == REFUSED
    assert 20000 < len(sim.ask(WHOLE)) <= 30000


@pytest.mark.parametrize("action", [b"BROAD_SEARCH", b"DEVICE_REBOOT", b"DEVICE_FORMAT"])
def test_other_known_actions_are_refused(sim, action):
    reply = sim.ask(b'<VariCfgSec Action="%s" />' % action)
    assert reply == b'<VariCfgSec Action="%s" Result="1" />' % action


@pytest.mark.parametrize(
    "message",
    [
        b"",
        b"\0",
        b"hello",
        b"<",
        b"<VariCfgSec",
        b"<VariCfgSec>",
        b"</VariCfgSec>",
        b'<Other Action="DEVICE_QUERY"><stDisplay></Other>',
        b'<VariCfgSec Result="0" Action="DEVICE_QUERY"><stDisplay></VariCfgSec>',
        b'<VariCfgSec Action="DEVICE_QUERY" Result="0"><stDisplay></VariCfgSec>',
        b'<VariCfgSec Action="DEVICE_SING"><stDisplay></VariCfgSec>',
        DISPLAY + b"\0",
        b"x" + DISPLAY,
        b"\xff" * 65507,
    ],
)
def test_what_is_no_request_gets_no_answer(sim, message):
    sim.send(message)
    assert sim.ask(SET_US) == ACCEPTED


def test_survives_damaged_messages(sim):
    rng = random.Random(6000)
    seeds = [DISPLAY, WHOLE, SET_US, nested(20), sim.ask(WHOLE).replace(b"QUERY", b"SET")]
    for _ in range(2000):
        message = bytearray(rng.choice(seeds)[: rng.randrange(1, 20000)])
        for _ in range(rng.randrange(4)):
            message[rng.randrange(len(message))] = rng.choice(b"\0<>/\"'=&;# a\x80\xef\xff")
        sim.send(bytes(message))
        sim.send(b'<VariCfgSec Action="DEVICE_REBOOT" />')
        while b"DEVICE_REBOOT" not in sim.receive():
            pass
    reply = sim.ask(WHOLE)
    assert reply.startswith(b'<VariCfgSec Action="DEVICE_QUERY" Result="0"><')
    assert len(reply) <= 30000


@pytest.mark.parametrize(
    "fault, reply",
    [
        ("result:3", b'<VariCfgSec Action="DEVICE_SET" Result="3" />'),
        ("result:abc", b'<VariCfgSec Action="DEVICE_SET" Result="abc" />'),
        ("noresult", b'<VariCfgSec Action="DEVICE_SET" />'),
        ("order", b'<VariCfgSec Result="0" Action="DEVICE_SET" />'),
        ("notxml", b"no XML at all"),
        ("truncate:10", b"<VariCfgSe"),
        ("text", b""),
        ("text:<a b: c>", b"<a b: c>"),
        ("oversize:80", b'<VariCfgSec Action="DEVICE_SET" Result="0" strPad="%s" />' % (b"x" * 25)),
    ],
)
def test_fault_changes_the_answer_once(sim, fault, reply):
    sim.fault("times=1 " + fault)
    assert sim.ask(SET_US) == reply
    assert sim.ask(SET_US) == ACCEPTED


@pytest.mark.parametrize(
    "fault, language",
    [("result:1", "CN"), ("result:0", "US"), ("noresult", "US"), ("silent", "CN"), ("lost", "US")],
)
def test_fault_decides_whether_a_set_is_applied(sim, fault, language):
    sim.fault("for=set " + fault)
    sim.send(SET_US)
    sim.control("clear")
    while b"stDisplay" not in (reply := sim.ask(DISPLAY)):
        pass
    assert b'strLanguage="%s"' % language.encode() in reply


def test_oversize_is_longer_than_any_reply(sim):
    sim.fault("oversize")
    reply = sim.ask(DISPLAY)
    assert len(reply) == 30001
    assert ElementTree.fromstring(reply).find("stDisplay") is not None


def test_answer_from_file(sim, tmp_path):
    (tmp_path / "answer").write_bytes(b"\0\xff\n")
    sim.fault("file:%s" % (tmp_path / "answer"))
    assert sim.ask(DISPLAY) == b"\0\xff\n"


def test_text_answers_even_what_is_no_request(sim):
    sim.fault("times=1 text:yes")
    assert sim.ask(b"") == b"yes"


def test_fault_meets_only_whom_it_is_for(sim):
    sim.fault("for=query,stWifi notxml")
    assert sim.query(b"<stWifi>") == b"no XML at all"
    assert b"<stWifiAp " in sim.query(b"<stWifiAp>")
    assert sim.ask(b'<VariCfgSec Action="DEVICE_SET"><stWifi a="1" /></VariCfgSec>') == ACCEPTED


def test_answer_from_another_port(sim):
    sim.fault("port")
    sim.send(DISPLAY)
    _, source = sim.socket.recvfrom(65536)
    assert source[0] == "127.0.0.1"
    assert source[1] != sim.address[1]


def test_answer_from_another_address(sim):
    sim.fault("address:127.0.0.2")
    sim.send(DISPLAY)
    _, source = sim.socket.recvfrom(65536)
    assert source == ("127.0.0.2", sim.address[1])


def test_delayed_answer_holds_up_nothing(sim):
    sim.fault("for=query times=1 delay:300")
    sim.send(DISPLAY)
    assert sim.ask(SET_US) == ACCEPTED
    assert b'strLanguage="CN"' in sim.receive()


def test_stale_datagrams_around_the_answer(sim):
    sim.fault("early:before")
    sim.fault("late:50")
    sim.fault("for=set delay:50")
    sim.send(SET_US)
    assert [sim.receive() for _ in range(3)] == [b"before", ACCEPTED, STALE]


def test_clear_drops_answers_to_come(sim):
    sim.fault("delay:600000")
    sim.send(DISPLAY)
    assert sim.control("clear") == "ok"
    assert sim.ask(SET_US) == ACCEPTED


def test_log_has_the_exact_bytes(tmp_path):
    sim = Devsim(tmp_path)
    here, there = ("%s:%d" % address for address in (sim.socket.getsockname(), sim.address))
    hostile = bytes(range(256))
    sim.send(hostile)
    assert sim.ask(SET_US) == ACCEPTED
    assert sim.log() == [
        ("recv", here, there, hostile),
        ("recv", here, there, SET_US),
        ("send", there, here, ACCEPTED),
    ]
    assert sim.stop() == 0


def test_state_outlives_the_simulator(tmp_path):
    state = tmp_path / "state.xml"
    sim = Devsim(tmp_path, "--state", str(state), "--fault", "for=set times=1 result:1")
    assert sim.ask(SET_US) == REFUSED
    assert not state.exists()
    assert sim.ask(SET_US) == ACCEPTED
    whole = sim.ask(WHOLE)
    assert sim.stop() == 0
    assert sorted(path.name for path in tmp_path.iterdir()) == ["devsim.log", "state.xml"]
    sim = Devsim(tmp_path, "--state", str(state))
    assert sim.ask(WHOLE) == whole
    assert sim.language() == "US"
    assert sim.control("reset") == "ok"
    assert sim.language() == "CN"
    assert sim.stop() == 0


def test_set_that_cannot_be_kept_is_refused(tmp_path):
    sim = Devsim(tmp_path, "--state", str(tmp_path / "missing" / "state.xml"))
    assert sim.ask(SET_US) == REFUSED
    assert sim.language() == "CN"
    assert sim.stop() == 0


@pytest.mark.parametrize("command", ["", "stop", "fault", "fault ", "fault delay:x", "clear now"])
def test_bad_command_is_told(sim, command):
    assert sim.control(command).startswith("error: ")


@pytest.mark.parametrize(
    "options, reason",
    [
        ("--speed", "unknown option --speed (see --help)"),
        ("-x", "unknown option -x (see --help)"),
        ("--port", "a value is missing behind --port (see --help)"),
        ("--port 65536", "--port needs a number from 0 to 65535, not '65536'"),
        ("--control x", "--control needs a number from 0 to 65535, not 'x'"),
        ("--address here", "--address needs an IPv4 address, not 'here'"),
        ("--fault sleepy", "unknown fault 'sleepy'"),
        ("--fault delay", "fault 'delay' needs an argument"),
        ("--fault delay:-1", "fault 'delay' cannot use '-1'"),
        ("--fault silent:1", "fault 'silent' takes no argument"),
        ("--fault 'times=x silent'", "times= needs a number"),
        ("--fault file:/missing", "fault 'file' cannot use '/missing'"),
        ("more", "unexpected argument more (see --help)"),
    ],
)
def test_bad_option_is_told_in_one_line(options, reason):
    done = subprocess.run([BINARY, *shlex.split(options)], capture_output=True, text=True)
    assert (done.returncode, done.stdout) == (2, "")
    assert done.stderr == "devsim: %s\n" % reason


def test_help_explains_every_option():
    done = subprocess.run([BINARY, "--help"], capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    for option in ("address", "port", "defaults", "state", "log", "control", "fault", "help"):
        assert "  --%s " % option in done.stdout


def test_taken_port_is_told(sim):
    port = str(sim.address[1])
    done = subprocess.run([BINARY, "--port", port], capture_output=True, text=True)
    assert done.returncode == 1
    assert done.stderr.startswith("devsim: cannot listen on 127.0.0.1:%s: " % port)


def test_unusable_defaults_are_told(tmp_path):
    (tmp_path / "bad.xml").write_text("<Other />")
    for name in ("bad.xml", "missing.xml"):
        path = str(tmp_path / name)
        done = subprocess.run([BINARY, "--defaults", path], capture_output=True, text=True)
        assert done.returncode == 1
        assert path in done.stderr


@pytest.mark.parametrize("number", [signal.SIGINT, signal.SIGTERM])
def test_signal_ends_it_cleanly(tmp_path, number):
    sim = Devsim(tmp_path)
    sim.process.send_signal(number)
    assert sim.process.wait(WAIT) == 0
    sim.socket.close()
