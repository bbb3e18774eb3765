"""Compares the limits in the documents with the constants of the sources.

A sentence names constants where the document has their values. When a constant changes, every
document with the old value fails.
"""

import glob
import os
import re
import string

import pytest
from documents import ROOT, read
from test_api import endpoint_sections

SENTENCES = {
    "README.md": [
        "udp {kLocalPort}",
        "{kDeviceTimeoutSec} seconds -> the section",
        "the service restarts itself, which takes {kRestartPauseSec} seconds",
    ],
    "docs/api.md": [
        "An export takes {kReplyMax} bytes of the device's answer.",
        "An import takes {kImportMost} bytes.",
        "until the device answers; {kDeviceTimeoutSec} seconds when it does not",
        "its answer **and {kRestartPauseSec} seconds**",
        "| Set without an answer | {kDeviceTimeoutSec} seconds |",
        "| Import | {kImportTimeoutSec} seconds without an answer |",
        "Waits {kImportTimeoutSec} seconds for the device.",
        "not answer it costs {kDeviceTimeoutSec} seconds and gives 0.",
        "its UTF-8 form is longer than {kExportMost} bytes",
        "or is nested more than {kXmlDepthMax} deep",
        "| Device's answer to a query | {capacities} bytes,",
        "| Device's answer to an export | {kReplyMax} bytes |",
        "| Import, in UTF-8 | {kImportMost} bytes | cut |",
        "| `strFD_CfgPara` | always | {kImportMost} |",
        "an import | {kXmlDepthMax} elements; of an export any |",
    ],
    "docs/architecture.md": [
        "udp {kLocalPort}, eth0's address",
        "| {kLocalPort}/udp, the address of `eth0`",
        "the service restarts, which takes {kRestartPauseSec} seconds",
        "takes the address of `Init` back, sleeps {kRestartPauseSec} seconds",
        "up to {kDeviceTimeoutSec} seconds (import: {kImportTimeoutSec}) for each exchange",
        "{kXmlDepthMax} nested elements (`kXmlDepthMax`)",
    ],
    "docs/deployment.md": ["| {kLocalPort}/udp | that of `eth0`"],
    "docs/device-protocol.md": [
        "| Requests come from | port {kLocalPort},",
        "| Answer within | {kDeviceTimeoutSec} seconds; {kImportTimeoutSec} seconds for an import |",
        "exactly one datagram of at most {kReplyMax} bytes",
        "after {kDeviceTimeoutSec} seconds (import: {kImportTimeoutSec}) send none",
        "the whole configuration | {kReplyMax}, and {kExportMost} once converted to UTF-8 |",
        "are cut at {kReplyMax} bytes and taken as they are",
        "Nesting of more than {kXmlDepthMax} elements makes an answer unusable",
        "channels of `stMainStream` do not fit {kMaxQueryReply} bytes",
        "restarts its HTTP service, which takes {kRestartPauseSec} seconds",
    ],
    "docs/openapi.yaml": ["{kXmlDepthMax} nested elements"],
    "docs/security.md": [
        "Whatever arrives at port 80 and at port {kLocalPort}, in any number",
        "for {kDeviceTimeoutSec} seconds (import: {kImportTimeoutSec};",
        "an accepted set: {kRestartPauseSec} more)",
        "| `kDeviceTimeoutSec` | {kDeviceTimeoutSec} s |",
        "| `kImportTimeoutSec` | {kImportTimeoutSec} s |",
        "| `kRestartPauseSec` | {kRestartPauseSec} s |",
        "| `kMaxQueryReply` and the table of queries | {capacities} bytes |",
        "| `kReplyMax` | {kReplyMax} bytes |",
        "| `kFlushMax` | {kFlushMax} |",
        "| `kXmlDepthMax` | {kXmlDepthMax} elements |",
        "| `kCfgSize` | {kImportMost} bytes; {kExportMost} in UTF-8 for certain |",
        "| `kMaxSessions` | {kMaxSessions} |",
        "| `kIdleLimitSec` | {kIdleLimitSec} s |",
        "| `kDefaultStackSize` | {kStackKib} KiB |",
        "| `kMessageSize` | {kMessageMost} bytes |",
    ],
}
PORTS = {"kLocalPort"}  # written without a comma
ROWS = [(page, sentence) for page, sentences in SENTENCES.items() for sentence in sentences]


def sources():
    """The text of every C++ file of the product outside the HTTP edge."""
    for folder in ("CBB/Util", "CBB/WebCtrl", "config", "control"):
        for path in sorted(glob.glob(os.path.join(ROOT, folder, "*"))):
            if path.endswith((".cpp", ".h")):
                yield read(path)


def constants():
    found = {}
    for text in sources():
        for name, value in re.findall(r"constexpr \w+ (k\w+) = (0x[0-9A-F]+|\d+);", text):
            assert found.setdefault(name, int(value, 0)) == int(value, 0), f"two values of {name}"
    return found


def capacities(of):
    """What each query requests, and how long a reply to it may be."""
    found = {}
    for text in sources():
        queries = re.findall(r'QUERY\("(<[^;]*?>)"\),\s*(?:IMPORT\(\w+\)|\w+)(?:,\s*(\w+))?', text)
        for section, given in queries:
            name = re.match(r"<(\w+)", section)[1]
            found[name] = int(given) if given.isdigit() else of["kMaxQueryReply"]
    assert found, "no query in the sources"
    return found


def told(of):
    """The constants, and the values derived from them in the documents."""
    sizes = [f"{size:,}" for size in sorted(set(capacities(of).values()))]
    return {
        **of,
        "kImportMost": of["kCfgSize"] - 1,
        "kExportMost": of["kCfgSize"] - 5,
        "kStackKib": of["kDefaultStackSize"] // 1024,
        "kMessageMost": of["kMessageSize"] - 1,
        "capacities": f"{', '.join(sizes[:-1])} or {sizes[-1]}",
    }


def filled(sentence, values):
    shown = {
        name: f"{value:,}" if isinstance(value, int) and name not in PORTS else value
        for name, value in values.items()
    }
    return sentence.format(**shown)


def plain(page):
    return re.sub(r"\s+", " ", read(page))


@pytest.mark.parametrize("page, sentence", ROWS, ids=[row[1][:50] for row in ROWS])
def test_limit_is_the_sources(page, sentence):
    assert filled(sentence, told(constants())) in plain(page)


@pytest.mark.parametrize("page, sentence", ROWS, ids=[row[1][:50] for row in ROWS])
def test_another_limit_would_be_noticed(page, sentence):
    names = [name for _, name, _, _ in string.Formatter().parse(sentence) if name]
    assert names
    for name in names:
        values = told(constants())
        values[name] = values[name] + 1 if isinstance(values[name], int) else "4,096"
        assert filled(sentence, values) not in plain(page)


def test_table_of_queries_is_the_sources():
    rows = re.findall(r"^\| (`<st.+?) \| ([\d,]+) \|$", read("docs/device-protocol.md"), re.M)
    table = {
        name: int(size.replace(",", ""))
        for sections, size in rows
        for name in re.findall(r"`<(\w+)", sections)
    }
    assert table == capacities(constants())


def test_longest_answers_of_the_endpoints_are_the_sources():
    of = capacities(constants())
    checked = 0
    for heading, text in endpoint_sections().items():
        sent = re.search(r'Action="DEVICE_QUERY"><(\w+)', text)
        longest = re.search(r"Longest: ([\d,]+)", text)
        if sent and longest:
            assert int(longest[1].replace(",", "")) == of[sent[1]], heading
            checked += 1
    assert checked >= 10
