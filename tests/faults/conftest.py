"""The fixtures and options of tests/blackbox, and a daemon that is started in adverse
conditions."""

import importlib.util
import os
import sys

_HERE = os.path.dirname(os.path.abspath(__file__))
_RIG = os.path.join(os.path.dirname(_HERE), "blackbox")
sys.path.insert(0, _RIG)

# Both files are called conftest, so one gets another name here.
_spec = importlib.util.spec_from_file_location("rig_conftest", os.path.join(_RIG, "conftest.py"))
_rig = importlib.util.module_from_spec(_spec)
_spec.loader.exec_module(_rig)
globals().update({name: value for name, value in vars(_rig).items() if not name.startswith("_")})

import pytest  # noqa: E402
from spoilt import SpoiltDaemon  # noqa: E402


@pytest.fixture
def spoilt(tmp_path):
    """Starts a daemon in the given conditions; it must stay alive until the end of the test."""
    daemons = []

    def start(**troubles):
        daemon = SpoiltDaemon(tmp_path / f"daemon{len(daemons)}", **troubles)
        daemons.append(daemon)
        return daemon.start()

    yield start
    for daemon in daemons:
        daemon.stop()
