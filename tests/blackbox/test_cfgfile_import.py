"""The whole configuration sent back to the device, as GBK and in one line."""

import random

import pytest
from cfgfile import document, export, import_form
from daemon import START, trace
from device import ACCEPTED, REFUSED, UNUSABLE
from http_client import Client, get, post

SET = 'VariCfgSec Action="DEVICE_SET"'

# Sentence, text posted, datagram.
TEXTS = [
    (
        "the action is replaced",
        document('<stDisplay strLanguage="CN" />'),
        document('<stDisplay strLanguage="CN" />', SET),
    ),
    (
        "the result removed",
        document("<a />", 'VariCfgSec Action="DEVICE_QUERY" Result="0"'),
        document("<a />", SET),
    ),
    (
        "other attributes stay",
        document("<a />", 'VariCfgSec x="1" Action="A" Result="7" y="2"'),
        document("<a />", 'VariCfgSec x="1" Action="DEVICE_SET" y="2"'),
    ),
    ("no action yet", document("<a />", "VariCfgSec"), document("<a />", SET)),
    (
        "a preamble is dropped",
        '<?xml version="1.0"?>junk <Other/>' + document("<a />"),
        document("<a />", SET),
    ),
    ("GBK for the device", document('<a x="深圳公交" />'), document('<a x="深圳公交" />', SET)),
    (
        "one line for the device",
        document("\r\n  <a x = \"1\"\n y='2'>\n\t<b></b>\n</a>\n"),
        document('<a x="1" y="2"><b /></a>', SET),
    ),
    (
        "entities",
        document('<a x="&lt;&amp;&apos;&gt;" />'),
        document('<a x="&lt;&amp;&apos;&gt;" />', SET),
    ),
    (
        "a quote changes the quotes",
        document('<a x="&quot;" />'),
        document("<a x='&quot;' />", SET),
    ),
    (
        "the first root is taken",
        document("<a />") + document("<b />"),
        document("<a />", SET) + document("<b />"),
    ),
    ("no section", document(""), '<VariCfgSec Action="DEVICE_SET" />'),
    (
        "32 elements deep",
        document("<a>" * 30 + "<a />" + "</a>" * 30),
        document("<a>" * 30 + "<a />" + "</a>" * 30, SET),
    ),
    ("characters of two UTF-8 bytes", document('<a x="ΑА" />'), document('<a x="ΑА" />', SET)),
    (
        "a broken end is sent as far as it was read",
        document('<a x="1" /><b y="2" />')[:-9],
        document('<a x="1" /><b y="2" />', SET),
    ),
]


@pytest.mark.parametrize("sentence, text, datagram", TEXTS, ids=[row[0] for row in TEXTS])
def test_text_becomes_this_datagram(rig, sentence, text, datagram):
    assert rig.post("/import_CfgFile", import_form(text), REFUSED).chunks == [b'{"result": 1 }']
    assert rig.device.requests == [datagram.encode("gbk")]
    assert rig.device.sources == [("192.0.2.10", 4999)]


def test_lines_of_an_import(rig):
    rig.post("/import_CfgFile", import_form(document("<a />")), REFUSED)
    rig.daemon.stdout.expect_in_order(
        START,
        trace("import_CfgFile"),
        trace("import_CfgFileFromNet"),
        trace("import_CfgFileFromNet"),
    )


INVALID_FORMAT = "CWebCtrl::import_CfgFile, Invalid format."
NO_ROOT = "CWebCtrl::import_CfgFile, xmlDoc.FirstChildElement failed."
NO_GBK = "utf8 to GBK failed!"
UNANSWERED = [
    ("no variable", b"", INVALID_FORMAT),
    ("an empty one", import_form(""), INVALID_FORMAT),
    ("another root", import_form('<Other Action="DEVICE_QUERY"/>'), INVALID_FORMAT),
    (
        "the root in small letters",
        import_form('<varicfgsec Action="DEVICE_QUERY"/>'),
        INVALID_FORMAT,
    ),
    ("a root that only begins so", import_form("<VariCfgSecond/>"), NO_ROOT),
    ("33 elements deep", import_form(document("<a>" * 32 + "</a>" * 32)), NO_ROOT),
    ("thousands deep", import_form(document("<a>" * 5000)), NO_ROOT),
    ("a character outside GBK", import_form(document('<a x="À"/>')), NO_GBK),
    ("one behind the document", import_form(document("<a/>") + "À"), NO_GBK),
    ("a two-byte sequence ending above 0x9F", import_form(document('<a x="é"/>')), NO_GBK),
    ("Greek of the same kind, though GBK has it", import_form(document('<a x="α"/>')), NO_GBK),
    ("an emoji", import_form(document('<a x="😀"/>')), NO_GBK),
    ("a lone continuation byte", import_form(document("<a/>").encode() + b"\x80"), NO_GBK),
    ("a sequence cut off", import_form(document("<a/>").encode() + b"\xe5\x85"), NO_GBK),
    ("0xFF", import_form(b"\xff" + document("<a/>").encode()), NO_GBK),
]


@pytest.mark.parametrize("sentence, form, line", UNANSWERED, ids=[row[0] for row in UNANSWERED])
def test_text_that_cannot_be_sent_is_not_answered(rig, sentence, form, line):
    text = rig.ask_unanswered(post("/import_CfgFile", form), line)
    assert rig.device.requests == []
    lines = text.splitlines()
    assert line in lines
    assert sum(other in lines for other in (INVALID_FORMAT, NO_ROOT, NO_GBK)) == 1
    handler = trace("import_CfgFile")
    rig.daemon.stdout.expect_in_order(START, handler, line, handler)


def test_text_is_cut_at_30719_bytes(rig):
    head, item = '<VariCfgSec Action="DEVICE_QUERY">', '<item x="1234567" />'
    whole = (30719 - len(head)) // len(item)
    text = head + item * 2000
    assert rig.post("/import_CfgFile", import_form(text), REFUSED).body == b'{"result": 1 }'
    sent = rig.device.requests[0].decode()
    assert sent.startswith(f"<{SET}>" + item * whole)
    assert sent.count("1234567") == whole
    assert sent.endswith("</VariCfgSec>")


def test_text_cut_inside_a_character_is_refused(rig):
    head = '<VariCfgSec Action="DEVICE_QUERY"><a x="'
    padding = (30719 - len(head)) % 3 + 1
    text = head + "p" * padding + "车" * 11000
    assert text.encode()[:30719][-1] != "车".encode()[-1]
    rig.ask_unanswered(post("/import_CfgFile", import_form(text)), NO_GBK)


def test_message_that_no_datagram_holds_is_a_failed_send(rig):
    text = document(f"""<a x="{"'" * 20000}" />""")
    message = document(f'<a x="{"&apos;" * 20000}" />', SET)
    assert rig.post("/import_CfgFile", import_form(text)).body == b'{"result": 0 }'
    assert rig.device.requests == []
    rig.daemon.stdout.expect_in_order(
        trace("import_CfgFileFromNet"),
        f"CUdpCtrlSocket::SendData2Wifi, send data to [0x100007f:6000][len:{len(message)}], "
        "failed, err:Message too long.",
        trace("import_CfgFileFromNet"),
    )


OUTCOMES = [
    ("accepted", ACCEPTED, 1, "Cannot bind to 80\n"),
    ("refused", REFUSED, 1, ""),
    ("no Result", b'<VariCfgSec Action="DEVICE_SET"/>', 0, ""),
    ("unusable", UNUSABLE, 0, ""),
]


@pytest.mark.parametrize(
    "sentence, data, result, stderr", OUTCOMES, ids=[row[0] for row in OUTCOMES]
)
def test_answer_of_the_device_decides_as_for_a_set(rig, sentence, data, result, stderr):
    reply = rig.post("/import_CfgFile", import_form(document("<a />")), data)
    assert reply.chunks == [b'{"result": %d }' % result]
    rig.daemon.stderr.expect(*stderr.splitlines())


def random_document(source):
    """A document in the printer's own format: an export must come back byte for byte."""
    plain = "abcXYZ0189 _-.:/*#%+=\\~`^|{}[]()$!?@;,"
    entities = ["&amp;", "&lt;", "&gt;", "&quot;", "&apos;"]

    def value():
        pieces = []
        for _ in range(source.randrange(40)):
            kind = source.random()
            if kind < 0.5:
                pieces.append(chr(source.randrange(0x4E00, 0x9FA6)))
            else:
                pieces.append(source.choice(plain if kind < 0.95 else entities))
        quote = "'" if "&quot;" in pieces else '"'
        return quote + "".join(pieces) + quote

    def element(depth):
        attributes = "".join(f" n{k}={value()}" for k in range(source.randrange(6)))
        children = "".join(
            element(depth + 1) for _ in range(source.randrange(4) if depth < 4 else 0)
        )
        name = f"e{source.randrange(100)}"
        return f"<{name}{attributes}>{children}</{name}>" if children else f"<{name}{attributes} />"

    return document("".join(element(1) for _ in range(source.randrange(1, 5))))


def test_random_documents_survive_export_and_import(rig):
    source = random.Random(20240229)
    count = 0
    while count < 60:
        text = random_document(source)
        if len(text.encode()) > 30000:
            continue
        count += 1
        exported = rig.get("/export_CfgFile", text.encode("gbk"))
        assert exported.chunks == export(text)
        xml = exported.chunks[0][len(b'{ "strFD_CfgPara": "') : -1]
        rig.post("/import_CfgFile", import_form(xml), REFUSED)
        assert rig.device.requests == [text.replace("DEVICE_QUERY", "DEVICE_SET", 1).encode("gbk")]


def test_random_bytes_never_stop_the_service(rig):
    source = random.Random(7)
    for _ in range(200):
        noise = source.randbytes(source.randrange(1, 200))
        data = b'<VariCfgSec Action="DEVICE_QUERY"><a x="' + noise + b'"/></VariCfgSec>'
        rig.device.play(data, REFUSED)
        with Client() as client:
            client.send(get("/export_CfgFile") + post("/import_CfgFile", import_form(data)))
            client.send(get("/get_cpu_usage"))
            client.end_of_requests()
            assert client.read_to_end().endswith(b"\r\n0\r\n\r\n")
