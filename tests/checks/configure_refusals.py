#!/usr/bin/python3
"""Configures with invalid inputs and looks for the reason in CMake's output.

usage: configure_refusals.py <source folder> <HTTP library's folder>
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

# (version in the library's header, or None for no file; text of the refusal, or None)
VERSIONS = [
    (None, "run scripts/fetch-mongoose.sh"),
    ("6.15", "Older ones can be crashed from the network"),
    ("7.1", "the daemon needs 6.16 or a later one"),
    ("6.18", None),
]
# (major version in the parser's header, or None for no file; text of the refusal, or None)
PARSERS = [
    (None, "install Debian's package node-llhttp"),
    ("7", "holds another llhttp than version 8"),
    ("8", None),
]
# (text in the address table, its replacement, the compiler's error)
ADDRESSES = [
    ("203.0.113.101", "203.0.113.1", "pairs 1 and 2 have 13 characters"),
    ("198.51.100.7", "198.51.100.77", "pairs 3 and 4 have 12 characters"),
    ("10.255.255.103", "10.255.250.103", "differ only in the last number"),
]


def said(*command):
    done = subprocess.run(command, capture_output=True, text=True)
    return done.returncode, " ".join((done.stdout + done.stderr).split())


def configure(source, work, *options):
    shutil.rmtree(os.path.join(work, "build"), ignore_errors=True)
    return said("cmake", "-G", "Ninja", "-S", source, "-B", os.path.join(work, "build"),
                "-DWEBCTRL_BUILD_TESTS=OFF", *options)


def library_problems(source, library, work):
    for version, refusal in VERSIONS:
        folder = os.path.join(work, f"library-{version}")
        os.mkdir(folder)
        if version:
            shutil.copy(os.path.join(library, "mongoose.c"), folder)
            with open(os.path.join(library, "mongoose.h"), encoding="latin-1") as file:
                header = re.sub(r'(#define MG_VERSION) "[^"]*"', rf'\1 "{version}"', file.read())
            with open(os.path.join(folder, "mongoose.h"), "w", encoding="latin-1") as file:
                file.write(header)
        code, text = configure(source, work, f"-DMONGOOSE_DIR={folder}")
        if (code == 0) != (refusal is None) or (refusal or "") not in text:
            yield f"library {version}: {text}"


def parser_problems(source, library, work):
    for version, refusal in PARSERS:
        folder = os.path.join(work, f"parser-{version}")
        os.makedirs(os.path.join(folder, "llhttp"))
        if version:
            for name in ("llhttp.c", "http.c", "api.c", "llhttp/llhttp.h"):
                with open(os.path.join(folder, name), "w", encoding="ascii") as file:
                    file.write(f"#define LLHTTP_VERSION_MAJOR {version}\n")
        code, text = configure(source, work, f"-DMONGOOSE_DIR={library}", f"-DLLHTTP_DIR={folder}")
        if (code == 0) != (refusal is None) or (refusal or "") not in text:
            yield f"parser {version}: {text}"


def address_problems(source, library, work):
    with open(os.path.join(source, "CBB/WebCtrl/AddressTable.h"), encoding="ascii") as file:
        table = file.read()
    header = os.path.join(work, "table.h")
    for old, new, complaint in ADDRESSES:
        with open(header, "w", encoding="ascii") as file:
            file.write(table.replace(old, new))
        configure(source, work, f"-DMONGOOSE_DIR={library}", f"-DWEBCTRL_ADDRESS_TABLE={header}")
        target = "CBB/WebCtrl/CMakeFiles/webctrl_core.dir/MaskSvrAddr.cpp.o"
        code, text = said("ninja", "-C", os.path.join(work, "build"), target)
        if code == 0 or complaint not in text:
            yield f"addresses with {new}: {text}"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with tempfile.TemporaryDirectory() as work:
        found = [problem for check in (library_problems, parser_problems, address_problems)
                 for problem in check(*sys.argv[1:], work)]
    sys.exit("\n".join(found) or None)


if __name__ == "__main__":
    main()
