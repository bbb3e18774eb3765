"""Rows of what a client sends and what it gets, and the loop that drives them.

Each row is sent alone, and followed by a good request on the same connection. Where the connection
is closed, nothing after the row is executed and no reset destroys the reply; where it is kept, the
good request is answered next. The device counts what was executed.
"""

import contextlib
import re
import socket
import time
from collections import namedtuple

import pytest
from daemon import wait_until
from device import change
from http_client import Client, get, post
from sock_diag import bytes_on_the_way, bytes_waiting

STYLE = b"body { color: page }"
LARGE = b"0123456789abcdef" * 16384
NUMBER = change('<stBaseInfo strFD_DeviceNo="123456"/>')
NUMBER_FORM = "strFD_DeviceNo=123456"
LENGTH = f"Content-Length: {len(NUMBER_FORM)}"
GOOD = post("/set_DeviceNo", "strFD_DeviceNo=654321")
GOOD_NUMBER = change('<stBaseInfo strFD_DeviceNo="654321"/>')
SET_DONE = b'{"result": 1 }'

REASONS = {
    100: "Continue",
    200: "OK",
    204: "No Content",
    206: "Partial Content",
    301: "Moved Permanently",
    304: "Not Modified",
    400: "Bad Request",
    404: "Not Found",
    411: "Length Required",
    412: "Precondition Failed",
    413: "Content Too Large",
    414: "URI Too Long",
    416: "Range Not Satisfiable",
    417: "Expectation Failed",
    431: "Request Header Fields Too Large",
    501: "Not Implemented",
    505: "HTTP Version Not Supported",
}

# What happens to the connection: EITHER where the server may choose, and the reply says which.
KEPT, CLOSED, EITHER = "kept", "closed", "either"

Row = namedtuple("Row", "sentence request status after exchanges body", defaults=(KEPT, 0, None))


def refused(sentence, request, status=400):
    return Row(sentence, request, status, CLOSED)


def carried_out(sentence, request, after=KEPT):
    """A set of the device number: one exchange with exactly that message."""
    return Row(sentence, request, 200, after, 1, SET_DONE)


def page(sentence, request, after=KEPT):
    return Row(sentence, request, 200, after, 0, STYLE)


def head(*lines):
    return "".join(line + "\r\n" for line in (*lines, "")).encode("latin-1")


def get_page(*lines):
    """A request for a page with these header lines."""
    return head("GET /page.css HTTP/1.1", "Host: recorder", *lines)


def set_number(*lines, body=NUMBER_FORM, version="1.1"):
    """A set with these header lines, which must say where its body ends."""
    text = head(f"POST /set_DeviceNo HTTP/{version}", "Host: recorder", *lines)
    return text + (body if isinstance(body, bytes) else body.encode())


def by_sentence(rows):
    """The arguments of parametrize for a table of rows: each alone and followed by a request."""
    sentences = [row.sentence for row in rows]
    assert len(set(sentences)) == len(sentences), "two rows with one sentence"
    return {"argvalues": rows, "ids": sentences}


class Reply(namedtuple("Reply", "head body interim")):
    """One reply: its head and body, and how many 100 Continue came before it."""

    @property
    def status(self):
        return int(self.head.split(b" ")[1])

    def header(self, name):
        """The value of a header, or None."""
        found = re.findall(rb"(?im)^" + name.encode() + rb":[ \t]*(.*?)[ \t]*\r$", self.head)
        assert len(found) <= 1, f"{name} more than once in {self.head!r}"
        return found[0].decode() if found else None

    def says_closed(self):
        return "close" in (self.header("Connection") or "").lower().split(", ")

    def has_right_reason(self):
        line = self.head.partition(b"\r\n")[0].decode()
        return line == f"HTTP/1.1 {self.status} {REASONS.get(self.status)}"


CONTINUE = b"HTTP/1.1 100 Continue\r\n\r\n"


class EdgeClient(Client):
    """A client that knows what it asked for, splits what it sends and distinguishes a reset from an
    end."""

    def __init__(self, port=80, patience=10):
        super().__init__(port=port)
        self._sock.settimeout(patience)
        self._sock.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        self._server, self._client = self._sock.getpeername(), self._sock.getsockname()

    def send_cut(self, data, places):
        """Sends in pieces that the server reads one by one."""
        ends = sorted({place for place in places if 0 < place < len(data)} | {len(data)})
        for begin, end in zip([0, *ends], ends):
            self.send(data[begin:end])
            deadline = time.monotonic() + self._sock.gettimeout()
            while end < len(data) and not self._is_read():
                if time.monotonic() > deadline:
                    raise TimeoutError("the server does not read")
                time.sleep(0.0002)

    def _is_read(self):
        """Whether the server has read all that was sent, or no longer has the connection."""
        return self.has_arrived() and bytes_waiting(self._server, self._client) == 0

    def has_arrived(self):
        """Whether the server's system has all that was sent."""
        return bytes_on_the_way(self._sock) == 0

    def await_start(self):
        """Reads nothing until a reply has begun."""
        wait_until(lambda: bytes_waiting(self._client, self._server) > 0, "the start of the reply")

    def read_head(self):
        return self._until(b"\r\n\r\n")

    def read_reply_to(self, method="GET"):
        interim = 0
        text = self.read_head()
        while text == CONTINUE:
            interim += 1
            text = self.read_head()
        reply = Reply(text, b"", interim)
        if method == "HEAD" or reply.status in (204, 304):
            return reply
        return reply._replace(body=self._body(reply))

    def _body(self, reply):
        if reply.header("Transfer-Encoding") == "chunked":
            return b"".join(iter(self._chunk, b""))
        length = reply.header("Content-Length")
        return self.read_end() if length is None else self._exactly(int(length))

    def read_end(self):
        """What comes until the connection ends in an orderly way; raises on a reset or without an
        end."""
        with contextlib.suppress(EOFError):
            while True:
                self._more()
        data, self._rest = self._rest, b""
        return data


def settle():
    """Returns when the daemon is done with everything before: it has answered another client
    twice."""
    with Client() as other:
        for _ in range(2):
            other.send(get("/page.css"))
            assert other.read_reply().body == STYLE


def method_of(request):
    return request.lstrip(b"\r\n").split(b" ")[0].decode("latin-1")


def check(row, reply):
    allowed = row.status if isinstance(row.status, tuple) else (row.status,)
    assert reply.status in allowed, reply.head
    assert reply.has_right_reason(), reply.head
    if row.body is not None and reply.status in (200, 206):
        assert reply.body == (b"" if method_of(row.request) == "HEAD" else row.body)
    # Endpoints keep their usual heads, whatever happens to the connection.
    if row.exchanges == 0 and reply.status >= 400:
        assert row.after == EITHER or reply.says_closed() == (row.after == CLOSED), reply.head


def meet(rig, row, behind, places=()):
    """Sends the row, alone or followed by a good request, and checks all the results."""
    rig.device.play()
    with EdgeClient() as client:
        client.send_cut(row.request + (GOOD if behind else b""), places)
        reply = client.read_reply_to(method_of(row.request))
        check(row, reply)
        closed = row.after == CLOSED or (row.after == EITHER and reply.says_closed())
        if closed:
            assert client.read_end() == b""
        else:
            if not behind:
                client.send(GOOD)
            assert client.read_reply_to().body == SET_DONE
            assert not client.is_closed()
            assert client.pending() == b""
    settle()
    carried = row.exchanges if reply.status == 200 else 0
    asked = [NUMBER] * carried + ([] if closed else [GOOD_NUMBER])
    assert rig.device.requests == asked
    return reply


ALONE_AND_NOT = pytest.mark.parametrize("behind", [False, True], ids=["alone", "with one behind"])


def each_met(rows):
    """The test of a table: each of its rows, alone and with a good request behind it."""

    @ALONE_AND_NOT
    @pytest.mark.parametrize("row", **by_sentence(rows))
    def meets(rig, row, behind):
        meet(rig, row, behind)

    return meets
