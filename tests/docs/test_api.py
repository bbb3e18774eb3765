"""docs/api.md against the sources: every endpoint in the router's order, every form variable."""

import glob
import os
import re

import pytest
from documents import ROOT, blocks, documents, sections
from endpoints import routes

pytestmark = pytest.mark.offline

API = "docs/api.md"

# The presence rules by their names on the page.
RULES = {"length": "kLengthAbove0", "text": "kNonEmpty", "always": "kAlways"}

# Where the sources name a variable and its rule, apart from the plain form of a table's row.
READS = [
    (r'"(\w+)",\s*Presence::(\w+)', None),
    (r'IsOdd\(form, "(\w+)"\)', "kNonEmpty"),
    (r'mg_get_http_var\(&pMsg->body, "(\w+)"', "kAlways"),
]

# The router's table, and the class with a member for each endpoint.
LISTS = {"CBB/WebCtrl/Routes.h", "CBB/WebCtrl/WebCtrl.h"}
NO_LISTS = ("CBB", "bench", "fuzz", "scripts", "tests", "tools", "web/src", "web/test")

ROW = re.compile(r"^\| `(\w+)` \| (\w+) \| (\d[\d,]*)(?: → (\d+))? \| .+ \|$", re.M)


def endpoint_sections():
    text = dict(sections(API, 2))["Endpoints"]
    parts = re.split(r"^### (.+)$", text, flags=re.M)
    return dict(zip(parts[1::2], parts[2::2]))


def told_variables():
    """URI, variable and rule of each row of the page's form tables."""
    found = set()
    for heading, text in endpoint_sections().items():
        found |= {(heading, row[0], RULES[row[1]]) for row in ROW.findall(text)}
    return found


def read_variables():
    """Variable and rule of each place where the sources read one."""
    found = set()
    for path in glob.glob(os.path.join(ROOT, "CBB/WebCtrl/*.cpp")):
        with open(path, encoding="utf-8") as file:
            text = file.read()
        for pattern, rule in READS:
            for match in re.finditer(pattern, text):
                found.add((match[1], rule or match[2]))
    return found


def test_sections_follow_the_router():
    assert len(routes()) == 35
    numbered = [f"{number} `{uri}`" for number, uri in enumerate(routes(), 1)]
    assert list(endpoint_sections()) == numbered


def files_below(folder):
    for path, folders, names in os.walk(os.path.join(ROOT, folder)):
        folders[:] = [name for name in folders if name != "node_modules"]
        yield from (os.path.relpath(os.path.join(path, name), ROOT) for name in names)


def named_endpoints(path):
    with open(os.path.join(ROOT, path), encoding="utf-8", errors="replace") as file:
        return {uri[1:] for uri in routes()} & set(re.findall(r"\w+", file.read()))


def test_endpoints_are_listed_once_in_sources_and_tests():
    """Whatever needs all of them takes them from the router's table."""
    paths = {path for folder in NO_LISTS for path in files_below(folder)}
    assert {path for path in paths if len(named_endpoints(path)) == len(routes())} == LISTS


def test_form_variables_and_their_rules_are_those_of_the_sources():
    assert {(name, rule) for _, name, rule in told_variables()} == read_variables()


@pytest.mark.parametrize("uri", routes())
def test_endpoint_has_an_example(uri):
    text = next(text for heading, text in endpoint_sections().items() if f"`{uri}`" in heading)
    console = re.search(r"^```console run$(.*?)^```$", text, re.M | re.S)
    assert console and f"{uri}" in console[1]
    if uri.startswith(("/set_", "/import_", "/cmp_")):
        assert ROW.search(text), "no table of form variables"


def test_every_fenced_block_names_what_it_is():
    unnamed = [f"{b.document}:{b.line}" for name in documents() for b in blocks(name) if not b.kind]
    assert unnamed == []

