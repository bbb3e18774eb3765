"""A browser that sends requests as fast as they are answered, and checks every answer."""

import random
import socket
import time
from collections import Counter

import model
from state import Window

_PATIENCE = 60


class Broken(Exception):
    """The daemon has closed the connection; the text says at which point of the reply."""


class Connection:
    def __init__(self):
        self._sock = socket.create_connection(("127.0.0.1", 80), timeout=_PATIENCE)
        self._data = b""

    def close(self):
        self._sock.close()

    def _more(self, needed):
        try:
            data = self._sock.recv(65536)
        except ConnectionError:
            data = b""
        if not data:
            raise Broken("" if needed == "head" and not self._data else needed)
        self._data += data

    def _take(self, count, needed):
        while len(self._data) < count:
            self._more(needed)
        data, self._data = self._data[:count], self._data[count:]
        return data

    def _line_end(self, mark, needed):
        while mark not in self._data:
            self._more(needed)
        return self._take(self._data.index(mark) + len(mark), needed)

    def ask(self, request):
        """Head and body of the only reply."""
        try:
            self._sock.sendall(request)
        except ConnectionError:
            raise Broken("") from None
        head = self._line_end(b"\r\n\r\n", "head")
        if b"chunked" in head:
            body = b""
            while size := int(self._line_end(b"\r\n", "chunk"), 16):
                body += self._take(size, "chunk")
                self._take(2, "chunk")
            self._take(2, "chunk")
        else:
            body = self._take(int(head.partition(b"Content-Length: ")[2].split()[0]), "file")
        if self._data:
            raise ValueError("more than one reply")
        return head, body


class Browser:
    def __init__(self, state, files, seed):
        self._state = state
        self._random = random.Random(seed)
        self._pages = model.everything(state, files)
        self._connection = None
        self.counts = Counter()
        self.wrong = []
        self.longest = 0.0

    def run(self, acknowledge):
        while not self._state.stopped:
            if self._state.paused:
                self._drop()
                acknowledge()
            else:
                self._ask_once(self._random.choice(self._pages))
        self._drop()

    def _drop(self):
        if self._connection:
            self._connection.close()
        self._connection = None

    def _ask_once(self, page):
        request = page.request
        window = Window(self._state)
        begin = time.monotonic()
        try:
            self._connection = self._connection or Connection()
            head, body = self._connection.ask(request)
        except Broken as error:
            # The service may close a connection in favour of newer ones; a reply in progress is
            # lost.
            self.counts["cut in its " + str(error) if str(error) else "closed"] += 1
            self._drop()
            return
        except (ValueError, IndexError, OSError) as error:
            self.wrong.append(f"{page.name}: {error!r}")
            self._drop()
            return
        self.longest = max(self.longest, time.monotonic() - begin)
        problem = page.judge(head, body, window)
        if problem:
            self.wrong.append(f"{page.name}: {problem}: {body[:200]!r}")
        self.counts["failed" if b'"result": 0 }' in body else "answered"] += 1
        if self._random.random() < 0.02:
            self._drop()
