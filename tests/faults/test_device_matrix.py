"""Every fault of the simulated recorder on every kind of endpoint.

What the browser gets, what is printed, whether a set was executed, and that the next request works.
The daemon uses the device's answers as they come: no query is repeated, and nothing in a message
says which request it belongs to.
"""

import re
import socket
import subprocess
from urllib.parse import quote

import pytest
from daemon import Daemon
from device import DEVSIM, SimulatedRecorder
from http_client import JSON_HEAD, STANDARD_HEAD, Client, get, post

_RATE = 777
_TEXT = f'<VariCfgSec Action="x"><stSubStream uiFD_BitRate="{_RATE}"/></VariCfgSec>'

# Kind of endpoint: request, its good reply, its failed reply.
FAMILIES = {
    "query": (
        get("/get_SubStreamInfo"),
        rb'\{ "ucFD_SFrameRate": "12", "uiFD_SBitRate": "256", "result": 1 \}',
        rb'\{ "ucFD_SFrameRate": "0", "uiFD_SBitRate": "0", "result": 0 \}',
    ),
    "set": (post("/set_SubStreamInfo", f"uiFD_SBitRate={_RATE}"), rb'\{"result": 1 \}', rb'\{"result": 0 \}'),
    "login": (
        post("/cmp_UserSecurity", "strUserName=0&strFD_AdminPasswd=admin123"),
        rb'\{ "jsession": "", "result": 1 \}',
        rb'\{ "jsession": "", "result": 0 \}',
    ),
    "export": (
        get("/export_CfgFile"),
        rb'\{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_QUERY".*<stGB28181 .*</VariCfgSec>", "result": 1 \}',
        rb'\{ "strFD_CfgPara": "", "result": 0 \}',
    ),
    "import": (post("/import_CfgFile", "strFD_CfgPara=" + quote(_TEXT)), rb'\{"result": 1 \}', rb'\{"result": 0 \}'),
    "gb28181 query": (
        get("/get_GB28181Info"),
        rb'\{ "ucFD_GB28181Enable": "1", "strFD_Manufacturer": "[^"]+", .*"iVideoChnCount": "8".*"result": 1 \}',
        rb'\{ "ucFD_GB28181Enable": "0", "strFD_Manufacturer": "", .*"iVideoChnCount": "0".*"result": 0 \}',
    ),
    "gb28181 set": (
        post("/set_GB28181Info", "ucFD_GB28181Enable=1&strFD_ServerIp=10.9.8.7&strFD_LensId=*1*2*"),
        rb'\{"result": 1 \}',
        rb'\{"result": 0 \}',
    ),
}
QUERIES = ("query", "login", "gb28181 query")
READS = QUERIES + ("export",)
SETS = ("set", "import", "gb28181 set")
EVERY = READS + SETS

GOOD, FAILED = "good", "failed"
# An answer to another query is used as it is: success without any value of the wanted section.
FOREIGN = "foreign"
_FOREIGN = {
    "query": rb'\{ "ucFD_SFrameRate": "0", "uiFD_SBitRate": "0", "result": 1 \}',
    "login": FAMILIES["login"][2],
    "gb28181 query": rb'\{ "ucFD_GB28181Enable": "0", .*"iVideoChnCount": "0".*"result": 1 \}',
    "export": rb'\{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_QUERY".*<st(Other|Stale) ?.*/></VariCfgSec>", "result": 1 \}',
}

_FROM = "CUdpCtrlSocket::RecvDataFromHost,  get data from"
_OTHER_PORT = (
    "CUdpCtrlSocket::RecvDataFromHost, failed, get data peer net info not match"
    "[127.0.0.1  VS 127.0.0.1], port[6000 VS "
)

CUT = "cut"
_CUT = rb'\{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_QUERY" Result", "result": 1 \}'

# What a set does besides its reply: the recorder applies the change, and the service restarts.
LEFT, TAKEN, RESTARTED = "left", "taken", "taken, and a restart"

# Fault, endpoints, reply, part of the output, effect of a set.
ROWS = [
    ("silent", EVERY, FAILED, "", LEFT),
    ("lost", EVERY, FAILED, "", TAKEN),
    ("delay:300", EVERY, GOOD, _FROM, RESTARTED),
    ("delay:4000", ("query", "set"), GOOD, _FROM, RESTARTED),
    ("delay:6000", ("query", "login", "export", "set"), FAILED, "", TAKEN),
    ("delay:9000", ("import",), GOOD, _FROM, RESTARTED),
    ("delay:11000", ("import",), FAILED, "", TAKEN),
    # The answer to the first of two messages arrives during the second exchange.
    ("delay:6000", ("gb28181 query",), FOREIGN, _FROM, None),
    ("delay:6000", ("gb28181 set",), GOOD, _FROM, RESTARTED),
    ("port", EVERY, FAILED, _OTHER_PORT, TAKEN),
    ("address:127.0.0.2", EVERY, GOOD, _FROM + "[127.0.0.1  VS 127.0.0.2]", RESTARTED),
    ("oversize", QUERIES, FAILED, "too long len[30000 VS 2048]", None),
    ("oversize:2049", QUERIES, FAILED, "too long len[2049 VS 2048]", None),
    ("oversize:2049", SETS, GOOD, _FROM, RESTARTED),
    ("truncate", QUERIES + SETS, FAILED, _FROM, TAKEN),
    ("truncate", ("export",), CUT, _FROM, None),
    ("notxml", EVERY, FAILED, _FROM, TAKEN),
    ("result:1", QUERIES, FAILED, _FROM, None),
    ("result:1", SETS, GOOD, _FROM, LEFT),
    ("noresult", READS, GOOD, _FROM, None),
    ("noresult", SETS, FAILED, _FROM, TAKEN),
    ("order", EVERY, FAILED, "CWebCtrl::GetParaCmdType, first attribute name is not Action.", TAKEN),
    ("text", EVERY, FAILED, "", TAKEN),
    ("file:FOLDER/other.xml", READS, FOREIGN, _FROM, None),
    ("file:FOLDER/other.xml", SETS, FAILED, _FROM, TAKEN),
    ("early", READS, FOREIGN, _FROM, None),
    ("early", ("set", "import"), GOOD, _FROM, TAKEN),
    # If it were early for both messages, the first one's true answer could arrive during the second
    # exchange.
    ("for=stGB28181 early", ("gb28181 set",), GOOD, _FROM, TAKEN),
    ("late:300", READS, GOOD, _FROM, None),
    ("late:300", SETS, GOOD, _FROM, RESTARTED),
]
CASES = [(fault, family, *rest) for fault, families, *rest in ROWS for family in families]


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    return tmp_path_factory.mktemp("product")


class Recorder(SimulatedRecorder):
    """The simulated recorder and its control port."""

    def __init__(self, folder):
        super().__init__(str(folder), "--control", "0")
        self._port = int(re.search(rb"control on 127.0.0.1:(\d+)", self.output())[1])

    def order(self, command):
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sock:
            sock.settimeout(60)
            sock.sendto(command.encode(), ("127.0.0.1", self._port))
            assert sock.recv(1000) == b"ok", command


@pytest.fixture(scope="module")
def recorder(folder):
    with open(folder / "other.xml", "w", encoding="ascii") as file:
        file.write('<VariCfgSec Action="DEVICE_QUERY"><stOther x="1"/></VariCfgSec>')
    recorder = Recorder(folder)
    yield recorder
    recorder.close()


@pytest.fixture(scope="module")
def daemon(folder, recorder):
    daemon = Daemon(folder / "daemon").start()
    yield daemon
    daemon.stop()


def ask(request):
    with Client() as client:
        client.send(request)
        reply = client.read_reply()
        assert client.pending() == b""
        return reply


@pytest.mark.parametrize("fault, family, reply, line, fate", CASES, ids=[f"{c[0]}-{c[1]}" for c in CASES])
def test_fault(folder, recorder, daemon, fault, family, reply, line, fate):
    request, good, failed = FAMILIES[family]
    fate = fate if family in SETS else None
    recorder.order("reset")
    before = recorder.document()
    recorder.order("fault " + fault.replace("FOLDER", str(folder)))
    daemon.mark()
    answer = ask(request)
    recorder.order("clear")

    assert answer.head == (JSON_HEAD if family == "gb28181 query" else STANDARD_HEAD)
    expected = {GOOD: good, FAILED: failed, FOREIGN: _FOREIGN.get(family), CUT: _CUT}[reply]
    assert re.fullmatch(expected, answer.body, re.DOTALL), answer.body
    assert line in daemon.stdout.since_mark()
    assert (recorder.document() != before) == (fate in (TAKEN, RESTARTED))
    daemon.stderr.expect(*["Cannot bind to 80"] * (fate == RESTARTED))

    rate = _RATE if family in ("set", "import") and fate in (TAKEN, RESTARTED) else 256
    next_answer = ask(get("/get_SubStreamInfo"))
    assert b'"uiFD_SBitRate": "%d", "result": 1 }' % rate in next_answer.body


@pytest.mark.offline
def test_every_fault_of_the_recorder_has_a_row():
    """The kinds listed in the program's help."""
    text = subprocess.run([DEVSIM, "--help"], capture_output=True, text=True, check=True).stdout
    kinds = set(re.findall(r"^  ([a-z]+)\S* +\S.*", text.split("KIND is one of")[1].split("Control")[0], re.M))
    assert len(kinds) >= 15
    assert kinds == {fault.split()[-1].split(":")[0] for fault, *_ in ROWS}
