#!/usr/bin/python3
"""Checks the rules of the C and C++ tree: how long a file may be, which folder may include which,
and the parts of the dialect that clang-tidy does not know.

usage: tree_rules.py <source folder>
"""
import os
import re
import sys

# Folder: the folders that it may include besides itself. Tests may include anything.
LAYERS = {
    "encoding": set(),
    "CBB/Util": set(),
    "CBB/Http": {"CBB/Util"},
    "control": {"CBB/Util"},
    "config": {"CBB/Util"},
    "CBB/WebCtrl": {"CBB/Util", "CBB/Http", "control", "config", "encoding"},
    "tools/devsim": set(),
}
# Header of an external library: the folders that may include it.
LIBRARIES = {
    "mongoose.h": {"CBB/Http", "CBB/WebCtrl"},
    "mongoose.c": {"CBB/Http"},
    "llhttp/llhttp.h": {"CBB/Http"},
}
MOST_LINES = {".cpp": 300, ".c": 300, ".h": 120}
# The one class that has every endpoint as a member cannot be shorter than their list.
LONG_LISTS = {"CBB/WebCtrl/WebCtrl.h"}
# The files of a rule, what must not be written in them, and what to write instead.
DIALECT = [
    (r"\.(cpp|h)$", r"^static (?!_)\w", "an anonymous namespace instead of static"),
    (r"\.(cpp|c|h)$",
     r"(^ *|[;)] |else )([\w.>\[\]-]|\(\))+(\+\+|--)[;)]", "++ and -- before what they change"),
    (r"\.(cpp|h)$",
     r"\b(assert|ENC_ASSERT)\(([^\",]*&& )?\*?p[a-z]*[A-Z]\w*( &&|[,)])",
     "a comparison with nullptr in an assertion"),
]
FREE = ("tests/", "bench/", "fuzz/", "tools/")


def sources(top):
    for folder, folders, names in os.walk(top):
        folders[:] = [name for name in folders
                      if name not in ("build", "node_modules") and not name.startswith(".")]
        for name in names:
            path = os.path.relpath(os.path.join(folder, name), top)
            if os.path.splitext(name)[1] in MOST_LINES:
                yield path


def layer_of(path):
    return next((layer for layer in LAYERS if path.startswith(layer + "/")), None)


def include_problems(path, text):
    layer = layer_of(path)
    for name in re.findall(r'^#include "([^"]+)"', text, re.M):
        target = layer_of(name)
        if layer and target and target != layer and target not in LAYERS[layer]:
            yield f"{path}: {layer} may not include {name}"
    for name in re.findall(r'^#include [<"]([^">]+)', text, re.M):
        folders = LIBRARIES.get(name)
        if folders and layer not in folders and not path.startswith(FREE):
            yield f"{path}: only {' and '.join(sorted(folders))} may include {name}"


def dialect_problems(path, text):
    for number, line in enumerate(text.split("\n"), 1):
        for names, pattern, wanted in DIALECT:
            if re.search(names, path) and re.search(pattern, line):
                yield f"{path}:{number}: {wanted}"


def problems(path, text):
    lines = text.count("\n")
    most = MOST_LINES[os.path.splitext(path)[1]]
    if lines > most and path not in LONG_LISTS and not path.startswith("tests/"):
        yield f"{path}: {lines} lines, more than {most}"
    yield from include_problems(path, text)
    yield from dialect_problems(path, text)


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    paths = sorted(sources(sys.argv[1]))
    found = []
    for path in paths:
        with open(os.path.join(sys.argv[1], path), encoding="utf-8") as file:
            found += problems(path, file.read())
    print("\n".join(found) or f"{len(paths)} files keep the rules")
    sys.exit(1 if found or not paths else 0)


if __name__ == "__main__":
    main()
