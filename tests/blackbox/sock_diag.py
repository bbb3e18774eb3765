"""Asks the kernel about one connection; /proc/net/tcp lists all of them, and is slow."""

import fcntl
import socket
import struct
import termios

_NETLINK_SOCK_DIAG = 4
_SOCK_DIAG_BY_FAMILY = 20
_NLM_F_REQUEST = 1
_ANY_COOKIE = 0xFFFFFFFF
_HEADER = struct.Struct("=IHHII")
# The connection as its owner sees it: ports, addresses, interface, cookie.
_REQUEST = struct.Struct("=BBBxI2s2s4s12x4s12xIII")
# The offset of the receive queue's length in an answer, after the connection's identity.
_RECEIVE_QUEUE = _HEADER.size + 4 + 48 + 4


def _name(address):
    return struct.pack("!H", address[1]), socket.inet_aton(address[0])


def bytes_waiting(owner, other):
    """How much a local connection's owner has not read yet; 0 when there is no such connection."""
    (port, host), (other_port, other_host) = _name(owner), _name(other)
    request = _REQUEST.pack(
        socket.AF_INET, socket.IPPROTO_TCP, 0, _ANY_COOKIE, port, other_port, host, other_host, 0,
        _ANY_COOKIE, _ANY_COOKIE,
    )  # fmt: skip
    with socket.socket(socket.AF_NETLINK, socket.SOCK_RAW, _NETLINK_SOCK_DIAG) as netlink:
        size = _HEADER.size + len(request)
        netlink.send(_HEADER.pack(size, _SOCK_DIAG_BY_FAMILY, _NLM_F_REQUEST, 0, 0) + request)
        answer = netlink.recv(4096)
    if _HEADER.unpack_from(answer)[1] != _SOCK_DIAG_BY_FAMILY:
        return 0
    return struct.unpack_from("=I", answer, _RECEIVE_QUEUE)[0]


def bytes_on_the_way(sock):
    """How much was sent on a connection and has not reached the other end's queue."""
    return struct.unpack("=i", fcntl.ioctl(sock, termios.TIOCOUTQ, b"\0" * 4))[0]
