"""The set endpoints of networks and platforms: the exact datagram that a form becomes.

The device answers with Result 1 here, which ends a set without the restart: what the forms become
is the subject. A form value has at most 63 characters unless said otherwise; how a longer, empty or
missing one counts differs between the endpoints.
"""

import pytest
from device import REFUSED, change


def net_mode(kind):
    return f'<stNetWorkMode ucFD_NetType="{kind}"/>'


def cms_domain(kind, domain, port):
    return f'<stCMS ucFD_AddressType="{kind}" strFD_Domain="{domain}" usFD_Port="{port}"/>'


def cms_address(address, port):
    return f'<stCMS ucFD_AddressType="0" uiFD_IP="{address}" usFD_Port="{port}"/>'


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


NOBODY = "255.255.255.255"

# URI, sentence, form, section of the one datagram (None: none is sent).
FORMS = {
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
        (
            "domain",
            "ucFD_AddressType=1&strFD_Address=some.host&usFD_Port=6608",
            cms_domain(1, "some.host", 6608),
        ),
        (
            "domain of another type",
            "ucFD_AddressType=255&strFD_Address=some.host",
            cms_domain(255, "some.host", 0),
        ),
        (
            "address",
            "ucFD_AddressType=0&strFD_Address=10.0.0.1&usFD_Port=6608",
            cms_address("10.0.0.1", 6608),
        ),
        (
            "no type takes the address",
            "strFD_Address=10.0.0.1&usFD_Port=1",
            cms_address("10.0.0.1", 1),
        ),
        (
            "empty type takes the address",
            "ucFD_AddressType=&strFD_Address=10.0.0.1",
            cms_address("10.0.0.1", 0),
        ),
        (
            "type 256 is 0",
            "ucFD_AddressType=256&strFD_Address=10.0.0.1",
            cms_address("10.0.0.1", 0),
        ),
        ("type 257 is 1", "ucFD_AddressType=257&strFD_Address=host", cms_domain(1, "host", 0)),
        (
            "text for a type is 0",
            "ucFD_AddressType=ip&strFD_Address=10.0.0.1",
            cms_address("10.0.0.1", 0),
        ),
        (
            "placeholder 1 becomes the platform",
            "ucFD_AddressType=0&strFD_Address=10.255.255.101",
            cms_address("203.0.113.101", 0),
        ),
        (
            "placeholder 2",
            "ucFD_AddressType=0&strFD_Address=10.255.255.102",
            cms_address("203.0.113.102", 0),
        ),
        (
            "placeholder 3",
            "ucFD_AddressType=0&strFD_Address=10.255.255.103",
            cms_address("198.51.100.7", 0),
        ),
        ("placeholder 4", "strFD_Address=10.255.255.104", cms_address("198.51.100.8", 0)),
        ("a platform stays", "strFD_Address=203.0.113.101", cms_address("203.0.113.101", 0)),
        (
            "a placeholder as a domain stays",
            "ucFD_AddressType=1&strFD_Address=10.255.255.101",
            cms_domain(1, "10.255.255.101", 0),
        ),
        (
            "a host as an address",
            "ucFD_AddressType=0&strFD_Address=some.host",
            cms_address(NOBODY, 0),
        ),
        ("no address", "ucFD_AddressType=0", cms_address(NOBODY, 0)),
        ("no domain", "ucFD_AddressType=1&usFD_Port=80", cms_domain(1, "", 80)),
        ("empty form", "", cms_address(NOBODY, 0)),
        (
            "a domain of 70 characters is cut to 63",
            f"ucFD_AddressType=1&strFD_Address={'d' * 70}",
            cms_domain(1, "d" * 63, 0),
        ),
        (
            "an address of 70 characters",
            f"ucFD_AddressType=0&strFD_Address={'1' * 70}",
            cms_address(NOBODY, 0),
        ),
        (
            "port above 16 bits",
            "strFD_Address=10.0.0.1&usFD_Port=65616",
            cms_address("10.0.0.1", 80),
        ),
        (
            "over-long port is cut and counts",
            f"strFD_Address=10.0.0.1&usFD_Port={'0' * 62}80",
            cms_address("10.0.0.1", 8),
        ),
        (
            "over-long type is cut and counts",
            f"ucFD_AddressType={'0' * 62}10&strFD_Address=h",
            cms_domain(1, "h", 0),
        ),
        ("a hexadecimal address", "strFD_Address=0x0A000001", cms_address("10.0.0.1", 0)),
        (
            "URL-encoded",
            "ucFD_AddressType=%31&strFD_Address=a%2Eb&usFD_Port=%38",
            cms_domain(1, "a.b", 8),
        ),
        (
            "names in capitals",
            "UCFD_ADDRESSTYPE=1&STRFD_ADDRESS=h&USFD_PORT=1",
            cms_domain(1, "h", 1),
        ),
    ],
    "/set_GNetInfo": [
        (
            "full",
            "ucFD_NetType=4&strFD_Apn=cmnet&strFD_PhoneNo=*99%23&strFD_UserName=u&strFD_UserPasswd=p",
            mobile(4, "cmnet", "*99#", "u", "p"),
        ),
        ("empty form", "", mobile(0, "", "", "", "")),
        (
            "empty values",
            "ucFD_NetType=&strFD_Apn=&strFD_PhoneNo=&strFD_UserName=&strFD_UserPasswd=",
            mobile(0, "", "", "", ""),
        ),
        (
            "no type",
            "strFD_Apn=a&strFD_PhoneNo=1&strFD_UserName=u&strFD_UserPasswd=p",
            mobile(0, "a", "1", "u", "p"),
        ),
        (
            "no APN",
            "ucFD_NetType=4&strFD_PhoneNo=1&strFD_UserName=u&strFD_UserPasswd=p",
            mobile(4, "", "1", "u", "p"),
        ),
        (
            "no phone number",
            "ucFD_NetType=4&strFD_Apn=a&strFD_UserName=u&strFD_UserPasswd=p",
            mobile(4, "a", "", "u", "p"),
        ),
        (
            "no user",
            "ucFD_NetType=4&strFD_Apn=a&strFD_PhoneNo=1&strFD_UserPasswd=p",
            mobile(4, "a", "1", "", "p"),
        ),
        (
            "no password",
            "ucFD_NetType=4&strFD_Apn=a&strFD_PhoneNo=1&strFD_UserName=u",
            mobile(4, "a", "1", "u", ""),
        ),
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
        (
            "names in capitals",
            "UCFD_NETTYPE=1&STRFD_APN=a&STRFD_PHONENO=1&STRFD_USERNAME=u&STRFD_USERPASSWD=p",
            mobile(1, "a", "1", "u", "p"),
        ),
    ],
    "/set_LocalNetInfo": [
        (
            "full",
            "strFD_LocalIp=192.168.1.100&strFD_NetMask=255.255.255.0&strFD_GateWay=192.168.1.1&strFD_Mac=00%3A11%3A22",
            local("192.168.1.100", "255.255.255.0", "192.168.1.1", "00:11:22"),
        ),
        ("empty form", "", local(NOBODY, NOBODY, NOBODY, "")),
        (
            "empty values",
            "strFD_LocalIp=&strFD_NetMask=&strFD_GateWay=&strFD_Mac=",
            local(NOBODY, NOBODY, NOBODY, ""),
        ),
        (
            "no address",
            "strFD_NetMask=1.1.1.1&strFD_GateWay=2.2.2.2&strFD_Mac=m",
            local(NOBODY, "1.1.1.1", "2.2.2.2", "m"),
        ),
        (
            "no mask",
            "strFD_LocalIp=1.1.1.1&strFD_GateWay=2.2.2.2&strFD_Mac=m",
            local("1.1.1.1", NOBODY, "2.2.2.2", "m"),
        ),
        (
            "no gateway",
            "strFD_LocalIp=1.1.1.1&strFD_NetMask=2.2.2.2&strFD_Mac=m",
            local("1.1.1.1", "2.2.2.2", NOBODY, "m"),
        ),
        (
            "no MAC",
            "strFD_LocalIp=1.1.1.1&strFD_NetMask=2.2.2.2&strFD_GateWay=3.3.3.3",
            local("1.1.1.1", "2.2.2.2", "3.3.3.3", ""),
        ),
        (
            "placeholders become platforms",
            "strFD_LocalIp=10.255.255.101&strFD_NetMask=10.255.255.103&strFD_GateWay=10.255.255.104",
            local("203.0.113.101", "198.51.100.7", "198.51.100.8", ""),
        ),
        (
            "no addresses",
            "strFD_LocalIp=a&strFD_NetMask=1.2.3.999&strFD_GateWay=1.2.3.4.5",
            local(NOBODY, NOBODY, NOBODY, ""),
        ),
        (
            "a MAC of 23 characters",
            f"strFD_Mac={'m' * 23}",
            local(NOBODY, NOBODY, NOBODY, "m" * 23),
        ),
        (
            "over-long values",
            f"strFD_LocalIp={'1' * 80}&strFD_Mac={'m' * 80}",
            local(NOBODY, NOBODY, NOBODY, "m" * 23),
        ),
        (
            "URL-encoded",
            "strFD_LocalIp=1%2E2%2E3%2E4&strFD_Mac=a+b",
            local("1.2.3.4", NOBODY, NOBODY, "a b"),
        ),
        (
            "names in capitals",
            "STRFD_LOCALIP=1.1.1.1&STRFD_NETMASK=2.2.2.2&STRFD_GATEWAY=3.3.3.3&STRFD_MAC=m",
            local("1.1.1.1", "2.2.2.2", "3.3.3.3", "m"),
        ),
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
