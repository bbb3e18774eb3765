#!/usr/bin/python3
"""Prints lines of results: count, outcome, test and, for skipped ones, the reason.

usage: read.py report <report of ctest --output-junit>
       read.py output <test> <exit status> <what it printed>

A file of pytest or node is one CTest test. Here the tests inside it are counted, from the output of
pytest -rs and node --test.
"""

import collections
import re
import sys
import xml.etree.ElementTree as ElementTree

# The last line of a pytest session; a file whose tests run in several sessions has several.
PYTEST_END = re.compile(r"^(?:=+ )?(\d+ \w+(?:, \d+ \w+)*) in [\d.]+s.*$", re.M)
PYTEST_SKIPPED = re.compile(r"^SKIPPED \[(\d+)\] \S+?: (.*)$", re.M)
NODE_END = re.compile(r"^(?:#|ℹ) (pass|fail|cancelled|skipped|todo) (\d+)$", re.M)
NODE_SKIPPED = re.compile(r"^\s*(?:ok \d+ - |﹣ ).* # SKIP ?(.*)$", re.M)
GTEST_SKIPPED = re.compile(r"^\S+:\d+: Skipped\n(.*)$", re.M)

OUTCOMES = {"passed": "passed", "xfailed": "passed", "pass": "passed", "failed": "failed",
            "xpassed": "failed", "error": "failed", "errors": "failed", "fail": "failed",
            "cancelled": "failed", "skipped": "skipped", "todo": "skipped"}


def inner_counts(text):
    """Outcome -> number of the tests inside; empty when the text mentions none."""
    counts = collections.Counter()
    told = [pair.split(" ")[::-1] for end in PYTEST_END.findall(text) for pair in end.split(", ")]
    for word, number in told + NODE_END.findall(text):
        if word in OUTCOMES:
            counts[OUTCOMES[word]] += int(number)
    return +counts


def inner_reasons(text):
    """Reason -> number of the skipped tests that give it."""
    reasons = collections.Counter(NODE_SKIPPED.findall(text))
    for number, reason in PYTEST_SKIPPED.findall(text):
        reasons[reason] += int(number)
    return reasons


def outcome_of(case):
    """CTest's own verdict: a test that it could not start must not count as skipped."""
    skipped = case.find("skipped")
    if case.get("status") == "run":
        return "passed"
    if case.get("status") == "disabled":
        return "skipped"
    if skipped is not None and skipped.get("message", "").startswith("SKIP_"):
        return "skipped"
    return "failed"


def results(outcome, text):
    """The results of a test that printed this text: (count, outcome, reason) for each."""
    counts, reasons = inner_counts(text), inner_reasons(text)
    if outcome == "failed" and not counts["failed"] or not counts:
        counts[outcome] += 1
    for reason in GTEST_SKIPPED.findall(text) if outcome == "skipped" else []:
        reasons[reason] += 1
    if counts["skipped"] and not reasons:
        reasons[text.strip().split("\n")[-1].removeprefix("skipped: ")] = counts["skipped"]
    for word in ("passed", "failed"):
        if counts[word]:
            yield counts[word], word, ""
    for reason, number in reasons.items():
        yield number, "skipped", reason.strip() or "no reason given"


def of_report(path):
    for case in ElementTree.parse(path).iter("testcase"):
        yield case.get("name"), outcome_of(case), case.findtext("system-out") or ""


def of_output(test, status, path):
    with open(path, encoding="utf-8", errors="replace") as file:
        yield test, {"0": "passed", "77": "skipped"}.get(status, "failed"), file.read()


def main():
    forms = {"report": (of_report, 1), "output": (of_output, 3)}
    read, count = forms.get(sys.argv[1] if sys.argv[1:] else "", (None, None))
    if len(sys.argv) - 2 != count:
        sys.exit(__doc__)
    for test, status, text in read(*sys.argv[2:]):
        for number, outcome, reason in results(status, text):
            print(number, outcome, test, reason, sep="\t")


if __name__ == "__main__":
    main()
