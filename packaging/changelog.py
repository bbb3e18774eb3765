#!/usr/bin/python3
"""Prints CHANGELOG.md in the format of a Debian changelog.

usage: changelog.py <CHANGELOG.md> <maintainer>
"""

import datetime
import re
import sys
import textwrap

HEADING = re.compile(r"^## (\S+) - (\d{4}-\d\d-\d\d)$", re.M)


def entries(text):
    """(version, day, changes) of each version, the newest first."""
    pieces = HEADING.split(text)[1:]
    for version, day, body in zip(pieces[::3], pieces[1::3], pieces[2::3]):
        changes = [" ".join(item.split()) for item in re.split(r"^- ", body, flags=re.M)[1:]]
        yield version, datetime.date.fromisoformat(day), changes or [" ".join(body.split())]


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    with open(sys.argv[1], encoding="utf-8") as file:
        found = list(entries(file.read()))
    if not found:
        sys.exit(f"changelog: no version with a date in {sys.argv[1]}")
    for version, day, changes in found:
        print(f"webctrl ({version}) unstable; urgency=medium\n")
        for change in changes:
            print(textwrap.fill(change, 78, initial_indent="  * ", subsequent_indent="    "))
        print(f"\n -- {sys.argv[2]}  {day:%a, %d %b %Y} 00:00:00 +0000\n")


if __name__ == "__main__":
    main()
