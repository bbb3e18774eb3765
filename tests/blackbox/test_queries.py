"""Every query endpoint: the request datagram and the reply's chunks, with good and bad answers."""

import re
import time

import pytest
from daemon import START, clock, trace
from device import UNUSABLE, answer, query
from http_client import get


def attributes(**values):
    return " ".join(f'{name}="{value}"' for name, value in values.items())


def chunks(result, *pieces):
    return [*(piece.encode("gbk") for piece in pieces), b', "result": %d }' % result]


# One row per endpoint: URI, handler's word, section element asked for, a good section, the pieces
# for it, and the pieces when the query fails.
ENDPOINTS = [
    (
        "LangInfo",
        "<stDisplay>",
        '<stDisplay strLanguage="CN" ucFD_WinMax="1"/>',
        ['{ "strLanguage": "CN"'],
        ['{ "strLanguage": "EN"'],
    ),
    (
        "MirrorInfo",
        "<stVideoMirror>",
        '<stVideoMirror><stVideoMirrorPara><VChn_0 ucFD_LeftRight="1" ucFD_UpDown="2"/>'
        "</stVideoMirrorPara></stVideoMirror>",
        ['{ "strFD_LeftRight": "1"', ', "strFD_UpDown": "2"'],
        ['{ "strFD_LeftRight": "0"', ', "strFD_UpDown": "0"'],
    ),
    (
        "MainStreamInfo",
        '<stMainStream StartChn="0">',
        '<stMainStream ucFD_VideoMode="1"><stVideoPara><VChn_0 ucFD_FrameRate="25"'
        ' uiFD_BitRate="4096"/></stVideoPara></stMainStream>',
        ['{ "ucFD_FrameRate": "25"', ', "uiFD_BitRate": "4096"'],
        ['{ "ucFD_FrameRate": "0"', ', "uiFD_BitRate": "0"'],
    ),
    (
        "SubStreamInfo",
        "<stSubStream>",
        '<stSubStream ucFD_EncodeMode="3" ucFD_FrameRate="15" uiFD_BitRate="512"/>',
        ['{ "ucFD_SFrameRate": "15"', ', "uiFD_SBitRate": "512"'],
        ['{ "ucFD_SFrameRate": "0"', ', "uiFD_SBitRate": "0"'],
    ),
    (
        "NetWModeInfo",
        "<stNetWorkMode>",
        '<stNetWorkMode ucFD_NetType="3" ucFD_GNAuthMode="1"/>',
        ['{ "ucFD_NetWType": "3"'],
        ['{ "ucFD_NetWType": "0"'],
    ),
    (
        "VCmsInfo",
        "<stCMS>",
        '<stCMS ucFD_AddressType="1" uiFD_IP="192.0.2.1" strFD_Domain="cms.example" usFD_Port="6608"/>',
        ['{ "ucFD_AddressType": "1"', ', "strFD_Address": "cms.example"', ', "usFD_Port": "6608"'],
        ['{ "ucFD_AddressType": "0"', ', "strFD_Address": "0.0.0.0"', ', "usFD_Port": "0"'],
    ),
    (
        "WifiInfo",
        "<stWifi>",
        '<stWifi ucFD_WorkMode="1" strFD_SSID="bus" strFD_Passwd="secret" ucFD_AuthMode="3"'
        ' ucFD_CryptType="4" ucFD_DhcpEnableFlag="1"/>',
        [
            '{ "ucFD_WorkMode": "1"',
            ', "strFD_SSID": "bus"',
            ', "strFD_Passwd": "secret"',
            ', "ucFD_AuthMode": "3"',
            ', "ucFD_CryptType": "4"',
            ', "ucFD_DhcpEnableFlag": "1"',
        ],
        [
            '{ "ucFD_WorkMode": "0"',
            ', "strFD_SSID": ""',
            ', "strFD_Passwd": ""',
            ', "ucFD_AuthMode": "0"',
            ', "ucFD_CryptType": "0"',
            ', "ucFD_DhcpEnableFlag": "0"',
        ],
    ),
    (
        "GNetInfo",
        "<stMobileGNet>",
        '<stMobileGNet ucFD_NetType="4" strFD_Apn="cmnet" strFD_PhoneNo="*99#"'
        ' strFD_UserName="u" strFD_UserPasswd="p"/>',
        [
            '{ "ucFD_NetType": "4"',
            ', "strFD_Apn": "cmnet"',
            ', "strFD_PhoneNo": "*99#"',
            ', "strFD_UserName": "u"',
            ', "strFD_UserPasswd": "p"',
        ],
        [
            '{ "ucFD_NetType": "0"',
            ', "strFD_Apn": ""',
            ', "strFD_PhoneNo": ""',
            ', "strFD_UserName": ""',
            ', "strFD_UserPasswd": ""',
        ],
    ),
    (
        "LocalNetInfo",
        "<stLocalEth0>",
        '<stLocalEth0 uiFD_LocalIp="192.168.1.100" uiFD_NetMask="255.255.255.0"'
        ' uiFD_GateWay="192.168.1.1" strFD_Mac="00:11:22:33:44:55"/>',
        [
            '{ "strFD_LocalIp": "192.168.1.100"',
            ', "strFD_NetMask": "255.255.255.0"',
            ', "strFD_GateWay": "192.168.1.1"',
            ', "strFD_Mac": "00:11:22:33:44:55"',
        ],
        [
            '{ "strFD_LocalIp": "0.0.0.0"',
            ', "strFD_NetMask": "0.0.0.0"',
            ', "strFD_GateWay": "0.0.0.0"',
            ', "strFD_Mac": ""',
        ],
    ),
    (
        "VersionInfo",
        "<stVersion />",
        '<stVersion VideoCnt="4" strKernelVer="4.9" strAppVer="V1.2.3"/>',
        ['{ "strFD_AppVersion": "V1.2.3"', ' "strFD_KnlVersion": "V1.2.3"'],
        ['{ "strFD_AppVersion": ""', ' "strFD_KnlVersion": ""'],
    ),
]
NAMES = [row[0] for row in ENDPOINTS]


@pytest.mark.parametrize("name, request_section, section, good, failed", ENDPOINTS, ids=NAMES)
class TestEveryQuery:
    def test_good_reply_gives_every_piece(self, rig, name, request_section, section, good, failed):
        reply = rig.get(f"/get_{name}", answer(section))
        assert reply.chunks == chunks(1, *good)
        assert rig.device.requests == [query(request_section)]

    def test_traces_at_entry_and_exit(self, rig, name, request_section, section, good, failed):
        rig.get(f"/get_{name}?time=1", answer(section))
        handler, transaction = trace(f"get_{name}"), trace(f"get{name}FromNet")
        rig.daemon.stdout.expect(
            START,
            handler,
            transaction,
            "FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:6000.",
            "CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS 127.0.0.1], "
            f"port[6000 VS 6000],len[{len(answer(section))}].",
            "FUN:GetParaInfoByCmd, LINE:477.",
            transaction,
            handler,
        )

    def test_unusable_reply_gives_zeros(self, rig, name, request_section, section, good, failed):
        unusable = (
            UNUSABLE,
            answer(""),
            answer(section).replace(b"VariCfgSec", b"Other"),
            answer(section).replace(b"Action", b"action"),
        )
        for data in unusable:
            reply = rig.get(f"/get_{name}", data)
            assert reply.chunks == chunks(0, *failed), data

    def test_empty_section_gives_zeros(self, rig, name, request_section, section, good, failed):
        tag = re.match(r"<(\w+)", section)[1]
        assert rig.get(f"/get_{name}", answer(f"<{tag}/>")).chunks == chunks(1, *failed)

    def test_attribute_names_fit_in_any_case(self, rig, name, request_section, section, good, failed):
        for change_case in (str.lower, str.upper):
            text = re.sub(r"(\w+)=", lambda match: change_case(match[0]), section)
            assert rig.get(f"/get_{name}", answer(text)).chunks == chunks(1, *good)

    def test_form_is_not_read(self, rig, name, request_section, section, good, failed):
        request = b"POST /get_%s HTTP/1.1\r\nContent-Length: 14\r\n\r\nstrLanguage=CN" % name.encode()
        assert rig.ask(request, answer(section)).chunks == chunks(1, *good)


FIELDS = [
    # The sentence, the endpoint, the section, and one chunk of the reply.
    ("small letters are not CN", "LangInfo", '<stDisplay strLanguage="cn"/>', '{ "strLanguage": "EN"'),
    ("US is shown as EN", "LangInfo", '<stDisplay strLanguage="US"/>', '{ "strLanguage": "EN"'),
    ("no language is EN", "LangInfo", "<stDisplay/>", '{ "strLanguage": "EN"'),
    ("CNX is cut to three characters and is EN", "LangInfo", '<stDisplay strLanguage="CNX"/>', '{ "strLanguage": "EN"'),
    ("300 in 8 bits is 44", "NetWModeInfo", '<stNetWorkMode ucFD_NetType="300"/>', '{ "ucFD_NetWType": "44"'),
    ("-1 in 8 bits is 255", "NetWModeInfo", '<stNetWorkMode ucFD_NetType="-1"/>', '{ "ucFD_NetWType": "255"'),
    ("text is 0", "NetWModeInfo", '<stNetWorkMode ucFD_NetType="three"/>', '{ "ucFD_NetWType": "0"'),
    ("a number ends at its last digit", "NetWModeInfo", '<stNetWorkMode ucFD_NetType="3G"/>', '{ "ucFD_NetWType": "3"'),
    ("of one name in two spellings the later counts", "NetWModeInfo", '<stNetWorkMode ucFD_NetType="3" UCFD_NETTYPE="4"/>', '{ "ucFD_NetWType": "4"'),
    ("32 bits from 2^31 on show negative", "SubStreamInfo", '<stSubStream uiFD_BitRate="-2"/>', ', "uiFD_SBitRate": "-2"'),
    ("65616 in 16 bits is 80", "VCmsInfo", '<stCMS usFD_Port="65616"/>', ', "usFD_Port": "80"'),
    ("65535 shows unsigned", "VCmsInfo", '<stCMS usFD_Port="65535"/>', ', "usFD_Port": "65535"'),
    ("an address in dots", "VCmsInfo", '<stCMS uiFD_IP="10.0.0.1"/>', ', "strFD_Address": "10.0.0.1"'),
    ("an address in hexadecimal", "VCmsInfo", '<stCMS uiFD_IP="0x0100000A"/>', ', "strFD_Address": "10.0.0.1"'),
    ("an address in decimal", "VCmsInfo", '<stCMS uiFD_IP="16777226"/>', ', "strFD_Address": "10.0.0.1"'),
    ("an address that is none", "VCmsInfo", '<stCMS uiFD_IP="abc"/>', ', "strFD_Address": "0.0.0.0"'),
    ("a group above 255 at the end", "VCmsInfo", '<stCMS uiFD_IP="1.2.3.999"/>', ', "strFD_Address": "255.255.255.255"'),
    ("platform 1 is masked", "VCmsInfo", '<stCMS uiFD_IP="203.0.113.101"/>', ', "strFD_Address": "10.255.255.101"'),
    ("platform 2 is masked", "VCmsInfo", '<stCMS uiFD_IP="203.0.113.102"/>', ', "strFD_Address": "10.255.255.102"'),
    ("platform 3 is masked", "VCmsInfo", '<stCMS uiFD_IP="198.51.100.7"/>', ', "strFD_Address": "10.255.255.103"'),
    ("platform 4 is masked", "VCmsInfo", '<stCMS uiFD_IP="198.51.100.8"/>', ', "strFD_Address": "10.255.255.104"'),
    ("a placeholder stays", "VCmsInfo", '<stCMS uiFD_IP="10.255.255.101"/>', ', "strFD_Address": "10.255.255.101"'),
    ("a domain is not masked", "VCmsInfo", '<stCMS ucFD_AddressType="2" strFD_Domain="203.0.113.101"/>', ', "strFD_Address": "203.0.113.101"'),
    ("a domain has 63 characters", "VCmsInfo", f'<stCMS ucFD_AddressType="1" strFD_Domain="{"d" * 70}"/>', f', "strFD_Address": "{"d" * 63}"'),
    ("type 256 is type 0", "VCmsInfo", '<stCMS ucFD_AddressType="256" uiFD_IP="10.0.0.1" strFD_Domain="d"/>', ', "strFD_Address": "10.0.0.1"'),
    ("local address masked", "LocalNetInfo", '<stLocalEth0 uiFD_LocalIp="203.0.113.101"/>', '{ "strFD_LocalIp": "10.255.255.101"'),
    ("mask masked", "LocalNetInfo", '<stLocalEth0 uiFD_NetMask="198.51.100.7"/>', ', "strFD_NetMask": "10.255.255.103"'),
    ("gateway masked", "LocalNetInfo", '<stLocalEth0 uiFD_GateWay="198.51.100.8"/>', ', "strFD_GateWay": "10.255.255.104"'),
    ("a MAC has 23 characters", "LocalNetInfo", f'<stLocalEth0 strFD_Mac="{"m" * 30}"/>', f', "strFD_Mac": "{"m" * 23}"'),
    ("an SSID has 31 characters", "WifiInfo", f'<stWifi strFD_SSID="{"s" * 40}"/>', f', "strFD_SSID": "{"s" * 31}"'),
    ("a Wi-Fi password has 31", "WifiInfo", f'<stWifi strFD_Passwd="{"s" * 40}"/>', f', "strFD_Passwd": "{"s" * 31}"'),
    ("an APN has 31", "GNetInfo", f'<stMobileGNet strFD_Apn="{"a" * 40}"/>', f', "strFD_Apn": "{"a" * 31}"'),
    ("a phone number has 23", "GNetInfo", f'<stMobileGNet strFD_PhoneNo="{"1" * 40}"/>', f', "strFD_PhoneNo": "{"1" * 23}"'),
    ("a user name has 35", "GNetInfo", f'<stMobileGNet strFD_UserName="{"u" * 40}"/>', f', "strFD_UserName": "{"u" * 35}"'),
    ("a password has 35", "GNetInfo", f'<stMobileGNet strFD_UserPasswd="{"p" * 40}"/>', f', "strFD_UserPasswd": "{"p" * 35}"'),
    ("a version has 31", "VersionInfo", f'<stVersion strAppVer="{"v" * 40}"/>', f'{{ "strFD_AppVersion": "{"v" * 31}"'),
    ("GBK text passes as it is", "GNetInfo", '<stMobileGNet strFD_UserName="公交"/>', ', "strFD_UserName": "公交"'),
    ("entities are resolved", "GNetInfo", '<stMobileGNet strFD_Apn="&lt;&quot;&amp;"/>', ', "strFD_Apn": "<"&"'),
    ("percent signs are plain text", "GNetInfo", '<stMobileGNet strFD_Apn="%s%n%d"/>', ', "strFD_Apn": "%s%n%d"'),
    ("channel 1 is not read", "MirrorInfo", '<stVideoMirror><stVideoMirrorPara><VChn_1 ucFD_LeftRight="1"/><VChn_0 ucFD_LeftRight="1"/></stVideoMirrorPara></stVideoMirror>', '{ "strFD_LeftRight": "0"'),
    ("no channel at all", "MirrorInfo", "<stVideoMirror><stVideoMirrorPara/></stVideoMirror>", '{ "strFD_LeftRight": "0"'),
    ("channel 0 of two", "MainStreamInfo", '<stMainStream><stVideoPara><VChn_0 ucFD_FrameRate="25"/><VChn_1 ucFD_FrameRate="9"/></stVideoPara></stMainStream>', '{ "ucFD_FrameRate": "25"'),
]


@pytest.mark.parametrize("sentence, name, section, chunk", FIELDS, ids=[row[0] for row in FIELDS])
def test_field_is_converted_to_its_width(rig, sentence, name, section, chunk):
    reply = rig.get(f"/get_{name}", answer(section))
    assert chunk.encode("gbk") in reply.chunks
    assert reply.chunks[-1] == b', "result": 1 }'


REJECTED = [
    ("two digits", "MirrorInfo", "<stVideoMirror><stVideoMirrorPara><VChn_10 ucFD_UpDown='1'/></stVideoMirrorPara></stVideoMirror>"),
    ("no underscore", "MirrorInfo", "<stVideoMirror><stVideoMirrorPara><VChn ucFD_UpDown='1'/></stVideoMirrorPara></stVideoMirror>"),
    ("no digit", "MirrorInfo", "<stVideoMirror><stVideoMirrorPara><VChn_ ucFD_UpDown='1'/></stVideoMirrorPara></stVideoMirror>"),
    ("two underscores", "MainStreamInfo", "<stMainStream><stVideoPara><V_Chn_0 ucFD_FrameRate='1'/></stVideoPara></stMainStream>"),
    ("a bad second channel", "MainStreamInfo", "<stMainStream><stVideoPara><VChn_0 ucFD_FrameRate='25'/><VChn_10/></stVideoPara></stMainStream>"),
]


@pytest.mark.parametrize("sentence, name, section", REJECTED, ids=[row[0] for row in REJECTED])
def test_rejected_channel_name_copies_nothing(rig, sentence, name, section):
    failed = ENDPOINTS[NAMES.index(name)][4]
    assert rig.get(f"/get_{name}", answer(section)).chunks == chunks(0, *failed)


def test_version_reply_lacks_comma(rig):
    reply = rig.get("/get_VersionInfo", answer('<stVersion strAppVer="A" strKernelVer="K"/>'))
    assert reply.body == b'{ "strFD_AppVersion": "A" "strFD_KnlVersion": "A", "result": 1 }'


class TestBaseInfo:
    PIECES = (
        rb'\{ "strFD_DeviceNo": "(.*)"',
        rb', "ucFD_TimeZone": "(\d+)" ',
        rb', "ucFD_GpsSTFlag": "(\d+)"',
        rb', "strFD_CurTime": "(.*)"',
        rb', "result": ([01]) \}',
    )

    def values(self, reply):
        assert len(reply.chunks) == len(self.PIECES)
        return [
            re.fullmatch(pattern, chunk)[1].decode()
            for pattern, chunk in zip(self.PIECES, reply.chunks)
        ]

    def ask(self, rig, *steps):
        """The values; the time must be the daemon's own clock in its zone (8 hours east)."""
        before = clock()
        values = self.values(rig.get("/get_BaseInfo", *steps))
        moments = range(before, clock() + 1)
        texts = [time.strftime("%Y-%m-%d %H:%M:%S", time.gmtime(t + 8 * 3600)) for t in moments]
        assert values.pop(3) in texts
        return values

    def test_shows_the_clock_of_the_service_and_not_of_the_device(self, rig):
        section = "<stBaseInfo " + attributes(
            strFD_DeviceNo="A1234", ucFD_TimeZone=8, ucFD_GpsSTFlag=1, strFD_CurTime="1999-01-01"
        )
        assert self.ask(rig, answer(section + "/>")) == ["A1234", "8", "1", "1"]
        assert rig.device.requests == [query("<stBaseInfo>")]

    def test_failed_query_still_shows_the_time(self, rig):
        assert self.ask(rig, UNUSABLE) == ["", "0", "0", "0"]

    def test_section_without_a_number_imports(self, rig):
        assert self.ask(rig, answer("<stBaseInfo ucFD_TimeZone='9'/>")) == ["", "9", "0", "1"]

    @pytest.mark.parametrize("number", ["12345", "123456789012"])
    def test_device_number_of_5_and_12_characters_is_valid(self, rig, number):
        section = f"<stBaseInfo strFD_DeviceNo='{number}' ucFD_TimeZone='9'/>"
        assert self.ask(rig, answer(section)) == [number, "9", "0", "1"]

    @pytest.mark.parametrize("number", ["", "1234", "1234567890123"])
    def test_device_number_of_another_length_rejects_the_section(self, rig, number):
        section = f"<stBaseInfo ucFD_TimeZone='9' strFD_DeviceNo='{number}'/>"
        assert self.ask(rig, answer(section)) == ["", "0", "0", "0"]
        rig.daemon.stdout.expect_in_order(
            f"CConfig_Task::Import_stBaseInfo, invalid device id:{number}."
        )


class TestLockOfPassword:
    QUERY = query("<stLockOfPassword>")
    OFFSET = 28800

    def ask(self, rig, count, lock_time, *steps):
        """Count, time and result shown; the moments before and after the request."""
        section = f"<stLockOfPassword ucFD_ErrorCount='{count}' uiFD_LockTime='{lock_time}'/>"
        before = clock()
        reply = rig.get("/get_LockOfPassword", answer(section), *steps)
        match = re.fullmatch(
            rb'\{ "ucFD_ErrorCount": "(\d+)"\|, "time": "(-?\d+)" \|, "result": (\d) \}',
            b"|".join(reply.chunks),
        )
        return (*(int(text) for text in match.groups()), before, clock())

    @pytest.mark.parametrize("count, ago", [(5, 0), (5, 3500), (255, 10), (4, 3600), (4, 100000), (0, 7200)])
    def test_count_and_elapsed_time_while_locked_or_below_five(self, rig, count, ago):
        lock_time = clock() - self.OFFSET - ago
        shown, elapsed, result, before, after = self.ask(rig, count, lock_time)
        assert (shown, result) == (count, 1)
        assert before - self.OFFSET - lock_time <= elapsed <= after - self.OFFSET - lock_time
        assert rig.device.requests == [self.QUERY]

    @pytest.mark.parametrize("count, ago", [(5, 3600), (6, 100000), (255, 4000)])
    def test_lock_over_resets_the_count_on_the_device_and_shows_the_lock_time(self, rig, count, ago):
        lock_time = clock() - self.OFFSET - ago
        shown, stored, result, _, _ = self.ask(rig, count, lock_time)
        assert (shown, stored, result) == (0, lock_time, 1)
        reset = (
            '<VariCfgSec Action="DEVICE_SET"><stLockOfPassword ucFD_ErrorCount="0"'
            f' uiFD_LockTime="{lock_time}" /></VariCfgSec>'
        )
        assert rig.device.requests == [self.QUERY, reset.encode()]

    def test_failed_reset_does_not_change_the_reply(self, rig):
        lock_time = clock() - self.OFFSET - 5000
        assert self.ask(rig, 5, lock_time, UNUSABLE)[:3] == (0, lock_time, 1)

    def test_lock_time_in_the_future_counts_as_long_over(self, rig):
        lock_time = clock()
        shown, stored, result, _, _ = self.ask(rig, 5, lock_time)
        assert (shown, stored, result) == (0, lock_time, 1)

    def test_failed_query_shows_the_offset_clock(self, rig):
        before = clock()
        reply = rig.get("/get_LockOfPassword", UNUSABLE)
        now = range(before, clock() + 1)
        expected = [chunks(0, '{ "ucFD_ErrorCount": "0"', f', "time": "{t - self.OFFSET}" ') for t in now]
        assert reply.chunks in expected
        assert rig.device.requests == [self.QUERY]


class TestWifi:
    STATION = answer(
        '<stWifi ucFD_WorkMode="2" strFD_SSID="st" strFD_Passwd="stpw" ucFD_AuthMode="1"'
        ' ucFD_CryptType="2" ucFD_DhcpEnableFlag="1" uiFD_IP="10.0.0.1"/>'
    )
    POINT = answer(
        f'<stWifiAp strFD_SSID="{"a" * 40}" strFD_Passwd="appw" ucFD_AuthMode="3"'
        ' ucFD_CryptType="4" ucFD_DhcpEnableFlag="0"/>'
    )
    REQUESTS = [query("<stWifi>"), query("<stWifiAp>")]

    def pieces(self, ssid, password, auth, crypt, dhcp):
        return (
            '{ "ucFD_WorkMode": "2"',
            f', "strFD_SSID": "{ssid}"',
            f', "strFD_Passwd": "{password}"',
            f', "ucFD_AuthMode": "{auth}"',
            f', "ucFD_CryptType": "{crypt}"',
            f', "ucFD_DhcpEnableFlag": "{dhcp}"',
        )

    def test_access_point_values_replace_those_of_the_station(self, rig):
        reply = rig.get("/get_WifiInfo", self.STATION, self.POINT)
        assert reply.chunks == chunks(1, *self.pieces("a" * 31, "appw", 3, 4, 0))
        assert rig.device.requests == self.REQUESTS
        rig.daemon.stdout.expect_in_order(
            f"-------------------ap xml:{self.POINT.decode()}.",
            f"-------------------AP ssid:{'a' * 31}.",
        )

    @pytest.mark.parametrize("data", [UNUSABLE, answer(""), b""])
    def test_failed_access_point_query_leaves_the_station_values(self, rig, data):
        reply = rig.get("/get_WifiInfo", self.STATION, data)
        assert reply.chunks == chunks(0, *self.pieces("st", "stpw", 1, 2, 1))
        assert rig.device.requests == self.REQUESTS

    def test_other_modes_ask_for_the_station_only(self, rig):
        for mode in ("0", "1", "3", "-2"):
            station = self.STATION.replace(b'Mode="2" strFD', b'Mode="%s" strFD' % mode.encode())
            assert b'"strFD_SSID": "st"' in rig.get("/get_WifiInfo", station).body
            assert rig.device.requests == self.REQUESTS[:1]

    def test_mode_258_is_mode_2(self, rig):
        station = self.STATION.replace(b'Mode="2" strFD', b'Mode="258" strFD')
        reply = rig.get("/get_WifiInfo", station, self.POINT)
        assert reply.chunks == chunks(1, *self.pieces("a" * 31, "appw", 3, 4, 0))
