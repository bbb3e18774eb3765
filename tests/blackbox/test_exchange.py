"""The socket to the device application, tested through /get_LangInfo and /set_LangInfo."""

import socket
import time

import netns
import pytest
from device import (
    ACCEPTED,
    OTHER_HOST,
    REFUSED,
    SILENCE,
    answer,
    change,
    from_other_host,
    from_other_port,
    version,
)
from http_client import get
from language import (
    CHINESE,
    END,
    ENTRY,
    EXIT,
    LANGUAGE_QUERY,
    SET_ENTRY,
    SET_EXIT,
    SHOWS_CHINESE,
    SHOWS_FAILURE,
    received,
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


def test_traces_are_out_while_the_device_is_waited_for(rig):
    visible = []

    def play(device, source):
        deadline = time.monotonic() + 2
        while ENTRY[-1] not in rig.daemon.stdout.since_mark() and time.monotonic() < deadline:
            time.sleep(0.01)
        visible.append(rig.daemon.stdout.since_mark())
        device.send(CHINESE, source)

    assert rig.get("/get_LangInfo", play).body == SHOWS_CHINESE
    assert ENTRY[-1] in visible[0]


def test_silent_device_fails_the_query_without_a_message(rig):
    assert rig.get("/get_LangInfo", SILENCE).body == SHOWS_FAILURE
    assert rig.device.requests == [LANGUAGE_QUERY]
    rig.daemon.stdout.expect(*ENTRY, *EXIT)


def test_empty_datagram_is_no_reply(rig):
    assert rig.get("/get_LangInfo", b"").body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, *EXIT)


def test_late_reply_is_not_taken_for_the_next_one(rig):
    """An extra reply to the first message is there before the second message is sent."""

    def answer_twice(device, source):
        rig.daemon.pause()
        device.send(REFUSED, source)
        device.send(REFUSED, source)
        rig.daemon.resume()

    without_result = b'<VariCfgSec Action="DEVICE_SET"/>'
    reply = rig.post("/set_WifiInfo", "ucFD_WorkMode=2", answer_twice, without_result)
    assert reply.body == b'{"result": 0 }'
    assert len(rig.device.requests) == 2


def test_answer_that_a_stray_datagram_left_over_is_taken_for_the_next_one(rig):
    """Nothing in a message says which request it belongs to, and here it arrives during another
    one."""

    def interrupted(device, source):
        device.send(CHINESE, source, device.other_port)

    def left_over(device, source):
        device.send(ACCEPTED, source)

    assert rig.post("/set_MirrorInfo", "strFD_UpDown=1", interrupted).body == b'{"result": 0 }'
    shown = b'{ "strFD_CfgPara": "' + ACCEPTED + b'", "result": 1 }'
    assert rig.get("/export_CfgFile", left_over).body == shown
    assert rig.daemon.is_alive()


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
    for length, result in ((2048, 1), (2049, 0)):
        reply = rig.ask(
            get("/get_GB28181Info"),
            version(1),
            padded(length, "stGB28181"),
            head=None,
        )
        assert reply.body.endswith(b'"result": %d }' % result)


def test_datagram_beyond_the_receive_buffer_is_cut_to_it(rig):
    assert rig.get("/get_LangInfo", padded(40000)).body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, too_long(30000, 512), *EXIT)


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
        rig.daemon.stdout.expect(*SET_ENTRY, failures[0], failures[1] % len(message), SET_EXIT)
        assert rig.get("/get_LangInfo").body == SHOWS_FAILURE
        rig.daemon.stdout.expect(*ENTRY, failures[0], failures[1] % len(LANGUAGE_QUERY), *EXIT)
    assert rig.device.requests == []
    assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE


def test_accepted_set_restarts_and_answers_afterwards(rig):
    assert rig.post("/set_LangInfo", "strLanguage=CN", ACCEPTED).body == b'{"result": 1 }'
    rig.daemon.stderr.expect("Cannot bind to 80")
    assert rig.get("/get_LangInfo", CHINESE).body == SHOWS_CHINESE
