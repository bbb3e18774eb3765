"""What tests/packaging/run.sh tells and records of its cases, here with stand-ins for them."""

import os
import shutil
import subprocess

import pytest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
# A case ends as its file says, which is its status and its reason; the other programs do nothing.
CASE = """#!/bin/sh
read -r status reason <"$0.$1"
[ "$status" != 77 ] || echo "$reason" >"$(dirname "$2")/$1.skipped"
exit "$status"
"""
NOTHING = "#!/bin/sh\n"
STAND_INS = {
    "tests/packaging/case.sh": CASE,
    "tests/packaging/contents.sh": NOTHING,
    "tests/packaging/twice.sh": NOTHING,
    "scripts/package.sh": NOTHING,
    "bin/cpack": NOTHING,
    "bin/id": "#!/bin/sh\necho 0\n",
    "bin/unshare": '#!/bin/sh\nwhile [ "${1#--}" != "$1" ]; do shift; done\nexec "$@"\n',
}


@pytest.fixture
def project(tmp_path):
    for path, text in STAND_INS.items():
        (tmp_path / path).parent.mkdir(parents=True, exist_ok=True)
        (tmp_path / path).write_text(text)
        (tmp_path / path).chmod(0o755)
    for path in ["scripts/common.sh", "tests/packaging/run.sh"]:
        shutil.copy(os.path.join(ROOT, path), tmp_path / path)
    (tmp_path / "build/packaging").mkdir(parents=True)
    (tmp_path / "build/packaging/debian.tar").touch()
    return tmp_path


def run(project, **cases):
    for name in ["systemd", "sysvinit", "recorder"]:
        (project / f"tests/packaging/case.sh.{name}").write_text(cases.get(name, "0") + "\n")
    results = project / "results.tsv"
    env = dict(os.environ, PATH=f"{project}/bin:{os.environ['PATH']}", WEBCTRL_RESULTS=str(results))
    ended = subprocess.run([project / "tests/packaging/run.sh"], env=env, text=True, check=False,
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    lines = [line.split("\t")[1:] for line in results.read_text().splitlines()]
    return ended.returncode, ended.stdout, {name: [outcome, why] for outcome, name, why in lines}


def test_all_of_it_works_when_every_case_has_passed(project):
    status, told, results = run(project)
    assert (status, told) == (0, "run: all of it works\n")
    assert {outcome for outcome, _ in results.values()} == {"passed"} and len(results) == 5


def test_a_skipped_case_is_named_and_recorded_with_its_own_reason(project):
    status, told, results = run(project, systemd="77 no control group of its own")
    assert (status, told) == (0, "run: passed, but skipped: systemd\n")
    assert results["systemd"] == ["skipped", "no control group of its own"]
    assert results["sysvinit"] == ["passed", ""]


def test_a_failed_case_is_named_though_another_was_skipped(project):
    status, told, results = run(project, systemd="77 no control group of its own", recorder="1")
    assert (status, told) == (1, "run: failed: recorder\n")
    assert results["recorder"] == ["failed", ""]
