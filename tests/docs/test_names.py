"""Every name in backticks is a name of the project, and is found where the text says it is.

Where a sentence or a table gives a file ("`Walk` in `config/AttrTable.h`"), the name must be in that
file; a member must be in the header of its class; everything else must occur in the sources. Comments
do not count: they may still mention something that is gone.
"""

import functools
import os
import re
import subprocess

import pytest
from documents import ROOT, documents, prose, read

pytestmark = pytest.mark.offline

CODE = re.compile(r"`([^`\n]+)`")
WORD = re.compile(r"[A-Za-z_]\w+")
MEMBER = re.compile(r"\b(C[A-Z]\w*)::(\w+)")

# "`name` in `file`", "`name` of `file`", "`name`, `file`", "`name` (`file`)".
FILE = r"[\w./-]+\.(?:h|cpp|c|inc|ts|tsx|py|sh|cmake|xml)"
PLACED = re.compile(rf"`([^`\n]+)`(?: in| of|,|;)? \(?`({FILE})`")

# Headings of table columns that give the file of the names in the first column.
FILE_COLUMNS = ("File", "Importer in")

# Documents and their tests, pictures, and the fuzzers' inputs.
NO_SOURCES = re.compile(r"docs/|tests/docs/.*\.py|fuzz/(corpus|published|site)|.*(\.md|\.png|-lock\.json)$")

# Files that the build makes.
MADE = re.compile(r"build/|webctrl[-_]\d")

# Names that are not in our sources, each with the reason why it may be in a document.
ALLOWED = {
    "UCLIBC_HAS_LFS": "a switch of uClibc",
    "UCLIBC_HAS_THREADS_NATIVE": "a switch of uClibc",
    "UCLIBC_HAS_WCHAR": "a switch of uClibc",
    "UCLIBC_SUSV4_LEGACY": "a switch of uClibc",
    "rcrt1.o": "a file of the C library",
    "dlopen": "a function that is not needed",
    "strtod": "a function that only the XML library calls",
    "-d ''": "an option of curl",
    "ulimit -v": "a command of the shell",
    "LimitAS=": "a setting of systemd",
    "ss -ltnp 'sport = :80'": "a command of iproute2",
    "SIOCSIFADDR: Operation not permitted": "a message of ifconfig",
    "SUBDEVID_k": "k stands for a number",
    "stBuzzer": "the section of the worked example",
    "2026-01-31 08:05:09": "an example of a time",
    "// Deliberate:": "a comment",
}


def without_comments(path, text):
    if re.search(r"\.(cpp|h|c|inc|ts|tsx|js|css)$", path):
        return re.sub(r"(\"(?:[^\"\\\n]|\\.)*\"|'(?:[^'\\\n]|\\.)*')|//[^\n]*|/\*.*?\*/",
                      lambda match: match[1] or " ", text, flags=re.S)  # fmt: skip
    if path.endswith(".py"):
        text = re.sub(r'"""(?:.|\n)*?"""', "", text)
    return re.sub(r"(^|\s)#(?![!{]).*", "", text)


@functools.lru_cache
def sources():
    """The code of every file of the project that is neither a document nor a fuzzer's input."""
    listing = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    )  # fmt: skip
    found = {}
    for path in listing.stdout.split():
        full = os.path.join(ROOT, path)
        if NO_SOURCES.match(path) or not os.path.isfile(full):
            continue
        with open(full, encoding="utf-8", errors="replace") as file:
            found[path] = without_comments(path, file.read())
    assert len(found) > 300
    return found


@functools.lru_cache
def vocabulary():
    """All code as one text, its words, and the names of files and folders."""
    code = "\n".join(sources().values())
    names = {part for path in sources() for part in path.split("/")}
    names |= {name.partition(".")[0] for name in names}
    names |= {name.removeprefix("test_") for name in names}
    return code, set(WORD.findall(code)), names


def is_known(name):
    """True for a text of the code, a file, punctuation, or a phrase made of words of the code."""
    code, words, names = vocabulary()
    if name in ALLOWED or name in code or os.path.exists(os.path.join(ROOT, name)):
        return True
    if MADE.match(name) or not any(letter.isalnum() for letter in name):
        return True
    found = WORD.findall(re.sub(r"<[a-z]+>", " ", name).replace("-DWEBCTRL", "WEBCTRL"))
    return bool(found) and all(word in words or word in names for word in found)


def files_named(file):
    paths = [path for path in sources() if path == file or path.endswith(f"/{file}")]
    assert paths, f"no file {file}"
    return paths


def occurs(name, paths):
    if any(os.path.basename(path).startswith(f"{name}.") for path in sources()):
        return True  # a file beside the other
    word = re.compile(rf"(?:\b|_){WORD.findall(name)[-1]}\b")
    return any(word.search(sources()[path]) for path in paths)


def misplaced_in_text(text):
    for name, file in PLACED.findall(re.sub(r"\s+", " ", text)):
        if "/" not in name and not occurs(name, files_named(file)):
            yield f"{name} is not in {file}"


def misplaced_in_tables(text):
    for table in re.findall(r"(?:^\|.*\n)+", text + "\n", re.M):
        head, _, *rows = [line.strip("| ").split(" | ") for line in table.splitlines()]
        for column in [head.index(name) for name in FILE_COLUMNS if name in head[1:]]:
            for row in rows:
                files = re.findall(f"`({FILE})`", row[column]) if len(row) > column else []
                paths = [path for file in files for path in files_named(file)]
                for name in CODE.findall(row[0]) if paths else []:
                    if not occurs(name, paths):
                        yield f"{name} is not in {row[column]}"


def misplaced_members(text):
    for owner, member in MEMBER.findall(" ".join(CODE.findall(text))):
        pattern = re.compile(rf"\bclass {owner}\b[^;{{]*{{.*?^}};", re.M | re.S)
        bodies = [m[0] for p, c in sources().items() if p.endswith(".h") for m in pattern.finditer(c)]
        if not any(re.search(rf"\b{member}\b", body) for body in bodies):
            yield f"{owner} has no member {member}"


def faults(text):
    unknown = [f"{name} is nowhere" for name in CODE.findall(text) if not is_known(name)]
    wrong = (misplaced_in_text, misplaced_in_tables, misplaced_members)
    return unknown + [fault for check in wrong for fault in check(text)]


@pytest.mark.parametrize("document", documents())
def test_names_are_found_where_the_text_says(document):
    assert faults(prose(document)) == []


@pytest.mark.parametrize("document", documents())
def test_options_of_the_commands_are_known_to_cmake(document):
    cmake = "\n".join(code for path, code in sources().items() if "cmake" in path.lower())
    for option in re.findall(r"(?<![\w-])-D([A-Z]\w+)", read(document)):
        assert option.startswith("CMAKE_") or re.search(rf"\b{option}\b", cmake), option


@pytest.mark.parametrize(
    "text, fault",
    [
        ("Calls `OldFunction`.", "OldFunction is nowhere"),
        ("`Walk` in `config/AttrTable.h`", None),
        ("`Walk` in\n`config/TextValue.h`", "Walk is not in config/TextValue.h"),
        ("`judge` (`web/src/model/clock.ts`)", "judge is not in web/src/model/clock.ts"),
        ("`CWebCtrl::Restart`", None),
        ("`CWebCtrl::Walk`", "CWebCtrl has no member Walk"),
        ("`-DWEBCTRL_OLD=<x>`", "-DWEBCTRL_OLD=<x> is nowhere"),
        ("| T | File |\n|---|---|\n| `kRoutes` | `Routes.h` |", None),
        ("| T | File |\n|---|---|\n| `kRoutes` | `Set.cpp` |", "kRoutes is not in `Set.cpp`"),
    ],
)
def test_stale_name_is_noticed(text, fault):
    assert faults(text) == ([fault] if fault else [])


def test_every_allowed_name_is_used_and_found_nowhere():
    told = {name for document in documents() for name in CODE.findall(prose(document))}
    assert sorted(ALLOWED.keys() - told) == []
    needed = dict(ALLOWED)
    ALLOWED.clear()
    try:
        assert [name for name in needed if is_known(name)] == []
    finally:
        ALLOWED.update(needed)
