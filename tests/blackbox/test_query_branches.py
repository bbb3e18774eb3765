"""The query endpoints with logic of their own: base settings, password lock, Wi-Fi."""

import re
import time

import pytest
from daemon import clock
from device import UNUSABLE, answer, query
from http_client import query_chunks


def attributes(**values):
    return " ".join(f'{name}="{value}"' for name, value in values.items())


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
        """The values; the time must be that of the daemon's own clock in its zone (UTC+8)."""
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
        """The count, time and result in the reply, and the times before and after the request."""
        section = f"<stLockOfPassword ucFD_ErrorCount='{count}' uiFD_LockTime='{lock_time}'/>"
        before = clock()
        reply = rig.get("/get_LockOfPassword", answer(section), *steps)
        match = re.fullmatch(
            rb'\{ "ucFD_ErrorCount": "(\d+)"\|, "time": "(-?\d+)" \|, "result": (\d) \}',
            b"|".join(reply.chunks),
        )
        return (*(int(text) for text in match.groups()), before, clock())

    @pytest.mark.parametrize(
        "count, ago", [(5, 0), (5, 3500), (255, 10), (4, 3600), (4, 100000), (0, 7200)]
    )
    def test_count_and_elapsed_time_while_locked_or_below_five(self, rig, count, ago):
        lock_time = clock() - self.OFFSET - ago
        shown, elapsed, result, before, after = self.ask(rig, count, lock_time)
        assert (shown, result) == (count, 1)
        assert before - self.OFFSET - lock_time <= elapsed <= after - self.OFFSET - lock_time
        assert rig.device.requests == [self.QUERY]

    @pytest.mark.parametrize("count, ago", [(5, 3600), (6, 100000), (255, 4000)])
    def test_lock_over_resets_the_count_on_the_device_and_shows_the_lock_time(
        self, rig, count, ago
    ):
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
        expected = [
            query_chunks(0, '{ "ucFD_ErrorCount": "0"', f', "time": "{t - self.OFFSET}" ')
            for t in now
        ]
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
        assert reply.chunks == query_chunks(1, *self.pieces("a" * 31, "appw", 3, 4, 0))
        assert rig.device.requests == self.REQUESTS
        rig.daemon.stdout.expect_in_order(
            f"-------------------ap xml:{self.POINT.decode()}.",
            f"-------------------AP ssid:{'a' * 31}.",
        )

    @pytest.mark.parametrize("data", [UNUSABLE, answer(""), b""])
    def test_failed_access_point_query_leaves_the_station_values(self, rig, data):
        reply = rig.get("/get_WifiInfo", self.STATION, data)
        assert reply.chunks == query_chunks(0, *self.pieces("st", "stpw", 1, 2, 1))
        assert rig.device.requests == self.REQUESTS

    def test_other_modes_ask_for_the_station_only(self, rig):
        for mode in ("0", "1", "3", "-2"):
            station = self.STATION.replace(b'Mode="2" strFD', b'Mode="%s" strFD' % mode.encode())
            assert b'"strFD_SSID": "st"' in rig.get("/get_WifiInfo", station).body
            assert rig.device.requests == self.REQUESTS[:1]

    def test_mode_258_is_mode_2(self, rig):
        station = self.STATION.replace(b'Mode="2" strFD', b'Mode="258" strFD')
        reply = rig.get("/get_WifiInfo", station, self.POINT)
        assert reply.chunks == query_chunks(1, *self.pieces("a" * 31, "appw", 3, 4, 0))
