"""Every link, path and name that a document gives is there."""

import os
import re
import subprocess

import pytest
from documents import ROOT, anchors, blocks, documents, prose, read

LINK = re.compile(r"\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`\n]+)`")
PATH = re.compile(r"[\w.-]+(?:/[\w.*-]+)+/?")
TOP = {"CBB", "bench", "cmake", "config", "control", "docs", "encoding", "fuzz", "packaging"} | {
    "scripts", "tests", "tools", "web"}  # fmt: skip
NAME = re.compile(
    r"\b(?:m_\w+|k[A-Z]\w+|C[A-Z]\w*[a-z]\w*|Import_\w+|(?:get|set|enc)_\w+|st[A-Z]\w+)"
)

# The name of the worked example's section, which the sources must not have.
INVENTED = re.compile(r"Buzzer")


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


def words_of_the_sources():
    kinds = ["*.c", "*.cpp", "*.h", "*.xml", "*.cmake", "*.py"]
    listing = subprocess.run(
        ["git", "ls-files", "-co", "--exclude-standard", *kinds],
        cwd=ROOT, check=True, capture_output=True, text=True,
    )  # fmt: skip
    words = set()
    for name in listing.stdout.split():
        path = os.path.join(ROOT, name)
        if os.path.exists(path) and not name.startswith("tests/docs/"):
            with open(path, encoding="utf-8", errors="replace") as file:
                words |= set(re.findall(r"\w+", file.read()))
    return words


def test_names_of_code_exist():
    words = words_of_the_sources()
    missing = []
    for document in documents():
        for text in CODE.findall(prose(document)):
            names = [name for name in NAME.findall(text) if not INVENTED.search(name)]
            missing += [f"{document}: {name}" for name in names if name not in words]
    assert missing == []


def test_presets_and_options_of_the_commands_exist():
    presets = re.findall(r'"name": "(\w+)"', read("CMakePresets.json"))
    listings = subprocess.run(
        ["git", "grep", "-hoE", r"(option\(|set\()[A-Z_]+", "--", "*CMakeLists.txt", "*.cmake"],
        cwd=ROOT, check=True, capture_output=True, text=True,
    )  # fmt: skip
    options = set(re.findall(r"\(([A-Z_]+)", listings.stdout))
    for document in documents():
        text = read(document)
        assert set(re.findall(r"--preset[ =](\w+)", text)) <= set(presets), document
        assert set(re.findall(r"-D(WEBCTRL_\w+|MONGOOSE_\w+)", text)) <= options, document


def test_stages_are_those_of_the_script():
    stages = re.search(r'^stages="(.+)"$', read("scripts/test.sh"), re.M)[1].split()
    told = re.search(r"runs single\s+stages: (.+?)\.\n", read("README.md"), re.S)[1]
    assert re.findall(r"`(\w+)`", told) == stages
