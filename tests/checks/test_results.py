"""The summary of scripts/test.sh: what CTest, pytest, node and GoogleTest ran, and why they skipped
the rest."""

import os
import shutil
import subprocess
import sys

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TOOLS = os.path.join(ROOT, "scripts/results")

PYTEST_FILE = """
import pytest
def test_good(): pass
def test_also_good(): pass
def test_away(): pytest.skip("no moon")
@pytest.mark.parametrize("n", [1, 2])
def test_far(n): pytest.skip("no sun")
"""
ALL_SKIPPED = """
import pytest
pytestmark = pytest.mark.skip(reason="not today")
def test_one(): pass
def test_two(): pass
"""
SPOILT = """
import pytest
def test_good(): pass
def test_bad(): assert False
def test_away(): pytest.skip("no moon")
@pytest.fixture
def broken(): raise RuntimeError
def test_without_its_fixture(broken): pass
"""
NODE_FILE = """
const test = require('node:test');
test('good', () => {});
test('away', {skip: 'no browser'}, () => {});
"""
GTEST_OUTPUT = "x_test.cpp:97: Skipped\\nneeds another user\\n\\n[  SKIPPED ] X.Y (0 ms)\\n"

PYTEST = f"{sys.executable} -m pytest -q -p no:cacheprovider"
# Test of CTest: its command, its properties, and the lines of results that it gives.
TESTS = {
    "plain": ("true", "", ["1 passed plain"]),
    "broken": ("false", "", ["1 failed broken"]),
    "missing": ("./no-such-program", "", ["1 failed missing"]),
    "left": ("sh -c 'echo skipped: no network; exit 77'", "SKIP_RETURN_CODE 77", ["1 skipped left no network"]),
    "unit": (f"printf '{GTEST_OUTPUT}'", 'SKIP_REGULAR_EXPRESSION "\\\\[  SKIPPED \\\\]"',
             ["1 skipped unit needs another user"]),
    "mixed": (f"{PYTEST} mixed.py", "", ["2 passed mixed", "1 skipped mixed no moon",
                                         "2 skipped mixed no sun"]),
    "twice": (f"sh -c '{PYTEST} mixed.py; {PYTEST} mixed.py'", "",
              ["4 passed twice", "2 skipped twice no moon", "4 skipped twice no sun"]),
    "away": (f"sh -c '{PYTEST} away.py; exit 77'", "SKIP_RETURN_CODE 77",
             ["2 skipped away not today"]),
    "spoilt": (f"{PYTEST} spoilt.py", "",
               ["1 passed spoilt", "2 failed spoilt", "1 skipped spoilt no moon"]),
    "endless": ("sh -c 'echo 3 passed in 1.0s; sleep 60'", "TIMEOUT 1",
                ["3 passed endless", "1 failed endless"]),
    "node": ("node --test node.test.js", "", ["1 passed node", "1 skipped node no browser"]),
    "node-spec": ("printf 'ℹ pass 4\\n﹣ away (0.1ms) # SKIP\\nℹ skipped 1\\n'", "",
                  ["4 passed node-spec", "1 skipped node-spec no reason given"]),
}  # fmt: skip


def quoted(command):
    """A shell command in the form for CTest's file."""
    return " ".join(f"[==[{word}]==]" for word in ["sh", "-c", command])


@pytest.fixture(scope="module")
def recorded(tmp_path_factory):
    """The lines of results after one run of all of TESTS."""
    folder = tmp_path_factory.mktemp("build")
    for name, text in (("mixed.py", PYTEST_FILE), ("away.py", ALL_SKIPPED), ("spoilt.py", SPOILT),
                       ("node.test.js", NODE_FILE)):  # fmt: skip
        (folder / name).write_text(text)
    with open(folder / "CTestTestfile.cmake", "w", encoding="utf-8") as file:
        for name, (command, properties, _) in TESTS.items():
            if name != "missing":
                command = quoted(command)
            file.write(f"add_test({name} {command})\n")
            if properties:
                file.write(f"set_tests_properties({name} PROPERTIES {properties})\n")
    results = folder / "stage.tsv"
    environment = {**os.environ, "WEBCTRL_RESULTS": str(results), "PYTEST_ADDOPTS": ""}
    done = subprocess.run([os.path.join(TOOLS, "ctest.sh"), folder], env=environment,
                          capture_output=True, text=True)  # fmt: skip
    assert done.returncode == 1, done.stdout + done.stderr
    return results.read_text().splitlines()


@pytest.mark.parametrize("name", TESTS)
def test_tests_inside_a_test_count_with_their_reasons(recorded, name):
    if name == "node" and not shutil.which("node"):
        pytest.skip("no node")
    lines = [line.split("\t") for line in recorded if line.split("\t")[2] == name]
    assert sorted(" ".join(line).strip() for line in lines) == sorted(TESTS[name][2])


def summary(folder, stages, *allowed):
    """Exit status and text of the summary of stages: name -> (outcome, lines of results)."""
    with open(folder / "stages", "w", encoding="utf-8") as file:
        for name, (outcome, lines) in stages.items():
            file.write(f"{name} {outcome} 7\n")
            (folder / f"{name}.tsv").write_text("".join(line + "\n" for line in lines))
    done = subprocess.run([os.path.join(TOOLS, "summary.sh"), folder, "9", *allowed],
                          stdout=subprocess.PIPE, text=True)  # fmt: skip
    return done.returncode, done.stdout


TWO_STAGES = {
    "test": ("passed", ["5\tpassed\tblackbox.a\t", "1\tskipped\tfaults.b\tno moon",
                        "2\tskipped\tfaults.c\tno moon", "1\tskipped\tui.d\tno browser"]),
    "asan": ("passed", ["2\tpassed\tblackbox.a\t"]),
}  # fmt: skip


def test_summary_counts_and_gives_every_reason_once(tmp_path):
    status, text = summary(tmp_path, TWO_STAGES)
    assert status == 0
    assert text == (
        "\n=== Summary\n"
        "test     passed      5 passed    0 failed    4 skipped     7 s\n"
        "      3 skipped: no moon (faults.b, faults.c)\n"
        "      1 skipped: no browser (ui.d)\n"
        "asan     passed      2 passed    0 failed    0 skipped     7 s\n"
        "all      passed      7 passed    0 failed    4 skipped     9 s\n"
    )


def test_failed_stage_fails_the_whole(tmp_path):
    status, text = summary(tmp_path, {"test": ("FAILED", ["1\tfailed\tunit.x\t"])})
    assert status == 1
    assert "all      FAILED      0 passed    1 failed" in text


@pytest.mark.parametrize(
    "lines, refused",
    [
        (["test faults.* no moon", "* ui.d no"], []),
        (["# test faults.* no moon", "test ui.d no browser"], ["faults.b", "faults.c"]),
        (["asan faults.* no moon", "test ui.d no browser"], ["faults.b", "faults.c"]),
        (["test faults.* no sun", "test ui.d no browser"], ["faults.b", "faults.c"]),
        (["test faults.b no moon", "test ui.d"], ["faults.c", "ui.d"]),
        ([], ["faults.b", "faults.c", "ui.d"]),
    ],
)
def test_skipped_test_must_be_on_the_list(tmp_path, lines, refused):
    listed = tmp_path / "may-skip"
    listed.write_text("".join(line + "\n" for line in lines))
    status, text = summary(tmp_path, TWO_STAGES, listed)
    named = [line.split()[4] for line in text.split("\n") if "may not be skipped" in line]
    assert (status, named) == (1 if refused else 0, refused)
    assert ("test     FAILED" in text) == bool(refused)
