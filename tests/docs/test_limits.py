"""Compares the limits in the documents with the constants of the sources.

A sentence names constants where the document has their values. When a constant changes, every
document with the old value fails.
"""

import functools
import glob
import os
import re
import string

import pytest
from documents import ROOT, read
from test_api import endpoint_sections

pytestmark = pytest.mark.offline

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
        "| Request line and field lines | {kMaxHeadBytes} bytes, {kMaxFieldLines} lines |",
        "| Body | {kMaxBodyBytes:MiB} MiB",
        "| Open connections | {kMaxConnections}",
        "A session ends after {kIdleLimitSec} seconds",
        "whose {kIdleLimitSec} seconds then start again",
        "the service's clock − {kClockOffsetSec} − the stored lock time",
        "| fewer than {kMaxErrors} errors, or *elapsed* below {kLockOutSec} |",
        "| {kMaxErrors} errors or more, and the hour is over |",
        "| `strConfirmPasswd` | always | {kPasswdMost} |",
        "| `strFD_AdminPasswd` | always | {kPasswdMost} |",
        "| `strFD_LensId` | always | {kFormMost} |",
        "| `strFD_AlarmInId` | always | {kFormMost} |",
        "| `strFD_ServerIp` | text | {kFormMost} →",
    ],
    "docs/architecture.md": [
        "udp {kLocalPort}, eth0's address",
        "| {kLocalPort}/udp, the address of `eth0`",
        "the service restarts, which takes {kRestartPauseSec} seconds",
        "takes the address of `Init` back, sleeps {kRestartPauseSec} seconds",
        "up to {kDeviceTimeoutSec} seconds (import: {kImportTimeoutSec}) for each exchange",
        "{kXmlDepthMax} nested elements (`kXmlDepthMax`)",
        "{kRoundMs} ms (`kRoundMs`)",
        "at most {kPartMs:s} seconds (`kPartMs`)",
        "From {kLentFrom:KiB} KiB",
        "only {kMaxLentBytes:KiB} KiB are lent (`kMaxLentBytes`)",
        "above {kMaxCachedFile:KiB} KiB",
        "{kMaxBodyBytes:MiB} MiB (`kMaxBodyBytes`)",
        "{kMaxConnections} connections (`kMaxConnections`)",
        "{kMaxHeldBytes:MiB} MiB for all",
        "{kDefaultStackSize:KiB} KiB (`kDefaultStackSize`)",
        "the only exception is the {kCfgSize:KiB} KiB text of an import",
        "longest reply ({kMaxQueryReply} bytes by default)",
    ],
    "docs/deployment.md": [
        "| {kLocalPort}/udp | that of `eth0`",
        "| a body of more than {kMaxBodyBytes:MiB} MiB,",
        "| during the {kRestartPauseSec} seconds after an accepted set |",
        "the path of `web_root` has at most {kMaxWebRoot} characters",
        "The server thread's stack is {kDefaultStackSize:KiB} KiB,",
    ],
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
        "| `kDefaultStackSize` | {kDefaultStackSize:KiB} KiB |",
        "unused for {kUnusedMs:s} seconds",
        ", {kMaxHeldBytes:MiB} MiB in all |",
        "at most {kMaxHeldBytes:MiB} MiB for its clients (`kMaxHeldBytes`)",
        "at most {kMaxCacheBytes:MiB} MiB of files in memory (`kMaxCacheBytes`)",
        "what is left after {kOtherDescriptors} (after {kFirstClient} where",
        "| `kMaxConnections` | {kMaxConnections}, or",
        "| `kOtherDescriptors` | {kOtherDescriptors} |",
        "| `kGraceMs` | {kGraceMs:s} s |",
        "| `kUnusedMs` | {kUnusedMs:s} s |",
        "| `kMaxHeldBytes` | {kMaxHeldBytes:MiB} MiB |",
        "| Request line and field lines | `kMaxHeadBytes` | {kMaxHeadBytes} bytes |",
        "| `kMaxFieldLines` | {kMaxFieldLines} |",
        "| `kMaxBodyBytes` | {kMaxBodyBytes:MiB} MiB |",
        "the last | `kMaxHeadBytes` | {kMaxHeadBytes} bytes |",
        "| `kPartMs` | {kPartMs:s} s |",
        "`kMaxCachedFile` | {kMaxCacheBytes:MiB} MiB, {kMaxCachedFile:KiB} KiB each |",
        "| `kMaxLentBytes` | {kMaxLentBytes:KiB} KiB |",
        "| `kMaxFiles` | {kMaxFiles} |",
        "| `kMessageSize` | {kMessageMost} bytes |",
    ],
}
PORTS = {"kLocalPort"}  # written without a comma
UNITS = {"": 1, "s": 1000, "KiB": 1 << 10, "MiB": 1 << 20}
ROWS = [(page, sentence) for page, sentences in SENTENCES.items() for sentence in sentences]
# How the sources write one: a number, or one shifted.
VALUE = r"(0x[0-9A-F]+|\d+)U?(?: << (\d+))?;"


class Figure(int):
    """A limit as the documents write it: {limit:KiB} is its kibibytes, {limit:s} its seconds."""

    def __format__(self, unit):
        assert self % UNITS[unit] == 0, f"{int(self)} is no whole number of {unit}"
        return f"{self // UNITS[unit]:,}"


def sources():
    """The text of every C++ file of the product that may set a limit."""
    for folder in ("CBB/Http", "CBB/Util", "CBB/WebCtrl", "config", "control"):
        for path in sorted(glob.glob(os.path.join(ROOT, folder, "*"))):
            if path.endswith((".cpp", ".h")):
                yield read(path)


@functools.cache
def constants():
    """Those whose name stands for one value in all of the product."""
    found = {}
    for text in sources():
        for name, value, shift in re.findall(rf"constexpr \w+ (k\w+) = {VALUE}", text):
            found.setdefault(name, set()).add(int(value, 0) << int(shift or 0))
    # The library takes one line less than it has places for.
    lines = re.search(r"MG_MAX_HTTP_HEADERS=(\d+)", read("cmake/Mongoose.cmake"))
    found["kMaxFieldLines"] = {int(lines[1]) - 1}
    return {name: values.pop() for name, values in found.items() if len(values) == 1}


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
        "kMessageMost": of["kMessageSize"] - 1,
        "kPasswdMost": of["kPasswdSize"] - 1,
        "kFormMost": of["kFormSize"] - 1,
        "capacities": f"{', '.join(sizes[:-1])} or {sizes[-1]}",
    }


def filled(sentence, values):
    shown = {
        name: Figure(value) if isinstance(value, int) and name not in PORTS else value
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
    fields = [(name, unit) for _, name, unit, _ in string.Formatter().parse(sentence) if name]
    assert fields
    for name, unit in fields:
        values = told(constants())
        values[name] = values[name] + UNITS[unit] if isinstance(values[name], int) else "4,096"
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
