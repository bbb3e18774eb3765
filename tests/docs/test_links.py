"""Every link, path, preset and stage that a document gives is there."""

import os
import re

import pytest
from documents import ROOT, anchors, blocks, documents, prose, read

pytestmark = pytest.mark.offline

LINK = re.compile(r"\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`\n]+)`")
PATH = re.compile(r"[\w.-]+(?:/[\w.*-]+)+/?")
TOP = {"CBB", "bench", "cmake", "config", "control", "docs", "encoding", "fuzz", "packaging"} | {
    "scripts", "tests", "tools", "web"}  # fmt: skip


def links(document):
    return [link for link in LINK.findall(prose(document)) if "://" not in link]


@pytest.mark.parametrize("document", documents())
def test_links_lead_somewhere(document):
    for link in links(document):
        path, _, anchor = link.partition("#")
        target = os.path.normpath(os.path.join(os.path.dirname(document), path or "."))
        if not path:
            target = document
        assert os.path.exists(os.path.join(ROOT, target)), link
        if anchor:
            assert anchor in anchors(target), link


def paths(document):
    texts = CODE.findall(prose(document))
    texts += [b.text for b in blocks(document) if b.kind.split(" ")[0] in ("sh", "text")]
    for path in PATH.findall("\n".join(texts)):
        if path.split("/")[0] in TOP:
            yield path.rstrip("/")


@pytest.mark.parametrize("document", documents())
def test_paths_of_the_tree_exist(document):
    for path in paths(document):
        if "*" in path:
            folder, pattern = os.path.split(path)
            fixed = pattern.partition("*")[0]
            assert any(n.startswith(fixed) for n in os.listdir(os.path.join(ROOT, folder))), path
        else:
            assert os.path.exists(os.path.join(ROOT, path)), path


def test_presets_of_the_commands_exist():
    presets = re.findall(r'"name": "(\w+)"', read("CMakePresets.json"))
    for document in documents():
        assert set(re.findall(r"--preset[ =](\w+)", read(document))) <= set(presets), document


def test_stages_are_those_of_the_script():
    stages = re.findall(r"^stage_(\w+)\(\)", read("scripts/test.sh"), re.M)
    told = re.search(r"runs single\s+stages: (.+?)\.\n", read("README.md"), re.S)[1]
    assert set(re.findall(r"`(\w+)`", told)) == set(stages)


def figures(text):
    rows = [[cell.strip() for cell in line.split("|")[1:-1]] for line in text.split("\n")]
    return {row[0]: row[1:] for row in rows if len(row) > 3 and row[1][-3:].isdigit()}


def test_figures_of_the_readme_are_the_measured_ones():
    told = figures(read("README.md").partition("## Speed")[2])
    measured = figures(read("docs/speed.md"))
    assert len(told) == 7
    assert {name: [row[0], *row[3:5]] for name, row in measured.items() if name in told} == told
