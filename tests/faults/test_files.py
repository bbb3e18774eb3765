"""Files that change while they are served: replies are correct from the next second on, and none
mixes two versions. Also what browsers may cache, and compressed forms."""

import gzip
import os
import shutil
import socket

import pytest
from daemon import wait_for_next_second
from http_client import Client, get

OLD, NEW = "1", "2"
SMALL, LARGE = 2000, 4 << 20  # one is served from memory, the other is not


def write(path, text):
    with open(path, "w", encoding="ascii") as file:
        file.write(text)


def write_in_place(path, text):
    with open(path, "r+", encoding="ascii") as file:
        file.write(text)


def replace(path, text):
    write(path + ".new", text)
    os.rename(path + ".new", path)


class Answer:
    def __init__(self, reply):
        line, *fields = reply.head.decode().rstrip("\r\n").split("\r\n")
        self.status = int(line.split()[1])
        self.fields = dict(field.split(": ", 1) for field in fields)
        self.body = reply.body


def fetch(uri, headers=""):
    with Client() as client:
        client.send(get(uri, headers))
        return Answer(client.read_reply())


@pytest.fixture
def root(daemon):
    return os.path.join(daemon.folder, "web_root")


# What happens to a file with the old text, and what is correct then: its text, or a status.
CHANGES = {
    "replaced": (lambda path, size: replace(path, NEW * size), lambda size: NEW * size),
    "written over": (lambda path, size: write_in_place(path, NEW * size), lambda size: NEW * size),
    "truncated": (lambda path, size: os.truncate(path, size // 2), lambda size: OLD * (size // 2)),
    "emptied": (lambda path, size: os.truncate(path, 0), lambda size: ""),
    "grown": (
        lambda path, size: write(path, OLD * size + NEW * size),
        lambda size: OLD * size + NEW * size,
    ),
    "removed": (lambda path, size: os.unlink(path), lambda size: 404),
    "made a folder": (lambda path, size: (os.unlink(path), os.mkdir(path)), lambda size: 301),
    "made a pipe": (lambda path, size: (os.unlink(path), os.mkfifo(path)), lambda size: 404),
}


def tells_the_truth(answer, truth):
    if isinstance(truth, int):
        return answer.status == truth
    return answer.status == 200 and answer.body == truth.encode()


@pytest.mark.parametrize("size", [SMALL, LARGE])
@pytest.mark.parametrize("change", CHANGES)
def test_next_second_serves_what_has_become_of_a_file(root, change, size):
    befall, truth = CHANGES[change]
    path = os.path.join(root, f"{change}-{size}.bin".replace(" ", "-"))
    uri = "/" + os.path.basename(path)
    write(path, OLD * size)
    for _ in range(2):
        assert tells_the_truth(fetch(uri), OLD * size)
    befall(path, size)
    wait_for_next_second()
    for _ in range(2):
        assert tells_the_truth(fetch(uri), truth(size))


def test_next_second_serves_from_the_folder_that_took_the_place(root):
    for name, text in (("swapped", OLD), ("other", NEW)):
        os.mkdir(os.path.join(root, name))
        write(os.path.join(root, name, "page.css"), text)
    assert fetch("/swapped/page.css").body == OLD.encode()
    os.rename(os.path.join(root, "swapped"), os.path.join(root, "gone"))
    os.rename(os.path.join(root, "other"), os.path.join(root, "swapped"))
    wait_for_next_second()
    assert fetch("/swapped/page.css").body == NEW.encode()


def test_next_second_serves_from_another_document_root(root):
    write(os.path.join(root, "moved.css"), OLD)
    assert fetch("/moved.css").body == OLD.encode()
    os.mkdir(root + ".new")
    write(os.path.join(root + ".new", "moved.css"), NEW)
    os.rename(root, root + ".old")
    os.rename(root + ".new", root)
    wait_for_next_second()
    assert fetch("/moved.css").body == NEW.encode()
    assert fetch("/page.css").status == 404
    shutil.copytree(root + ".old", root, dirs_exist_ok=True, ignore=shutil.ignore_patterns("*pipe*"))


# What happens to a file while it is being sent to a client that does not read. Either all of it
# fits between the daemon and the client, or not; either it is kept in memory, or not.
@pytest.mark.parametrize("size", [200_000, 300_000, LARGE])
@pytest.mark.parametrize("change", ["replaced", "written over", "truncated", "grown", "removed"])
def test_reply_under_way_is_of_one_version(root, change, size):
    path = os.path.join(root, f"under-way-{change}-{size}.bin".replace(" ", "-"))
    write(path, OLD * size)
    with socket.socket() as sock:
        sock.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 4096)
        sock.connect(("127.0.0.1", 80))
        sock.sendall(get("/" + os.path.basename(path), "Connection: close\r\n"))
        sock.recv(1, socket.MSG_PEEK)
        CHANGES[change][0](path, size)
        reply = b"".join(iter(lambda: sock.recv(65536), b""))
    head, _, body = reply.partition(b"\r\n\r\n")
    assert f"\r\nContent-Length: {size}\r\n".encode() in head
    assert body == OLD.encode() * len(body), "another version's bytes"
    if size == 200_000:
        assert len(body) == size, "what is kept goes on"


def test_memory_for_kept_files_is_bounded(daemon, root):
    def resident():
        with open(f"/proc/{daemon.process.pid}/status", encoding="ascii") as file:
            return int(next(line for line in file if line.startswith("VmRSS")).split()[1]) * 1024

    for i in range(200):
        write(os.path.join(root, f"kept{i}.bin"), OLD * 100_000)
    before = resident()
    for i in range(200):
        assert len(fetch(f"/kept{i}.bin").body) == 100_000
    assert resident() - before < 4 << 20, "of 20 MB that all files take"


# What is requested, and whether it comes compressed.
ENCODINGS = {
    "gzip": True,
    "GZIP": True,
    "x-other, gzip": True,
    "gzip;q=0.5, identity": True,
    "*": True,
    "gzip;q=0": False,
    "gzip; q=0.000": False,
    "identity": False,
    "gzipped": False,
    "*;q=0": False,
    "gzip;q=0, *": False,
    "": False,
}


@pytest.mark.parametrize("encodings", ENCODINGS)
def test_packed_form_goes_to_who_takes_it(root, encodings):
    path = os.path.join(root, "packed.css")
    write(path, OLD * SMALL)
    with gzip.open(path + ".gz", "wb") as file:
        file.write(OLD.encode() * SMALL)
    wait_for_next_second()
    plain = fetch("/packed.css")
    answer = fetch("/packed.css", f"Accept-Encoding: {encodings}\r\n")
    for each in (plain, answer):
        assert each.fields["Vary"] == "Accept-Encoding"
        assert each.fields["Content-Type"] == "text/css; charset=utf-8"
    packed = ENCODINGS[encodings]
    assert answer.fields.get("Content-Encoding") == ("gzip" if packed else None)
    assert (answer.fields["Etag"] != plain.fields["Etag"]) == packed
    body = gzip.decompress(answer.body) if packed else answer.body
    assert body == OLD.encode() * SMALL


def test_next_second_serves_what_has_become_of_a_packed_form(root):
    path = os.path.join(root, "repacked.css")
    write(path, OLD * SMALL)

    def packed(at):
        wait_for_next_second()
        if at is not None:
            os.utime(path + ".gz", (at, at))
            wait_for_next_second()
        answer = fetch("/repacked.css", "Accept-Encoding: gzip\r\n")
        return answer.body if "Content-Encoding" in answer.fields else None

    now = os.stat(path).st_mtime
    assert packed(None) is None
    for text in (OLD, NEW):
        replace(path + ".gz", text)
        assert packed(now) == text.encode()
    assert packed(now - 1) is None, "older than the file"
    assert packed(now + 1) == NEW.encode()
    os.unlink(path + ".gz")
    assert packed(None) is None


KEPT = "max-age=31536000, immutable"
PLACES = {
    "index.html": ("no-cache", "text/html; charset=utf-8"),
    "page.css": ("no-cache", "text/css; charset=utf-8"),
    "both.shtml": ("no-cache", "text/html; charset=utf-8"),
    "manifest.webmanifest": ("no-cache", "application/manifest+json"),
    "notes.txt": ("no-cache", "text/plain; charset=utf-8"),
    "assets/app-1a2b.js": (KEPT, "text/javascript; charset=utf-8"),
    "assets/app-1a2b.css": (KEPT, "text/css; charset=utf-8"),
    "assets/icon-1a2b.svg": (KEPT, "image/svg+xml"),
    "assets/text-1a2b.woff2": (KEPT, "font/woff2"),
    "assets/data-1a2b.json": (KEPT, "application/json"),
    "assets/logo-1a2b.png": (KEPT, "image/png"),
}


@pytest.mark.parametrize("name", PLACES)
def test_browser_is_told_how_long_to_keep_what(root, name):
    os.makedirs(os.path.join(root, "assets"), exist_ok=True)
    if not os.path.exists(os.path.join(root, name)):
        write(os.path.join(root, name), OLD)
    caching, media_type = PLACES[name]
    for _ in range(2):
        answer = fetch("/" + name)
        assert answer.status == 200
        assert answer.fields["Cache-Control"] == caching
        assert answer.fields["Content-Type"] == media_type
        assert answer.fields["X-Content-Type-Options"] == "nosniff"
