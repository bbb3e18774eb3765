"""A client generated from docs/openapi.yaml drives the daemon."""

import json
import os
import shutil
import subprocess

import pytest
import yaml
from documents import ROOT, read
from recorder import Recorder

HERE = os.path.dirname(os.path.abspath(__file__))
MODULES = os.path.join(HERE, "node_modules")
COMPILER = "--strict --target es2022 --module nodenext --lib es2022,dom,dom.iterable --skipLibCheck"


def node(folder, program, *words):
    done = subprocess.run(
        ["node", os.path.join(MODULES, program), *words], cwd=folder, capture_output=True, text=True
    )
    assert done.returncode == 0, done.stdout + done.stderr


@pytest.fixture(scope="module")
def client(tmp_path_factory):
    """The folder of the compiled client."""
    folder = tmp_path_factory.mktemp("client")
    os.symlink(MODULES, folder / "node_modules")
    (folder / "package.json").write_text('{"type": "module"}')
    shutil.copy(os.path.join(HERE, "client.ts"), folder)
    page = os.path.join(ROOT, "docs/openapi.yaml")
    node(folder, "openapi-typescript/bin/cli.js", page, "-o", "api.d.ts")
    node(folder, "typescript/bin/tsc", *COMPILER.split(), "client.ts")
    return folder


@pytest.fixture(scope="module")
def recorder(tmp_path_factory):
    recorder = Recorder(tmp_path_factory.mktemp("recorder"))
    yield recorder
    recorder.close()


@pytest.fixture(scope="module")
def told(client, recorder):
    """The client's report of what it read and changed."""
    return json.loads(recorder.run(f"node {client}/client.js"))


def test_every_query_brings_its_values(told):
    page = yaml.safe_load(read("docs/openapi.yaml"))
    queries = {uri: item["get"] for uri, item in page["paths"].items() if "get" in item}
    assert list(told["before"]) == list(queries)
    results = {uri: values["result"] for uri, values in told["before"].items()}
    assert 0 <= results.pop("/get_cpu_usage") <= 100
    assert set(results.values()) == {1}
    assert told["before"]["/get_WifiInfo"]["strFD_SSID"] == "公交车队-0123"
    assert "公交车队-0123" in told["before"]["/export_CfgFile"]["strFD_CfgPara"]


def test_sets_change_what_they_name_and_nothing_else(told):
    assert told["sets"] == [{"result": 1}, {"result": 1}]
    before, after = told["before"], told["after"]
    assert after["/get_WifiInfo"] == {**before["/get_WifiInfo"], "strFD_SSID": "车队"}
    stream = {"ucFD_FrameRate": "15", "uiFD_BitRate": "1024"}
    assert after["/get_MainStreamInfo"] == {**before["/get_MainStreamInfo"], **stream}
    for uri in ("/get_SubStreamInfo", "/get_GNetInfo", "/get_LocalNetInfo", "/get_UserSecurity"):
        assert after[uri] == before[uri]


def test_chinese_text_arrives_in_the_character_set_of_the_recorder(told, recorder):
    wifi = [text for text in recorder.received() if "DEVICE_SET" in text and "stWifi" in text]
    assert len(wifi) == 1
    name = "车队".encode("gbk").decode("utf-8", "replace")
    assert f'strFD_SSID="{name}" strFD_Passwd="depot2024"' in wifi[0]
