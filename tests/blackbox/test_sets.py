"""Every set endpoint: the exact datagram that a form becomes.

The device answers with Result 1 here, which ends a set without the restart: what the forms become
is the subject. A form value has at most 63 characters unless said otherwise; how a longer, empty or
missing one counts differs between the endpoints.
"""

import pytest
from daemon import START, trace
from device import REFUSED, change

LONG = "9" * 64


def mirror(left_right, up_down):
    return (
        f'<stVideoMirror><stVideoMirrorPara><VChn_0 ucFD_LeftRight="{left_right}"'
        f' ucFD_UpDown="{up_down}"/></stVideoMirrorPara></stVideoMirror>'
    )


def base(number, zone, gps, clock):
    return (
        f'<stBaseInfo strFD_DeviceNo="{number}" ucFD_TimeZone="{zone}"'
        f' ucFD_GpsSTFlag="{gps}" strFD_CurTime="{clock}" />'
    )


def main_stream(frames, bits):
    return (
        f'<stMainStream StartChn="0"><stVideoPara><VChn_0 ucFD_FrameRate="{frames}"'
        f' uiFD_BitRate="{bits}" /></stVideoPara></stMainStream>'
    )


def sub_stream(frames, bits):
    return f'<stSubStream ucFD_EncodeMode="3" ucFD_FrameRate="{frames}" uiFD_BitRate="{bits}" />'


def net_mode(kind):
    return f'<stNetWorkMode ucFD_NetType="{kind}"/>'


def cms_domain(kind, domain, port):
    return f'<stCMS ucFD_AddressType="{kind}" strFD_Domain="{domain}" usFD_Port="{port}"/>'


def cms_address(address, port):
    return f'<stCMS ucFD_AddressType="0" uiFD_IP="{address}" usFD_Port="{port}"/>'


def station(mode, ssid, password, auth, crypt):
    return (
        f'<stWifi ucFD_WorkMode="{mode}" strFD_SSID="{ssid}" strFD_Passwd="{password}"'
        f' ucFD_AuthMode="{auth}" ucFD_CryptType="{crypt}"/>'
    )


def mobile(kind, apn, phone, user, password):
    return (
        f'<stMobileGNet ucFD_NetType="{kind}" strFD_Apn="{apn}" strFD_PhoneNo="{phone}"'
        f' strFD_UserName="{user}" strFD_UserPasswd="{password}"/>'
    )


def local(address, mask, gateway, mac):
    return (
        f'<stLocalEth0 uiFD_LocalIp="{address}" uiFD_NetMask="{mask}"'
        f' uiFD_GateWay="{gateway}" strFD_Mac="{mac}"/>'
    )


def lock(count, seconds):
    return f'<stLockOfPassword ucFD_ErrorCount="{count}" uiFD_LockTime="{seconds}" />'


NOBODY = "255.255.255.255"

# URI, sentence, form, section of the one datagram (None: none is sent).
FORMS = {
    "/set_LangInfo": [
        ("CN is Chinese", "strLanguage=CN", '<stDisplay strLanguage="CN" />'),
        ("EN is US", "strLanguage=EN", '<stDisplay strLanguage="US" />'),
        ("small letters are US", "strLanguage=cn", '<stDisplay strLanguage="US" />'),
        ("text behind CN is US", "strLanguage=CN+", '<stDisplay strLanguage="US" />'),
        ("63 characters are US", f"strLanguage={LONG[1:]}", '<stDisplay strLanguage="US" />'),
        ("URL-encoded", "strLanguage=%43%4e", '<stDisplay strLanguage="CN" />'),
        ("name in another case", "STRlanguage=CN", '<stDisplay strLanguage="CN" />'),
        ("the first of two", "strLanguage=CN&strLanguage=EN", '<stDisplay strLanguage="CN" />'),
        ("behind other variables", "a=1&&=&strLanguage=CN", '<stDisplay strLanguage="CN" />'),
        ("missing sends nothing", "", None),
        ("empty sends nothing", "strLanguage=", None),
        ("another variable sends nothing", "xstrLanguage=CN", None),
        ("64 characters send nothing", f"strLanguage={LONG}", None),
        ("a broken escape sends nothing", "strLanguage=CN%4", None),
    ],
    "/set_BaseInfo": [
        (
            "full",
            "strFD_DeviceNo=12345&ucFD_TimeZone=8&ucFD_GpsSTFlag=1&strFD_CurTime=2024-01-02+03%3A04%3A05",
            base("12345", 8, 1, "2024-01-02 03:04:05"),
        ),
        ("empty form", "", base("", 0, 0, "")),
        ("no device number", "ucFD_TimeZone=8&ucFD_GpsSTFlag=1&strFD_CurTime=t", base("", 8, 1, "t")),
        ("no time zone", "strFD_DeviceNo=1&ucFD_GpsSTFlag=1&strFD_CurTime=t", base("1", 0, 1, "t")),
        ("no flag", "strFD_DeviceNo=1&ucFD_TimeZone=8&strFD_CurTime=t", base("1", 8, 0, "t")),
        ("no time", "strFD_DeviceNo=1&ucFD_TimeZone=8&ucFD_GpsSTFlag=1", base("1", 8, 1, "")),
        ("empty values", "strFD_DeviceNo=&ucFD_TimeZone=&ucFD_GpsSTFlag=&strFD_CurTime=", base("", 0, 0, "")),
        ("20 characters of number", f"strFD_DeviceNo={'12345' * 4}", base("123451234512345", 0, 0, "")),
        ("15 characters of number", "strFD_DeviceNo=123451234512345", base("123451234512345", 0, 0, "")),
        ("number is not checked", "strFD_DeviceNo=1", base("1", 0, 0, "")),
        ("zone of 64 characters is missing", f"ucFD_TimeZone={'0' * 63}8", base("", 0, 0, "")),
        ("zone of 63 characters", f"ucFD_TimeZone={'0' * 62}8", base("", 8, 0, "")),
        ("zone above 8 bits", "ucFD_TimeZone=300", base("", 44, 0, "")),
        ("negative zone", "ucFD_TimeZone=-1", base("", 255, 0, "")),
        ("zone without a number", "ucFD_TimeZone=east", base("", 0, 0, "")),
        ("flag above 1", "ucFD_GpsSTFlag=7", base("", 0, 1, "")),
        ("flag 256", "ucFD_GpsSTFlag=256", base("", 0, 1, "")),
        ("negative flag", "ucFD_GpsSTFlag=-1", base("", 0, 0, "")),
        ("flag of 64 characters is missing", f"ucFD_GpsSTFlag={'0' * 63}1", base("", 0, 0, "")),
        ("time of 64 characters is cut", f"strFD_CurTime={LONG}", base("", 0, 0, LONG[1:])),
        ("names in capitals", "STRFD_DEVICENO=A&UCFD_TIMEZONE=1&UCFD_GPSSTFLAG=1&STRFD_CURTIME=t", base("A", 1, 1, "t")),
        ("nothing is escaped", "strFD_DeviceNo=%22%3C%26%3E&strFD_CurTime=%25s%25n", base('"<&>', 0, 0, "%s%n")),
    ],
    "/set_DeviceNo": [
        ("full", "strFD_DeviceNo=12345", '<stBaseInfo strFD_DeviceNo="12345"/>'),
        ("missing", "", '<stBaseInfo strFD_DeviceNo=""/>'),
        ("empty", "strFD_DeviceNo=", '<stBaseInfo strFD_DeviceNo=""/>'),
        ("20 characters are cut to 15", f"strFD_DeviceNo={'abcde' * 4}", f'<stBaseInfo strFD_DeviceNo="{"abcde" * 3}"/>'),
        ("URL-encoded", "strFD_DeviceNo=a+b%2Bc", '<stBaseInfo strFD_DeviceNo="a b+c"/>'),
        ("name in another case", "strfd_deviceno=1", '<stBaseInfo strFD_DeviceNo="1"/>'),
    ],
    "/set_MirrorInfo": [
        ("full", "strFD_UpDown=1&strFD_LeftRight=0", mirror(0, 1)),
        ("both", "strFD_UpDown=1-0&strFD_LeftRight=1-0", mirror(1, 1)),
        ("only the piece before the dash", "strFD_UpDown=0-1&strFD_LeftRight=1-0", mirror(1, 0)),
        ("above 1 is 1", "strFD_UpDown=2&strFD_LeftRight=300", mirror(1, 1)),
        ("nothing before the dash is 0", "strFD_UpDown=-1&strFD_LeftRight=-", mirror(0, 0)),
        ("empty values", "strFD_UpDown=&strFD_LeftRight=", mirror(0, 0)),
        ("empty form", "", mirror(0, 0)),
        ("no up-down", "strFD_LeftRight=1", mirror(1, 0)),
        ("no left-right", "strFD_UpDown=1", mirror(0, 1)),
        ("an over-long value is cut and counts", f"strFD_UpDown=1-{'0' * 70}&strFD_LeftRight={'0' * 63}1", mirror(0, 1)),
        ("a value of 63 characters", f"strFD_UpDown={'0' * 62}1", mirror(0, 1)),
        ("names in small letters", "strfd_updown=1&strfd_leftright=1", mirror(1, 1)),
        ("URL-encoded", "strFD_UpDown=%31%2d0", mirror(0, 1)),
        ("text", "strFD_UpDown=up", mirror(0, 0)),
    ],
    "/set_MainStreamInfo": [
        ("full", "ucFD_FrameRate=25&uiFD_BitRate=4096", main_stream(25, 4096)),
        ("empty form", "", main_stream(0, 0)),
        ("no frame rate", "uiFD_BitRate=4096", main_stream(0, 4096)),
        ("no bit rate", "ucFD_FrameRate=25", main_stream(25, 0)),
        ("empty values", "ucFD_FrameRate=&uiFD_BitRate=", main_stream(0, 0)),
        ("frame rate above 8 bits", "ucFD_FrameRate=300", main_stream(44, 0)),
        ("a negative bit rate", "uiFD_BitRate=-1", main_stream(0, -1)),
        ("the largest bit rate", "uiFD_BitRate=2147483647", main_stream(0, 2147483647)),
        ("64 characters are missing", f"ucFD_FrameRate={'0' * 63}9&uiFD_BitRate={'0' * 63}9", main_stream(0, 0)),
        ("63 characters", f"ucFD_FrameRate={'0' * 62}9&uiFD_BitRate={'0' * 62}9", main_stream(9, 9)),
        ("URL-encoded", "ucFD_FrameRate=%32%35&uiFD_BitRate=+7", main_stream(25, 7)),
        ("names in capitals", "UCFD_FRAMERATE=1&UIFD_BITRATE=2", main_stream(1, 2)),
    ],
    "/set_SubStreamInfo": [
        ("full", "ucFD_SFrameRate=15&uiFD_SBitRate=512", sub_stream(15, 512)),
        ("empty form", "", sub_stream(0, 0)),
        ("no frame rate", "uiFD_SBitRate=512", sub_stream(0, 512)),
        ("no bit rate", "ucFD_SFrameRate=15", sub_stream(15, 0)),
        ("names without the S are other names", "ucFD_FrameRate=15&uiFD_BitRate=512", sub_stream(0, 0)),
        ("frame rate above 8 bits", "ucFD_SFrameRate=-1", sub_stream(255, 0)),
        ("empty values", "ucFD_SFrameRate=&uiFD_SBitRate=", sub_stream(0, 0)),
        ("64 characters are missing", f"ucFD_SFrameRate={'0' * 63}9&uiFD_SBitRate={'0' * 63}9", sub_stream(0, 0)),
        ("63 characters", f"ucFD_SFrameRate={'0' * 62}9&uiFD_SBitRate={'0' * 62}9", sub_stream(9, 9)),
        ("encode mode is not taken", "ucFD_EncodeMode=1&ucFD_SFrameRate=1", sub_stream(1, 0)),
        ("URL-encoded", "ucFD_SFrameRate=%31&uiFD_SBitRate=%32", sub_stream(1, 2)),
        ("names in capitals", "UCFD_SFRAMERATE=1&UIFD_SBITRATE=2", sub_stream(1, 2)),
    ],
    "/set_NetWModeInfo": [
        ("full", "ucFD_NetWType=3", net_mode(3)),
        ("missing", "", net_mode(0)),
        ("empty", "ucFD_NetWType=", net_mode(0)),
        ("the name without W is another name", "ucFD_NetType=3", net_mode(0)),
        ("above 8 bits", "ucFD_NetWType=260", net_mode(4)),
        ("over-long is cut and counts", f"ucFD_NetWType={'0' * 62}31", net_mode(3)),
        ("text", "ucFD_NetWType=G", net_mode(0)),
        ("URL-encoded", "ucFD_NetWType=%35", net_mode(5)),
        ("name in capitals", "UCFD_NETWTYPE=2", net_mode(2)),
        ("a broken escape leaves what stands before it", "ucFD_NetWType=3%", net_mode(3)),
    ],
    "/set_VCmsInfo": [
        ("domain", "ucFD_AddressType=1&strFD_Address=some.host&usFD_Port=6608", cms_domain(1, "some.host", 6608)),
        ("domain of another type", "ucFD_AddressType=255&strFD_Address=some.host", cms_domain(255, "some.host", 0)),
        ("address", "ucFD_AddressType=0&strFD_Address=10.0.0.1&usFD_Port=6608", cms_address("10.0.0.1", 6608)),
        ("no type takes the address", "strFD_Address=10.0.0.1&usFD_Port=1", cms_address("10.0.0.1", 1)),
        ("empty type takes the address", "ucFD_AddressType=&strFD_Address=10.0.0.1", cms_address("10.0.0.1", 0)),
        ("type 256 is 0", "ucFD_AddressType=256&strFD_Address=10.0.0.1", cms_address("10.0.0.1", 0)),
        ("type 257 is 1", "ucFD_AddressType=257&strFD_Address=host", cms_domain(1, "host", 0)),
        ("text for a type is 0", "ucFD_AddressType=ip&strFD_Address=10.0.0.1", cms_address("10.0.0.1", 0)),
        ("placeholder 1 becomes the platform", "ucFD_AddressType=0&strFD_Address=10.255.255.101", cms_address("203.0.113.101", 0)),
        ("placeholder 2", "ucFD_AddressType=0&strFD_Address=10.255.255.102", cms_address("203.0.113.102", 0)),
        ("placeholder 3", "ucFD_AddressType=0&strFD_Address=10.255.255.103", cms_address("198.51.100.7", 0)),
        ("placeholder 4", "strFD_Address=10.255.255.104", cms_address("198.51.100.8", 0)),
        ("a platform stays", "strFD_Address=203.0.113.101", cms_address("203.0.113.101", 0)),
        ("a placeholder as a domain stays", "ucFD_AddressType=1&strFD_Address=10.255.255.101", cms_domain(1, "10.255.255.101", 0)),
        ("a host as an address", "ucFD_AddressType=0&strFD_Address=some.host", cms_address(NOBODY, 0)),
        ("no address", "ucFD_AddressType=0", cms_address(NOBODY, 0)),
        ("no domain", "ucFD_AddressType=1&usFD_Port=80", cms_domain(1, "", 80)),
        ("empty form", "", cms_address(NOBODY, 0)),
        ("a domain of 70 characters is cut to 63", f"ucFD_AddressType=1&strFD_Address={'d' * 70}", cms_domain(1, "d" * 63, 0)),
        ("an address of 70 characters", f"ucFD_AddressType=0&strFD_Address={'1' * 70}", cms_address(NOBODY, 0)),
        ("port above 16 bits", "strFD_Address=10.0.0.1&usFD_Port=65616", cms_address("10.0.0.1", 80)),
        ("over-long port is cut and counts", f"strFD_Address=10.0.0.1&usFD_Port={'0' * 62}80", cms_address("10.0.0.1", 8)),
        ("over-long type is cut and counts", f"ucFD_AddressType={'0' * 62}10&strFD_Address=h", cms_domain(1, "h", 0)),
        ("a hexadecimal address", "strFD_Address=0x0A000001", cms_address("10.0.0.1", 0)),
        ("URL-encoded", "ucFD_AddressType=%31&strFD_Address=a%2Eb&usFD_Port=%38", cms_domain(1, "a.b", 8)),
        ("names in capitals", "UCFD_ADDRESSTYPE=1&STRFD_ADDRESS=h&USFD_PORT=1", cms_domain(1, "h", 1)),
    ],
    "/set_WifiInfo": [
        (
            "station",
            "ucFD_WorkMode=1&strFD_SSID=bus&strFD_Passwd=pw&ucFD_AuthMode=3&ucFD_CryptType=4&ucFD_DhcpEnableFlag=1",
            station(1, "bus", "pw", 3, 4),
        ),
        ("empty form", "", station(0, "", "", 0, 0)),
        ("empty values", "ucFD_WorkMode=&strFD_SSID=&strFD_Passwd=&ucFD_AuthMode=&ucFD_CryptType=", station(0, "", "", 0, 0)),
        ("no mode", "strFD_SSID=s&strFD_Passwd=p&ucFD_AuthMode=3&ucFD_CryptType=4", station(0, "s", "p", 3, 4)),
        ("no SSID", "ucFD_WorkMode=1&strFD_Passwd=p&ucFD_AuthMode=3&ucFD_CryptType=4", station(1, "", "p", 3, 4)),
        ("no password", "ucFD_WorkMode=1&strFD_SSID=s&ucFD_AuthMode=3&ucFD_CryptType=4", station(1, "s", "", 3, 4)),
        ("no authentication", "ucFD_WorkMode=1&strFD_SSID=s&strFD_Passwd=p&ucFD_CryptType=4", station(1, "s", "p", 0, 4)),
        ("no cipher", "ucFD_WorkMode=1&strFD_SSID=s&strFD_Passwd=p&ucFD_AuthMode=3", station(1, "s", "p", 3, 0)),
        ("SSID and password of 31", f"strFD_SSID={'s' * 31}&strFD_Passwd={'p' * 31}", station(0, "s" * 31, "p" * 31, 0, 0)),
        ("SSID and password cut to 31", f"strFD_SSID={'s' * 40}&strFD_Passwd={'p' * 80}", station(0, "s" * 31, "p" * 31, 0, 0)),
        ("numbers above 8 bits", "ucFD_WorkMode=259&ucFD_AuthMode=-1&ucFD_CryptType=512", station(3, "", "", 255, 0)),
        ("over-long numbers count", f"ucFD_WorkMode={'0' * 62}11&ucFD_AuthMode={'0' * 62}35", station(1, "", "", 3, 0)),
        ("URL-encoded", "strFD_SSID=my+bus%21&strFD_Passwd=%26%3d", station(0, "my bus!", "&=", 0, 0)),
        ("UTF-8 passes as it is", "strFD_SSID=%E5%85%AC", station(0, "公", "", 0, 0)),
        ("names in capitals", "UCFD_WORKMODE=1&STRFD_SSID=s&STRFD_PASSWD=p&UCFD_AUTHMODE=3&UCFD_CRYPTTYPE=4", station(1, "s", "p", 3, 4)),
    ],
    "/set_GNetInfo": [
        ("full", "ucFD_NetType=4&strFD_Apn=cmnet&strFD_PhoneNo=*99%23&strFD_UserName=u&strFD_UserPasswd=p", mobile(4, "cmnet", "*99#", "u", "p")),
        ("empty form", "", mobile(0, "", "", "", "")),
        ("empty values", "ucFD_NetType=&strFD_Apn=&strFD_PhoneNo=&strFD_UserName=&strFD_UserPasswd=", mobile(0, "", "", "", "")),
        ("no type", "strFD_Apn=a&strFD_PhoneNo=1&strFD_UserName=u&strFD_UserPasswd=p", mobile(0, "a", "1", "u", "p")),
        ("no APN", "ucFD_NetType=4&strFD_PhoneNo=1&strFD_UserName=u&strFD_UserPasswd=p", mobile(4, "", "1", "u", "p")),
        ("no phone number", "ucFD_NetType=4&strFD_Apn=a&strFD_UserName=u&strFD_UserPasswd=p", mobile(4, "a", "", "u", "p")),
        ("no user", "ucFD_NetType=4&strFD_Apn=a&strFD_PhoneNo=1&strFD_UserPasswd=p", mobile(4, "a", "1", "", "p")),
        ("no password", "ucFD_NetType=4&strFD_Apn=a&strFD_PhoneNo=1&strFD_UserName=u", mobile(4, "a", "1", "u", "")),
        (
            "texts as wide as their fields",
            f"strFD_Apn={'a' * 31}&strFD_PhoneNo={'1' * 23}&strFD_UserName={'u' * 35}&strFD_UserPasswd={'p' * 35}",
            mobile(0, "a" * 31, "1" * 23, "u" * 35, "p" * 35),
        ),
        (
            "texts cut to their fields",
            f"strFD_Apn={'a' * 32}&strFD_PhoneNo={'1' * 24}&strFD_UserName={'u' * 36}&strFD_UserPasswd={'p' * 99}",
            mobile(0, "a" * 31, "1" * 23, "u" * 35, "p" * 35),
        ),
        ("type above 8 bits", "ucFD_NetType=257", mobile(1, "", "", "", "")),
        ("URL-encoded", "strFD_Apn=%61+b", mobile(0, "a b", "", "", "")),
        ("names in capitals", "UCFD_NETTYPE=1&STRFD_APN=a&STRFD_PHONENO=1&STRFD_USERNAME=u&STRFD_USERPASSWD=p", mobile(1, "a", "1", "u", "p")),
    ],
    "/set_LocalNetInfo": [
        (
            "full",
            "strFD_LocalIp=192.168.1.100&strFD_NetMask=255.255.255.0&strFD_GateWay=192.168.1.1&strFD_Mac=00%3A11%3A22",
            local("192.168.1.100", "255.255.255.0", "192.168.1.1", "00:11:22"),
        ),
        ("empty form", "", local(NOBODY, NOBODY, NOBODY, "")),
        ("empty values", "strFD_LocalIp=&strFD_NetMask=&strFD_GateWay=&strFD_Mac=", local(NOBODY, NOBODY, NOBODY, "")),
        ("no address", "strFD_NetMask=1.1.1.1&strFD_GateWay=2.2.2.2&strFD_Mac=m", local(NOBODY, "1.1.1.1", "2.2.2.2", "m")),
        ("no mask", "strFD_LocalIp=1.1.1.1&strFD_GateWay=2.2.2.2&strFD_Mac=m", local("1.1.1.1", NOBODY, "2.2.2.2", "m")),
        ("no gateway", "strFD_LocalIp=1.1.1.1&strFD_NetMask=2.2.2.2&strFD_Mac=m", local("1.1.1.1", "2.2.2.2", NOBODY, "m")),
        ("no MAC", "strFD_LocalIp=1.1.1.1&strFD_NetMask=2.2.2.2&strFD_GateWay=3.3.3.3", local("1.1.1.1", "2.2.2.2", "3.3.3.3", "")),
        (
            "placeholders become platforms",
            "strFD_LocalIp=10.255.255.101&strFD_NetMask=10.255.255.103&strFD_GateWay=10.255.255.104",
            local("203.0.113.101", "198.51.100.7", "198.51.100.8", ""),
        ),
        ("no addresses", "strFD_LocalIp=a&strFD_NetMask=1.2.3.999&strFD_GateWay=1.2.3.4.5", local(NOBODY, NOBODY, NOBODY, "")),
        ("a MAC of 23 characters", f"strFD_Mac={'m' * 23}", local(NOBODY, NOBODY, NOBODY, "m" * 23)),
        ("over-long values", f"strFD_LocalIp={'1' * 80}&strFD_Mac={'m' * 80}", local(NOBODY, NOBODY, NOBODY, "m" * 23)),
        ("URL-encoded", "strFD_LocalIp=1%2E2%2E3%2E4&strFD_Mac=a+b", local("1.2.3.4", NOBODY, NOBODY, "a b")),
        ("names in capitals", "STRFD_LOCALIP=1.1.1.1&STRFD_NETMASK=2.2.2.2&STRFD_GATEWAY=3.3.3.3&STRFD_MAC=m", local("1.1.1.1", "2.2.2.2", "3.3.3.3", "m")),
    ],
}
ROWS = [(uri, *row) for uri, rows in FORMS.items() for row in rows]


@pytest.mark.parametrize(
    "uri, sentence, form, section", ROWS, ids=[f"{row[0][5:]}: {row[1]}" for row in ROWS]
)
def test_form_becomes_this_datagram(rig, uri, sentence, form, section):
    reply = rig.post(uri, form, REFUSED)
    assert rig.device.requests == ([] if section is None else [change(section)])
    assert reply.chunks == [b'{"result": 1 }']


LOCK_FORMS = [
    ("full", "ucFD_ErrorCount=3&time=1700000000", lock(3, 1700000000)),
    ("empty form", "", lock(0, 0)),
    ("no count", "time=5", lock(0, 5)),
    ("no time", "ucFD_ErrorCount=5", lock(5, 0)),
    ("empty values", "ucFD_ErrorCount=&time=", lock(0, 0)),
    ("text", "ucFD_ErrorCount=many&time=now", lock(0, 0)),
    ("255 characters", f"ucFD_ErrorCount={'0' * 254}5&time={'0' * 254}7", lock(5, 7)),
    ("over-long values are cut and count", f"ucFD_ErrorCount={'0' * 254}51&time={'0' * 254}71", lock(5, 7)),
    ("URL-encoded", "ucFD_ErrorCount=%35&time=+7", lock(5, 7)),
    ("names in capitals", "UCFD_ERRORCOUNT=1&TIME=2", lock(1, 2)),
]


@pytest.mark.parametrize("sentence, form, section", LOCK_FORMS, ids=[row[0] for row in LOCK_FORMS])
def test_lock_form_is_forwarded_and_a_refusal_reported(rig, sentence, form, section):
    assert rig.post("/set_LockOfPassword", form, REFUSED).chunks == [b'{"result": 0 }']
    assert rig.device.requests == [change(section)]


POINT_FORM = (
    "ucFD_WorkMode=2&strFD_SSID=ap&strFD_Passwd=pw&ucFD_AuthMode=3&ucFD_CryptType=4"
    "&ucFD_DhcpEnableFlag=1"
)
MODE_ONLY = change('<stWifi ucFD_WorkMode="2"/>')


def point(ssid, password, auth, crypt, dhcp):
    return change(
        f'<stWifiAp strFD_SSID="{ssid}" strFD_Passwd="{password}" ucFD_AuthMode="{auth}"'
        f' ucFD_CryptType="{crypt}" ucFD_DhcpEnableFlag="{dhcp}"/>'
    )


POINT_FORMS = [
    ("full", POINT_FORM, point("ap", "pw", 3, 4, 1)),
    ("mode only", "ucFD_WorkMode=2", point("", "", 0, 0, 0)),
    ("mode 258 is mode 2", "ucFD_WorkMode=258&strFD_SSID=s", point("s", "", 0, 0, 0)),
    ("texts cut to 31", f"ucFD_WorkMode=2&strFD_SSID={'s' * 64}&strFD_Passwd={'p' * 32}", point("s" * 31, "p" * 31, 0, 0, 0)),
    ("flag above 8 bits", "ucFD_WorkMode=2&ucFD_DhcpEnableFlag=257", point("", "", 0, 0, 1)),
]


@pytest.mark.parametrize("sentence, form, second", POINT_FORMS, ids=[row[0] for row in POINT_FORMS])
def test_access_point_values_follow_a_mode_that_is_not_accepted(rig, sentence, form, second):
    assert rig.post("/set_WifiInfo", form, REFUSED, REFUSED).body == b'{"result": 1 }'
    assert rig.device.requests == [MODE_ONLY, second]
    assert rig.device.sources == [("192.0.2.10", 4999)] * 2


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
