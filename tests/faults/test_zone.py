"""The device application sets another time zone while the service runs."""

import os
import re
import struct
import time

import netns
import pytest
from daemon import Daemon, wait_for_next_second
from device import answer

BASE = answer('<stBaseInfo strFD_DeviceNo="1"/>')


def zone_file(path, hours_ahead):
    """A time zone with one offset, in the C library's file format."""
    with open(path, "wb") as file:
        file.write(struct.pack(">4s16x6liBB4s", b"TZif", 0, 0, 0, 0, 1, 4, hours_ahead * 3600, 0, 0, b"ABC"))


@pytest.fixture
def zone(tmp_path):
    path = tmp_path / "zone"
    zone_file(path, 8)
    netns.cover("/etc/localtime", path)
    yield path
    netns.uncover("/etc/localtime")


@pytest.fixture
def daemon(tmp_path, zone):
    daemon = Daemon(tmp_path / "daemon", env={"TZ": None}).start()
    yield daemon
    daemon.stop()


def test_clock_that_is_shown_follows_the_zone(rig, zone):
    for second, hours_ahead in enumerate((8, 3, -5)):
        zone_file(zone, hours_ahead)
        os.utime(zone, (second, second))  # the C library compares whole seconds
        wait_for_next_second()
        body = rig.get("/get_BaseInfo", BASE).body.decode()
        shown = re.search(r'"strFD_CurTime": "(\d{4}-\d\d-\d\d \d\d):', body)[1]
        now = time.time() + hours_ahead * 3600
        assert shown in {time.strftime("%Y-%m-%d %H", time.gmtime(now + skew)) for skew in (-10, 0)}
