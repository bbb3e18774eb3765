#!/usr/bin/python3
"""Installs a build into a new folder and compares the result with the build's output.

usage: install_layout.py <build folder>
"""
import filecmp
import gzip
import os
import subprocess
import sys
import tempfile


def files_below(top):
    return {os.path.relpath(os.path.join(folder, name), top)
            for folder, _, names in os.walk(top) for name in names}


# Files that are requested by name: by the service, by browsers, by people.
NAMED = {"index.html", "login.html", "app.html", "page.css", "sets.css", "favicon.svg"}
MOST_PLAIN = 1024  # a longer text has a compressed form beside it
TEXTS = (".html", ".css", ".js", ".svg")


def compressed_problems(top, names):
    """The compressed forms, which are sent instead of the files beside them."""
    for name in sorted(names):
        path = os.path.join(top, name)
        if name.endswith(".gz"):
            plain = path.removesuffix(".gz")
            with open(path, "rb") as file, gzip.open(path) as inside, open(plain, "rb") as text:
                if file.read(8)[4:] != bytes(4):
                    yield f"{name} names the time at which it was made"
                if inside.read() != text.read():
                    yield f"{name} is not what it lies beside"
            if os.stat(path).st_mtime < os.stat(plain).st_mtime:
                yield f"{name} is older than what it lies beside"
        elif name.endswith(TEXTS) and os.path.getsize(path) > MOST_PLAIN:
            if name + ".gz" not in names:
                yield f"{name} has no compressed form"


def problems(build, prefix):
    program = os.path.join(prefix, "bin", "webctrl")
    if not os.access(program, os.X_OK):
        yield "no executable bin/webctrl"
    here = os.path.join(build, "bin", "web_root")
    there = os.path.join(prefix, "bin", "web_root")
    wanted = files_below(here) | NAMED
    arrived = files_below(there)
    for name in sorted(wanted ^ arrived):
        yield f"bin/web_root/{name} is {'missing' if name in wanted else 'too much'}"
    for name in sorted(wanted & arrived):
        if not filecmp.cmp(os.path.join(here, name), os.path.join(there, name), shallow=False):
            yield f"bin/web_root/{name} differs from the build's"
    yield from compressed_problems(there, arrived)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    build = sys.argv[1]
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        found = list(problems(build, prefix))
        print("\n".join(found) or f"{len(files_below(prefix))} files are in their places")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
