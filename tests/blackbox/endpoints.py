"""The endpoints, read from the daemon's own table."""

import os
import re

_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


def routes():
    """The URIs in the order in which the daemon compares them."""
    with open(os.path.join(_ROOT, "CBB/WebCtrl/Routes.h"), encoding="utf-8") as file:
        found = re.findall(r'^ +\{"(/\w+)", &CWebCtrl::\w+\},$', file.read(), re.M)
    assert found, "no endpoint in the table"
    return found
