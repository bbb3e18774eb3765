#!/usr/bin/python3
"""Faults put into a copy of the product one at a time, and which tests notice them.

Run by scripts/mutate.sh, which tells the arguments.
"""

import argparse
import os
import signal
import sys
import time

import tree
from mutants import mutants_of_file, spread
from oracles import PAGES, UNITS, browser_tests, daemon_tests

VERDICTS = os.path.join(tree.WORK, "verdicts.txt")
EQUIVALENT = os.path.join(tree.ROOT, "scripts/mutate/equivalent.txt")
BY_UNIT, BY_DAEMON, BY_BROWSER, SURVIVED = "unit", "daemon", "browser", "survived"
EQUAL, NOT_BUILT = "equivalent", "not built"
KINDS = [BY_UNIT, BY_DAEMON, BY_BROWSER, SURVIVED, EQUAL, NOT_BUILT]


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def write(path, text):
    with open(path, "w", encoding="utf-8") as file:
        file.write(text)


def verdict_on_pages(path, ask_browser):
    if not tree.is_script(path):
        return NOT_BUILT
    if not tree.pages_passed():
        return BY_UNIT
    if not tree.pages_have_types():
        return NOT_BUILT
    if ask_browser and tree.pages_built():
        if not all(tree.browser_passed(file) for file in browser_tests(path)):
            return BY_BROWSER
    return SURVIVED


def verdict_on_daemon(folder, path, ask_daemon):
    for units in UNITS[folder]:
        if not tree.built(units):
            return NOT_BUILT
        if not all(tree.unit_passed(unit) for unit in units):
            return BY_UNIT
    if ask_daemon and tree.built(["webctrl"]):
        if not all(tree.daemon_passed(file) for file in daemon_tests(path)):
            return BY_DAEMON
    return SURVIVED


def judge(folder, mutant, given):
    """Puts one fault into the copy, asks the tests, and takes it out again."""
    path = os.path.join(tree.TREE, mutant.path)
    whole = read(path)
    lines = whole.split("\n")
    lines[mutant.line - 1] = mutant.text
    try:
        write(path, "\n".join(lines))
        if folder in PAGES:
            return verdict_on_pages(mutant.path, given.browser)
        return verdict_on_daemon(folder, mutant.path, given.daemon)
    finally:
        write(path, whole)


def code_of(line):
    """A changed line without the remark behind it, which somebody may word anew."""
    line = line.strip()
    return line if line.startswith(";") else line.split("  //")[0].rstrip()


def known_equivalents():
    """Path and text of the changed lines that are known to change nothing."""
    lines = [line for line in read(EQUIVALENT).split("\n") if line and not line.startswith("#")]
    return {tuple(part.strip() for part in line.split(" ## ", 2)[:2]) for line in lines}


def show(counts):
    print(f"\n{'':14}" + "".join(f"{kind:>12}" for kind in KINDS))
    for folder, row in counts.items():
        print(f"{folder:14}" + "".join(f"{row[kind]:12}" for kind in KINDS))
    total = {kind: sum(row[kind] for row in counts.values()) for kind in KINDS}
    print(f"{'all':14}" + "".join(f"{total[kind]:12}" for kind in KINDS))


def arguments():
    parser = argparse.ArgumentParser(prog="mutate.sh")
    parser.add_argument("--count", type=int, default=300)
    parser.add_argument("--seconds", type=int, default=3600)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--daemon", action="store_true")
    parser.add_argument("--browser", action="store_true")
    parser.add_argument("folders", nargs="*", metavar="folder")
    given = parser.parse_args()
    given.folders = given.folders or list(UNITS)
    if unknown := set(given.folders) - set(UNITS):
        parser.error(f"no folder {', '.join(sorted(unknown))}; there are: {', '.join(UNITS)}")
    return given


def chosen(folder, count, seed):
    files = {path: read(os.path.join(tree.TREE, path)) for path in tree.source_files(folder)}
    found = [mutant for path, text in files.items() for mutant in mutants_of_file(path, text)]
    return spread(found, count, seed)


def main():
    given = arguments()
    # Whoever ends a run ends what it started: a fault may have made a test busy for ever.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(143))
    tree.prepare(given.folders, given.browser)
    end = time.monotonic() + given.seconds
    each = -(-given.count // len(given.folders))
    all_of = {folder: chosen(folder, each, given.seed) for folder in given.folders}
    counts = {folder: dict.fromkeys(KINDS, 0) for folder in all_of}
    equivalents = known_equivalents()
    # In turns, so that the time's end meets all folders alike.
    turns = sorted(
        (number, folder) for folder, mutants in all_of.items() for number in range(len(mutants))
    )
    with open(VERDICTS, "w", encoding="utf-8") as verdicts:
        for number, folder in turns:
            if time.monotonic() > end:
                print("mutate: the time is over")
                break
            mutant = all_of[folder][number]
            known = (mutant.path, code_of(mutant.text)) in equivalents
            verdict = EQUAL if known else judge(folder, mutant, given)
            counts[folder][verdict] += 1
            line = f"{verdict}: {mutant.path}:{mutant.line}: {mutant.text.strip()}"
            print(line, file=verdicts, flush=True)
            if verdict == SURVIVED:
                print(line, flush=True)
    show(counts)


if __name__ == "__main__":
    main()
