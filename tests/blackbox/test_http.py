"""Routing, static files, page includes and the requests that no browser sends."""

import os
import re

import pytest
from daemon import FILES, START
from device import change
from http_client import Client, get, post

CPU_USAGE = re.compile(rb'\{ "strFD_SSID": "new ", "result": (\d+) \}')
CHINESE = change('<stDisplay strLanguage="CN" />')


def fetch(rig, uri, headers=""):
    return rig.ask(get(uri, headers), head=None)


def test_cpu_usage_is_a_percentage_behind_the_text_new(rig):
    for _ in range(20):
        reply = rig.get("/get_cpu_usage")
        assert reply.chunks[0] == b'{ "strFD_SSID": "new "'
        assert len(reply.chunks) == 2
        assert 0 <= int(CPU_USAGE.fullmatch(reply.body)[1]) <= 100
        rig.daemon.stdout.expect(START, "-------------------handle_get_cpu_usage.")


def test_query_string_takes_no_part_in_routing(rig):
    assert CPU_USAGE.fullmatch(rig.get("/get_cpu_usage?time=1").body)


NOT_ENDPOINTS = [
    "/GET_CPU_USAGE",
    "/get_Cpu_usage",
    "/get_cpu_usage/",
    "/get_cpu_usag",
    "/get_cpu_usage2",
    "/pages/get_cpu_usage",
    "/get_langinfo",
    "/set_MirrorInf",
    "/get_WifiAp",
]


@pytest.mark.parametrize("uri", NOT_ENDPOINTS)
def test_uri_that_differs_from_every_endpoint_goes_to_the_files(rig, uri):
    assert fetch(rig, uri).head.startswith(b"HTTP/1.1 404 ")
    rig.daemon.stdout.expect(START, FILES)
    assert rig.device.requests == []


def test_static_file_is_served_whole(rig):
    reply = fetch(rig, "/page.css")
    assert reply.head.startswith(b"HTTP/1.1 200 OK\r\n")
    assert b"\r\nContent-Type: text/css; charset=utf-8\r\n" in reply.head
    assert reply.body == b"body { color: page }"
    rig.daemon.stdout.expect(START, FILES)


def test_folder_serves_its_index(rig):
    assert fetch(rig, "/").body == b"<html>index</html>"


def test_large_file_arrives_complete_on_a_kept_connection(rig):
    rig.device.play()
    with Client() as client:
        for _ in range(5):
            client.send(get("/large.bin"))
            assert client.read_reply().body == b"0123456789abcdef" * 16384
        assert not client.is_closed()


def test_folder_without_index_is_not_listed(rig):
    os.makedirs(os.path.join(rig.daemon.folder, "web_root", "secrets"), exist_ok=True)
    assert fetch(rig, "/secrets/").head.startswith(b"HTTP/1.1 501 ")


@pytest.mark.parametrize("name", ["program.cgi", "program.php"])
def test_program_among_the_pages_is_not_run(rig, name):
    path = os.path.join(rig.daemon.folder, "web_root", name)
    with open(path, "w", encoding="ascii") as file:
        file.write("#!/bin/sh\ntouch ran\n")
    os.chmod(path, 0o755)
    assert fetch(rig, f"/{name}").head.startswith(b"HTTP/1.1 501 ")
    assert not os.path.exists(os.path.join(rig.daemon.folder, "web_root", "ran"))


def test_request_for_another_protocol_is_answered_like_any(rig):
    rig.device.play()
    upgrade = "Upgrade: websocket\r\nConnection: Upgrade\r\nSec-WebSocket-Version: 13\r\n"
    with Client() as client:
        client.send(get("/page.css", upgrade + "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\n"))
        assert client.read_reply().body == b"body { color: page }"


@pytest.mark.parametrize(
    "uri",
    [
        "/../stdout.txt",
        "/%2e%2e/stdout.txt",
        "/a/../../stdout.txt",
        "/..%2fstdout.txt",
        "//..//stdout.txt",
    ],
)
def test_files_outside_the_web_root_are_not_served(rig, uri):
    assert os.path.exists(os.path.join(rig.daemon.folder, "stdout.txt"))
    assert not fetch(rig, uri).head.startswith(b"HTTP/1.1 200 ")


def test_include_calls_print_the_two_settings(rig):
    assert fetch(rig, "/both.shtml").body == b"[value1|value2]"
    rig.daemon.stdout.expect(START, FILES)


def test_include_call_of_anything_else_prints_nothing(rig):
    assert fetch(rig, "/other.shtml").body == b"[|]"


def test_requests_sent_in_one_piece_are_answered_in_order(rig):
    rig.device.play()
    with Client() as client:
        client.send(get("/page.css") + get("/get_cpu_usage") + get("/sets.css"))
        assert client.read_reply().body == b"body { color: page }"
        assert CPU_USAGE.fullmatch(client.read_reply().body)
        assert client.read_reply().body == b"body { color: sets }"
        assert client.pending() == b""


def test_request_sent_byte_by_byte_is_answered_once(rig):
    rig.device.play()
    with Client() as client:
        for byte in post("/set_LangInfo", "strLanguage=CN"):
            client.send(bytes([byte]))
        assert client.read_reply().body == b'{"result": 1 }'
    assert rig.device.requests == [CHINESE]


BODIES = [
    (
        "a GET carries a form as well",
        b"GET /set_LangInfo HTTP/1.1\r\nContent-Length: 14\r\n\r\nstrLanguage=CN",
        [CHINESE],
    ),
    (
        "so does another method",
        b"PATCH /set_LangInfo HTTP/1.1\r\nContent-Length: 14\r\n\r\nstrLanguage=CN",
        [CHINESE],
    ),
    (
        "a form in the query string is none",
        b"POST /set_LangInfo?strLanguage=CN HTTP/1.1\r\nContent-Length: 0\r\n\r\n",
        [],
    ),
    ("a GET without a length has no body", b"GET /set_LangInfo HTTP/1.1\r\n\r\n", []),
    (
        "a body may come in chunks",
        b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n7\r\nstrLang\r\n7\r\nuage=CN\r\n0\r\n\r\n",
        [CHINESE],
    ),
]


@pytest.mark.parametrize(
    "sentence, request_bytes, datagrams", BODIES, ids=[row[0] for row in BODIES]
)
def test_form_is_read_from_the_body_whatever_the_method(rig, sentence, request_bytes, datagrams):
    assert rig.ask(request_bytes).body == b'{"result": 1 }'
    assert rig.device.requests == datagrams


def still_serves():
    with Client() as client:
        client.send(get("/get_cpu_usage"))
        return CPU_USAGE.fullmatch(client.read_reply().body) is not None


HOSTILE_LENGTHS = [
    "-1",
    "-14",
    "-2147483648",
    "-9223372036854775807",
    "4294967296",
    "9223372036854775807",
    "18446744073709551615",
    "15",
    "1000000000",
    "0x10",
    "many",
    "",
]
TARGETS = ["/set_LangInfo", "/cmp_UserSecurity", "/import_CfgFile", "/page.css"]


@pytest.mark.parametrize("uri", TARGETS)
@pytest.mark.parametrize("length", HOSTILE_LENGTHS)
def test_hostile_content_length_is_harmless(rig, uri, length):
    rig.device.play()
    with Client() as client:
        client.send(
            f"POST {uri} HTTP/1.1\r\nContent-Length: {length}\r\n\r\nstrLanguage=CN".encode()
        )
        client.end_of_requests()
        client.read_to_end()
    assert still_serves()
    allowed = [CHINESE, b'<VariCfgSec Action="DEVICE_QUERY"><stUserSec></VariCfgSec>']
    assert all(datagram in allowed for datagram in rig.device.requests)


MALFORMED = [
    b"\x00\x01\x02\r\n\r\n",
    b"GET\r\n\r\n",
    b"\r\n\r\n",
    b" \r\n\r\n",
    b"GET /get_cpu_usage\r\n\r\n",
    b"GET  HTTP/1.1\r\n\r\n",
    b"GET /% HTTP/1.1\r\n\r\n",
    b"GET /%00%ff HTTP/1.1\r\n\r\n",
    b"GET /" + b"a" * 7000 + b" HTTP/1.1\r\n\r\n",
    b"GET / HTTP/1.1\r\n" + b"a: b\r\n" * 500 + b"\r\n",
    b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\nFFFFFFFFFFFFFFFF\r\nx",
    b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n-1\r\nx\r\n0\r\n\r\n",
    b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: 3\r\n\r\n%%%",
    b"GET /get_cpu_usage HTTP/1.1\r\nUpgrade: websocket\r\nSec-WebSocket-Key: x\r\n\r\n\xff\xff",
]


@pytest.mark.parametrize("data", MALFORMED)
def test_malformed_request_does_not_stop_the_service(rig, data):
    rig.device.play()
    with Client() as client:
        client.send(data)
        client.end_of_requests()
        client.read_to_end()
    assert still_serves()
    assert rig.device.requests == []


def test_client_that_leaves_in_the_middle_of_a_request_is_forgotten(rig):
    whole = get("/page.css", "Cookie: " + "c" * 200 + "\r\n")
    for end in range(0, len(whole), 16):
        with Client() as client:
            client.send(whole[:end])
    assert still_serves()
