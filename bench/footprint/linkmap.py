"""Reads a GNU ld map: how many bytes each object adds to a program, by owner and by section."""

import os
import re
from collections import Counter

# The owner of an input file; the first match wins. Ours are named after their folder.
_OWNERS = (
    (re.compile(r"(?:^|/)CBB/Http/libhttp\.a\(Library\.c\.o\)"), "HTTP library"),
    (re.compile(r"(?:^|/)libllhttp\.a"), "HTTP parser"),
    (re.compile(r"(?:^|/)(CBB/\w+|control|config|encoding)/(?:lib\w+\.a|CMakeFiles/)"), None),
    (re.compile(r"/libtinyxml\.a"), "XML library"),
    (re.compile(r"/libmd\.a"), "MD5 library"),
    (re.compile(r"/(?:libstdc\+\+|libsupc\+\+|libgcc|libgcc_eh)\.a|/crt(?:begin|end)\w*\.o"), "C++ runtime"),
    (re.compile(r"/(?:libc|libpthread|libm|libc_nonshared)\.a|/\w?crt[1in]\.o"), "C library"),
)

# How the sections of an executable are grouped; those not named here are not loaded.
_KINDS = (
    (re.compile(r"^\.(text|init|fini|plt|iplt)|^__libc_freeres_fn"), "code"),
    (re.compile(r"^\.(rodata|data\.rel\.ro)|^__libc_(sub|IO|atexit)"), "constants"),
    (re.compile(r"^\.(ARM\.ex|eh_frame|gcc_except)"), "unwinding"),
    (re.compile(r"^\.(data|tdata|got|init_array|fini_array)"), "data"),
    (re.compile(r"^\.(bss|tbss)|^__libc_freeres_ptrs|^COMMON"), "zeroed"),
)
KINDS = tuple(name for _, name in _KINDS)

_INPUT = re.compile(r"^ (\S+)?\s+0x([0-9a-f]+)\s+0x([0-9a-f]+) (\S.*)$")
_NAME_ALONE = re.compile(r"^ (\.?[\w.+$]+)$")


def kind_of(section):
    return next((name for pattern, name in _KINDS if pattern.match(section)), None)


def owner_of(path):
    for pattern, name in _OWNERS:
        if match := pattern.search(path):
            return name or match.group(1)
    return "other"


def object_of(path):
    """"lib.a(member.o)" and "folder/file.cpp.o" alike become the object's name."""
    return os.path.basename(re.sub(r".*\((.*)\)$", r"\1", path))


def contributions(path):
    """(section, bytes, input file) of everything that is loaded."""
    name = None
    with open(path, encoding="utf-8", errors="replace") as file:
        text = file.read().partition("\nLinker script and memory map")[2]
    for line in text.splitlines():
        if alone := _NAME_ALONE.match(line):
            name = alone.group(1)
            continue
        if match := _INPUT.match(line):
            section, address, size = match.group(1) or name, int(match.group(2), 16), match.group(3)
            if section and address and int(size, 16) and not section.startswith("*"):
                yield section, int(size, 16), match.group(4)
        name = None


def by_owner(path):
    """{owner: {kind: bytes}} and {owner: {object: bytes}}; the latter without zeroed data."""
    kinds, objects = {}, {}
    for section, size, source in contributions(path):
        kind = kind_of(section)
        if kind:
            owner = owner_of(source)
            kinds.setdefault(owner, Counter())[kind] += size
            if kind != "zeroed":
                objects.setdefault(owner, Counter())[object_of(source)] += size
    return kinds, objects
