"""The wire to the device application, seen through /get_LangInfo and /set_LangInfo."""

import socket

import netns
import pytest
from daemon import N, START, trace
from device import (
    ACCEPTED,
    OTHER_HOST,
    REFUSED,
    SILENCE,
    UNUSABLE,
    answer,
    change,
    from_other_host,
    from_other_port,
    query,
)

LANGUAGE_QUERY = query("<stDisplay>")
CHINESE = answer('<stDisplay strLanguage="CN"/>')
SHOWS_CHINESE = b'{ "strLanguage": "CN", "result": 1 }'
SHOWS_FAILURE = b'{ "strLanguage": "EN", "result": 0 }'
SET_ENTRY = (START, trace("set_LangInfo"), "CWebCtrl::set_LangInfo, lang:CN.")
SET_EXIT = trace("set_LangInfo")

BEGIN = "FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:6000."
END = "FUN:GetParaInfoByCmd, LINE:477."
ENTRY = (START, trace("get_LangInfo"), trace("getLangInfoFromNet"), BEGIN)
EXIT = (trace("getLangInfoFromNet"), trace("get_LangInfo"))


def received(data, host="127.0.0.1"):
    return (
        f"CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS {host}], "
        f"port[6000 VS 6000],len[{len(data)}]."
    )


def too_long(length, capacity):
    return (
        "CUdpCtrlSocket::RecvDataFromHost,  get data from[127.0.0.1  VS 127.0.0.1], "
        f"port[6000 VS 6000], too long len[{length} VS {capacity}]."
    )


def padded(length, section='stDisplay strLanguage="CN"'):
    """An answer of exactly this many bytes."""
    shell = answer(f"<{section} x=''/>")
    return answer(f"<{section} x='{'p' * (length - len(shell))}'/>")


def test_query_is_one_datagram_from_port_4999_of_eth0(rig):
    assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE
    assert rig.device.requests == [LANGUAGE_QUERY]
    assert rig.device.sources == [("192.0.2.10", 4999)]
    rig.daemon.stdout.expect(*ENTRY, received(CHINESE), END, *EXIT)
    rig.daemon.stderr.expect()


def test_set_comes_from_the_same_port(rig):
    rig.post("/set_LangInfo", "strLanguage=CN", REFUSED)
    assert rig.device.sources == [("192.0.2.10", 4999)]


def test_without_an_address_on_eth0_any_local_address_serves(rig):
    netns.remove_eth0_address()
    try:
        assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE
    finally:
        netns.restore_eth0_address()
    assert rig.device.sources == [("127.0.0.1", 4999)]


def test_reply_from_another_host_is_accepted(rig):
    assert rig.get("/get_LangInfo", from_other_host(CHINESE)).body == SHOWS_CHINESE
    rig.daemon.stdout.expect(*ENTRY, received(CHINESE, OTHER_HOST), END, *EXIT)


def test_reply_from_another_port_is_refused(rig):
    assert rig.get("/get_LangInfo", from_other_port(CHINESE)).body == SHOWS_FAILURE
    rig.daemon.stdout.expect(
        *ENTRY,
        "CUdpCtrlSocket::RecvDataFromHost, failed, get data peer net info not match"
        "[127.0.0.1  VS 127.0.0.1], port[6000 VS 6001].",
        *EXIT,
    )


def test_only_the_first_datagram_counts(rig):
    def play(device, source):
        rig.daemon.pause()
        device.send(CHINESE, source, device.other_port)
        device.send(CHINESE, source)
        rig.daemon.resume()

    assert rig.get("/get_LangInfo", play).body == SHOWS_FAILURE


def test_silent_device_fails_the_query_without_a_message(rig):
    assert rig.get("/get_LangInfo", SILENCE).body == SHOWS_FAILURE
    assert rig.device.requests == [LANGUAGE_QUERY]
    rig.daemon.stdout.expect(*ENTRY, *EXIT)


def test_empty_datagram_is_no_reply(rig):
    assert rig.get("/get_LangInfo", b"").body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, *EXIT)


def test_late_reply_is_not_taken_for_the_next_one(rig):
    """The second of two messages on one socket finds the first one's spare reply waiting."""

    def answer_twice(device, source):
        rig.daemon.pause()
        device.send(REFUSED, source)
        device.send(REFUSED, source)
        rig.daemon.resume()

    without_result = b'<VariCfgSec Action="DEVICE_SET"/>'
    reply = rig.post("/set_WifiInfo", "ucFD_WorkMode=2", answer_twice, without_result)
    assert reply.body == b'{"result": 0 }'
    assert len(rig.device.requests) == 2


CAPACITIES = [
    ("/get_LockOfPassword", "stLockOfPassword", 256),
    ("/get_LangInfo", "stDisplay", 512),
    ("/get_BaseInfo", "stBaseInfo", 512),
    ("/get_MirrorInfo", "stVideoMirror", 2048),
    ("/get_MainStreamInfo", "stMainStream", 2048),
    ("/get_SubStreamInfo", "stSubStream", 2048),
    ("/get_NetWModeInfo", "stNetWorkMode", 2048),
    ("/get_VCmsInfo", "stCMS", 2048),
    ("/get_WifiInfo", "stWifi", 2048),
    ("/get_GNetInfo", "stMobileGNet", 2048),
    ("/get_LocalNetInfo", "stLocalEth0", 2048),
    ("/get_VersionInfo", "stVersion", 2048),
    ("/get_SystemInfo", "stSystemInfo", 2048),
    ("/get_UserSecurity", "stUserSec", 2048),
    ("/get_Login", "stUserSec", 2048),
]


@pytest.mark.parametrize("uri, section, capacity", CAPACITIES)
def test_reply_of_the_capacity_is_read_and_one_byte_more_is_refused(rig, uri, section, capacity):
    assert b'"result": 1 }' in rig.get(uri, padded(capacity, section)).body
    assert b'"result": 0 }' in rig.get(uri, padded(capacity + 1, section)).body
    assert too_long(capacity + 1, capacity) in rig.daemon.stdout.since_mark()


def test_gb28181_reply_has_the_same_capacity(rig):
    version = answer('<stVersion VideoCnt="1"/>')
    for length, result in ((2048, 1), (2049, 0)):
        reply = rig.ask(
            b"GET /get_GB28181Info HTTP/1.1\r\n\r\n", version, padded(length, "stGB28181"), head=None
        )
        assert reply.body.endswith(b'"result": %d }' % result)


def test_datagram_beyond_the_receive_buffer_is_cut_to_it(rig):
    assert rig.get("/get_LangInfo", padded(40000)).body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, too_long(30000, 512), *EXIT)


NO_ATTRIBUTE = "CWebCtrl::GetParaCmdType, get first pAttribute failed."
NOT_ACTION = "CWebCtrl::GetParaCmdType, first attribute name is not Action."
SECTION = '<stDisplay strLanguage="CN"/>'

UNUSABLE_REPLIES = [
    ("not XML", UNUSABLE, ()),
    ("one byte", b"<", ()),
    ("a zero byte first", b"\0" + CHINESE, ()),
    ("another root", b'<Other Action="DEVICE_QUERY">' + SECTION.encode() + b"</Other>", ()),
    ("the root in other letters", CHINESE.replace(b"VariCfgSec", b"varicfgsec"), ()),
    ("no attribute", f"<VariCfgSec>{SECTION}</VariCfgSec>".encode(), (NO_ATTRIBUTE,)),
    (
        "Result in front of Action",
        f'<VariCfgSec Result="0" Action="DEVICE_QUERY">{SECTION}</VariCfgSec>'.encode(),
        (NOT_ACTION,),
    ),
    (
        "action in other letters",
        f'<VariCfgSec action="DEVICE_QUERY">{SECTION}</VariCfgSec>'.encode(),
        (NOT_ACTION,),
    ),
    ("no section", b'<VariCfgSec Action="DEVICE_QUERY" Result="0"/>', ()),
    ("text for a section", b'<VariCfgSec Action="DEVICE_QUERY">text</VariCfgSec>', ()),
    ("a comment for a section", b'<VariCfgSec Action="DEVICE_QUERY"><!-- --></VariCfgSec>', ()),
    (
        "nested far too deep",
        b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN">' + b"<a>" * 120 + b"</VariCfgSec>",
        (),
    ),
]


@pytest.mark.parametrize("sentence, data, messages", UNUSABLE_REPLIES, ids=[r[0] for r in UNUSABLE_REPLIES])
def test_unusable_query_reply_fails_the_query(rig, sentence, data, messages):
    assert rig.get("/get_LangInfo", data).body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, received(data), END, *messages, *EXIT)


USABLE_REPLIES = [
    ("the values of Action and Result are not looked at", b'<VariCfgSec Action="" Result="7"><stDisplay strLanguage="CN"/></VariCfgSec>'),
    ("a section that is not closed", b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN"></VariCfgSec>'),
    ("a document that is cut behind the section", b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN"/>'),
    ("an XML declaration", b'<?xml version="1.0" encoding="GBK"?>' + CHINESE),
    ("line ends and blanks", b' \r\n<VariCfgSec  Action="DEVICE_QUERY" >\n <stDisplay\tstrLanguage = "CN" />\n</VariCfgSec>\n'),
    ("single quotes", b"<VariCfgSec Action='DEVICE_QUERY'><stDisplay strLanguage='CN'/></VariCfgSec>"),
    ("a section of another name", b'<VariCfgSec Action="DEVICE_QUERY"><stOther strLanguage="CN"/></VariCfgSec>'),
    ("the first of two sections", b'<VariCfgSec Action="DEVICE_QUERY"><a strLanguage="CN"/><b strLanguage="EN"/></VariCfgSec>'),
    ("children within the depth", b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN">' + b"<a>" * 20 + b"</a>" * 20 + b"</stDisplay></VariCfgSec>"),
    ("a zero byte behind the document", CHINESE + b"\0<VariCfgSec"),
]


@pytest.mark.parametrize("sentence, data", USABLE_REPLIES, ids=[r[0] for r in USABLE_REPLIES])
def test_usable_query_reply_is_taken_as_it_comes(rig, sentence, data):
    assert rig.get("/get_LangInfo", data).body == SHOWS_CHINESE


def test_short_reply_is_not_read_together_with_the_request_behind_it(rig):
    """Request and reply share a buffer; a reply that stops in a tag must not be continued."""
    cut = b'<VariCfgSec Action="DEVICE_QUERY"'
    assert cut != LANGUAGE_QUERY and LANGUAGE_QUERY.startswith(cut)
    assert rig.get("/get_LangInfo", cut).body == SHOWS_FAILURE


SET_REPLIES = [
    ("another Result", b'<VariCfgSec Action="DEVICE_SET" Result="3"/>', 1, ()),
    ("a negative Result", b'<VariCfgSec Action="DEVICE_SET" Result="-1"/>', 1, ()),
    ("Result behind other attributes", b'<VariCfgSec Action="DEVICE_SET" a="0" Result="1" Result2="0"/>', 1, ()),
    ("a Result of 600 characters", b'<VariCfgSec Action="DEVICE_SET" Result="1' + b"x" * 600 + b'"/>', 1, ()),
    ("no Result", b'<VariCfgSec Action="DEVICE_SET"/>', 0, ()),
    ("Result in other letters", b'<VariCfgSec Action="DEVICE_SET" result="1"/>', 0, ()),
    ("Result on the section only", b'<VariCfgSec Action="DEVICE_SET"><stDisplay Result="1"/></VariCfgSec>', 0, ()),
    ("not XML", UNUSABLE, 0, ()),
    ("another root", b'<Other Action="DEVICE_SET" Result="1"/>', 0, ()),
    ("no attribute", b"<VariCfgSec/>", 0, (NO_ATTRIBUTE,)),
    ("Result first", b'<VariCfgSec Result="1" Action="DEVICE_SET"/>', 0, (NOT_ACTION,)),
]


@pytest.mark.parametrize("sentence, data, result, messages", SET_REPLIES, ids=[r[0] for r in SET_REPLIES])
def test_set_succeeds_when_a_reply_carries_a_result(rig, sentence, data, result, messages):
    reply = rig.post("/set_LangInfo", "strLanguage=CN", data)
    assert reply.chunks == [b'{"result": %d }' % result]
    rig.daemon.stdout.expect(*SET_ENTRY, received(data), *messages, SET_EXIT)
    rig.daemon.stderr.expect()


def test_result_that_is_no_number_counts_as_accepted(rig):
    data = b'<VariCfgSec Action="DEVICE_SET" Result="OK"/>'
    assert rig.post("/set_LangInfo", "strLanguage=CN", data).body == b'{"result": 1 }'
    rig.daemon.stderr.expect("Cannot bind to 80")


def test_set_reply_may_fill_the_receive_buffer_and_is_cut_beyond_it(rig):
    head = b'<VariCfgSec Action="DEVICE_SET" Result="1"><a x="'
    for length in (30000, 40000):
        data = head + b"p" * (length - len(head))
        assert rig.post("/set_LangInfo", "strLanguage=CN", data).body == b'{"result": 1 }'
        rig.daemon.stdout.expect(*SET_ENTRY, received(data[:30000]), SET_EXIT)


def test_taken_local_port_fails_bind_and_send(rig):
    text = "strLanguage=CN"
    message = change('<stDisplay strLanguage="CN" />')
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as holder:
        holder.bind(("192.0.2.10", 4999))
        assert rig.post("/set_LangInfo", text).body == b'{"result": 0 }'
        failures = (
            "CUdpCtrlSocketSvr::OpenSvrSocket, Server Bind Failed. Error:Address already in use",
            "CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:6000][len:%d], failed, "
            "err:Bad file descriptor.",
        )
        rig.daemon.stdout.expect(
            *SET_ENTRY, failures[0], failures[1] % len(message), SET_EXIT
        )
        assert rig.get("/get_LangInfo").body == SHOWS_FAILURE
        rig.daemon.stdout.expect(*ENTRY, failures[0], failures[1] % len(LANGUAGE_QUERY), *EXIT)
    assert rig.device.requests == []
    assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE


def test_accepted_set_restarts_and_answers_afterwards(rig):
    assert rig.post("/set_LangInfo", "strLanguage=CN", ACCEPTED).body == b'{"result": 1 }'
    rig.daemon.stderr.expect("Cannot bind to 80")
    assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE


def test_descriptors_are_closed_on_every_path(rig):
    rig.get("/get_LangInfo", CHINESE)
    before = rig.daemon.count_idle_descriptors()
    for data in [*(row[1] for row in UNUSABLE_REPLIES), CHINESE, b"", padded(513)]:
        rig.get("/get_LangInfo", data)
        rig.post("/set_LangInfo", "strLanguage=CN", data)
    assert rig.daemon.count_idle_descriptors() == before
