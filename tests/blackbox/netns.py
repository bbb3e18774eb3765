"""A private network and mount namespace for the test process and everything it starts.

Inside, ports 80, 4999 and 6000 are free, "lo" is up, "eth0" has ETH0_ADDRESS, and /sbin/ifconfig is
a stand-in that only writes its arguments to a file. The process stays in the namespace until it
ends; the kernel then removes all of it.
"""

import ctypes
import os
import subprocess
import tempfile

ETH0_ADDRESS = "192.0.2.10"

_CLONE_NEWNS = 0x00020000
_CLONE_NEWUSER = 0x10000000
_CLONE_NEWNET = 0x40000000
_MS_BIND = 0x1000
_MS_REC = 0x4000
_MS_PRIVATE = 0x40000
_MNT_DETACH = 2

_LIBC = ctypes.CDLL(None, use_errno=True)
_LIBC.mount.argtypes = [ctypes.c_char_p] * 3 + [ctypes.c_ulong, ctypes.c_void_p]


class NotAllowed(Exception):
    """The machine refuses a private namespace; the text says why."""


def _check(result, what):
    if result != 0:
        raise NotAllowed(f"{what}: {os.strerror(ctypes.get_errno())}")


def _unshare():
    uid, gid = os.getuid(), os.getgid()
    flags = _CLONE_NEWNET | _CLONE_NEWNS
    if _LIBC.unshare(flags) == 0:
        return
    _check(_LIBC.unshare(flags | _CLONE_NEWUSER), "no private network namespace")
    for name, text in (("setgroups", "deny"), ("uid_map", f"0 {uid} 1"), ("gid_map", f"0 {gid} 1")):
        with open(f"/proc/self/{name}", "w", encoding="ascii") as file:
            file.write(text)


def _mount(source, target, flags, kind=None):
    source = source.encode() if source else None
    _check(_LIBC.mount(source, target.encode(), kind, flags, None), f"mount on {target}")


def cover(target, source):
    """Shows the file `source` in place of `target` inside the namespace."""
    _mount(os.fspath(source), target, _MS_BIND)


def uncover(target):
    _check(_LIBC.umount2(target.encode(), _MNT_DETACH), f"unmount {target}")


def _ip(*words):
    try:
        subprocess.run(("ip", *words), check=True, capture_output=True, text=True)
    except FileNotFoundError:
        raise NotAllowed("the ip command (iproute2) is not installed") from None
    except subprocess.CalledProcessError as error:
        raise NotAllowed(f"ip {' '.join(words)}: {error.stderr.strip()}") from None


def remove_eth0_address():
    _ip("addr", "del", f"{ETH0_ADDRESS}/24", "dev", "eth0")


def restore_eth0_address():
    _ip("addr", "add", f"{ETH0_ADDRESS}/24", "dev", "eth0")


def _network():
    _ip("link", "set", "lo", "up")
    _ip("link", "add", "eth0", "type", "veth", "peer", "name", "eth0peer")
    restore_eth0_address()
    # An address that the system adds by itself comes late, and a browser drops its requests then.
    for name in ("eth0peer", "eth0"):
        _ip("link", "set", name, "addrgenmode", "none")
    _ip("link", "set", "eth0peer", "up")
    _ip("link", "set", "eth0", "up")


def _ifconfig_stand_in(base):
    """Replaces /sbin by links to the real programs and the stand-in."""
    folder = os.path.realpath("/sbin")
    real, farm = os.path.join(base, "real"), os.path.join(base, "farm")
    os.mkdir(real)
    os.mkdir(farm)
    _mount(folder, real, _MS_BIND | _MS_REC)
    for name in os.listdir(folder):
        if name != "ifconfig":
            os.symlink(os.path.join(real, name), os.path.join(farm, name))
    stand_in = os.path.join(farm, "ifconfig")
    with open(stand_in, "w", encoding="ascii") as file:
        file.write('#!/bin/sh\necho "$0 $@" >> "${IFCONFIG_LOG:-/dev/null}"\n')
    os.chmod(stand_in, 0o755)
    _mount(farm, folder, _MS_BIND)


def enter():
    """Moves this process into its own namespace; raises NotAllowed with the reason.

    Returns a scratch folder, which leave() removes; its content exists only inside.
    """
    try:
        _unshare()
    except OSError as error:
        raise NotAllowed(f"no private network namespace: {error}") from None
    _mount(None, "/", _MS_REC | _MS_PRIVATE)
    _network()
    base = tempfile.mkdtemp(prefix="netns-")
    _mount("scratch", base, 0, b"tmpfs")
    _ifconfig_stand_in(base)
    return base


def leave(base):
    _check(_LIBC.umount2(base.encode(), _MNT_DETACH), f"unmount {base}")
    os.rmdir(base)
