"""What hostile clients send to a proxy, so that it and the daemon might read it differently."""

HIDDEN_NUMBER = "666666"
_FORM = f"strFD_DeviceNo={HIDDEN_NUMBER}"
# The request that may only be executed when sent as a request of its own.
HIDDEN = f"POST /set_DeviceNo HTTP/1.1\r\nHost: recorder\r\nContent-Length: {len(_FORM)}\r\n\r\n{_FORM}"
_OWN = "strFD_DeviceNo=123456"
_LENGTH = f"Content-Length: {len(_OWN)}"
_HIDDEN_LENGTH = f"Content-Length: {len(HIDDEN)}"
_CHUNKED = "Transfer-Encoding: chunked"
_CHUNKS = f"{len(_OWN):x}\r\n{_OWN}\r\n0\r\n\r\n"
_HIDDEN_CHUNK = f"{len(HIDDEN):x}\r\n{HIDDEN}\r\n0\r\n\r\n"
_KEEP = "Connection: keep-alive"

_LINES = [f"X-{k}: {k}" for k in range(90)]
_MANY = HIDDEN * (1200000 // len(HIDDEN))


def _set(*lines, body=HIDDEN, start="POST /set_DeviceNo HTTP/1.1"):
    return "\r\n".join((start, "Host: recorder", *lines, "", body))


def _get(*lines, body=HIDDEN, start="GET /page.css HTTP/1.1"):
    return _set(*lines, body=body, start=start)


_TEXTS = {
    # Length against coding.
    "length first, coding behind": _set("Content-Length: 5", _CHUNKED, body="0\r\n\r\n" + HIDDEN),
    "coding first, length behind": _set(_CHUNKED, "Content-Length: 5", body="0\r\n\r\n" + HIDDEN),
    "a length that covers all": _set(f"Content-Length: {len(HIDDEN) + 5}", _CHUNKED, body="0\r\n\r\n" + HIDDEN),
    "a length that covers the size only": _set("Content-Length: 4", _CHUNKED, body=_HIDDEN_CHUNK),
    "a length of 0 beside a coding": _set("Content-Length: 0", _CHUNKED, body=_HIDDEN_CHUNK),
    "a blank in front of the coding's colon": _set(_HIDDEN_LENGTH, "Transfer-Encoding : chunked"),
    "a TAB in front of the coding's colon": _set(_HIDDEN_LENGTH, "Transfer-Encoding\t: chunked"),
    "a control character in front of chunked": _set("Content-Length: 5", "Transfer-Encoding: \x0bchunked", body="0\r\n\r\n" + HIDDEN),
    "a TAB in front of chunked": _set("Transfer-Encoding:\tchunked", body="0\r\n\r\n" + HIDDEN),
    "chunked in capitals": _set("TRANSFER-ENCODING: CHUNKED", body="0\r\n\r\n" + HIDDEN),
    "xchunked": _set(_HIDDEN_LENGTH, "Transfer-Encoding: xchunked"),
    "identity beside a length": _set(_HIDDEN_LENGTH, "Transfer-Encoding: identity"),
    "identity, then chunked": _set("Transfer-Encoding: identity, chunked", body=_HIDDEN_CHUNK),
    "chunked, then identity": _set("Transfer-Encoding: chunked, identity", body="0\r\n\r\n" + HIDDEN),
    "chunked in two lines": _set(_CHUNKED, _CHUNKED, body="0\r\n\r\n" + HIDDEN),
    "chunked and another in two lines": _set(_CHUNKED, "Transfer-Encoding: x", body="0\r\n\r\n" + HIDDEN),
    "a folded coding": _set(_HIDDEN_LENGTH, "Transfer-Encoding:\r\n chunked"),
    "a folded line that is a coding": _set(_HIDDEN_LENGTH, "X: x\r\n Transfer-Encoding: chunked"),
    "chunked in quotation marks": _set(_HIDDEN_LENGTH, 'Transfer-Encoding: "chunked"'),
    "chunked with a parameter": _set("Transfer-Encoding: chunked;a=b", body=_HIDDEN_CHUNK),
    "an underscore in the coding's name": _set(_HIDDEN_LENGTH, "Transfer_Encoding: chunked"),
    "an underscore in the length's name": _set("Content_Length: 0", _HIDDEN_LENGTH),
    "a coding behind a bare CR": _set(_HIDDEN_LENGTH, "X: x\rTransfer-Encoding: chunked"),
    "a coding behind a bare LF": _set(_HIDDEN_LENGTH, "X: x\nTransfer-Encoding: chunked"),
    "a coding behind a NUL": _set(_HIDDEN_LENGTH, "X: x\0Transfer-Encoding: chunked"),
    "a coding on version 1.0": _set(_KEEP, _CHUNKED, body=_HIDDEN_CHUNK, start="POST /set_DeviceNo HTTP/1.0"),
    "coding and length on version 1.0": _set(_KEEP, "Content-Length: 5", _CHUNKED, body="0\r\n\r\n" + HIDDEN, start="POST /set_DeviceNo HTTP/1.0"),
    # Lengths.
    "two lengths, the short one first": _set("Content-Length: 0", _HIDDEN_LENGTH),
    "two lengths, the long one first": _set(_HIDDEN_LENGTH, "Content-Length: 0"),
    "two equal lengths": _set(_HIDDEN_LENGTH, _HIDDEN_LENGTH),
    "two lengths in one line": _set(f"Content-Length: 0, {len(HIDDEN)}"),
    "a length with a sign": _set(f"Content-Length: +{len(HIDDEN)}"),
    "a negative length": _set("Content-Length: -1"),
    "a hexadecimal length": _set(f"Content-Length: 0x{len(HIDDEN):x}"),
    "a length with a zero in front": _set(f"Content-Length: 0{len(HIDDEN)}"),
    "a length that wraps at 2^64": _set(f"Content-Length: {2**64}"),
    "a length that wraps at 2^32": _set(f"Content-Length: {2**32}"),
    "a length with a blank in it": _set("Content-Length: 0 1"),
    "an empty length": _set("Content-Length:"),
    "a length behind a folded line": _set(f"Content-Length:\r\n {len(HIDDEN)}"),
    "a blank in front of the length's colon": _set(f"Content-Length : {len(HIDDEN)}"),
    "no length": _set(),
    "no length, then a body": _set(body=_OWN),
    "a length longer than the body": _set("Content-Length: 2000"),
    "no length of version 1.0": _set(_KEEP, start="POST /set_DeviceNo HTTP/1.0"),
    # Bodies where many parsers expect none.
    "a GET with a length": _get(_HIDDEN_LENGTH),
    "a GET in chunks": _get(_CHUNKED, body=_HIDDEN_CHUNK),
    "a HEAD with a length": _get(_HIDDEN_LENGTH, start="HEAD /page.css HTTP/1.1"),
    "a HEAD of an endpoint": _get("Content-Length: 0", body="", start="HEAD /get_LangInfo HTTP/1.1"),
    "a HEAD in chunks": _get(_CHUNKED, body=_HIDDEN_CHUNK, start="HEAD /get_cpu_usage HTTP/1.1"),
    "a DELETE with a length": _get(_HIDDEN_LENGTH, start="DELETE /page.css HTTP/1.1"),
    "a PUT with a length": _get(_HIDDEN_LENGTH, start="PUT /page.css HTTP/1.1"),
    "a PUT in chunks": _get(_CHUNKED, body=_HIDDEN_CHUNK, start="PUT /missing HTTP/1.1"),
    "OPTIONS with a length": _get(_HIDDEN_LENGTH, start="OPTIONS * HTTP/1.1"),
    "a missing page with a length": _get(_HIDDEN_LENGTH, start="GET /missing HTTP/1.1"),
    "an unchanged page with a length": _get("If-None-Match: *", _HIDDEN_LENGTH),
    "a part of a page with a length": _get("Range: bytes=0-4", _HIDDEN_LENGTH),
    "an unknown method with a length": _get(_HIDDEN_LENGTH, start="MAKE /page.css HTTP/1.1"),
    "a page of includes with a length": _get(_HIDDEN_LENGTH, start="GET /both.shtml HTTP/1.1"),
    # Chunks.
    "an extension": _set(_CHUNKED, body=_CHUNKS.replace("15\r\n", "15;a=b\r\n")),
    "an extension with a bare LF": _set(_CHUNKED, body=f"0;a\n\r\n\r\n{HIDDEN}"),
    "an extension with a bare CR": _set(_CHUNKED, body=f"0;a\r \r\n\r\n{HIDDEN}"),
    "an extension in quotation marks": _set(_CHUNKED, body=f'1;a="\r\nX\r\n0\r\n\r\n{HIDDEN}'),
    "a size that ends with a bare LF": _set(_CHUNKED, body=f"0\n\n{HIDDEN}"),
    "a size that wraps": _set(_CHUNKED, body=f"1{'0' * 15}0\r\n{HIDDEN}"),
    "a negative size": _set(_CHUNKED, body=f"-1\r\n{HIDDEN}"),
    "a size with 0x": _set(_CHUNKED, body=f"0x{len(HIDDEN):x}\r\n{HIDDEN}\r\n0\r\n\r\n"),
    "a size with a blank behind": _set(_CHUNKED, body=_HIDDEN_CHUNK.replace("\r\n", " \r\n", 1)),
    "a size with zeros in front": _set(_CHUNKED, body="0000000000000000" + _CHUNKS),
    "a chunk longer than its size": _set(_CHUNKED, body=f"1\r\nab\r\n0\r\n\r\n{HIDDEN}"),
    "data that look like the end": _set(_CHUNKED, body=f"5\r\n0\r\n\r\n\r\n{_CHUNKS}"),
    "a trailer that is a length": _set(_CHUNKED, body=_CHUNKS[:-2] + f"{_HIDDEN_LENGTH}\r\n\r\n{HIDDEN}"),
    "a trailer without a colon": _set(_CHUNKED, body=f"{_CHUNKS[:-2]}{HIDDEN}"),
    "no end behind the last chunk": _set(_CHUNKED, body=_CHUNKS[:-2]),
    "a request right behind the last chunk": _set(_CHUNKED, body=_CHUNKS + HIDDEN),
    # Heads.
    "a bare CR in the request line": _get(start=f"GET /page.css\rX HTTP/1.1\r\n{_LENGTH}"),
    "a bare LF behind the request line": f"GET /page.css HTTP/1.1\nHost: recorder\n{_HIDDEN_LENGTH}\n\n{HIDDEN}",
    "a bare LF for an empty line": _get("X: x\n\n" + HIDDEN, body=""),
    "a NUL in a value": _get("X: a\0b", _HIDDEN_LENGTH),
    "a line without a colon": _get("X", _HIDDEN_LENGTH),
    "a blank in front of the first line": f"GET /page.css HTTP/1.1\r\n Host: recorder\r\n{_HIDDEN_LENGTH}\r\n\r\n{HIDDEN}",
    "two Host lines": _get("Host: other", _HIDDEN_LENGTH),
    "the absolute form": _get(_HIDDEN_LENGTH, start="GET http://other/page.css HTTP/1.1"),
    "a request in the target": _get(start="GET /page.css%20HTTP/1.1%0d%0aHost:%20x%0d%0a%0d%0aPOST%20/set_DeviceNo HTTP/1.1", body=""),
    "a request in a header": _get("X: " + HIDDEN.replace("\r\n", "\r"), body=""),
    "version 2.0": _get(_HIDDEN_LENGTH, start="GET /page.css HTTP/2.0"),
    "version 1.2": _get(_HIDDEN_LENGTH, start="GET /page.css HTTP/1.2"),
    "no version": f"GET /page.css\r\n{HIDDEN}",
    "empty lines in front": "\r\n\r\n" + _get(_HIDDEN_LENGTH),
    "a length behind 45 lines": _set(*_LINES[:45], _HIDDEN_LENGTH),
    "a length behind 90 lines": _set(*_LINES, _HIDDEN_LENGTH),
    "a coding behind 45 lines": _set(*_LINES[:45], _CHUNKED, body=_HIDDEN_CHUNK),
    "a length behind a line of 6,000 letters": _set("Cookie: " + "c" * 6000, _HIDDEN_LENGTH),
    "a head of 10,000 letters": _set("Cookie: " + "c" * 10000, _HIDDEN_LENGTH),
    "a target of 9,000 letters": _get(_HIDDEN_LENGTH, start=f"GET /{'a' * 9000} HTTP/1.1"),
    "a TAB in a value in front of the length": _set("X: a\tb", f"Content-Length:\t{len(HIDDEN)}"),
    # Long bodies.
    "requests up to the limit": _set(f"Content-Length: {len(_MANY) // 2}", body=_MANY[: len(_MANY) // 2]),
    "requests above the limit": _set(f"Content-Length: {len(_MANY)}", body=_MANY),
    "requests above the limit in a chunk": _set(_CHUNKED, body=f"{len(_MANY):x}\r\n{_MANY}\r\n0\r\n\r\n"),
    "requests above the limit behind a missing page": _get(f"Content-Length: {len(_MANY)}", body=_MANY, start="GET /missing HTTP/1.1"),
    "requests in the body of a missing page": _get(f"Content-Length: {len(HIDDEN) * 600}", body=HIDDEN * 600, start="GET /missing HTTP/1.1"),
    # What proxies remove or add.
    "the length named as a hop's own": _set("Connection: keep-alive, Content-Length", _HIDDEN_LENGTH),
    "the coding named as a hop's own": _set("Connection: Transfer-Encoding", _CHUNKED, body=_HIDDEN_CHUNK),
    "Host named as a hop's own": _get("Connection: Host, close", _HIDDEN_LENGTH),
    "another protocol": _get("Connection: Upgrade", "Upgrade: websocket", "Sec-WebSocket-Version: 13", "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA=="),
    "another protocol and a length": _get("Connection: Upgrade", "Upgrade: h2c", _HIDDEN_LENGTH),
    "an expectation": _set("Expect: 100-continue", _HIDDEN_LENGTH),
    "an expectation in chunks": _set("Expect: 100-continue", _CHUNKED, body=_HIDDEN_CHUNK),
    "an expectation that nobody meets": _set("Expect: tea", _HIDDEN_LENGTH),
    "TE and trailers": _set("TE: trailers, chunked", "Connection: TE", _CHUNKED, body=_CHUNKS),
    "a tunnel": f"CONNECT recorder:80 HTTP/1.1\r\nHost: recorder\r\n\r\n{HIDDEN}",
    # Several at once, which is allowed.
    "a request behind another": _get(_LENGTH, body=_OWN + HIDDEN),
    "five behind each other": HIDDEN * 5,
    "a request behind the last one": _get("Connection: close"),
    "a missing page and a request": _get(start="GET /missing HTTP/1.1"),
    "a set and half a request": _set(_LENGTH, body=_OWN + HIDDEN[:40]),
}
CASES = {name: text.encode("latin-1") for name, text in _TEXTS.items()}
