"""Whole configurations as texts, as sent on both sides of the daemon."""

from urllib.parse import quote_from_bytes


def document(text, root='VariCfgSec Action="DEVICE_QUERY"'):
    return f"<{root}>{text}</VariCfgSec>"


def export(text, result=1):
    """The chunks that carry a document to the browser."""
    return [b'{ "strFD_CfgPara": "%s"' % text.encode(), b', "result": %d }' % result]


def import_form(text):
    data = text if isinstance(text, bytes) else text.encode()
    return b"strFD_CfgPara=" + quote_from_bytes(data, safe="").encode()
