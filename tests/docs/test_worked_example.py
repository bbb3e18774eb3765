"""The worked example of docs/architecture.md: its pieces compile and do what the text says.

Every block below a comment "put: FILE, PLACE" is inserted into a copy of the sources, which is
built and run with the simulated recorder.
"""

import os
import re
import shutil
import subprocess

import pytest
from daemon import PROGRAM
from documents import ROOT, as_pattern, blocks, commands
from recorder import Recorder

PAGE = "docs/architecture.md"
NOT_NEEDED = shutil.ignore_patterns(
    "build", ".*", "tests", "fuzz", "bench", "node_modules", "__pycache__")  # fmt: skip
PUT = re.compile(r"<!-- put: (\S+), (?:(after|before): (.+)|at the end) -->")


def pieces():
    for block in blocks(PAGE):
        if put := PUT.fullmatch(block.before):
            yield put.groups(), block.text + "\n"


def put(path, place, line, text):
    with open(path, encoding="gbk" if path.endswith(".xml") else "utf-8") as file:
        lines = file.readlines()
    at = len(lines)
    if place:
        found = [number for number, other in enumerate(lines) if other.strip() == line]
        assert len(found) == 1, f"{path} has {len(found)} lines {line}"
        at = found[0] + (place == "after")
    lines.insert(at, text)
    with open(path, "w", encoding="gbk" if path.endswith(".xml") else "utf-8") as file:
        file.writelines(lines)


@pytest.fixture(scope="module")
def tree(tmp_path_factory):
    tree = tmp_path_factory.mktemp("copy") / "tree"
    shutil.copytree(ROOT, tree, ignore=NOT_NEEDED)
    for (path, place, line), text in pieces():
        put(str(tree / path), place, line, text)
    return tree


@pytest.fixture(scope="module")
def programs(tree):
    """The folder with the built daemon."""
    mongoose = os.environ.get("MONGOOSE_DIR") or os.path.join(ROOT, ".deps/mongoose")
    configure = ["cmake", "-S", tree, "-B", tree / "build", "-G", "Ninja"]
    pages = os.path.join(os.path.dirname(PROGRAM), "web_root")
    options = ["-DWEBCTRL_BUILD_TESTS=OFF", f"-DMONGOOSE_DIR={mongoose}", f"-DWEBCTRL_WEB_ROOT={pages}"]
    build = ["cmake", "--build", tree / "build", "--target", "webctrl", "devsim_defaults"]
    for command in ([*configure, *options], build):
        done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        assert done.returncode == 0, done.stdout[-4000:]
    return str(tree / "build" / "bin")


@pytest.fixture
def recorder(programs, tmp_path):
    recorder = Recorder(tmp_path, programs)
    yield recorder
    recorder.close()


def test_example_builds_and_does_what_it_shows(recorder):
    (example,) = [block for block in blocks(PAGE) if block.kind == "console buzzer"]
    for command, expected in commands(example.text):
        assert as_pattern(expected).fullmatch(recorder.run(command)), command


@pytest.mark.offline
def test_example_is_laid_out_like_the_rest(tree):
    changed = sorted({path for (path, _, _), _ in pieces() if not path.endswith(".xml")})
    assert len(changed) == 8
    shutil.copy(os.path.join(ROOT, ".clang-format"), tree)
    subprocess.run(["clang-format", "--dry-run", "-Werror", *changed], cwd=tree, check=True)


@pytest.mark.offline
def test_example_keeps_the_rules_of_the_tree(tree):
    rules = os.path.join(ROOT, "tests/checks/tree_rules.py")
    subprocess.run(["/usr/bin/python3", rules, tree], check=True)


@pytest.mark.offline
def test_every_piece_of_code_is_part_of_the_example():
    code = [block for block in blocks(PAGE) if block.kind in ("cpp", "xml")]
    assert len(code) == len(list(pieces())) == 11
