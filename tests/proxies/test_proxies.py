"""Behind a proxy, the daemon executes exactly the requests that the proxy sent."""

import contextlib
import itertools
import os
import re
from collections import Counter

import pytest
from daemon import START, wait_until
from device import change
from edge import EdgeClient
from fronts import PORT
from hostile import CASES
from http_client import Client, get
from reading import replies, requests, values

_ANSWER_SEC = 0.3
# The daemon's statuses for a request that it did not execute; a file can get 501, too.
REFUSALS = {400, 411, 413, 414, 417, 431, 501, 505}
_NUMBER = re.compile(rb"strFD_DeviceNo=(\d+)")
LAST_LINE = "-------------------handle_get_cpu_usage.\n"
_visitor = itertools.count()


def hostile(data, places):
    """Sends it and leaves when there is an answer or nothing more to wait for."""
    with EdgeClient(PORT, _ANSWER_SEC) as client, contextlib.suppress(OSError, EOFError):
        client.send_cut(data, places)
        with contextlib.suppress(TimeoutError):
            client.read_head()
        client.end_of_requests()
        client.read_end()


def honest(rig):
    """Requests something that only this visitor can get, and gets that and nothing else."""
    name = f"visitor-{next(_visitor)}.txt"
    path = os.path.join(rig.daemon.folder, "web_root", name)
    with open(path, "w", encoding="ascii") as file:
        file.write(name)
    with Client(port=PORT) as client:
        client.send(get(f"/{name}", "Connection: close\r\n"))
        data = client.read_to_end()
    os.remove(path)
    first, _, body = data.partition(b"\r\n\r\n")
    assert first.startswith(b"HTTP/1.1 200 ") and body == name.encode(), data


def meant(request):
    """What the device receives for an executed request; None for nothing."""
    target = re.sub(rb"^https?://[^/]*", b"", request.start.split(b" ")[1]).partition(b"?")[0]
    number = _NUMBER.match(request.body)
    if target == b"/set_DeviceNo":
        return change(f'<stBaseInfo strFD_DeviceNo="{number[1].decode() if number else ""}"/>')
    if target == b"/get_LangInfo":
        return b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay></VariCfgSec>'
    return None


def outcome(passage):
    """What the proxy sent on a connection: what was certainly executed, and what may have been."""
    sent = list(requests(passage.sent))
    surely, perhaps = [], []
    for request, reply in itertools.zip_longest(sent, replies(passage.returned, sent)):
        status = int(reply.start[9:12]) if reply else None
        if status not in REFUSALS:
            (perhaps if status is None else surely).append(request)
        elif status == 501:
            perhaps.append(request)
        if reply and b"close" in values(reply.headers, b"connection"):
            break
    return surely, perhaps


def told(messages):
    return Counter(filter(None, map(meant, messages)))


def count_carried_out(rig):
    """Read from the daemon's output, once it has printed the lines of our last request."""
    with Client() as client:
        client.send(get("/get_cpu_usage"))
        client.read_reply()
    printed = rig.daemon.stdout.since_mark
    wait_until(lambda: printed().endswith(LAST_LINE), "the last line")
    return printed().count(START) - 1


def check(rig, passages):
    """Exactly what the proxy sent, neither less nor more."""
    surely, perhaps = [], []
    for passage in passages:
        for found, more in zip((surely, perhaps), outcome(passage)):
            found += more
    carried_out = count_carried_out(rig)
    sent = [bytes(passage.sent) for passage in passages]
    assert len(surely) <= carried_out <= len(surely) + len(perhaps), sent
    device = Counter(rig.device.requests)
    assert told(surely) <= device <= told(surely) + told(perhaps), sent


@pytest.mark.parametrize("cut", [False, True], ids=["whole", "cut"])
@pytest.mark.parametrize("case", CASES)
def test_daemon_carries_out_what_the_proxy_sent(rig, relay, proxy, case, cut):
    data = CASES[case]
    head = data.find(b"\r\n\r\n")
    relay.end_passages()
    rig.device.play()
    rig.daemon.mark()
    hostile(data, [head // 2, head + 2, head + 4, head + 10] if cut else [])
    for _ in range(3):
        honest(rig)
    check(rig, relay.end_passages())


@pytest.mark.offline
def test_enough_is_tried():
    assert len(CASES) >= 60
