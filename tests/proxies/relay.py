"""Sits between a proxy and the daemon, passes every byte on and records it.

A test may change what the proxy receives: `told` gets what the daemon sent.
"""

import contextlib
import select
import socket
import threading

PORT = 8081
_DAEMON = ("127.0.0.1", 80)
_PATIENCE_SEC = 10


class Passage:
    """One connection of the proxy: what it sent, and what the daemon sent back."""

    def __init__(self, proxy, told):
        self._proxy, self._told = proxy, told
        self.sent, self.returned = bytearray(), bytearray()
        self._thread = threading.Thread(target=self._run, daemon=True)

    def start(self):
        self._thread.start()

    def _run(self):
        proxy = self._proxy
        with proxy, socket.create_connection(_DAEMON) as daemon:
            ways = {proxy: (daemon, self.sent), daemon: (proxy, self.returned)}
            with contextlib.suppress(OSError):
                while ways:
                    for source in select.select(list(ways), [], [])[0]:
                        target, record = ways[source]
                        data = source.recv(65536)
                        record += data
                        target.sendall(self._told(data) if source is daemon else data)
                        if not data:
                            del ways[source]
                            with contextlib.suppress(OSError):
                                target.shutdown(socket.SHUT_WR)

    def end(self):
        """Tells the proxy that the daemon has ended the stream; it then closes its side, and so do
        we."""
        with contextlib.suppress(OSError):
            self._proxy.shutdown(socket.SHUT_WR)
        self._thread.join(_PATIENCE_SEC)
        assert not self._thread.is_alive(), "a connection has no end"


class Relay:
    def __init__(self):
        self._listener = socket.create_server(("127.0.0.1", PORT))
        self._passages = []
        self.told = bytes
        threading.Thread(target=self._run, daemon=True).start()

    def _run(self):
        with contextlib.suppress(OSError):
            while True:
                passage = Passage(self._listener.accept()[0], self.told)
                self._passages.append(passage)
                passage.start()

    def end_passages(self):
        """Ends all connections and returns what was sent on them; the proxy opens new ones."""
        passages, self._passages = self._passages, []
        for passage in passages:
            passage.end()
        return passages

    def close(self):
        self._listener.shutdown(socket.SHUT_RDWR)
        self._listener.close()
