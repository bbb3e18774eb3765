"""The whole configuration read from the device, as UTF-8 and unescaped."""

import pytest
from cfgfile import document, export
from daemon import START, trace
from device import UNUSABLE, query
from http_client import Client, get

WHOLE_QUERY = query("")
FAILED_EXPORT = b'{ "strFD_CfgPara": "", "result": 0 }'

DOCUMENTS = [
    ("ASCII", document('<stDisplay strLanguage="CN"/>')),
    ("Chinese", document('<stBaseInfo strFD_CompanyName="深圳公交集团" x="粤B12345"/>')),
    ("no section", document("")),
    ("an empty root", '<VariCfgSec Action=""/>'),
    ("nothing is escaped", document('<a x="\\"/>\\n\r\n\t<b x=\'"\'/>&quot;%s%n')),
    ("an answer's own Result", document("<a/>", 'VariCfgSec Action="DEVICE_QUERY" Result="0"')),
    ("a declaration", '<?xml version="1.0" encoding="GBK"?>' + document("<a/>")),
    ("text behind the document", document("<a/>") + " 尾"),
    ("characters of two UTF-8 bytes", document("<a x='αба'/>")),
]


@pytest.mark.parametrize("sentence, text", DOCUMENTS, ids=[row[0] for row in DOCUMENTS])
def test_document_arrives_as_utf_8_and_unescaped(rig, sentence, text):
    reply = rig.get("/export_CfgFile", text.encode("gbk"))
    assert reply.chunks == export(text)
    assert rig.device.requests == [WHOLE_QUERY]


def test_lines_of_an_export(rig):
    data = document("<a/>").encode()
    rig.get("/export_CfgFile", data)
    rig.daemon.stdout.expect_in_order(
        START,
        trace("export_CfgFile"),
        trace("export_CfgFileFromNet"),
        "FUN:GetParaInfoByCmd, LINE:461, dst.ip:127.0.0.1, dst:port:6000.",
        "FUN:GetParaInfoByCmd, LINE:477.",
        f"strXmlData*************{len(data)}",
        trace("export_CfgFileFromNet"),
        "\033[32m\033[1m----------------bResult = 1",
    )


UNUSABLE_REPLIES = [
    ("not XML", UNUSABLE),
    ("empty", b""),
    ("another root", b'<Other Action="DEVICE_QUERY"/>'),
    ("no attribute", b"<VariCfgSec><a/></VariCfgSec>"),
    ("Action second", b'<VariCfgSec Result="0" Action="DEVICE_QUERY"><a/></VariCfgSec>'),
]


@pytest.mark.parametrize(
    "sentence, data", UNUSABLE_REPLIES, ids=[row[0] for row in UNUSABLE_REPLIES]
)
def test_unusable_reply_gives_an_empty_text_and_result_0(rig, sentence, data):
    assert rig.get("/export_CfgFile", data).body == FAILED_EXPORT
    rig.daemon.stdout.expect_in_order(
        trace("export_CfgFileFromNet"), "\033[32m\033[1m----------------bResult = 0"
    )


@pytest.mark.parametrize("head", ["", "<!-- c -->", "<?xml version='1.0'?>\n"])
def test_nesting_does_not_matter(rig, head):
    text = head + document("<a>" * 1000 + "</a>" * 1000)
    assert rig.get("/export_CfgFile", text.encode()).chunks == export(text)


def test_unassigned_code_becomes_the_placeholder(rig):
    data = document('<a x="?"/>').encode().replace(b"?", b"\x81\x7f")
    assert rig.get("/export_CfgFile", data).chunks == export(document('<a x="\x01"/>'))


def test_lead_byte_at_the_end_is_paired_with_the_end(rig):
    data = document("<a/>").encode() + b"\xb0"
    assert rig.get("/export_CfgFile", data).chunks == export(document("<a/>") + "\x01")


INVALID = [
    ("0x80 leads nothing", document('<a x="?"/>').encode().replace(b"?", b"\x80A")),
    ("neither does 0xFF", document('<a x="?"/>').encode().replace(b"?", b"\xffA")),
    ("a first lead byte at the end", document("<a/>").encode() + b"\x81"),
]


@pytest.mark.parametrize("sentence, data", INVALID, ids=[row[0] for row in INVALID])
def test_text_that_is_no_gbk_is_not_answered(rig, sentence, data):
    text = rig.ask_unanswered(get("/export_CfgFile"), "GBK to utf8 failed!", data)
    assert "GBK to utf8 failed!ret2 = 0, ret3 = " in text
    assert "bResult" not in text


def of_utf_8_length(length):
    """A Chinese document whose UTF-8 form has this length (the GBK form fits a datagram)."""
    shell = document('<a x=""/>')
    ideographs, letters = divmod(length - len(shell), 3)
    return document(f'<a x="{"车" * ideographs}{"p" * letters}"/>')


def test_utf_8_form_may_almost_fill_the_buffer(rig):
    text = of_utf_8_length(30715)
    assert len(text.encode()) == 30715
    assert rig.get("/export_CfgFile", text.encode("gbk")).chunks == export(text)


@pytest.mark.parametrize("length", [30716, 30719, 30720, 30721, 44000])
def test_longer_utf_8_form_is_not_answered_and_the_service_goes_on(rig, length):
    data = of_utf_8_length(length).encode("gbk")
    assert len(data) < 30000
    text = rig.ask_unanswered(get("/export_CfgFile"), "GBK to utf8 failed!", data)
    assert "GBK to utf8 failed!ret2 = 1, ret3 = 2\n" in text


def test_datagram_beyond_30000_bytes_is_exported_as_far_as_it_was_received(rig):
    text = document(f'<a x="{"p" * 40000}"/>')
    assert rig.get("/export_CfgFile", text.encode()).chunks == export(text[:30000])


def test_large_replies_follow_each_other_on_a_kept_connection(rig):
    text = document(f'<a x="{"公交车" * 3000}"/>')
    rig.device.play(*[text.encode("gbk")] * 5)
    with Client() as client:
        for _ in range(5):
            client.send(get("/export_CfgFile"))
            assert client.read_reply().chunks == export(text)
        assert client.pending() == b""


def test_unanswered_connection_still_serves_the_next_request(rig):
    rig.device.play(INVALID[0][1], document("").encode())
    with Client() as client:
        client.send(get("/export_CfgFile") + get("/export_CfgFile"))
        assert client.read_reply().chunks == export(document(""))
        assert client.pending() == b""
