"""Where the machine refuses namespaces, tests that need none run, and the others say why they do
not.

A user namespace without permission for nested ones simulates such a machine. Where even that is
refused, this is such a machine.
"""

import os
import re
import subprocess
import sys

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
REFUSE = """
for kind in user net mnt; do echo 0 >/proc/sys/user/max_${kind}_namespaces || exit 1; done
exec "$@"
"""
MAY = subprocess.run(["unshare", "-U", "-r", "true"], stderr=subprocess.DEVNULL).returncode == 0
REASON = "no private network namespace"


def run(path, *options):
    """Exit status, and the text with how many passed and were skipped, and the reasons."""
    refuse = ["unshare", "-U", "-r", "sh", "-c", REFUSE, "sh"] if MAY else []
    command = [sys.executable, "-m", "pytest", "-q", "-rs", "-p", "no:cacheprovider", *options]
    environment = {**os.environ, "PYTHONPATH": os.path.join(ROOT, "tests/blackbox")}
    done = subprocess.run([*refuse, *command, os.path.join(ROOT, path)], env=environment,
                          stdout=subprocess.PIPE, text=True)  # fmt: skip
    return done.returncode, done.stdout


def test_file_that_needs_no_network_runs_whole():
    status, text = run("tests/docs/test_api.py", "-p", "conftest")
    assert status == 0, text
    assert re.search(r"^\d+ passed in", text, re.M), text


def test_file_that_partly_needs_one_runs_in_part():
    status, text = run("tests/docs/test_openapi.py", "-p", "conftest")
    assert status == 0, text
    assert re.search(r"^\d+ passed, \d+ skipped in", text, re.M), text
    assert re.search(rf"^SKIPPED \[\d+\] .*: {REASON}", text, re.M), text


@pytest.mark.parametrize("shards", [1, 2])
def test_file_that_needs_one_is_skipped_with_the_reason(shards):
    status, text = run("tests/blackbox/test_status.py", f"--shards={shards}")
    assert status == 77, text
    skipped = re.findall(rf"^SKIPPED \[(\d+)\] .*: {REASON}", text, re.M)
    ends = re.findall(r"^(\d+) skipped in", text, re.M)
    assert len(ends) == shards
    assert sum(map(int, skipped)) == sum(map(int, ends)) > 0
