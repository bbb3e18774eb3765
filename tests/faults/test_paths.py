"""No byte from outside the web root is ever served, however it is requested."""

import os

import pytest
from http_client import Client

SECRET = b"a secret outside the web root"
OUTSIDE = [
    b"/../secret.txt",
    b"/../../secret.txt",
    b"/a/../../secret.txt",
    b"/page.css/../../secret.txt",
    b"/sub/../../secret.txt",
    b"/./../secret.txt",
    b"/.//..//secret.txt",
    b"//../secret.txt",
    b"/..//secret.txt",
    b"/%2e%2e/secret.txt",
    b"/%2E%2E/secret.txt",
    b"/.%2e/secret.txt",
    b"/%2e%2e%2fsecret.txt",
    b"/..%2fsecret.txt",
    b"/..%2Fsecret.txt",
    b"/sub/..%2f..%2fsecret.txt",
    b"/%2f..%2fsecret.txt",
    b"/..%5csecret.txt",
    b"/..\\secret.txt",
    b"/sub\\..\\..\\secret.txt",
    b"/%252e%252e/secret.txt",
    b"/%252e%252e%252fsecret.txt",
    b"/%c0%ae%c0%ae/secret.txt",
    b"/%c0%af..%c0%afsecret.txt",
    b"/....//secret.txt",
    b"/.../secret.txt",
    b"/..;/secret.txt",
    b"/..%00/secret.txt",
    b"/page.css%00/../../secret.txt",
    b"/../secret.txt%00.css",
    b"/%00/../secret.txt",
    b"/..%0d%0a/secret.txt",
    b"/../secret.txt?page.css",
    b"/page.css?/../secret.txt",
    b"/page.css#/../secret.txt",
    b"../secret.txt",
    b"secret.txt",
    b"http://127.0.0.1/../secret.txt",
    b"file:///SECRET",
    b"SECRET",
    b"/SECRET",
    b"//SECRET",
    b"/%2fSECRET",
    b"/~/secret.txt",
    b"/link.txt",
    b"/link.txt/",
    b"/chain.txt",
    b"/absolute.txt",
    b"/lookalike.txt",
    b"/folder/secret.txt",
    b"/folder/",
    b"/folder/web_root2/secret.txt",
    b"/proc/self/environ",
    b"/up.shtml",
    b"/abs.shtml",
    b"/link.shtml",
    b"/sub/" + b"../" * 500 + b"secret.txt",
    b"/" + b"%2e%2e/" * 200 + b"secret.txt",
]
METHODS = [b"GET", b"HEAD", b"POST", b"PUT", b"DELETE", b"OPTIONS", b"PROPFIND", b"MOVE", b"MKCOL"]


def write(*parts, data):
    with open(os.path.join(*parts), "wb") as file:
        file.write(data)


@pytest.fixture(scope="module")
def secret(daemon):
    """The path of a file outside, next to a web root full of links and paths that lead there."""
    root = os.path.join(daemon.folder, "web_root")
    path = os.path.join(daemon.folder, "secret.txt")
    os.makedirs(os.path.join(root, "sub"))
    os.makedirs(root + "2")
    write(path, data=SECRET)
    write(root + "2", "secret.txt", data=SECRET)
    os.symlink("../secret.txt", os.path.join(root, "link.txt"))
    os.symlink("link.txt", os.path.join(root, "chain.txt"))
    os.symlink(path, os.path.join(root, "absolute.txt"))
    os.symlink("../web_root2/secret.txt", os.path.join(root, "lookalike.txt"))
    os.symlink("..", os.path.join(root, "folder"))
    os.symlink("/proc", os.path.join(root, "proc"))
    os.symlink("page.css", os.path.join(root, "inside.css"))
    write(root, "up.shtml", data=b'[<!--#include file="../secret.txt" -->]')
    write(root, "abs.shtml", data=b'[<!--#include abspath="' + path.encode() + b'" -->]')
    write(root, "link.shtml", data=b'[<!--#include file="link.txt" -->]')
    return path.encode()


def fetch(request):
    """Everything that one connection receives until the daemon closes it."""
    with Client() as client:
        client.send(request)
        client.end_of_requests()
        return client.read_to_end()


@pytest.mark.parametrize("method", METHODS)
def test_nothing_from_outside(rig, secret, method):
    listed = os.listdir(rig.daemon.folder)
    for path in OUTSIDE:
        target = path.replace(b"SECRET", secret)
        request = b"%s %s HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n" % (method, target)
        reply = fetch(request)
        assert SECRET not in reply, path
        assert b"root:" not in reply and b"PATH=" not in reply, path
    with open(secret, "rb") as file:
        assert file.read() == SECRET
    assert os.listdir(rig.daemon.folder) == listed


def test_ranges_and_conditions_open_no_other_way(rig, secret):
    for header in (b"Range: bytes=0-9", b"If-None-Match: x", b"Destination: /../x"):
        reply = fetch(b"GET /link.txt HTTP/1.1\r\n%s\r\nConnection: close\r\n\r\n" % header)
        assert reply.startswith(b"HTTP/1.1 404 ")


def test_link_that_stays_inside_is_followed(rig, secret):
    reply = fetch(b"GET /inside.css HTTP/1.1\r\nConnection: close\r\n\r\n")
    assert reply.endswith(b"\r\n\r\nbody { color: page }")


def test_pipe_in_the_web_root_holds_nobody_up(rig, secret):
    os.mkfifo(os.path.join(rig.daemon.folder, "web_root", "pipe.css"))
    assert fetch(b"GET /pipe.css HTTP/1.1\r\nConnection: close\r\n\r\n").startswith(b"HTTP/1.1 404 ")
