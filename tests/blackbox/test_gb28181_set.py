"""Changing the GB/T 28181 settings: lists of identifiers and one large message."""

import pytest
from daemon import START, trace
from device import ACCEPTED, REFUSED, UNUSABLE, VERSION_QUERY, change, version


def message(
    enable=0,
    lens=(),
    alarm=(),
    maker="",
    model="",
    ip="",
    port=0,
    server="",
    device="",
    device_port=0,
    user="",
    password="",
):
    """The set's datagram. Sub-device k has lens ID k and, as its alarm input, lens ID k + 2."""
    pairs = [
        (lens[k] if k < len(lens) else "", alarm[k] if k < len(alarm) else "") for k in range(8)
    ]
    subs = "".join(
        f'<SUBDEVID_{k} strFD_LensId="{pair[0]}" strFD_AlarmInId="{pair[1]}"/>'
        for k, pair in enumerate(pairs)
    )
    return change(
        f'<stGB28181 ucFD_Enable="{enable}" strFD_Manufacturer="{maker}" strFD_ModelName="{model}"'
        f' strFD_ServerIp="{ip}" usFD_ServerPort="{port}" strFD_ServerID="{server}"'
        f' strFD_DeviceId="{device}" usFD_DevicePort="{device_port}" strFD_DeviceUser="{user}"'
        f' strFD_DevicePass="{password}"><stGB28181SubID>{subs}</stGB28181SubID></stGB28181>'
    )


TEN = [f"3402000000131000000{k}" for k in range(10)]
WIDE = ["".join(chr(65 + (k + n) % 26) for n in range(31)) for k in range(10)]


def stars(ids):
    return "*" + "".join(f"{text}*" for text in ids)


# Sentence, channels in the version reply, form, arguments of message().
FORMS = [
    ("empty form", 4, "", {}),
    ("enabled only", 4, "ucFD_GB28181Enable=1", {"enable": 1}),
    ("enabled with stream type 1", 4, "ucFD_GB28181Enable=1&ucFD_StreamType=1", {"enable": 129}),
    ("low bits decide", 4, "ucFD_GB28181Enable=3&ucFD_StreamType=3", {"enable": 129}),
    ("an even number is off", 4, "ucFD_GB28181Enable=2&ucFD_StreamType=1", {}),
    ("off takes no stream type", 4, "ucFD_StreamType=1", {}),
    ("an even stream type", 4, "ucFD_GB28181Enable=1&ucFD_StreamType=2", {"enable": 1}),
    ("empty flags", 4, "ucFD_GB28181Enable=&ucFD_StreamType=", {}),
    (
        "all texts and ports",
        4,
        "ucFD_GB28181Enable=1&strFD_Manufacturer=a&strFD_ModelName=b&strFD_ServerIp=1.2.3.4&usFD_ServerPort=5060"
        "&strFD_ServerID=s&strFD_DeviceId=d&usFD_DevicePort=5061&strFD_DeviceUser=u&strFD_DevicePass=p",
        {
            "enable": 1,
            "maker": "a",
            "model": "b",
            "ip": "1.2.3.4",
            "port": 5060,
            "server": "s",
            "device": "d",
            "device_port": 5061,
            "user": "u",
            "password": "p",
        },
    ),
    ("manufacturer", 4, f"strFD_Manufacturer={'a' * 40}", {"maker": "a" * 31}),
    ("model", 4, f"strFD_ModelName={'a' * 40}", {"model": "a" * 31}),
    ("server address", 4, f"strFD_ServerIp={'a' * 40}", {"ip": "a" * 31}),
    (
        "server address is not unmasked",
        4,
        "strFD_ServerIp=10.255.255.101",
        {"ip": "10.255.255.101"},
    ),
    ("server port of 16 bits", 4, "usFD_ServerPort=65616", {"port": 80}),
    ("server ID", 4, f"strFD_ServerID={'a' * 32}", {"server": "a" * 31}),
    ("device ID", 4, f"strFD_DeviceId={'a' * 600}", {"device": "a" * 31}),
    ("device port", 4, "usFD_DevicePort=-1", {"device_port": 65535}),
    ("device user", 4, f"strFD_DeviceUser={'a' * 31}", {"user": "a" * 31}),
    ("device password, URL-encoded", 4, "strFD_DevicePass=%22+%3C", {"password": '" <'}),
    (
        "names in capitals",
        4,
        "UCFD_GB28181ENABLE=1&STRFD_SERVERID=s&STRFD_LENSID=*aa*",
        {"enable": 1, "server": "s", "lens": ["", "", "", "aa"], "alarm": ["", "aa"]},
    ),
    (
        "two IDs belong to the last two of four channels",
        4,
        "strFD_LensId=*A*B*",
        {"lens": ["", "", "A", "B"], "alarm": ["A", "B"]},
    ),
    ("as many IDs as channels", 2, "strFD_LensId=*A*B*", {"lens": ["A", "B"]}),
    ("one ID, one channel", 1, "strFD_LensId=*AB*", {"lens": ["AB"]}),
    ("a list of one character is too short", 1, "strFD_LensId=*A*", {}),
    ("an empty list", 4, "strFD_LensId=**", {}),
    ("a lone star", 4, "strFD_LensId=*", {}),
    ("the last character is dropped whatever it is", 1, "strFD_LensId=*ABC", {"lens": ["AB"]}),
    (
        "an empty ID in the middle",
        3,
        "strFD_LensId=*A**C*",
        {"lens": ["A", "", "C"], "alarm": ["C"]},
    ),
    ("surplus IDs are ignored", 2, "strFD_LensId=*X*Y*A*B*", {"lens": ["A", "B"]}),
    ("no channels, no IDs", 0, "strFD_LensId=*A*B*", {}),
    ("eight lens IDs", 8, f"strFD_LensId={stars(TEN[:8])}", {"lens": TEN[:8], "alarm": TEN[2:8]}),
    (
        "alarm-input IDs take the place of lens IDs two entries on",
        8,
        f"strFD_AlarmInId={stars(TEN[:8])}",
        {"lens": ["", "", *TEN[:6]], "alarm": TEN[:8]},
    ),
    (
        "two channels, both lists",
        2,
        "strFD_LensId=*A*B*&strFD_AlarmInId=*Y*Z*",
        {"lens": ["A", "B", "Y", "Z"], "alarm": ["Y", "Z"]},
    ),
    (
        "four channels, both lists",
        4,
        "strFD_LensId=*A*B*C*D*&strFD_AlarmInId=*W*X*Y*Z*",
        {"lens": ["A", "B", "W", "X", "Y", "Z"], "alarm": ["W", "X", "Y", "Z"]},
    ),
    (
        "a short alarm ID covers a long lens ID",
        4,
        f"strFD_LensId={stars(TEN[:4])}&strFD_AlarmInId=*Y*Z*",
        {"lens": [*TEN[:4], "Y", "Z"], "alarm": [*TEN[2:4], "Y", "Z"]},
    ),
    (
        "IDs of 31 characters fill a message of more than 1,024 bytes",
        8,
        f"strFD_LensId={stars(WIDE[:8])}&strFD_AlarmInId={stars(WIDE[1:9])}",
        {"lens": [*WIDE[:2], *WIDE[1:7]], "alarm": WIDE[1:9]},
    ),
    ("IDs are cut to 31 characters", 1, f"strFD_LensId=*{'L' * 40}*", {"lens": ["L" * 31]}),
    ("a list without a star in front", 1, "strFD_LensId=ABC*", {}),
]


class TestChanging:
    @pytest.mark.parametrize(
        "sentence, channels, form, fields", FORMS, ids=[row[0] for row in FORMS]
    )
    def test_form_becomes_this_datagram(self, rig, sentence, channels, form, fields):
        reply = rig.post("/set_GB28181Info", form, version(channels), REFUSED)
        assert rig.device.requests == [VERSION_QUERY, message(**fields)]
        assert reply.chunks == [b'{"result": 1 }']

    def test_lists_are_traced_from_their_end(self, rig):
        form = "strFD_ServerIp=1.2.3.4&strFD_LensId=*aa*bb*&strFD_AlarmInId=*yy*zz*"
        rig.post("/set_GB28181Info", form, version(2), REFUSED)
        rig.daemon.stdout.expect_in_order(
            START,
            trace("set_GB28181Info"),
            "stGB28181Info.strFD_ServerIp===========1.2.3.4",
            trace("getVersionInfoFromNet"),
            "strParaValue = *aa*bb",
            "strIndex = bb",
            "strIndex = aa",
            "strParaValue_1 = *yy*zz",
            "strIndex_1 = zz",
            "strIndex_1 = yy",
            trace("setGB28181InfoToNet"),
        )

    def test_failed_version_query_means_no_channels(self, rig):
        rig.post("/set_GB28181Info", "ucFD_GB28181Enable=1&strFD_LensId=*A*B*", UNUSABLE, REFUSED)
        assert rig.device.requests == [VERSION_QUERY, message(enable=1)]

    @pytest.mark.parametrize("channels", ["11", "255", "65536", "2147483647", "-1"])
    def test_absurd_channel_count_stores_nothing_outside(self, rig, channels):
        form = f"strFD_LensId={stars(TEN[:1])}&strFD_AlarmInId={stars(TEN[:1])}"
        rig.post("/set_GB28181Info", form, version(channels), REFUSED)
        assert rig.device.requests == [VERSION_QUERY, message()]

    @pytest.mark.parametrize("text", ["*" * 511, "*a" * 300, "a" * 511, "a" * 4000])
    def test_hostile_list_is_harmless(self, rig, text):
        for name in ("strFD_LensId", "strFD_AlarmInId"):
            assert (
                rig.post("/set_GB28181Info", f"{name}={text}", version(8), REFUSED).body
                == b'{"result": 1 }'
            )
            assert len(rig.device.requests) == 2

    def test_accepted_set_restarts(self, rig):
        assert rig.post("/set_GB28181Info", "", version(1), ACCEPTED).body == b'{"result": 1 }'
        rig.daemon.stderr.expect("Cannot bind to 80")

    def test_reply_without_result_is_failure(self, rig):
        assert rig.post("/set_GB28181Info", "", version(1), UNUSABLE).body == b'{"result": 0 }'
        rig.daemon.stderr.expect()
