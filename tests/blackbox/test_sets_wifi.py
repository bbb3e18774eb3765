"""The Wi-Fi set endpoint: the exact datagrams for a form in either mode.

The device answers with Result 1 here, which ends a set without the restart. A form value has at
most 63 characters; a longer one is cut and counts.
"""

import pytest
from device import REFUSED, change


def station(mode, ssid, password, auth, crypt):
    return (
        f'<stWifi ucFD_WorkMode="{mode}" strFD_SSID="{ssid}" strFD_Passwd="{password}"'
        f' ucFD_AuthMode="{auth}" ucFD_CryptType="{crypt}"/>'
    )


# Sentence, form, section of the one datagram.
STATION_FORMS = [
    (
        "station",
        "ucFD_WorkMode=1&strFD_SSID=bus&strFD_Passwd=pw&ucFD_AuthMode=3&ucFD_CryptType=4&ucFD_DhcpEnableFlag=1",
        station(1, "bus", "pw", 3, 4),
    ),
    ("empty form", "", station(0, "", "", 0, 0)),
    (
        "empty values",
        "ucFD_WorkMode=&strFD_SSID=&strFD_Passwd=&ucFD_AuthMode=&ucFD_CryptType=",
        station(0, "", "", 0, 0),
    ),
    (
        "no mode",
        "strFD_SSID=s&strFD_Passwd=p&ucFD_AuthMode=3&ucFD_CryptType=4",
        station(0, "s", "p", 3, 4),
    ),
    (
        "no SSID",
        "ucFD_WorkMode=1&strFD_Passwd=p&ucFD_AuthMode=3&ucFD_CryptType=4",
        station(1, "", "p", 3, 4),
    ),
    (
        "no password",
        "ucFD_WorkMode=1&strFD_SSID=s&ucFD_AuthMode=3&ucFD_CryptType=4",
        station(1, "s", "", 3, 4),
    ),
    (
        "no authentication",
        "ucFD_WorkMode=1&strFD_SSID=s&strFD_Passwd=p&ucFD_CryptType=4",
        station(1, "s", "p", 0, 4),
    ),
    (
        "no cipher",
        "ucFD_WorkMode=1&strFD_SSID=s&strFD_Passwd=p&ucFD_AuthMode=3",
        station(1, "s", "p", 3, 0),
    ),
    (
        "SSID and password of 31",
        f"strFD_SSID={'s' * 31}&strFD_Passwd={'p' * 31}",
        station(0, "s" * 31, "p" * 31, 0, 0),
    ),
    (
        "SSID and password cut to 31",
        f"strFD_SSID={'s' * 40}&strFD_Passwd={'p' * 80}",
        station(0, "s" * 31, "p" * 31, 0, 0),
    ),
    (
        "numbers above 8 bits",
        "ucFD_WorkMode=259&ucFD_AuthMode=-1&ucFD_CryptType=512",
        station(3, "", "", 255, 0),
    ),
    (
        "over-long numbers count",
        f"ucFD_WorkMode={'0' * 62}11&ucFD_AuthMode={'0' * 62}35",
        station(1, "", "", 3, 0),
    ),
    (
        "URL-encoded",
        "strFD_SSID=my+bus%21&strFD_Passwd=%26%3d",
        station(0, "my bus!", "&=", 0, 0),
    ),
    ("UTF-8 passes as it is", "strFD_SSID=%E5%85%AC", station(0, "公", "", 0, 0)),
    (
        "names in capitals",
        "UCFD_WORKMODE=1&STRFD_SSID=s&STRFD_PASSWD=p&UCFD_AUTHMODE=3&UCFD_CRYPTTYPE=4",
        station(1, "s", "p", 3, 4),
    ),
]


@pytest.mark.parametrize(
    "sentence, form, section", STATION_FORMS, ids=[r[0] for r in STATION_FORMS]
)
def test_station_form_becomes_this_datagram(rig, sentence, form, section):
    reply = rig.post("/set_WifiInfo", form, REFUSED)
    assert rig.device.requests == [change(section)]
    assert reply.chunks == [b'{"result": 1 }']


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
    (
        "texts cut to 31",
        f"ucFD_WorkMode=2&strFD_SSID={'s' * 64}&strFD_Passwd={'p' * 32}",
        point("s" * 31, "p" * 31, 0, 0, 0),
    ),
    ("flag above 8 bits", "ucFD_WorkMode=2&ucFD_DhcpEnableFlag=257", point("", "", 0, 0, 1)),
]


@pytest.mark.parametrize("sentence, form, second", POINT_FORMS, ids=[row[0] for row in POINT_FORMS])
def test_access_point_values_follow_a_mode_that_is_not_accepted(rig, sentence, form, second):
    assert rig.post("/set_WifiInfo", form, REFUSED, REFUSED).body == b'{"result": 1 }'
    assert rig.device.requests == [MODE_ONLY, second]
    assert rig.device.sources == [("192.0.2.10", 4999)] * 2
