"""The live status: one query, one large reply of many pieces."""

import re

import pytest
from daemon import START, trace
from device import UNUSABLE, answer, query

VALUES = {
    "GpsExist": "1",
    "GpsPos": "113.9E,22.5N",
    "GNetExist": "1",
    "IMEI": "860000000000001",
    "ATI": "Quectel\r\nEC20\r\nRevision: ABC123\r\nOK\r\n",
    "SimExist": "1",
    "IMSI": "460001234567890",
    "ICCID": "89860012345678901234",
    "GNetSignal": "27",
    "GNetDail": "1",
    "WifiExist": "1",
    "WifiMode": "1",
    "WifiSignal": "70",
    "WifiDail": "1",
    "CmsStatus": "1",
    "JTT808Status": "2",
    "GB28181Status": "3",
    "Disk1Exist": "1",
    "Disk1Size": "931G/120G",
    "Disk2Exist": "2",
    "Disk2Size": "64G/1G",
    "Disk3Exist": "1",
    "Disk3Size": "third",
    "IO": "10101010",
    "VideoCnt": "8",
    "Model": "model",
    "McuVer": "M1",
    "BootVer": "B1",
    "KnlVer": "K1",
    "RfsVer": "R1",
    "AppVer": "A1",
    "DBVer": "D1",
    "WifiVer": "W1",
    "ACC": "1",
    "NetStatus": "4",
    "CMS": "10.1.2.3",
    "DeviceNo": "A12345",
}


def section(**changes):
    values = {**VALUES, **changes}
    escaped = {
        name: text.replace("\r", "&#x0D;").replace("\n", "&#x0A;") for name, text in values.items()
    }
    return answer("<stSystemInfo " + " ".join(f'{n}="{t}"' for n, t in escaped.items()) + "/>")


GOOD = [
    b"{ ",
    b'"gps":{ "ucFD_GpsExist": "1"',
    b', "strFD_GpsPos": "113.9E,22.5N"},',
    b'"gnet":{ "ucFD_GNetExist": "1"',
    b', "strFD_GNetIMEI": "860000000000001"',
    b', "strFD_GNetRevision": " ABC123"',
    b', "ucFD_SimExist": "1"',
    b', "ucFD_SimIMSI": "460001234567890"',
    b', "ucFD_SimICCID": "89860012345678901234"',
    b', "uiFD_GNetSignal": "27"',
    b', "ucFD_GNetDail": "1"},',
    b'"wifi":{ "ucFD_WifiExist": "1"',
    b', "ucFD_WifiMode": "Client"',
    b', "uiFD_WifiSignal": "70"',
    b', "ucFD_WifiDail": "1"},',
    b'"cms":{ "ucFD_CmsStatus": "1"',
    b', "ucFD_JTT808Status": "2"',
    b', "ucFD_GB28181Status": "3"},',
    b'"disk":{',
    b'"list":[',
    b'{"ucFD_DiskExist": "1"',
    b', "strFD_DiskSize": "931G/120G"},',
    b'{"ucFD_DiskExist": "2"',
    b', "strFD_DiskSize": "64G/1G"}',
    b"]},",
    b'"io":{ "strFD_IOStatus": "10101010"},',
    b'"version":{ "strFD_McuVersion": "M1"',
    b', "strFD_LdrVersion": "B1"',
    b', "strFD_KnlVersion": "K1"',
    b', "strFD_RfsVersion": "R1"',
    b', "strFD_AppVersion": "A1"',
    b', "strFD_DbtVersion": "D1"},',
    b'"acc":{ "ucFD_AccStatus": "1"',
    b"},",
    b'"net":{ "ucFD_NetStatus": "4"',
    b', "uiFD_IP": "10.1.2.3"',
    b', "strFD_DeviceNo": "A12345"},',
    b'"result": 1 }',
]
LAST = len(GOOD) - 1


def zeroed(result):
    """The same pieces with empty values."""
    pieces = [re.sub(rb'": "[^"]*"', b'": ""', piece) for piece in GOOD]
    pieces = [re.sub(rb'("(uc|ui)FD_\w+": )""', rb'\1"0"', piece) for piece in pieces]
    texts = {
        b"ucFD_WifiMode": b"AP",
        b"uiFD_IP": b"0.0.0.0",
        b"ucFD_SimIMSI": b"",
        b"ucFD_SimICCID": b"",
    }
    for key, text in texts.items():
        pieces = [re.sub(b'"%s": "[^"]*"' % key, b'"%s": "%s"' % (key, text), p) for p in pieces]
    return [*pieces[:LAST], b'"result": %d }' % result]


def test_good_reply_gives_every_piece_in_order(rig):
    reply = rig.get("/get_SystemInfo", section())
    assert reply.chunks == GOOD
    assert rig.device.requests == [query("<stSystemInfo />")]
    rig.daemon.stdout.expect_in_order(
        START, trace("get_SystemInfo"), trace("getSystemInfoFromNet"), trace("get_SystemInfo")
    )


def test_attribute_names_fit_in_any_case(rig):
    text = re.sub(rb" (\w+)=", lambda match: match[0].lower(), section())
    text = text.replace(b" action=", b" Action=")
    assert rig.get("/get_SystemInfo", text).chunks == GOOD


@pytest.mark.parametrize("data", [UNUSABLE, answer(""), b"", section().replace(b"Action", b"A")])
def test_failed_query_gives_the_same_pieces_empty(rig, data):
    assert rig.get("/get_SystemInfo", data).chunks == zeroed(0)


def test_empty_status_still_lists_two_disks(rig):
    reply = rig.get("/get_SystemInfo", answer("<stSystemInfo/>"))
    assert reply.chunks == zeroed(1)
    assert reply.body.count(b'{"ucFD_DiskExist": "0", "strFD_DiskSize": ""}') == 2


FIELDS = [
    ("Wi-Fi mode 0", {"WifiMode": "0"}, b', "ucFD_WifiMode": "AP"'),
    ("Wi-Fi mode 2", {"WifiMode": "2"}, b', "ucFD_WifiMode": "AP"'),
    ("Wi-Fi mode 257 is 1", {"WifiMode": "257"}, b', "ucFD_WifiMode": "Client"'),
    ("no revision", {"ATI": "EC20"}, b', "strFD_GNetRevision": ""'),
    ("revision without a line end", {"ATI": "Revision:R01"}, b', "strFD_GNetRevision": "R01"'),
    (
        "a line feed alone does not end it",
        {"ATI": "Revision:R\nS\r\nT"},
        b', "strFD_GNetRevision": "R\nS"',
    ),
    ("an empty revision", {"ATI": "Revision:\r\nR"}, b', "strFD_GNetRevision": ""'),
    (
        "revision of 63 characters",
        {"ATI": f"Revision:{'r' * 100}\r\n"},
        b', "strFD_GNetRevision": "%s"' % (b"r" * 63),
    ),
    (
        "the first of two revisions",
        {"ATI": "Revision:1\r\nRevision:2"},
        b', "strFD_GNetRevision": "1"',
    ),
    ("position of 63 characters", {"GpsPos": "p" * 80}, b', "strFD_GpsPos": "%s"},' % (b"p" * 63)),
    ("IMEI of 31", {"IMEI": "1" * 80}, b', "strFD_GNetIMEI": "%s"' % (b"1" * 31)),
    ("IMSI of 63", {"IMSI": "1" * 80}, b', "ucFD_SimIMSI": "%s"' % (b"1" * 63)),
    ("ICCID of 63", {"ICCID": "1" * 80}, b', "ucFD_SimICCID": "%s"' % (b"1" * 63)),
    ("disk size of 63", {"Disk2Size": "1" * 80}, b', "strFD_DiskSize": "%s"}' % (b"1" * 63)),
    ("inputs of 31", {"IO": "1" * 40}, b'"io":{ "strFD_IOStatus": "%s"},' % (b"1" * 31)),
    ("version of 31", {"BootVer": "1" * 40}, b', "strFD_LdrVersion": "%s"' % (b"1" * 31)),
    ("device number of 15", {"DeviceNo": "1" * 40}, b', "strFD_DeviceNo": "%s"},' % (b"1" * 15)),
    ("a flag of 8 bits", {"GpsExist": "256"}, b'"gps":{ "ucFD_GpsExist": "0"'),
    ("a signal shows negative", {"GNetSignal": "-113"}, b', "uiFD_GNetSignal": "-113"'),
    ("platform 1 is masked", {"CMS": "203.0.113.101"}, b', "uiFD_IP": "10.255.255.101"'),
    ("platform 4 is masked", {"CMS": "198.51.100.8"}, b', "uiFD_IP": "10.255.255.104"'),
    ("an address in hexadecimal", {"CMS": "0x0302010A"}, b', "uiFD_IP": "10.1.2.3"'),
    ("an address in decimal", {"CMS": "50462986"}, b', "uiFD_IP": "10.1.2.3"'),
    ("an address that is none", {"CMS": "cms.example"}, b', "uiFD_IP": "0.0.0.0"'),
]


@pytest.mark.parametrize("sentence, changes, chunk", FIELDS, ids=[row[0] for row in FIELDS])
def test_field_is_converted_to_its_width(rig, sentence, changes, chunk):
    reply = rig.get("/get_SystemInfo", section(**changes))
    assert chunk in reply.chunks
    assert len(reply.chunks) == len(GOOD)


def test_unknown_attributes_are_ignored(rig):
    data = section().replace(b"<stSystemInfo ", b'<stSystemInfo New="1" x="%s" ')
    assert rig.get("/get_SystemInfo", data).chunks == GOOD
