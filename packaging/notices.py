#!/usr/bin/python3
"""Prints our licence and the licences and notices of all third-party code in a package.

usage: notices.py <source folder> <folder of the HTTP library> shared|static [--texts]

They come from what was used for the build: the sources, the npm modules, Debian's packages. A
static executable contains the libraries, too. --texts adds the licences to which Debian's packages
only refer, for systems without /usr/share/common-licenses.
"""

import json
import os
import re
import sys

PACKAGES = {
    "shared": [("llhttp, the parser of requests", "node-llhttp")],
    "static": [
        ("llhttp, the parser of requests", "node-llhttp"),
        ("TinyXML, the XML library", "libtinyxml-dev"),
        ("libmd, the MD5 library", "libmd-dev"),
        ("The GNU C library", "libc6-dev-armhf-cross"),
        ("The C++ runtime of GCC", "libstdc++-12-dev-armhf-cross"),
    ],
}
TEXTS = ["GPL-2", "GPL-3", "LGPL-2.1", "Apache-2.0"]


def read(*path):
    with open(os.path.join(*path), encoding="utf-8", errors="replace") as file:
        return file.read().strip()


def notices_in(source):
    """Each comment in a source that names a copyright holder, once."""
    comments = re.findall(r"/\*.*?\*/", source, re.S)
    found = [text for text in comments if re.search(r"Copyright ?\(c\)", text)]
    plain = [re.sub(r"^[ /]*\*+ ?/?|\*/$", "", text, flags=re.M).strip() for text in found]
    return "\n\n".join(dict.fromkeys(plain))


def modules_of_the_pages(top):
    """The npm modules that the pages import; the others only build them."""
    found = []
    for folder, _, names in os.walk(os.path.join(top, "web/src")):
        for name in names:
            found += re.findall(r"from '([^'.][^']*)'", read(folder, name))
    known = json.loads(read(top, "web/package.json"))["dependencies"]
    return [name for name in known if any(f"{text}/".startswith(f"{name}/") for text in found)]


def parts(top, mongoose, kind, *options):
    yield "webctrl", read(top, "LICENSE")
    notices = notices_in(read(mongoose, "mongoose.c"))
    if not notices:
        sys.exit(f"notices: {mongoose}/mongoose.c names no holder of rights")
    yield "Mongoose, the HTTP library", notices
    for name in modules_of_the_pages(top):
        yield f"{name}, in the pages", read(top, "web/node_modules", name, "LICENSE")
    for what, package in PACKAGES[kind]:
        yield what, read("/usr/share/doc", package, "copyright")
    for name in TEXTS if options else []:
        yield name, read("/usr/share/common-licenses", name)


def main():
    if len(sys.argv) < 4 or sys.argv[3] not in PACKAGES or sys.argv[4:] not in ([], ["--texts"]):
        sys.exit(__doc__)
    for heading, text in parts(*sys.argv[1:]):
        print(f"{heading}\n{'=' * len(heading)}\n\n{text}\n")


if __name__ == "__main__":
    main()
