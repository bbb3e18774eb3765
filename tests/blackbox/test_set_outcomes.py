"""The effect of the device's answer to a set: accepted, refused, without a Result."""

import pytest
from daemon import START, trace
from device import ACCEPTED, REFUSED, UNUSABLE, answer, change
from http_client import get

WITHOUT_RESULT = b'<VariCfgSec Action="DEVICE_SET"/>'
BIND_FAILED = "Cannot bind to 80\n"

# Endpoint, form, result for a device that refuses.
SETS = [
    ("/set_LangInfo", "strLanguage=CN", 1),
    ("/set_BaseInfo", "strFD_DeviceNo=12345", 1),
    ("/set_DeviceNo", "strFD_DeviceNo=12345", 1),
    ("/set_MirrorInfo", "strFD_UpDown=1", 1),
    ("/set_MainStreamInfo", "ucFD_FrameRate=25", 1),
    ("/set_SubStreamInfo", "ucFD_SFrameRate=25", 1),
    ("/set_NetWModeInfo", "ucFD_NetWType=1", 1),
    ("/set_VCmsInfo", "strFD_Address=10.0.0.1", 1),
    ("/set_WifiInfo", "ucFD_WorkMode=1", 1),
    ("/set_GNetInfo", "ucFD_NetType=1", 1),
    ("/set_LocalNetInfo", "strFD_Mac=m", 1),
    ("/set_UserSecurity", "strUserName=0&strConfirmPasswd=p", 0),
    ("/set_LockOfPassword", "ucFD_ErrorCount=1", 0),
]
URIS = [row[0] for row in SETS]


@pytest.mark.parametrize("uri, form, refused", SETS, ids=URIS)
class TestEverySet:
    def test_accepted_is_success_and_restarts(self, rig, uri, form, refused):
        assert rig.post(uri, form, ACCEPTED).chunks == [b'{"result": 1 }']
        assert len(rig.device.requests) == 1
        rig.daemon.stderr.expect(BIND_FAILED[:-1])
        assert rig.get("/get_cpu_usage").body

    def test_refused_does_not_restart(self, rig, uri, form, refused):
        assert rig.post(uri, form, REFUSED).chunks == [b'{"result": %d }' % refused]
        assert len(rig.device.requests) == 1
        rig.daemon.stderr.expect()

    def test_reply_without_result_is_failure(self, rig, uri, form, refused):
        for data in (WITHOUT_RESULT, UNUSABLE, b""):
            assert rig.post(uri, form, data, data).chunks == [b'{"result": 0 }']
            assert len(rig.device.requests) == 1
            rig.daemon.stderr.expect()


# Read as 32 bits of a 64-bit number on every processor.
@pytest.mark.parametrize("number, restarts", [("4294967296", True), ("4294967297", False)])
def test_result_of_many_digits_counts_with_its_low_32_bits(rig, number, restarts):
    reply = WITHOUT_RESULT.replace(b"/>", b' Result="%s"/>' % number.encode())
    assert rig.post("/set_NetWModeInfo", "ucFD_NetWType=1", reply).body == b'{"result": 1 }'
    rig.daemon.stderr.expect(*([BIND_FAILED[:-1]] if restarts else []))


POINT = "ucFD_WorkMode=2&strFD_SSID=ap"
MODE_ONLY = change('<stWifi ucFD_WorkMode="2"/>')
VALUES = change(
    '<stWifiAp strFD_SSID="ap" strFD_Passwd="" ucFD_AuthMode="0" ucFD_CryptType="0"'
    ' ucFD_DhcpEnableFlag="0"/>'
)
POINT_OUTCOMES = [
    ("an accepted mode sends one message only", [ACCEPTED], [MODE_ONLY], 1, BIND_FAILED),
    ("a refused mode, accepted values", [REFUSED, ACCEPTED], [MODE_ONLY, VALUES], 1, BIND_FAILED),
    ("a refused mode, refused values", [REFUSED, REFUSED], [MODE_ONLY, VALUES], 1, ""),
    ("a refused mode, failed values", [REFUSED, WITHOUT_RESULT], [MODE_ONLY, VALUES], 0, ""),
    ("a failed mode, refused values", [WITHOUT_RESULT, REFUSED], [MODE_ONLY, VALUES], 1, ""),
    ("a failed mode, accepted values", [UNUSABLE, ACCEPTED], [MODE_ONLY, VALUES], 1, BIND_FAILED),
    ("both failed", [b"", UNUSABLE], [MODE_ONLY, VALUES], 0, ""),
]


@pytest.mark.parametrize(
    "sentence, steps, datagrams, result, stderr", POINT_OUTCOMES, ids=[r[0] for r in POINT_OUTCOMES]
)
def test_access_point_mode_decides_over_the_values(rig, sentence, steps, datagrams, result, stderr):
    reply = rig.post("/set_WifiInfo", POINT, *steps)
    assert reply.body == b'{"result": %d }' % result
    assert rig.device.requests == datagrams
    rig.daemon.stderr.expect(*stderr.splitlines())


def test_missing_language_is_success_without_a_restart(rig):
    assert rig.post("/set_LangInfo", "").body == b'{"result": 1 }'
    assert rig.device.requests == []
    rig.daemon.stderr.expect()


def test_lock_that_is_over_restarts_through_its_query(rig):
    section = answer("<stLockOfPassword ucFD_ErrorCount='5' uiFD_LockTime='1000'/>")
    reply = rig.get("/get_LockOfPassword", section, ACCEPTED)
    assert reply.body == b'{ "ucFD_ErrorCount": "0", "time": "1000" , "result": 1 }'
    rig.daemon.stderr.expect(BIND_FAILED[:-1])


def test_reply_comes_after_the_restart(rig):
    """The set waits for the restart inside its handler: when its reply comes, ifconfig has run
    again."""

    def runs():
        with open(rig.daemon.ifconfig_log, encoding="utf-8") as file:
            return len(file.readlines())

    before = runs()
    rig.post("/set_LangInfo", "strLanguage=CN", ACCEPTED)
    assert runs() == before + 1
    rig.daemon.stderr.expect(BIND_FAILED[:-1])


def test_sessions_outlive_a_restart(rig):
    request = b"POST /cmp_UserSecurity HTTP/1.1\r\nReferer: login.html\r\nContent-Length: 0\r\n\r\n"
    session = rig.ask(request, UNUSABLE).body[15:47].decode()
    rig.post("/set_LangInfo", "strLanguage=CN", ACCEPTED)
    rig.daemon.stderr.expect(BIND_FAILED[:-1])
    assert (
        rig.ask(get(f"/page.css?time=1&SessionID={session}"), head=None).body
        == b"body { color: page }"
    )
    rig.ask_unanswered(get(f"/page.css?time=1&SessionID={'0' * 32}"), "DoHttpRequeset error!")


TRACES = [
    ("/set_BaseInfo", [trace("setBaseInfoToNet")]),
    ("/set_DeviceNo", [trace("setDeviceNoToNet")]),
    ("/set_MirrorInfo", []),
    ("/set_MainStreamInfo", []),
    ("/set_SubStreamInfo", []),
    ("/set_NetWModeInfo", []),
    ("/set_VCmsInfo", []),
    ("/set_WifiInfo", []),
    ("/set_GNetInfo", []),
    ("/set_LocalNetInfo", []),
]


@pytest.mark.parametrize("uri, lines", TRACES)
def test_refused_set_traces_handler_and_the_two_traced_senders(rig, uri, lines):
    rig.post(uri, "", REFUSED)
    received = (
        "CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS 127.0.0.1], "
        f"port[6000 VS 6000],len[{len(REFUSED)}]."
    )
    handler = trace(uri[1:])
    rig.daemon.stdout.expect(START, handler, *lines, received, *lines, handler)
