"""Reading the GB/T 28181 settings: two queries and a misspelt header."""

import pytest
from daemon import START, trace
from device import UNUSABLE, VERSION_QUERY, answer, query, version
from http_client import JSON_HEAD

QUERIES = [VERSION_QUERY, query("<stGB28181>")]


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
        (
            "flags 128 count as enabled",
            {"enable": "128"},
            [b'{ "ucFD_GB28181Enable": "1"', b', "ucFD_StreamType": "1"'],
        ),
        ("flags 384 are 128", {"enable": "384"}, [b', "ucFD_StreamType": "1"']),
        ("port of 16 bits", {"usFD_ServerPort": "65537"}, [b', "usFD_ServerPort": "1"']),
        (
            "texts of 31 characters",
            {"strFD_ServerID": "1" * 40},
            [b', "strFD_ServerID": "%s"' % (b"1" * 31)],
        ),
        (
            "a server is not masked",
            {"strFD_ServerIp": "203.0.113.101"},
            [b', "strFD_ServerIp": "203.0.113.101"'],
        ),
        (
            "identifiers of 32 characters have no end of their own",
            {"sub_ids": f'<SUBDEVID_0 strFD_LensId="{"L" * 40}" strFD_AlarmInId="{"A" * 40}"/>'},
            [
                b', "strFD_LensId": "*%s*"' % (b"L" * 32),
                b', "strFD_AlarmInId": "*%s*"' % (b"A" * 32),
            ],
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
