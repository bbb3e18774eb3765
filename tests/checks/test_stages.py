"""How scripts/test.sh ends when its stages fail, skip or die, here with stand-ins for their work."""

import os
import re
import shutil
import subprocess

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
OWN = ["scripts/test.sh", "scripts/common.sh", "scripts/results/summary.sh"]
# What a stage calls first; of cmake and the tests, with these arguments.
WORK = {
    "deps": "scripts/install-deps.sh",
    "build": "bin/cmake --preset release",
    "test": "scripts/results/ctest.sh build/release",
    "cross": "scripts/cross.sh",
    "package": "tests/packaging/run.sh",
    "format": "scripts/checks/format.sh",
    "static": "scripts/checks/cppcheck.sh",
    "asan": "scripts/results/ctest.sh build/asan",
    "tsan": "bin/cmake --build --preset tsan",
    "fuzz": "scripts/fuzz.sh",
}
STAND_INS = {call.split(" ")[0] for call in WORK.values()} | {
    "scripts/checks/shellcheck.sh", "scripts/checks/clang-tidy.sh"}  # fmt: skip
FAILS = "exit 1"
SKIPS = "printf '1\\tskipped\\tmoon\\tno moon tonight\\n' >>\"$WEBCTRL_RESULTS\""
LANE_DIES = "kill -9 $PPID; : >build/results/killed"
WAITS_FOR_THAT = "until [ -e build/results/killed ]; do sleep 0.1; done"


@pytest.fixture
def project(tmp_path):
    for path in [*OWN, *STAND_INS]:
        (tmp_path / path).parent.mkdir(parents=True, exist_ok=True)
    for path in OWN:
        shutil.copy(os.path.join(ROOT, path), tmp_path / path)
    return tmp_path


def run(project, does, *arguments):
    """Exit status, what was told, and the stages with their outcomes; "does" says what some do."""
    for path in STAND_INS:
        cases = "".join(f"  '{call.partition(' ')[2]}'*) {does[stage]} ;;\n"
                        for stage, call in WORK.items() if stage in does and call.split(" ")[0] == path)
        (project / path).write_text(f'#!/bin/sh\ncase "$*" in\n{cases}esac\n')
        (project / path).chmod(0o755)
    env = dict(os.environ, PATH=f"{project}/bin:{os.environ['PATH']}")
    ended = subprocess.run([project / "scripts/test.sh", *arguments], env=env, text=True, check=False,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=60)
    rows = re.findall(r"^(\w+) +(passed|FAILED) ", ended.stdout.partition("=== Summary")[2], re.M)
    return ended.returncode, ended.stdout, dict(rows)


def test_all_stages_run_and_pass(project):
    status, told, rows = run(project, {})
    assert (status, rows) == (0, dict.fromkeys([*WORK, "all"], "passed")), told


@pytest.mark.parametrize("stage", WORK)
def test_a_failed_stage_fails_the_whole_and_stops_only_what_needs_it(project, stage):
    status, told, rows = run(project, {stage: FAILS})
    ran = {"deps": ["deps"], "build": ["deps", "build"]}.get(stage, list(WORK))
    failed = {stage: "FAILED", "all": "FAILED"}
    assert (status, rows) == (1, dict.fromkeys(ran, "passed") | failed), told
    assert re.search(r"^all +FAILED +\d+ passed +1 failed", told, re.M), told


@pytest.mark.parametrize("stages", [["format", "fuzz"], ["fuzz", "format"]])
def test_a_failed_stage_of_some_fails_them(project, stages):
    status, told, rows = run(project, {"fuzz": FAILS}, *stages)
    assert (status, rows) == (1, {"format": "passed", "fuzz": "FAILED", "all": "FAILED"}), told


def test_quick_runs_tests_when_it_is_named(project):
    status, told, rows = run(project, {"test": FAILS}, "quick")
    assert (status, rows) == (1, {"quick": "FAILED", "all": "FAILED"}), told


@pytest.mark.parametrize("allowed, status", [("", 1), ("fuzz moon no sun", 1), ("fuzz moon no moon", 0)])
def test_a_skipped_test_must_be_on_the_list(project, allowed, status):
    listed = project / "may-skip"
    listed.write_text(allowed + "\n")
    ended, told, rows = run(project, {"fuzz": SKIPS}, "--may-skip", listed)
    assert (ended, rows["all"]) == (status, "FAILED" if status else "passed"), told
    assert ("may not be skipped: moon (no moon tonight)" in told) == bool(status)


@pytest.mark.parametrize("stage, lost", [("cross", ["cross", "package"]), ("fuzz", ["fuzz"])])
def test_a_killed_lane_fails_the_whole_and_leaves_the_other_alone(project, stage, lost):
    other = {"cross": "format", "fuzz": "test"}[stage]
    status, told, rows = run(project, {stage: LANE_DIES, other: WAITS_FOR_THAT})
    failed = dict.fromkeys([*lost, "all"], "FAILED")
    assert (status, rows) == (1, dict.fromkeys(WORK, "passed") | failed), told


def test_a_stage_that_is_not_there_fails_at_once(project):
    status, told, rows = run(project, {}, "format", "nonsense")
    assert (status, rows) == (1, {}) and 'no stage "nonsense"' in told
