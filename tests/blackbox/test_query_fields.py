"""How single values of a section appear in the query endpoints' replies."""

import pytest
from device import answer

FIELDS = [
    # The sentence, the endpoint, the section, and one chunk of the reply.
    (
        "small letters are not CN",
        "LangInfo",
        '<stDisplay strLanguage="cn"/>',
        '{ "strLanguage": "EN"',
    ),
    ("US is shown as EN", "LangInfo", '<stDisplay strLanguage="US"/>', '{ "strLanguage": "EN"'),
    ("no language is EN", "LangInfo", "<stDisplay/>", '{ "strLanguage": "EN"'),
    (
        "CNX is cut to three characters and is EN",
        "LangInfo",
        '<stDisplay strLanguage="CNX"/>',
        '{ "strLanguage": "EN"',
    ),
    (
        "300 in 8 bits is 44",
        "NetWModeInfo",
        '<stNetWorkMode ucFD_NetType="300"/>',
        '{ "ucFD_NetWType": "44"',
    ),
    (
        "-1 in 8 bits is 255",
        "NetWModeInfo",
        '<stNetWorkMode ucFD_NetType="-1"/>',
        '{ "ucFD_NetWType": "255"',
    ),
    (
        "text is 0",
        "NetWModeInfo",
        '<stNetWorkMode ucFD_NetType="three"/>',
        '{ "ucFD_NetWType": "0"',
    ),
    (
        "a number ends at its last digit",
        "NetWModeInfo",
        '<stNetWorkMode ucFD_NetType="3G"/>',
        '{ "ucFD_NetWType": "3"',
    ),
    (
        "of one name in two spellings the later counts",
        "NetWModeInfo",
        '<stNetWorkMode ucFD_NetType="3" UCFD_NETTYPE="4"/>',
        '{ "ucFD_NetWType": "4"',
    ),
    (
        "32 bits from 2^31 on show negative",
        "SubStreamInfo",
        '<stSubStream uiFD_BitRate="-2"/>',
        ', "uiFD_SBitRate": "-2"',
    ),
    ("65616 in 16 bits is 80", "VCmsInfo", '<stCMS usFD_Port="65616"/>', ', "usFD_Port": "80"'),
    ("65535 shows unsigned", "VCmsInfo", '<stCMS usFD_Port="65535"/>', ', "usFD_Port": "65535"'),
    (
        "an address in dots",
        "VCmsInfo",
        '<stCMS uiFD_IP="10.0.0.1"/>',
        ', "strFD_Address": "10.0.0.1"',
    ),
    (
        "an address in hexadecimal",
        "VCmsInfo",
        '<stCMS uiFD_IP="0x0100000A"/>',
        ', "strFD_Address": "10.0.0.1"',
    ),
    (
        "an address in decimal",
        "VCmsInfo",
        '<stCMS uiFD_IP="16777226"/>',
        ', "strFD_Address": "10.0.0.1"',
    ),
    (
        "an address that is none",
        "VCmsInfo",
        '<stCMS uiFD_IP="abc"/>',
        ', "strFD_Address": "0.0.0.0"',
    ),
    (
        "a group above 255 at the end",
        "VCmsInfo",
        '<stCMS uiFD_IP="1.2.3.999"/>',
        ', "strFD_Address": "255.255.255.255"',
    ),
    (
        "platform 1 is masked",
        "VCmsInfo",
        '<stCMS uiFD_IP="203.0.113.101"/>',
        ', "strFD_Address": "10.255.255.101"',
    ),
    (
        "platform 2 is masked",
        "VCmsInfo",
        '<stCMS uiFD_IP="203.0.113.102"/>',
        ', "strFD_Address": "10.255.255.102"',
    ),
    (
        "platform 3 is masked",
        "VCmsInfo",
        '<stCMS uiFD_IP="198.51.100.7"/>',
        ', "strFD_Address": "10.255.255.103"',
    ),
    (
        "platform 4 is masked",
        "VCmsInfo",
        '<stCMS uiFD_IP="198.51.100.8"/>',
        ', "strFD_Address": "10.255.255.104"',
    ),
    (
        "a placeholder stays",
        "VCmsInfo",
        '<stCMS uiFD_IP="10.255.255.101"/>',
        ', "strFD_Address": "10.255.255.101"',
    ),
    (
        "a domain is not masked",
        "VCmsInfo",
        '<stCMS ucFD_AddressType="2" strFD_Domain="203.0.113.101"/>',
        ', "strFD_Address": "203.0.113.101"',
    ),
    (
        "a domain has 63 characters",
        "VCmsInfo",
        f'<stCMS ucFD_AddressType="1" strFD_Domain="{"d" * 70}"/>',
        f', "strFD_Address": "{"d" * 63}"',
    ),
    (
        "type 256 is type 0",
        "VCmsInfo",
        '<stCMS ucFD_AddressType="256" uiFD_IP="10.0.0.1" strFD_Domain="d"/>',
        ', "strFD_Address": "10.0.0.1"',
    ),
    (
        "local address masked",
        "LocalNetInfo",
        '<stLocalEth0 uiFD_LocalIp="203.0.113.101"/>',
        '{ "strFD_LocalIp": "10.255.255.101"',
    ),
    (
        "mask masked",
        "LocalNetInfo",
        '<stLocalEth0 uiFD_NetMask="198.51.100.7"/>',
        ', "strFD_NetMask": "10.255.255.103"',
    ),
    (
        "gateway masked",
        "LocalNetInfo",
        '<stLocalEth0 uiFD_GateWay="198.51.100.8"/>',
        ', "strFD_GateWay": "10.255.255.104"',
    ),
    (
        "a MAC has 23 characters",
        "LocalNetInfo",
        f'<stLocalEth0 strFD_Mac="{"m" * 30}"/>',
        f', "strFD_Mac": "{"m" * 23}"',
    ),
    (
        "an SSID has 31 characters",
        "WifiInfo",
        f'<stWifi strFD_SSID="{"s" * 40}"/>',
        f', "strFD_SSID": "{"s" * 31}"',
    ),
    (
        "a Wi-Fi password has 31",
        "WifiInfo",
        f'<stWifi strFD_Passwd="{"s" * 40}"/>',
        f', "strFD_Passwd": "{"s" * 31}"',
    ),
    (
        "an APN has 31",
        "GNetInfo",
        f'<stMobileGNet strFD_Apn="{"a" * 40}"/>',
        f', "strFD_Apn": "{"a" * 31}"',
    ),
    (
        "a phone number has 23",
        "GNetInfo",
        f'<stMobileGNet strFD_PhoneNo="{"1" * 40}"/>',
        f', "strFD_PhoneNo": "{"1" * 23}"',
    ),
    (
        "a user name has 35",
        "GNetInfo",
        f'<stMobileGNet strFD_UserName="{"u" * 40}"/>',
        f', "strFD_UserName": "{"u" * 35}"',
    ),
    (
        "a password has 35",
        "GNetInfo",
        f'<stMobileGNet strFD_UserPasswd="{"p" * 40}"/>',
        f', "strFD_UserPasswd": "{"p" * 35}"',
    ),
    (
        "a version has 31",
        "VersionInfo",
        f'<stVersion strAppVer="{"v" * 40}"/>',
        f'{{ "strFD_AppVersion": "{"v" * 31}"',
    ),
    (
        "GBK text passes as it is",
        "GNetInfo",
        '<stMobileGNet strFD_UserName="公交"/>',
        ', "strFD_UserName": "公交"',
    ),
    (
        "entities are resolved",
        "GNetInfo",
        '<stMobileGNet strFD_Apn="&lt;&quot;&amp;"/>',
        ', "strFD_Apn": "<"&"',
    ),
    (
        "percent signs are plain text",
        "GNetInfo",
        '<stMobileGNet strFD_Apn="%s%n%d"/>',
        ', "strFD_Apn": "%s%n%d"',
    ),
    (
        "channel 1 is not read",
        "MirrorInfo",
        '<stVideoMirror><stVideoMirrorPara><VChn_1 ucFD_LeftRight="1"/><VChn_0 ucFD_LeftRight="1"/></stVideoMirrorPara></stVideoMirror>',
        '{ "strFD_LeftRight": "0"',
    ),
    (
        "no channel at all",
        "MirrorInfo",
        "<stVideoMirror><stVideoMirrorPara/></stVideoMirror>",
        '{ "strFD_LeftRight": "0"',
    ),
    (
        "channel 0 of two",
        "MainStreamInfo",
        '<stMainStream><stVideoPara><VChn_0 ucFD_FrameRate="25"/><VChn_1 ucFD_FrameRate="9"/></stVideoPara></stMainStream>',
        '{ "ucFD_FrameRate": "25"',
    ),
]


@pytest.mark.parametrize("sentence, name, section, chunk", FIELDS, ids=[row[0] for row in FIELDS])
def test_field_is_converted_to_its_width(rig, sentence, name, section, chunk):
    reply = rig.get(f"/get_{name}", answer(section))
    assert chunk.encode("gbk") in reply.chunks
    assert reply.chunks[-1] == b', "result": 1 }'
