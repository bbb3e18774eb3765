"""What makes a device reply usable, tested through /get_LangInfo and /set_LangInfo."""

import pytest
from device import UNUSABLE
from language import (
    CHINESE,
    END,
    ENTRY,
    EXIT,
    LANGUAGE_QUERY,
    SET_ENTRY,
    SET_EXIT,
    SHOWS_CHINESE,
    SHOWS_FAILURE,
    received,
)

NO_ATTRIBUTE = "CWebCtrl::GetParaCmdType, get first pAttribute failed."
NOT_ACTION = "CWebCtrl::GetParaCmdType, first attribute name is not Action."
SECTION = '<stDisplay strLanguage="CN"/>'

UNUSABLE_REPLIES = [
    ("not XML", UNUSABLE, ()),
    ("one byte", b"<", ()),
    ("a zero byte first", b"\0" + CHINESE, ()),
    ("another root", b'<Other Action="DEVICE_QUERY">' + SECTION.encode() + b"</Other>", ()),
    ("the root in other letters", CHINESE.replace(b"VariCfgSec", b"varicfgsec"), ()),
    ("no attribute", f"<VariCfgSec>{SECTION}</VariCfgSec>".encode(), (NO_ATTRIBUTE,)),
    (
        "Result in front of Action",
        f'<VariCfgSec Result="0" Action="DEVICE_QUERY">{SECTION}</VariCfgSec>'.encode(),
        (NOT_ACTION,),
    ),
    (
        "action in other letters",
        f'<VariCfgSec action="DEVICE_QUERY">{SECTION}</VariCfgSec>'.encode(),
        (NOT_ACTION,),
    ),
    ("no section", b'<VariCfgSec Action="DEVICE_QUERY" Result="0"/>', ()),
    ("text for a section", b'<VariCfgSec Action="DEVICE_QUERY">text</VariCfgSec>', ()),
    ("a comment for a section", b'<VariCfgSec Action="DEVICE_QUERY"><!-- --></VariCfgSec>', ()),
    (
        "nested far too deep",
        b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN">'
        + b"<a>" * 120
        + b"</VariCfgSec>",
        (),
    ),
]


@pytest.mark.parametrize(
    "sentence, data, messages", UNUSABLE_REPLIES, ids=[r[0] for r in UNUSABLE_REPLIES]
)
def test_unusable_query_reply_fails_the_query(rig, sentence, data, messages):
    assert rig.get("/get_LangInfo", data).body == SHOWS_FAILURE
    rig.daemon.stdout.expect(*ENTRY, received(data), END, *messages, *EXIT)


USABLE_REPLIES = [
    (
        "the values of Action and Result are not looked at",
        b'<VariCfgSec Action="" Result="7"><stDisplay strLanguage="CN"/></VariCfgSec>',
    ),
    (
        "a section that is not closed",
        b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN"></VariCfgSec>',
    ),
    (
        "a document that is cut behind the section",
        b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN"/>',
    ),
    ("an XML declaration", b'<?xml version="1.0" encoding="GBK"?>' + CHINESE),
    (
        "line ends and blanks",
        b' \r\n<VariCfgSec  Action="DEVICE_QUERY" >\n <stDisplay\tstrLanguage = "CN" />\n</VariCfgSec>\n',
    ),
    (
        "single quotes",
        b"<VariCfgSec Action='DEVICE_QUERY'><stDisplay strLanguage='CN'/></VariCfgSec>",
    ),
    (
        "a section of another name",
        b'<VariCfgSec Action="DEVICE_QUERY"><stOther strLanguage="CN"/></VariCfgSec>',
    ),
    (
        "the first of two sections",
        b'<VariCfgSec Action="DEVICE_QUERY"><a strLanguage="CN"/><b strLanguage="EN"/></VariCfgSec>',
    ),
    (
        "children within the depth",
        b'<VariCfgSec Action="DEVICE_QUERY"><stDisplay strLanguage="CN">'
        + b"<a>" * 20
        + b"</a>" * 20
        + b"</stDisplay></VariCfgSec>",
    ),
    ("a zero byte behind the document", CHINESE + b"\0<VariCfgSec"),
]


@pytest.mark.parametrize("sentence, data", USABLE_REPLIES, ids=[r[0] for r in USABLE_REPLIES])
def test_usable_query_reply_is_taken_as_it_comes(rig, sentence, data):
    assert rig.get("/get_LangInfo", data).body == SHOWS_CHINESE


def test_short_reply_is_not_read_together_with_the_request_behind_it(rig):
    """Request and reply share a buffer; the rest of the request must not complete a reply that
    stops in a tag."""
    cut = b'<VariCfgSec Action="DEVICE_QUERY"'
    assert cut != LANGUAGE_QUERY and LANGUAGE_QUERY.startswith(cut)
    assert rig.get("/get_LangInfo", cut).body == SHOWS_FAILURE


SET_REPLIES = [
    ("another Result", b'<VariCfgSec Action="DEVICE_SET" Result="3"/>', 1, ()),
    ("a negative Result", b'<VariCfgSec Action="DEVICE_SET" Result="-1"/>', 1, ()),
    (
        "Result behind other attributes",
        b'<VariCfgSec Action="DEVICE_SET" a="0" Result="1" Result2="0"/>',
        1,
        (),
    ),
    (
        "a Result of 600 characters",
        b'<VariCfgSec Action="DEVICE_SET" Result="1' + b"x" * 600 + b'"/>',
        1,
        (),
    ),
    ("no Result", b'<VariCfgSec Action="DEVICE_SET"/>', 0, ()),
    ("Result in other letters", b'<VariCfgSec Action="DEVICE_SET" result="1"/>', 0, ()),
    (
        "Result on the section only",
        b'<VariCfgSec Action="DEVICE_SET"><stDisplay Result="1"/></VariCfgSec>',
        0,
        (),
    ),
    ("not XML", UNUSABLE, 0, ()),
    ("another root", b'<Other Action="DEVICE_SET" Result="1"/>', 0, ()),
    ("no attribute", b"<VariCfgSec/>", 0, (NO_ATTRIBUTE,)),
    ("Result first", b'<VariCfgSec Result="1" Action="DEVICE_SET"/>', 0, (NOT_ACTION,)),
]


@pytest.mark.parametrize(
    "sentence, data, result, messages", SET_REPLIES, ids=[r[0] for r in SET_REPLIES]
)
def test_set_succeeds_when_a_reply_carries_a_result(rig, sentence, data, result, messages):
    reply = rig.post("/set_LangInfo", "strLanguage=CN", data)
    assert reply.chunks == [b'{"result": %d }' % result]
    rig.daemon.stdout.expect(*SET_ENTRY, received(data), *messages, SET_EXIT)
    rig.daemon.stderr.expect()


def test_result_that_is_no_number_counts_as_accepted(rig):
    data = b'<VariCfgSec Action="DEVICE_SET" Result="OK"/>'
    assert rig.post("/set_LangInfo", "strLanguage=CN", data).body == b'{"result": 1 }'
    rig.daemon.stderr.expect("Cannot bind to 80")


def test_descriptors_are_closed_on_every_path(rig):
    rig.get("/get_LangInfo", CHINESE)
    before = rig.daemon.count_idle_descriptors()
    for data in [*(row[1] for row in UNUSABLE_REPLIES), CHINESE, b"", CHINESE + b" " * 512]:
        rig.get("/get_LangInfo", data)
        rig.post("/set_LangInfo", "strLanguage=CN", data)
    assert rig.daemon.count_idle_descriptors() == before
