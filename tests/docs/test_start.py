"""What docs/deployment.md says that a start prints, against a start and the sources."""

import re
import subprocess

import pytest
from daemon import Daemon
from documents import ROOT, blocks, sections

PAGE = "docs/deployment.md"
COLOURS = re.compile(r"\x1b\[\d*m")


def section():
    (text,) = [text for heading, text in sections(PAGE, 3) if heading == "What a start prints"]
    return text.partition("\n## ")[0]


def healthy_start():
    (block,) = [b for b in blocks(PAGE) if b.text.startswith("CWebCtrl::Init")]
    return block.text + "\n"


def test_healthy_start_prints_what_the_document_shows(tmp_path):
    daemon = Daemon(tmp_path / "daemon").start()
    printed = COLOURS.sub("", daemon.stdout.text())
    daemon.stop()
    told = re.escape(healthy_start()).replace("/opt/webctrl/bin", re.escape(daemon.folder))
    assert re.fullmatch(re.sub(r"tid=\d+", r"tid=\\d+", told), printed), printed


@pytest.mark.offline
def test_every_line_of_a_healthy_start_is_explained():
    rows = re.findall(r"^\| `([^`]+)` \|", section(), re.M)
    for line in healthy_start().splitlines():
        assert any(row.rstrip("…") in line for row in rows), line


@pytest.mark.offline
def test_lines_of_a_failing_start_are_those_of_the_sources():
    lines = re.findall(r"^\| `([^`]+)` \|", section().partition("one of these stands")[2], re.M)
    assert len(lines) == 3
    formats = subprocess.run(["git", "grep", "-h", "print\\|put", "--", "CBB/WebCtrl"], cwd=ROOT,
                             check=True, stdout=subprocess.PIPE, text=True).stdout  # fmt: skip
    for line in lines:
        told = re.sub("80|…", "%\\\\w+", re.escape(line))
        assert re.search(rf'"{told}\\n"', formats), line
