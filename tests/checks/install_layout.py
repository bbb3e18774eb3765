#!/usr/bin/python3
"""Installs a build into a fresh folder and compares what arrives with what the project has.

usage: install_layout.py <source folder> <build folder>
"""
import filecmp
import os
import subprocess
import sys
import tempfile


def files_below(top):
    return {os.path.relpath(os.path.join(folder, name), top)
            for folder, _, names in os.walk(top) for name in names}


def problems(source, prefix):
    program = os.path.join(prefix, "bin", "webctrl")
    if not os.access(program, os.X_OK):
        yield "no executable bin/webctrl"
    here = os.path.join(source, "web_root")
    there = os.path.join(prefix, "bin", "web_root")
    wanted = files_below(here) - {"CMakeLists.txt"}
    arrived = files_below(there)
    if not wanted:
        yield "the project has no pages"
    for name in sorted(wanted ^ arrived):
        yield f"bin/web_root/{name} is {'missing' if name in wanted else 'too much'}"
    for name in sorted(wanted & arrived):
        if not filecmp.cmp(os.path.join(here, name), os.path.join(there, name), shallow=False):
            yield f"bin/web_root/{name} differs from the project's"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    source, build = sys.argv[1:]
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run(["cmake", "--install", build, "--prefix", prefix], check=True,
                       stdout=subprocess.DEVNULL)
        found = list(problems(source, prefix))
        print("\n".join(found) or f"{len(files_below(prefix))} files are in their places")
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()
