"""The GB/T 28181 settings: two queries and a misspelt header, lists of identifiers, one large set."""

import pytest
from daemon import START, trace
from device import ACCEPTED, REFUSED, UNUSABLE, answer, change, query
from http_client import JSON_HEAD

VERSION_QUERY = query("<stVersion />")
QUERIES = [VERSION_QUERY, query("<stGB28181>")]


def version(channels):
    return answer(f'<stVersion VideoCnt="{channels}"/>')


def settings(enable="129", sub_ids="", **changes):
    values = {
        "strFD_Manufacturer": "maker",
        "strFD_ModelName": "model",
        "strFD_ServerIp": "192.0.2.8",
        "usFD_ServerPort": "5060",
        "strFD_ServerID": "34020000002000000001",
        "strFD_DeviceId": "34020000001320000001",
        "usFD_DevicePort": "5061",
        "strFD_DeviceUser": "user",
        "strFD_DevicePass": "pass",
        **changes,
    }
    text = " ".join(f'{name}="{value}"' for name, value in values.items())
    return answer(
        f'<stGB28181 ucFD_Enable="{enable}" {text}><stGB28181SubID>{sub_ids}</stGB28181SubID></stGB28181>'
    )


LENS, ALARM = "34020000001310000001", "34020000001340000001"
SUB_0 = f'<SUBDEVID_0 strFD_LensId="{LENS}" strFD_AudioInId="audio" strFD_AlarmInId="{ALARM}"/>'
GOOD = [
    b'{ "ucFD_GB28181Enable": "1"',
    b', "strFD_Manufacturer": "maker"',
    b', "strFD_ModelName": "model"',
    b', "strFD_ServerIp": "192.0.2.8"',
    b', "usFD_ServerPort": "5060"',
    b', "strFD_ServerID": "34020000002000000001"',
    b', "strFD_DeviceId": "34020000001320000001"',
    b', "usFD_DevicePort": "5061"',
    b', "strFD_DeviceUser": "user"',
    b', "strFD_DevicePass": "pass"',
    b', "strFD_LensId": "*34020000001310000001*"',
    b', "iVideoChnCount": "4"',
    b', "ucFD_StreamType": "1"',
    b', "strFD_AlarmInId": "*34020000001340000001*"',
    b', "result": 1 }',
]
FAILED = (
    b'{ "ucFD_GB28181Enable": "0", "strFD_Manufacturer": "", "strFD_ModelName": ""'
    b', "strFD_ServerIp": "", "usFD_ServerPort": "0", "strFD_ServerID": "", "strFD_DeviceId": ""'
    b', "usFD_DevicePort": "0", "strFD_DeviceUser": "", "strFD_DevicePass": "", "strFD_LensId": "**"'
    b', "iVideoChnCount": "%d", "ucFD_StreamType": "0", "strFD_AlarmInId": "**", "result": %d }'
)


class TestReading:
    def read(self, rig, *steps):
        reply = rig.get("/get_GB28181Info", *steps, head=JSON_HEAD)
        assert rig.device.requests == QUERIES
        return reply

    def test_good_replies_give_every_piece_under_the_misspelt_header(self, rig):
        assert self.read(rig, version(4), settings(sub_ids=SUB_0)).chunks == GOOD
        rig.daemon.stdout.expect_in_order(
            START,
            trace("get_GB28181Info"),
            trace("getVersionInfoFromNet"),
            trace("getGB28181InfoFromNet"),
            trace("get_GB28181Info"),
        )

    def test_failed_version_query_only_loses_the_channel_count(self, rig):
        chunks = self.read(rig, UNUSABLE, settings(sub_ids=SUB_0)).chunks
        assert chunks == [b', "iVideoChnCount": "0"' if b"ChnCount" in c else c for c in GOOD]

    @pytest.mark.parametrize("data", [UNUSABLE, answer(""), b""])
    def test_failed_settings_query_gives_zeros(self, rig, data):
        assert self.read(rig, version(4), data).body == FAILED % (4, 0)

    def test_empty_section_gives_zeros(self, rig):
        assert self.read(rig, version(8), answer("<stGB28181/>")).body == FAILED % (8, 1)

    FIELDS = [
        ("flags 0", {"enable": "0"}, [b'{ "ucFD_GB28181Enable": "0"', b', "ucFD_StreamType": "0"']),
        ("flags 1", {"enable": "1"}, [b'{ "ucFD_GB28181Enable": "1"', b', "ucFD_StreamType": "0"']),
        ("flags 128 count as enabled", {"enable": "128"}, [b'{ "ucFD_GB28181Enable": "1"', b', "ucFD_StreamType": "1"']),
        ("flags 384 are 128", {"enable": "384"}, [b', "ucFD_StreamType": "1"']),
        ("port of 16 bits", {"usFD_ServerPort": "65537"}, [b', "usFD_ServerPort": "1"']),
        ("texts of 31 characters", {"strFD_ServerID": "1" * 40}, [b', "strFD_ServerID": "%s"' % (b"1" * 31)]),
        ("a server is not masked", {"strFD_ServerIp": "203.0.113.101"}, [b', "strFD_ServerIp": "203.0.113.101"']),
        (
            "identifiers of 32 characters have no end of their own",
            {"sub_ids": f'<SUBDEVID_0 strFD_LensId="{"L" * 40}" strFD_AlarmInId="{"A" * 40}"/>'},
            [b', "strFD_LensId": "*%s*"' % (b"L" * 32), b', "strFD_AlarmInId": "*%s*"' % (b"A" * 32)],
        ),
        (
            "names with more than one character behind the underscore",
            {"sub_ids": '<SUBDEVID_0x strFD_LensId="L"/>'},
            [b', "strFD_LensId": "*L*"'],
        ),
        (
            "sub-device 1 is not read",
            {"sub_ids": '<SUBDEVID_1 strFD_LensId="L"/><SUBDEVID_0 strFD_LensId="M"/>'},
            [b', "strFD_LensId": "**"', b', "result": 1 }'],
        ),
    ]

    @pytest.mark.parametrize("sentence, changes, chunks", FIELDS, ids=[row[0] for row in FIELDS])
    def test_field_is_converted_to_its_width(self, rig, sentence, changes, chunks):
        reply = self.read(rig, version(4), settings(**changes))
        assert all(chunk in reply.chunks for chunk in chunks)
        assert len(reply.chunks) == len(GOOD)

    @pytest.mark.parametrize("name", ["SUBDEVID", "SUBDEVID_"])
    def test_sub_device_without_a_number_rejects_the_section(self, rig, name):
        assert self.read(rig, version(4), settings(sub_ids=f"<{name}/>")).body == FAILED % (4, 0)


def message(enable=0, lens=(), alarm=(), maker="", model="", ip="", port=0, server="", device="", device_port=0, user="", password=""):
    """The set's datagram. Sub-device k carries lens ID k and, as its alarm input, lens ID k + 2."""
    pairs = [(lens[k] if k < len(lens) else "", alarm[k] if k < len(alarm) else "") for k in range(8)]
    subs = "".join(
        f'<SUBDEVID_{k} strFD_LensId="{pair[0]}" strFD_AlarmInId="{pair[1]}"/>' for k, pair in enumerate(pairs)
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


# Sentence, channels that the version reply tells, form, what message() is given.
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
        {"enable": 1, "maker": "a", "model": "b", "ip": "1.2.3.4", "port": 5060, "server": "s", "device": "d", "device_port": 5061, "user": "u", "password": "p"},
    ),
    ("manufacturer", 4, f"strFD_Manufacturer={'a' * 40}", {"maker": "a" * 31}),
    ("model", 4, f"strFD_ModelName={'a' * 40}", {"model": "a" * 31}),
    ("server address", 4, f"strFD_ServerIp={'a' * 40}", {"ip": "a" * 31}),
    ("server address is not unmasked", 4, "strFD_ServerIp=10.255.255.101", {"ip": "10.255.255.101"}),
    ("server port of 16 bits", 4, "usFD_ServerPort=65616", {"port": 80}),
    ("server ID", 4, f"strFD_ServerID={'a' * 32}", {"server": "a" * 31}),
    ("device ID", 4, f"strFD_DeviceId={'a' * 600}", {"device": "a" * 31}),
    ("device port", 4, "usFD_DevicePort=-1", {"device_port": 65535}),
    ("device user", 4, f"strFD_DeviceUser={'a' * 31}", {"user": "a" * 31}),
    ("device password, URL-encoded", 4, "strFD_DevicePass=%22+%3C", {"password": '" <'}),
    ("names in capitals", 4, "UCFD_GB28181ENABLE=1&STRFD_SERVERID=s&STRFD_LENSID=*aa*", {"enable": 1, "server": "s", "lens": ["", "", "", "aa"], "alarm": ["", "aa"]}),
    ("two IDs belong to the last two of four channels", 4, "strFD_LensId=*A*B*", {"lens": ["", "", "A", "B"], "alarm": ["A", "B"]}),
    ("as many IDs as channels", 2, "strFD_LensId=*A*B*", {"lens": ["A", "B"]}),
    ("one ID, one channel", 1, "strFD_LensId=*AB*", {"lens": ["AB"]}),
    ("a list of one character is too short", 1, "strFD_LensId=*A*", {}),
    ("an empty list", 4, "strFD_LensId=**", {}),
    ("a lone star", 4, "strFD_LensId=*", {}),
    ("the last character is dropped whatever it is", 1, "strFD_LensId=*ABC", {"lens": ["AB"]}),
    ("an empty ID in the middle", 3, "strFD_LensId=*A**C*", {"lens": ["A", "", "C"], "alarm": ["C"]}),
    ("surplus IDs are ignored", 2, "strFD_LensId=*X*Y*A*B*", {"lens": ["A", "B"]}),
    ("no channels, no IDs", 0, "strFD_LensId=*A*B*", {}),
    ("eight lens IDs", 8, f"strFD_LensId={stars(TEN[:8])}", {"lens": TEN[:8], "alarm": TEN[2:8]}),
    ("alarm-input IDs take the place of lens IDs two entries on", 8, f"strFD_AlarmInId={stars(TEN[:8])}", {"lens": ["", "", *TEN[:6]], "alarm": TEN[:8]}),
    ("two channels, both lists", 2, "strFD_LensId=*A*B*&strFD_AlarmInId=*Y*Z*", {"lens": ["A", "B", "Y", "Z"], "alarm": ["Y", "Z"]}),
    ("four channels, both lists", 4, "strFD_LensId=*A*B*C*D*&strFD_AlarmInId=*W*X*Y*Z*", {"lens": ["A", "B", "W", "X", "Y", "Z"], "alarm": ["W", "X", "Y", "Z"]}),
    ("a short alarm ID covers a long lens ID", 4, f"strFD_LensId={stars(TEN[:4])}&strFD_AlarmInId=*Y*Z*", {"lens": [*TEN[:4], "Y", "Z"], "alarm": [*TEN[2:4], "Y", "Z"]}),
    ("IDs of 31 characters fill a message of more than 1,024 bytes", 8, f"strFD_LensId={stars(WIDE[:8])}&strFD_AlarmInId={stars(WIDE[1:9])}", {"lens": [*WIDE[:2], *WIDE[1:7]], "alarm": WIDE[1:9]}),
    ("IDs are cut to 31 characters", 1, f"strFD_LensId=*{'L' * 40}*", {"lens": ["L" * 31]}),
    ("a list without a star in front", 1, "strFD_LensId=ABC*", {}),
]


class TestChanging:
    @pytest.mark.parametrize("sentence, channels, form, fields", FORMS, ids=[row[0] for row in FORMS])
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
            assert rig.post("/set_GB28181Info", f"{name}={text}", version(8), REFUSED).body == b'{"result": 1 }'
            assert len(rig.device.requests) == 2

    def test_accepted_set_restarts(self, rig):
        assert rig.post("/set_GB28181Info", "", version(1), ACCEPTED).body == b'{"result": 1 }'
        rig.daemon.stderr.expect("Cannot bind to 80")

    def test_reply_without_result_is_failure(self, rig):
        assert rig.post("/set_GB28181Info", "", version(1), UNUSABLE).body == b'{"result": 0 }'
        rig.daemon.stderr.expect()
