"""A second parser for what a proxy sends and gets back: strict, after RFC 9112, over whole
recordings.

It shares nothing with the daemon. Anything ambiguous ends the parsing: a server must refuse it.
"""

import re
from collections import namedtuple

Message = namedtuple("Message", "start headers body")

_REQUEST_LINE = re.compile(rb"[!#$%&'*+.^_`|~0-9A-Za-z-]+ [\x21-\x7e]+ HTTP/1\.[01]")
_STATUS_LINE = re.compile(rb"HTTP/1\.1 (\d\d\d) [^\r\n]*")
_FIELD = re.compile(rb"([!#$%&'*+.^_`|~0-9A-Za-z-]+):[ \t]*([^\0\r\n]*?)[ \t]*")
_CHUNK = re.compile(rb"([0-9A-Fa-f]{1,15})[ \t]*(?:;[^\0\r\n]*)?\r\n")


class NotPlain(Exception):
    """Incomplete, or not read in the same way by every server."""


def _head(data, at, line):
    end = data.find(b"\r\n\r\n", at)
    if end < 0:
        raise NotPlain
    start, *fields = data[at:end].split(b"\r\n")
    found = [_FIELD.fullmatch(field) for field in fields]
    if not line.fullmatch(start) or not all(found):
        raise NotPlain
    return start, [(field[1].lower(), field[2]) for field in found], end + 4


def _chunks(data, at):
    body = b""
    while True:
        size = _CHUNK.match(data, at)
        if not size:
            raise NotPlain
        length, at = int(size[1], 16), size.end()
        if length == 0:
            break
        body += data[at : at + length]
        if data[at + length : at + length + 2] != b"\r\n":
            raise NotPlain
        at += length + 2
    while data[at : at + 2] != b"\r\n":
        end = data.find(b"\r\n", at)
        if end < 0 or not _FIELD.fullmatch(data[at:end]):
            raise NotPlain
        at = end + 2
    return body, at + 2


def values(headers, name):
    return [value for key, value in headers if key == name]


def _body(data, at, headers, without):
    codings, lengths = (values(headers, name) for name in (b"transfer-encoding", b"content-length"))
    if codings and (lengths or [c.lower() for c in codings] != [b"chunked"]):
        raise NotPlain
    if codings:
        return _chunks(data, at)
    if not lengths:
        return without(at)
    if len(lengths) > 1 or not re.fullmatch(rb"\d{1,15}", lengths[0]):
        raise NotPlain
    end = at + int(lengths[0])
    if end > len(data):
        raise NotPlain
    return data[at:end], end


def _closes(start, headers):
    options = b",".join(values(headers, b"connection")).lower().replace(b" ", b"").split(b",")
    return b"close" in options or (start.endswith(b"1.0") and b"keep-alive" not in options)


def requests(data):
    """The complete requests at the beginning of a connection, up to the first ambiguous one."""
    data, at = bytes(data), 0
    try:
        while at < len(data):
            while data[at : at + 2] == b"\r\n":
                at += 2
            start, headers, at = _head(data, at, _REQUEST_LINE)
            body, at = _body(data, at, headers, lambda at: (b"", at))
            yield Message(start, headers, body)
            if _closes(start, headers):
                return
    except NotPlain:
        return


def replies(data, asked):
    """The final replies to these requests, as far as they arrived."""
    data, at, asked = bytes(data), 0, list(asked)
    try:
        while at < len(data) and asked:
            start, headers, at = _head(data, at, _STATUS_LINE)
            status = int(start[9:12])
            if status < 200:
                continue
            request = asked.pop(0)
            body = b""
            if not request.start.startswith(b"HEAD ") and status not in (204, 304):
                body, at = _body(data, at, headers, lambda at: (data[at:], len(data)))
            yield Message(start, headers, body)
    except NotPlain:
        return
