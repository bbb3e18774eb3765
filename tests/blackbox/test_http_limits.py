"""Memory and connections stay bounded, whatever clients do."""

from daemon import wait_until, wait_for_next_second
from http_client import Client, get

MEBIBYTE = 1024 * 1024
CONNECTIONS_KEPT = 128


def served(client):
    client.send(get("/page.css"))
    return client.read_reply().body == b"body { color: page }"


def test_request_head_of_almost_8_kib_is_served(rig):
    padding = "c" * (8192 - len(get("/page.css", "Cookie: \r\n")) - 1)
    request = get("/page.css", f"Cookie: {padding}\r\n")
    assert len(request) == 8191
    assert rig.ask(request, head=None).body == b"body { color: page }"


def test_request_head_that_does_not_end_within_8_kib_closes_the_connection(rig):
    with Client() as client:
        client.send(b"GET /page.css HTTP/1.1\r\nCookie: " + b"c" * 8192)
        assert client.read_to_end() == b""
    with Client() as client:
        assert served(client)


def send_as_far_as_it_goes(client, data):
    try:
        client.send(data)
    except (ConnectionResetError, BrokenPipeError):
        pass


def test_request_of_more_than_1_mib_is_closed_without_a_reply(rig):
    rig.device.play()
    with Client() as client:
        client.send(b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: %d\r\n\r\n" % (2 * MEBIBYTE))
        send_as_far_as_it_goes(client, b"a" * (2 * MEBIBYTE))
        assert client.read_to_end() == b""
    with Client() as client:
        assert served(client)
    assert rig.device.requests == []


def test_request_below_1_mib_is_answered(rig):
    form = b"a" * (MEBIBYTE - 1024) + b"&strLanguage=CN"
    rig.device.play()
    with Client() as client:
        client.send(b"POST /set_LangInfo HTTP/1.1\r\nContent-Length: %d\r\n\r\n" % len(form) + form)
        assert client.read_reply().body == b'{"result": 1 }'
    assert rig.device.requests == [
        b'<VariCfgSec Action="DEVICE_SET"><stDisplay strLanguage="CN" /></VariCfgSec>'
    ]


def test_endless_chunked_body_is_closed(rig):
    with Client() as client:
        client.send(b"POST /set_LangInfo HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n")
        send_as_far_as_it_goes(client, (b"400\r\n" + b"a" * 1024 + b"\r\n") * 2048)
        client.read_to_end()
    with Client() as client:
        assert served(client)


def count_open(clients):
    return sum(not client.is_closed() for client in clients)


def test_longest_idle_connections_above_128_are_closed_and_new_clients_served(rig):
    old = [Client() for _ in range(60)]
    assert all(served(client) for client in old)
    wait_for_next_second()
    assert served(old[0])
    young = [Client() for _ in range(80)]
    assert all(served(client) for client in young)
    wait_until(lambda: count_open(old) + count_open(young) == CONNECTIONS_KEPT, "128 are left")
    assert count_open(young) == len(young)
    assert not old[0].is_closed()
    with Client() as newcomer:
        assert served(newcomer)
    for client in old + young:
        client.close()


def test_flood_of_silent_connections_keeps_descriptors_bounded(rig):
    before = rig.daemon.count_idle_descriptors()
    clients = [Client() for _ in range(400)]
    with Client() as newcomer:
        assert served(newcomer)
    wait_until(lambda: rig.daemon.count("fd") <= before + CONNECTIONS_KEPT + 1, "the limit")
    for client in clients:
        client.close()
    assert rig.daemon.count_idle_descriptors() == before
