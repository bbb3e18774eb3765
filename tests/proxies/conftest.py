"""The fixtures of tests/blackbox with a relay in front of the daemon, and a proxy in front of
that."""

import importlib.util
import os
import sys

_HERE = os.path.dirname(os.path.abspath(__file__))
_RIG = os.path.join(os.path.dirname(_HERE), "blackbox")
sys.path[:0] = [_RIG, os.path.join(os.path.dirname(_HERE), "docs")]

# Both files are called conftest, so one gets another name here.
_spec = importlib.util.spec_from_file_location("rig_conftest", os.path.join(_RIG, "conftest.py"))
_rig = importlib.util.module_from_spec(_spec)
_spec.loader.exec_module(_rig)
globals().update({name: value for name, value in vars(_rig).items() if not name.startswith("_")})

import pytest  # noqa: E402
from entrance import Entrance, why_not  # noqa: E402
from fronts import FRONTS, front, program  # noqa: E402
from relay import PORT as RELAY  # noqa: E402
from relay import Relay  # noqa: E402

_PROXIES = os.environ.get("PROXIES", "").split() or list(FRONTS)


def pytest_generate_tests(metafunc):
    if "proxy" in metafunc.fixturenames:
        metafunc.parametrize("proxy", _PROXIES, indirect=True, scope="module")


def pytest_sessionfinish(session):
    _rig.pytest_sessionfinish(session)
    reporter = session.config.pluginmanager.get_plugin("terminalreporter")
    if session.exitstatus == pytest.ExitCode.OK and not reporter.stats.get("passed"):
        session.exitstatus = 77  # CTest's exit status for "skipped"


@pytest.fixture(scope="module")
def relay(daemon):
    relay = Relay()
    yield relay
    relay.close()


@pytest.fixture(scope="module")
def proxy(request, relay, tmp_path_factory):
    if not program(request.param):
        pytest.skip(f"{FRONTS[request.param][1][0]} is not installed")
    with front(request.param, str(tmp_path_factory.mktemp(request.param))):
        yield request.param


@pytest.fixture(scope="module")
def entrance(relay, tmp_path_factory):
    if reason := why_not():
        pytest.skip(reason)
    entrance = Entrance(tmp_path_factory.mktemp("entrance"), port=RELAY)
    yield entrance
    entrance.close()
