"""The copy of the project in build/mutate, its build, and the tests that are run in it."""

import contextlib
import glob
import os
import shutil
import signal
import subprocess
import sys

from oracles import PAGES, UNITS

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WORK = os.path.join(ROOT, "build/mutate")
TREE = os.path.join(WORK, "tree")
BUILD = os.path.join(WORK, "build")
_BUILD_SEC = 900
_TEST_SEC = 120  # a fault may make a test wait for ever
_DAEMON_SEC = 300
# Tests that wait do so side by side.
_SHARDS = 8


def start(command, folder=WORK, **environment):
    return subprocess.Popen(
        command, cwd=folder, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
        start_new_session=True, env={**os.environ, **environment},
    )  # fmt: skip


def ended_well(processes, seconds):
    """Whether all end well in time. What they started ends with them."""
    try:
        return all([process.wait(seconds) == 0 for process in processes])
    except subprocess.TimeoutExpired:
        return False
    finally:
        for process in processes:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(process.pid, signal.SIGKILL)
            process.wait()


def built(targets):
    """Whether the targets build; no target at all does."""
    command = ["cmake", "--build", BUILD, "-j", "2", "--target", *targets]
    return not targets or ended_well([start(command)], _BUILD_SEC)


def unit_passed(program):
    command = [f"{BUILD}/bin/{program}", "--gtest_brief=1", "--gtest_fail_fast"]
    shards = [
        start(command, GTEST_TOTAL_SHARDS=str(_SHARDS), GTEST_SHARD_INDEX=str(number))
        for number in range(_SHARDS)
    ]
    return ended_well(shards, _TEST_SEC)


def daemon_passed(file):
    programs = {"WEBCTRL_BIN": "webctrl", "DEVSIM_BIN": "devsim", "FAULT_SHIM_LIB": "fault_shim.so"}
    environment = {name: f"{BUILD}/bin/{program}" for name, program in programs.items()}
    command = ["/usr/bin/python3", "-m", "pytest", "-qx", "-p", "no:cacheprovider", f"tests/{file}"]
    return ended_well([start(command, TREE, **environment)], _DAEMON_SEC)


def is_script(path):
    esbuild = f"{TREE}/web/node_modules/.bin/esbuild"
    return ended_well([start([esbuild, os.path.join(TREE, path), "--log-level=silent"])], _TEST_SEC)


def pages_have_types():
    types = [f"{TREE}/web/node_modules/typescript/bin/tsc", "--noEmit", "--project", f"{TREE}/web"]
    unused = ["--noUnusedLocals", "false", "--noUnusedParameters", "false"]
    return ended_well([start(["node", *types, *unused])], _BUILD_SEC)


def pages_passed():
    return ended_well([start(["node", f"{TREE}/web/test.mjs"])], _TEST_SEC)


def pages_built():
    return ended_well([start(["node", f"{TREE}/web/build.mjs", f"{BUILD}/bin/web_root"])], _TEST_SEC)


def browser_passed(file):
    programs = {"WEBCTRL_BIN": "webctrl", "DEVSIM_BIN": "devsim"}
    environment = {name: f"{BUILD}/bin/{program}" for name, program in programs.items()}
    command = [f"{TREE}/tests/ui/run.sh", f"{TREE}/tests/ui/{file}"]
    return ended_well([start(command, TREE, **environment)], _DAEMON_SEC)


def lay_out():
    listed = subprocess.run(
        ["git", "ls-files", "-z"], cwd=ROOT, check=True, stdout=subprocess.PIPE, text=True
    )
    shutil.rmtree(TREE, ignore_errors=True)
    for path in filter(None, listed.stdout.split("\0")):
        if os.path.isfile(os.path.join(ROOT, path)):
            os.makedirs(os.path.dirname(os.path.join(TREE, path)), exist_ok=True)
            # With new times: what a former run has built could hold its last fault.
            shutil.copy(os.path.join(ROOT, path), os.path.join(TREE, path))
    for modules in (".deps", "web/node_modules", "tests/ui/node_modules"):
        if os.path.isdir(os.path.join(ROOT, modules)):
            os.symlink(os.path.join(ROOT, modules), os.path.join(TREE, modules))


def configure():
    # What a fault leaves unused is no reason to refuse it. Without anything for a debugger, it is
    # built and linked in half the time.
    options = ["-DWEBCTRL_BUILD_TESTS=ON", "-DCMAKE_BUILD_TYPE=None"]
    warnings = os.path.join(TREE, "cmake/Warnings.cmake")
    with open(warnings, encoding="utf-8") as file:
        text = file.read()
    with open(warnings, "w", encoding="utf-8") as file:
        file.write(text.replace("-Werror", "-w"))
    return ended_well([start(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", *options])], _BUILD_SEC)


def prepare(folders, ask_browser):
    """A copy with a build of its own in which all tests pass."""
    lay_out()
    units = sorted({unit for folder in folders for group in UNITS[folder] for unit in group})
    programs = ["webctrl", "devsim", "fault_shim", *units] if units or ask_browser else []
    if programs and not (configure() and built(programs)):
        sys.exit("mutate: the copy in build/mutate does not build")
    if set(PAGES) & set(folders) and not (pages_have_types() and pages_passed()):
        sys.exit("mutate: the tests of the pages fail without a fault")
    for unit in units:
        if not unit_passed(unit):
            sys.exit(f"mutate: {unit} fails without a fault")


def source_files(folder):
    endings = ("ts", "tsx") if folder in PAGES else ("cpp", "h")
    found = [glob.glob(f"{TREE}/{folder}/**/*.{ending}", recursive=True) for ending in endings]
    return sorted(os.path.relpath(path, TREE) for paths in found for path in paths)
