"""An HTTP client that shows every byte: raw requests out, replies parsed chunk by chunk.

One Client is one connection. Framing errors raise; nothing is skipped or repaired, so a reply that
parses had exactly the bytes that its chunks state.
"""

import socket
from collections import namedtuple

STANDARD_HEAD = b"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
JSON_HEAD = (
    b"HTTP/1.1 200 OK\r\nContent-Type:applicaion/json;charset=UTF-8\r\n"
    b"Transfer-Encoding: chunked\r\n\r\n"
)

# Far longer than any wait of the daemon (10 s for an import, then 2 s of restart), also under
# valgrind.
_PATIENCE = 120

Reply = namedtuple("Reply", "head chunks body")


def get(uri, headers=""):
    return f"GET {uri} HTTP/1.1\r\nHost: recorder\r\n{headers}\r\n".encode()


def post(uri, form, headers=""):
    body = form if isinstance(form, bytes) else form.encode()
    head = f"POST {uri} HTTP/1.1\r\nHost: recorder\r\n{headers}Content-Length: {len(body)}\r\n\r\n"
    return head.encode() + body


def query_chunks(result, *pieces):
    """The chunks of a query endpoint's reply: its pieces, then the result."""
    return [*(piece.encode("gbk") for piece in pieces), b', "result": %d }' % result]


class Client:
    def __init__(self, host="127.0.0.1", port=80):
        self._sock = socket.create_connection((host, port), timeout=_PATIENCE)
        self._rest = b""

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def close(self):
        self._sock.close()

    def send(self, data):
        self._sock.sendall(data)

    def end_of_requests(self):
        self._sock.shutdown(socket.SHUT_WR)

    def _more(self):
        data = self._sock.recv(65536)
        if not data:
            raise EOFError(f"connection closed after {self._rest!r}")
        self._rest += data

    def _until(self, mark):
        while mark not in self._rest:
            self._more()
        text, _, self._rest = self._rest.partition(mark)
        return text + mark

    def _exactly(self, count):
        while len(self._rest) < count:
            self._more()
        data, self._rest = self._rest[:count], self._rest[count:]
        return data

    def _chunk(self):
        line = self._until(b"\r\n")[:-2]
        size = int(line, 16)
        assert line == b"%X" % size, f"odd chunk size {line!r}"
        data = self._exactly(size)
        assert self._exactly(2) == b"\r\n", "chunk longer than its size"
        return data

    def read_reply(self):
        """The next complete reply of the connection: chunked, or with a Content-Length."""
        head = self._until(b"\r\n\r\n")
        chunks = []
        if b"\r\nTransfer-Encoding: chunked\r\n" in head:
            while chunk := self._chunk():
                chunks.append(chunk)
            return Reply(head, chunks, b"".join(chunks))
        for line in head.split(b"\r\n"):
            name, _, value = line.partition(b": ")
            if name == b"Content-Length":
                return Reply(head, chunks, self._exactly(int(value)))
        return Reply(head, chunks, self.read_to_end())

    def read_to_end(self):
        """Everything until the daemon closes the connection."""
        while True:
            try:
                self._more()
            except (EOFError, ConnectionResetError):
                data, self._rest = self._rest, b""
                return data

    def _take_what_is_there(self):
        """Reads without waiting; returns whether the daemon has closed the connection."""
        self._sock.setblocking(False)
        try:
            while True:
                self._more()
        except BlockingIOError:
            return False
        except (EOFError, ConnectionError):
            return True
        finally:
            self._sock.settimeout(_PATIENCE)

    def pending(self):
        """What has arrived and was not read yet."""
        self._take_what_is_there()
        return self._rest

    def is_closed(self):
        return self._take_what_is_there()
