"""Every query endpoint: the request datagram and the reply's chunks, for good and bad answers."""

import re

import pytest
from daemon import START, trace
from device import UNUSABLE, answer, query
from http_client import query_chunks

# One row per endpoint: URI, handler's word, section element in the query, a good section, the
# pieces for it, and the pieces when the query fails.
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
        assert reply.chunks == query_chunks(1, *good)
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
            assert reply.chunks == query_chunks(0, *failed), data

    def test_empty_section_gives_zeros(self, rig, name, request_section, section, good, failed):
        tag = re.match(r"<(\w+)", section)[1]
        assert rig.get(f"/get_{name}", answer(f"<{tag}/>")).chunks == query_chunks(1, *failed)

    def test_attribute_names_fit_in_any_case(
        self, rig, name, request_section, section, good, failed
    ):
        for change_case in (str.lower, str.upper):
            text = re.sub(r"(\w+)=", lambda match: change_case(match[0]), section)
            assert rig.get(f"/get_{name}", answer(text)).chunks == query_chunks(1, *good)

    def test_form_is_not_read(self, rig, name, request_section, section, good, failed):
        request = (
            b"POST /get_%s HTTP/1.1\r\nContent-Length: 14\r\n\r\nstrLanguage=CN" % name.encode()
        )
        assert rig.ask(request, answer(section)).chunks == query_chunks(1, *good)


def mirror(channels):
    return f"<stVideoMirror><stVideoMirrorPara>{channels}</stVideoMirrorPara></stVideoMirror>"


REJECTED = [
    (
        "two digits",
        "MirrorInfo",
        mirror("<VChn_10 ucFD_UpDown='1'/>"),
    ),
    (
        "no underscore",
        "MirrorInfo",
        mirror("<VChn ucFD_UpDown='1'/>"),
    ),
    (
        "no digit",
        "MirrorInfo",
        mirror("<VChn_ ucFD_UpDown='1'/>"),
    ),
    (
        "two underscores",
        "MainStreamInfo",
        "<stMainStream><stVideoPara><V_Chn_0 ucFD_FrameRate='1'/></stVideoPara></stMainStream>",
    ),
    (
        "a bad second channel",
        "MainStreamInfo",
        "<stMainStream><stVideoPara><VChn_0 ucFD_FrameRate='25'/><VChn_10/></stVideoPara></stMainStream>",
    ),
]


@pytest.mark.parametrize("sentence, name, section", REJECTED, ids=[row[0] for row in REJECTED])
def test_rejected_channel_name_copies_nothing(rig, sentence, name, section):
    failed = ENDPOINTS[NAMES.index(name)][4]
    assert rig.get(f"/get_{name}", answer(section)).chunks == query_chunks(0, *failed)


def test_version_reply_lacks_comma(rig):
    reply = rig.get("/get_VersionInfo", answer('<stVersion strAppVer="A" strKernelVer="K"/>'))
    assert reply.body == b'{ "strFD_AppVersion": "A" "strFD_KnlVersion": "A", "result": 1 }'
