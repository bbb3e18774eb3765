"""The set endpoints of the device itself: the exact datagram that a form becomes.

The device answers with Result 1 here, which ends a set without the restart: what the forms become
is the subject. A form value has at most 63 characters unless said otherwise; how a longer, empty or
missing one counts differs between the endpoints.
"""

import pytest
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


def lock(count, seconds):
    return f'<stLockOfPassword ucFD_ErrorCount="{count}" uiFD_LockTime="{seconds}" />'


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
        (
            "no device number",
            "ucFD_TimeZone=8&ucFD_GpsSTFlag=1&strFD_CurTime=t",
            base("", 8, 1, "t"),
        ),
        ("no time zone", "strFD_DeviceNo=1&ucFD_GpsSTFlag=1&strFD_CurTime=t", base("1", 0, 1, "t")),
        ("no flag", "strFD_DeviceNo=1&ucFD_TimeZone=8&strFD_CurTime=t", base("1", 8, 0, "t")),
        ("no time", "strFD_DeviceNo=1&ucFD_TimeZone=8&ucFD_GpsSTFlag=1", base("1", 8, 1, "")),
        (
            "empty values",
            "strFD_DeviceNo=&ucFD_TimeZone=&ucFD_GpsSTFlag=&strFD_CurTime=",
            base("", 0, 0, ""),
        ),
        (
            "20 characters of number",
            f"strFD_DeviceNo={'12345' * 4}",
            base("123451234512345", 0, 0, ""),
        ),
        (
            "15 characters of number",
            "strFD_DeviceNo=123451234512345",
            base("123451234512345", 0, 0, ""),
        ),
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
        (
            "names in capitals",
            "STRFD_DEVICENO=A&UCFD_TIMEZONE=1&UCFD_GPSSTFLAG=1&STRFD_CURTIME=t",
            base("A", 1, 1, "t"),
        ),
        (
            "nothing is escaped",
            "strFD_DeviceNo=%22%3C%26%3E&strFD_CurTime=%25s%25n",
            base('"<&>', 0, 0, "%s%n"),
        ),
    ],
    "/set_DeviceNo": [
        ("full", "strFD_DeviceNo=12345", '<stBaseInfo strFD_DeviceNo="12345"/>'),
        ("missing", "", '<stBaseInfo strFD_DeviceNo=""/>'),
        ("empty", "strFD_DeviceNo=", '<stBaseInfo strFD_DeviceNo=""/>'),
        (
            "20 characters are cut to 15",
            f"strFD_DeviceNo={'abcde' * 4}",
            f'<stBaseInfo strFD_DeviceNo="{"abcde" * 3}"/>',
        ),
        ("URL-encoded", "strFD_DeviceNo=a+b%2Bc", '<stBaseInfo strFD_DeviceNo="a b+c"/>'),
        ("name in another case", "strfd_deviceno=1", '<stBaseInfo strFD_DeviceNo="1"/>'),
    ],
    "/set_MirrorInfo": [
        ("full", "strFD_UpDown=1&strFD_LeftRight=0", mirror(0, 1)),
        ("full, the other way round", "strFD_UpDown=0&strFD_LeftRight=1", mirror(1, 0)),
        ("both", "strFD_UpDown=1-0&strFD_LeftRight=1-0", mirror(1, 1)),
        ("only the piece before the dash", "strFD_UpDown=0-1&strFD_LeftRight=1-0", mirror(1, 0)),
        ("above 1 is 1", "strFD_UpDown=2&strFD_LeftRight=300", mirror(1, 1)),
        ("nothing before the dash is 0", "strFD_UpDown=-1&strFD_LeftRight=-", mirror(0, 0)),
        ("empty values", "strFD_UpDown=&strFD_LeftRight=", mirror(0, 0)),
        ("empty form", "", mirror(0, 0)),
        ("no up-down", "strFD_LeftRight=1", mirror(1, 0)),
        ("no left-right", "strFD_UpDown=1", mirror(0, 1)),
        (
            "an over-long value is cut and counts",
            f"strFD_UpDown=1-{'0' * 70}&strFD_LeftRight={'0' * 63}1",
            mirror(0, 1),
        ),
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
        (
            "64 characters are missing",
            f"ucFD_FrameRate={'0' * 63}9&uiFD_BitRate={'0' * 63}9",
            main_stream(0, 0),
        ),
        (
            "63 characters",
            f"ucFD_FrameRate={'0' * 62}9&uiFD_BitRate={'0' * 62}9",
            main_stream(9, 9),
        ),
        ("URL-encoded", "ucFD_FrameRate=%32%35&uiFD_BitRate=+7", main_stream(25, 7)),
        ("names in capitals", "UCFD_FRAMERATE=1&UIFD_BITRATE=2", main_stream(1, 2)),
    ],
    "/set_SubStreamInfo": [
        ("full", "ucFD_SFrameRate=15&uiFD_SBitRate=512", sub_stream(15, 512)),
        ("empty form", "", sub_stream(0, 0)),
        ("no frame rate", "uiFD_SBitRate=512", sub_stream(0, 512)),
        ("no bit rate", "ucFD_SFrameRate=15", sub_stream(15, 0)),
        (
            "names without the S are other names",
            "ucFD_FrameRate=15&uiFD_BitRate=512",
            sub_stream(0, 0),
        ),
        ("frame rate above 8 bits", "ucFD_SFrameRate=-1", sub_stream(255, 0)),
        ("empty values", "ucFD_SFrameRate=&uiFD_SBitRate=", sub_stream(0, 0)),
        (
            "64 characters are missing",
            f"ucFD_SFrameRate={'0' * 63}9&uiFD_SBitRate={'0' * 63}9",
            sub_stream(0, 0),
        ),
        (
            "63 characters",
            f"ucFD_SFrameRate={'0' * 62}9&uiFD_SBitRate={'0' * 62}9",
            sub_stream(9, 9),
        ),
        ("encode mode is not taken", "ucFD_EncodeMode=1&ucFD_SFrameRate=1", sub_stream(1, 0)),
        ("URL-encoded", "ucFD_SFrameRate=%31&uiFD_SBitRate=%32", sub_stream(1, 2)),
        ("names in capitals", "UCFD_SFRAMERATE=1&UIFD_SBITRATE=2", sub_stream(1, 2)),
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
    (
        "over-long values are cut and count",
        f"ucFD_ErrorCount={'0' * 254}51&time={'0' * 254}71",
        lock(5, 7),
    ),
    ("URL-encoded", "ucFD_ErrorCount=%35&time=+7", lock(5, 7)),
    ("names in capitals", "UCFD_ERRORCOUNT=1&TIME=2", lock(1, 2)),
]


@pytest.mark.parametrize("sentence, form, section", LOCK_FORMS, ids=[row[0] for row in LOCK_FORMS])
def test_lock_form_is_forwarded_and_a_refusal_reported(rig, sentence, form, section):
    assert rig.post("/set_LockOfPassword", form, REFUSED).chunks == [b'{"result": 0 }']
    assert rig.device.requests == [change(section)]
