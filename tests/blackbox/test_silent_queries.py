"""A device that does not answer: every query endpoint still replies, after its time-out."""

import re

import pytest
from daemon import clock
from device import SILENCE, answer, query
from http_client import JSON_HEAD, STANDARD_HEAD

FAILED = b', "result": 0 }'

# Endpoint, requests that the device sees, the whole body.
SILENT = [
    ("get_LangInfo", ["<stDisplay>"], b'{ "strLanguage": "EN"' + FAILED),
    (
        "get_MirrorInfo",
        ["<stVideoMirror>"],
        b'{ "strFD_LeftRight": "0", "strFD_UpDown": "0"' + FAILED,
    ),
    (
        "get_MainStreamInfo",
        ['<stMainStream StartChn="0">'],
        b'{ "ucFD_FrameRate": "0", "uiFD_BitRate": "0"' + FAILED,
    ),
    (
        "get_SubStreamInfo",
        ["<stSubStream>"],
        b'{ "ucFD_SFrameRate": "0", "uiFD_SBitRate": "0"' + FAILED,
    ),
    ("get_NetWModeInfo", ["<stNetWorkMode>"], b'{ "ucFD_NetWType": "0"' + FAILED),
    (
        "get_VCmsInfo",
        ["<stCMS>"],
        b'{ "ucFD_AddressType": "0", "strFD_Address": "0.0.0.0", "usFD_Port": "0"' + FAILED,
    ),
    (
        "get_WifiInfo",
        ["<stWifi>"],
        b'{ "ucFD_WorkMode": "0", "strFD_SSID": "", "strFD_Passwd": "", "ucFD_AuthMode": "0"'
        b', "ucFD_CryptType": "0", "ucFD_DhcpEnableFlag": "0"' + FAILED,
    ),
    (
        "get_GNetInfo",
        ["<stMobileGNet>"],
        b'{ "ucFD_NetType": "0", "strFD_Apn": "", "strFD_PhoneNo": "", "strFD_UserName": ""'
        b', "strFD_UserPasswd": ""' + FAILED,
    ),
    (
        "get_LocalNetInfo",
        ["<stLocalEth0>"],
        b'{ "strFD_LocalIp": "0.0.0.0", "strFD_NetMask": "0.0.0.0", "strFD_GateWay": "0.0.0.0"'
        b', "strFD_Mac": ""' + FAILED,
    ),
    (
        "get_VersionInfo",
        ["<stVersion />"],
        b'{ "strFD_AppVersion": "" "strFD_KnlVersion": ""' + FAILED,
    ),
    (
        "get_UserSecurity",
        ["<stUserSec>"],
        b'{ "strAdminPasswd": "", "strNormalPasswd": "" ' + FAILED,
    ),
    ("get_Login", ["<stUserSec>"], b'{ "strFD_AdminPasswd": "", "strFD_NormalPasswd": ""' + FAILED),
    ("export_CfgFile", [""], b'{ "strFD_CfgPara": ""' + FAILED),
]


@pytest.mark.parametrize("uri, sections, body", SILENT, ids=[row[0] for row in SILENT])
def test_silent_device_gives_zeros_and_result_0(rig, uri, sections, body):
    assert rig.get(f"/{uri}", SILENCE, SILENCE).body == body
    assert rig.device.requests == [query(section) for section in sections]


def test_silent_device_leaves_the_clock_in_the_base_reply(rig):
    reply = rig.get("/get_BaseInfo", SILENCE)
    assert re.fullmatch(
        rb'\{ "strFD_DeviceNo": "", "ucFD_TimeZone": "0" , "ucFD_GpsSTFlag": "0"'
        rb', "strFD_CurTime": "\d{4}-\d\d-\d\d \d\d:\d\d:\d\d", "result": 0 \}',
        reply.body,
    )


def test_silent_device_leaves_the_offset_clock_in_the_lock_reply(rig):
    before = clock() - 28800
    reply = rig.get("/get_LockOfPassword", SILENCE)
    match = re.fullmatch(
        rb'\{ "ucFD_ErrorCount": "0", "time": "(\d+)" , "result": 0 \}', reply.body
    )
    assert before <= int(match[1]) <= clock() - 28800


def test_access_point_that_is_silent_leaves_the_station_values(rig):
    station = answer('<stWifi ucFD_WorkMode="2" strFD_SSID="st"/>')
    reply = rig.get("/get_WifiInfo", station, SILENCE)
    assert reply.body.startswith(b'{ "ucFD_WorkMode": "2", "strFD_SSID": "st"')
    assert reply.body.endswith(FAILED)


def test_silent_device_gives_an_all_zero_status(rig):
    reply = rig.get("/get_SystemInfo", SILENCE)
    assert reply.head == STANDARD_HEAD
    assert reply.chunks[-1] == b'"result": 0 }'
    assert rig.device.requests == [query("<stSystemInfo />")]


def test_silent_device_gives_zero_gb28181_settings_after_two_time_outs(rig):
    reply = rig.get("/get_GB28181Info", SILENCE, SILENCE, head=JSON_HEAD)
    assert reply.body.startswith(b'{ "ucFD_GB28181Enable": "0", "strFD_Manufacturer": ""')
    assert reply.body.endswith(b', "strFD_AlarmInId": "**"' + FAILED)
    assert rig.device.requests == [query("<stVersion />"), query("<stGB28181>")]
