"""The daemon and the simulated recorder together: a browser reads back what it has set."""

import re
import xml.etree.ElementTree as ElementTree
from urllib.parse import quote, quote_from_bytes

import pytest
from daemon import Daemon
from device import SimulatedRecorder
from endpoints import routes
from http_client import JSON_HEAD, STANDARD_HEAD, Client, get, post

# All except the one that does not query the recorder.
QUERIES = [uri for uri in routes() if uri.startswith(("/get_", "/export_")) and "cpu" not in uri]


@pytest.fixture(scope="module")
def folder(tmp_path_factory):
    return tmp_path_factory.mktemp("product")


@pytest.fixture(scope="module")
def recorder(folder):
    recorder = SimulatedRecorder(str(folder))
    yield recorder
    recorder.close()


@pytest.fixture(scope="module")
def daemon(folder, recorder):
    daemon = Daemon(folder / "daemon").start()
    yield daemon
    daemon.stop()


@pytest.fixture
def ask(daemon):
    def ask(request):
        with Client() as client:
            client.send(request)
            return client.read_reply()

    return ask


@pytest.mark.parametrize("uri", QUERIES)
def test_every_query_is_answered(ask, uri):
    reply = ask(get(uri))
    assert reply.head == (JSON_HEAD if "GB28181" in uri else STANDARD_HEAD)
    assert reply.body.endswith(b'"result": 1 }')


# A set endpoint, its form, and what the query endpoint then shows.
CHANGES = [
    ("LangInfo", "strLanguage=EN", '"strLanguage": "EN"'),
    ("LangInfo", "strLanguage=CN", '"strLanguage": "CN"'),
    (
        "BaseInfo",
        "strFD_DeviceNo=54321&ucFD_TimeZone=9&ucFD_GpsSTFlag=0",
        '"strFD_DeviceNo": "54321", "ucFD_TimeZone": "9" , "ucFD_GpsSTFlag": "0"',
    ),
    (
        "MirrorInfo",
        "strFD_UpDown=1&strFD_LeftRight=1",
        '"strFD_LeftRight": "1", "strFD_UpDown": "1"',
    ),
    (
        "MainStreamInfo",
        "ucFD_FrameRate=12&uiFD_BitRate=1234",
        '"ucFD_FrameRate": "12", "uiFD_BitRate": "1234"',
    ),
    (
        "SubStreamInfo",
        "ucFD_SFrameRate=7&uiFD_SBitRate=321",
        '"ucFD_SFrameRate": "7", "uiFD_SBitRate": "321"',
    ),
    ("NetWModeInfo", "ucFD_NetWType=2", '"ucFD_NetWType": "2"'),
    (
        "VCmsInfo",
        "ucFD_AddressType=0&strFD_Address=10.255.255.103&usFD_Port=6608",
        '"ucFD_AddressType": "0", "strFD_Address": "10.255.255.103", "usFD_Port": "6608"',
    ),
    (
        "WifiInfo",
        "ucFD_WorkMode=1&strFD_SSID=bus&strFD_Passwd=12345678&ucFD_AuthMode=3&ucFD_CryptType=4",
        '"ucFD_WorkMode": "1", "strFD_SSID": "bus", "strFD_Passwd": "12345678", "ucFD_AuthMode": "3", "ucFD_CryptType": "4"',
    ),
    (
        "GNetInfo",
        "ucFD_NetType=4&strFD_Apn=apn&strFD_PhoneNo=*99%23&strFD_UserName=u&strFD_UserPasswd=p",
        '"ucFD_NetType": "4", "strFD_Apn": "apn", "strFD_PhoneNo": "*99#", "strFD_UserName": "u", "strFD_UserPasswd": "p"',
    ),
    (
        "LocalNetInfo",
        "strFD_LocalIp=192.168.9.9&strFD_NetMask=255.255.0.0&strFD_GateWay=192.168.9.1&strFD_Mac=a%3Ab",
        '"strFD_LocalIp": "192.168.9.9", "strFD_NetMask": "255.255.0.0", "strFD_GateWay": "192.168.9.1", "strFD_Mac": "a:b"',
    ),
    (
        "GB28181Info",
        "ucFD_GB28181Enable=1&ucFD_StreamType=1&strFD_ServerIp=192.0.2.77&usFD_ServerPort=5060",
        '"strFD_ServerIp": "192.0.2.77", "usFD_ServerPort": "5060"',
    ),
    ("UserSecurity", "strUserName=0&strConfirmPasswd=new+one", '"strAdminPasswd": "new one"'),
    ("LockOfPassword", "ucFD_ErrorCount=3&time=1", '"ucFD_ErrorCount": "3"'),
]


@pytest.mark.parametrize(
    "name, form, shown", CHANGES, ids=[f"{row[0]} {row[1][:24]}" for row in CHANGES]
)
def test_what_is_set_is_read_back(ask, name, form, shown):
    assert ask(post(f"/set_{name}", form)).body == b'{"result": 1 }'
    assert shown in ask(get(f"/get_{name}")).body.decode("gbk")


def exported(ask):
    match = re.fullmatch(
        rb'\{ "strFD_CfgPara": "(.*)", "result": 1 \}', ask(get("/export_CfgFile")).body, re.DOTALL
    )
    return match[1].decode("utf-8")


def imported(ask, text):
    form = b"strFD_CfgPara=" + quote_from_bytes(text.encode(), safe="").encode()
    assert ask(post("/import_CfgFile", form)).body == b'{"result": 1 }'


def sections(text):
    """The settings of a document as plain data: their values, not their formatting."""
    root = ElementTree.fromstring(text)
    return {(path.tag, *sorted(path.attrib.items())) for path in root.iter() if path is not root}


def test_exported_configuration_imports_unchanged(ask, recorder):
    text = exported(ask)
    imported(ask, text)
    assert sections(exported(ask)) == sections(text)


def test_chinese_name_changed_in_the_text_arrives_in_gbk(ask, recorder):
    text = exported(ask)
    company = re.search(r'strFD_CompanyName="([^"]+)"', text)[1]
    name = "湖滨快速公交"
    imported(ask, text.replace(company, name))
    assert f'strFD_CompanyName="{name}"' in exported(ask)
    assert name.encode("gbk") in recorder.document()
    assert company.encode("gbk") not in recorder.document()


def test_import_of_one_section_leaves_the_others(ask):
    before = sections(exported(ask))
    imported(ask, '<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="US" /></VariCfgSec>')
    after = sections(exported(ask))
    assert {row[0] for row in before ^ after} == {"stDisplay"}


def test_login_follows_the_stored_password(ask):
    ask(post("/set_UserSecurity", "strUserName=0&strConfirmPasswd=bus+stop"))
    for password, result in (("bus stop", 1), ("admin123", 0), ("", 0)):
        reply = ask(post("/cmp_UserSecurity", f"strFD_AdminPasswd={quote(password)}"))
        assert reply.body == b'{ "jsession": "", "result": %d }' % result
