"""The version stands in the file VERSION; everything else that names a version names this one."""

import datetime
import os
import re
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ["WEBCTRL_BIN"]
BUILD = os.environ["WEBCTRL_BUILD"]


def read(*path):
    with open(os.path.join(*path), encoding="utf-8") as file:
        return file.read()


VERSION = read(ROOT, "VERSION").strip()


def test_version_has_three_numbers():
    assert re.fullmatch(r"\d+\.\d+\.\d+", VERSION)


def test_program_tells_it():
    done = subprocess.run([PROGRAM, "--version"], check=True, capture_output=True, text=True)
    assert done.stdout == f"webctrl {VERSION}\n"


def test_manual_page_tells_it():
    page = read(BUILD, "packaging/webctrl.8")
    assert re.search(r"^\.Os webctrl (.*)$", page, re.M)[1] == VERSION


def test_changelog_begins_with_it_and_dates_every_version():
    headings = re.findall(r"^## (.*)$", read(ROOT, "CHANGELOG.md"), re.M)
    versions = [heading.split(" - ") for heading in headings if heading != "Unreleased"]
    assert versions[0][0] == VERSION
    days = [datetime.date.fromisoformat(day) for _, day in versions]
    assert days == sorted(days, reverse=True)


def test_documents_name_the_packages_of_it():
    named = re.findall(r"webctrl[_-](\d[\d.]*\d)[_-]", read(ROOT, "docs/deployment.md"))
    assert set(named) == {VERSION}


def test_description_of_the_endpoints_names_it():
    description = read(ROOT, "docs/openapi.yaml")
    assert re.search(r"^  version: (.*)$", description, re.M)[1] == VERSION


def test_it_stands_in_no_source():
    """A release changes only VERSION, the changelog and the documents."""
    told = subprocess.run(["git", "grep", "-lF", VERSION], cwd=ROOT, check=True,
                          capture_output=True, text=True).stdout.split()  # fmt: skip
    documents = re.compile(r"VERSION|CHANGELOG\.md|README\.md|docs/.*|.*package-lock\.json|fuzz/.*")
    assert [name for name in told if not documents.fullmatch(name)] == []
