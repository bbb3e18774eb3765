"""What the recorder answers, and what a browser must see as a result.

Every answer of the device has a unique number. A reply of the daemon is correct when it shows, in
exactly the expected bytes, the number of an answer that the device gave during this request; or
when it shows the failure of its endpoint and something did go wrong in that time. While hostile
datagrams arrive, one of them can end an exchange, whose answer then reaches the next one: nothing
in the messages would show that.
"""

import re
import time
from urllib.parse import quote_from_bytes

from http_client import JSON_HEAD, STANDARD_HEAD, get, post

_FAILED = ', "result": 0 }'
_LATEST_SEC = 5

# Endpoint, section in the query, the device's section, the pieces of the reply without the result,
# the pieces of a failure. {n} is the number.
_QUERIES = [
    (
        "get_SubStreamInfo",
        "stSubStream",
        '<stSubStream ucFD_FrameRate="12" uiFD_BitRate="{n}"/>',
        '{ "ucFD_SFrameRate": "12", "uiFD_SBitRate": "{n}"',
        '{ "ucFD_SFrameRate": "0", "uiFD_SBitRate": "0"',
    ),
    (
        "get_MainStreamInfo",
        "stMainStream",
        '<stMainStream><stVideoPara><VChn_0 ucFD_FrameRate="25" uiFD_BitRate="{n}"/>'
        "</stVideoPara></stMainStream>",
        '{ "ucFD_FrameRate": "25", "uiFD_BitRate": "{n}"',
        '{ "ucFD_FrameRate": "0", "uiFD_BitRate": "0"',
    ),
    (
        "get_VCmsInfo",
        "stCMS",
        '<stCMS ucFD_AddressType="1" strFD_Domain="n{n}.example" usFD_Port="6608"/>',
        '{ "ucFD_AddressType": "1", "strFD_Address": "n{n}.example", "usFD_Port": "6608"',
        '{ "ucFD_AddressType": "0", "strFD_Address": "0.0.0.0", "usFD_Port": "0"',
    ),
    (
        "get_WifiInfo",
        "stWifi",
        '<stWifi ucFD_WorkMode="1" strFD_SSID="s{n}" strFD_Passwd="p" ucFD_AuthMode="3"'
        ' ucFD_CryptType="4" ucFD_DhcpEnableFlag="1"/>',
        '{ "ucFD_WorkMode": "1", "strFD_SSID": "s{n}", "strFD_Passwd": "p", "ucFD_AuthMode": "3"'
        ', "ucFD_CryptType": "4", "ucFD_DhcpEnableFlag": "1"',
        '{ "ucFD_WorkMode": "0", "strFD_SSID": "", "strFD_Passwd": "", "ucFD_AuthMode": "0"'
        ', "ucFD_CryptType": "0", "ucFD_DhcpEnableFlag": "0"',
    ),
    (
        "get_GNetInfo",
        "stMobileGNet",
        '<stMobileGNet ucFD_NetType="4" strFD_Apn="a{n}" strFD_PhoneNo="9" strFD_UserName="u"'
        ' strFD_UserPasswd="p"/>',
        '{ "ucFD_NetType": "4", "strFD_Apn": "a{n}", "strFD_PhoneNo": "9", "strFD_UserName": "u"'
        ', "strFD_UserPasswd": "p"',
        '{ "ucFD_NetType": "0", "strFD_Apn": "", "strFD_PhoneNo": "", "strFD_UserName": ""'
        ', "strFD_UserPasswd": ""',
    ),
    (
        "get_VersionInfo",
        "stVersion",
        '<stVersion strAppVer="V{n}" VideoCnt="8"/>',
        '{ "strFD_AppVersion": "V{n}" "strFD_KnlVersion": "V{n}"',
        '{ "strFD_AppVersion": "" "strFD_KnlVersion": ""',
    ),
    (
        "get_UserSecurity",
        "stUserSec",
        '<stUserSec><stCustomUser><USER_0 strFD_UserPWD="{n}"/><USER_1 strFD_UserPWD="d"/>'
        "</stCustomUser></stUserSec>",
        '{ "strAdminPasswd": "{n}", "strNormalPasswd": "d" ',
        '{ "strAdminPasswd": "", "strNormalPasswd": "" ',
    ),
    (
        "get_GB28181Info",
        "stGB28181",
        '<stGB28181 ucFD_Enable="129" strFD_Manufacturer="m" strFD_ModelName="{n}"'
        ' strFD_ServerIp="10.0.0.1" usFD_ServerPort="5060"/>',
        '{ "ucFD_GB28181Enable": "1", "strFD_Manufacturer": "m", "strFD_ModelName": "{n}"'
        ', "strFD_ServerIp": "10.0.0.1", "usFD_ServerPort": "5060", "strFD_ServerID": ""'
        ', "strFD_DeviceId": "", "usFD_DevicePort": "0", "strFD_DeviceUser": ""'
        ', "strFD_DevicePass": "", "strFD_LensId": "**", "iVideoChnCount": "{count}"'
        ', "ucFD_StreamType": "1", "strFD_AlarmInId": "**"',
        '{ "ucFD_GB28181Enable": "0", "strFD_Manufacturer": "", "strFD_ModelName": ""'
        ', "strFD_ServerIp": "", "usFD_ServerPort": "0", "strFD_ServerID": ""'
        ', "strFD_DeviceId": "", "usFD_DevicePort": "0", "strFD_DeviceUser": ""'
        ', "strFD_DevicePass": "", "strFD_LensId": "**", "iVideoChnCount": "{count}"'
        ', "ucFD_StreamType": "0", "strFD_AlarmInId": "**"',
    ),
    (
        "export_CfgFile",
        "",
        '<stVehicle strFD_CompanyName="公交 {n}"/>' + '<stPad s="0123456789"/>' * 200,
        '{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_QUERY" Result="0">'
        '<stVehicle strFD_CompanyName="公交 {n}"/>' + '<stPad s="0123456789"/>' * 200
        + '</VariCfgSec>"',
        '{ "strFD_CfgPara": ""',
    ),
]

ANSWERS = {section: text for _, section, text, _, _ in _QUERIES}


def answer(section, number):
    """The device's whole answer to a query, in GBK."""
    text = ANSWERS[section].replace("{n}", str(number))
    return f'<VariCfgSec Action="DEVICE_QUERY" Result="0">{text}</VariCfgSec>'.encode("gbk")


def _pattern(text):
    """The reply's bytes as a pattern with the number (always the same one) and the channel
    count."""
    pattern = re.escape(text).replace(re.escape("{n}"), r"(?P<n>\d+)", 1)
    pattern = pattern.replace(re.escape("{n}"), r"(?P=n)").replace(re.escape("{count}"), "(?:8|0)")
    return re.compile(pattern.encode())


_ANY_EXPORT = [
    _pattern(
        '{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_QUERY" Result="0">' + text
        + '</VariCfgSec>", "result": 1 }'
    )
    for text in ANSWERS.values()
] + [
    _pattern('{ "strFD_CfgPara": "<VariCfgSec Action="DEVICE_SET" Result="%d"/>", "result": 1 }' % result)
    for result in (0, 1)
]


class Query:
    """A query endpoint and its possible answers."""

    def __init__(self, uri, good, failed):
        self.name, self.request = uri, get("/" + uri)
        self._head = JSON_HEAD if "GB28181" in uri else STANDARD_HEAD
        self._good = _pattern(good + ', "result": 1 }')
        self._failed = _pattern(failed + _FAILED)
        # What the answer to another query looks like here.
        self._crossed = [_pattern(failed + ', "result": 1 }')]
        if uri == "export_CfgFile":
            self._crossed = _ANY_EXPORT

    def judge(self, head, body, window):
        """None when the reply is correct, otherwise what is wrong."""
        if head != self._head:
            return "another head"
        if self._failed.fullmatch(body):
            return None if window.had_trouble() else "a failure without a cause"
        if match := self._good.fullmatch(body):
            return window.check_number(int(match["n"]))
        if window.was_flooded() and any(pattern.fullmatch(body) for pattern in self._crossed):
            return None
        return "bytes that no answer has"


class Change:
    """A set endpoint; each request has a unique number. The device refuses it."""

    name = "set_SubStreamInfo"

    def __init__(self, numbers):
        self._numbers = numbers

    @property
    def request(self):
        self.number = self._numbers.issue()
        return post("/set_SubStreamInfo", f"ucFD_SFrameRate=7&uiFD_SBitRate={self.number}")

    def judge(self, head, body, window):
        if head != STANDARD_HEAD:
            return "another head"
        if body == b'{"result": 0 }':
            return None if window.had_trouble() else "a failure without a cause"
        if body != b'{"result": 1 }':
            return "bytes that no answer has"
        # The answer to an earlier message, released by a flood, can arrive before the set is
        # processed.
        deadline = time.monotonic() + (_LATEST_SEC if window.was_flooded() else 0)
        while not self._numbers.arrived(self.number):
            if time.monotonic() >= deadline:
                return "a success that the device never saw"
            time.sleep(0.001)
        return None


class Import(Change):
    """The whole configuration, with a unique number."""

    name = "import_CfgFile"

    @property
    def request(self):
        self.number = self._numbers.issue()
        text = f'<VariCfgSec><stSubStream x="公交" uiFD_BitRate="{self.number}" /></VariCfgSec>'
        return post("/import_CfgFile", "strFD_CfgPara=" + quote_from_bytes(text.encode(), safe=""))


class File:
    """A file of the web root."""

    def __init__(self, uri, content):
        self.name, self.request, self._content = uri, get(uri), content

    def judge(self, head, body, _window):
        if not head.startswith(b"HTTP/1.1 200 OK\r\n"):
            return "no file"
        return None if body == self._content else "another content"


class Usage:
    """The only endpoint without an exchange."""

    name, request = "get_cpu_usage", get("/get_cpu_usage")
    _body = re.compile(rb'\{ "strFD_SSID": "new ", "result": (\d{1,2}|100) \}')

    def judge(self, head, body, _window):
        return None if head == STANDARD_HEAD and self._body.fullmatch(body) else "another reply"


def everything(numbers, files):
    queries = [Query(uri, good, failed) for uri, _, _, good, failed in _QUERIES]
    pages = [File(uri, content) for uri, content in files.items()]
    return [*queries, Change(numbers), Import(numbers), Usage(), *pages]
