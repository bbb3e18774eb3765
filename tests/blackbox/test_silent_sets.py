"""A device that does not answer: every set fails after its time-out, and nothing is resent."""

import time

import pytest
from device import ACCEPTED, REFUSED, SILENCE, answer, change, query

SETS = [
    ("/set_LangInfo", "strLanguage=CN"),
    ("/set_BaseInfo", "strFD_DeviceNo=12345"),
    ("/set_DeviceNo", "strFD_DeviceNo=12345"),
    ("/set_MirrorInfo", "strFD_UpDown=1"),
    ("/set_MainStreamInfo", "ucFD_FrameRate=25"),
    ("/set_SubStreamInfo", "ucFD_SFrameRate=25"),
    ("/set_NetWModeInfo", "ucFD_NetWType=1"),
    ("/set_VCmsInfo", "strFD_Address=10.0.0.1"),
    ("/set_WifiInfo", "ucFD_WorkMode=1"),
    ("/set_GNetInfo", "ucFD_NetType=1"),
    ("/set_LocalNetInfo", "strFD_Mac=m"),
    ("/set_UserSecurity", "strUserName=0&strConfirmPasswd=p"),
    ("/set_LockOfPassword", "ucFD_ErrorCount=1"),
]


@pytest.mark.parametrize("uri, form", SETS, ids=[row[0] for row in SETS])
def test_unanswered_set_is_failure_without_a_restart(rig, uri, form):
    assert rig.post(uri, form, SILENCE, SILENCE).chunks == [b'{"result": 0 }']
    assert len(rig.device.requests) == 1
    rig.daemon.stderr.expect()


def test_unanswered_mode_is_followed_by_the_access_point_values(rig):
    reply = rig.post("/set_WifiInfo", "ucFD_WorkMode=2&strFD_SSID=ap", SILENCE, REFUSED)
    assert reply.body == b'{"result": 1 }'
    assert rig.device.requests[0] == change('<stWifi ucFD_WorkMode="2"/>')
    assert rig.device.requests[1].startswith(
        b'<VariCfgSec Action="DEVICE_SET"><stWifiAp strFD_SSID="ap"'
    )


def test_unanswered_gb28181_set_has_no_channels_and_fails(rig):
    form = "ucFD_GB28181Enable=1&strFD_LensId=*1*"
    assert rig.post("/set_GB28181Info", form, SILENCE, SILENCE).body == b'{"result": 0 }'
    assert rig.device.requests[0] == query("<stVersion />")
    assert b'<SUBDEVID_0 strFD_LensId="" strFD_AlarmInId=""/>' in rig.device.requests[1]


def test_unanswered_import_fails_after_its_longer_time_out(rig):
    text = '<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN" /></VariCfgSec>'
    form = b"strFD_CfgPara=" + text.replace("<", "%3C").encode()
    start = time.monotonic()
    assert rig.post("/import_CfgFile", form, SILENCE, SILENCE).body == b'{"result": 0 }'
    assert time.monotonic() - start >= 10
    assert rig.device.requests == [change('<stDisplay strLanguage="CN" />')]
    rig.daemon.stderr.expect()


def test_unanswered_reset_of_the_lock_does_not_change_its_query(rig):
    section = answer("<stLockOfPassword ucFD_ErrorCount='5' uiFD_LockTime='1000'/>")
    reply = rig.get("/get_LockOfPassword", section, SILENCE)
    assert reply.body == b'{ "ucFD_ErrorCount": "0", "time": "1000" , "result": 1 }'


def test_service_works_on_after_the_silence(rig):
    assert rig.post("/set_LangInfo", "strLanguage=CN", ACCEPTED).body == b'{"result": 1 }'
    rig.daemon.stderr.expect("Cannot bind to 80")
