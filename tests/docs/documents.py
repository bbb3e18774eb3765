"""The project's documents as tests see them: fenced blocks, links, headings, tables."""

import os
import re
from collections import namedtuple

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# kind: the text after the opening fence ("console run"). before: the line above the fence.
Block = namedtuple("Block", "document line kind before text")


def read(path):
    with open(os.path.join(ROOT, path), encoding="utf-8") as file:
        return file.read()


def documents():
    """Every document of the project, as paths from its root."""
    pages = [name for name in os.listdir(ROOT) if name.endswith(".md")]
    pages += [f"docs/{name}" for name in os.listdir(f"{ROOT}/docs") if name.endswith(".md")]
    return sorted(pages)


def blocks(document):
    found, start, before = [], None, ""
    lines = read(document).split("\n")
    for number, line in enumerate(lines, 1):
        if not line.startswith("```"):
            if start is None and line:
                before = line
            continue
        if start is None:
            start, kind = number, line[3:].strip()
        else:
            text = "\n".join(lines[start : number - 1])
            found.append(Block(document, start, kind, before, text))
            start, before = None, ""
    assert start is None, f"{document}:{start}: a fence is not closed"
    return found


def prose(document):
    """The text without its fenced blocks."""
    return re.sub(r"^```.*?^```$", "", read(document), flags=re.M | re.S)


def sections(document, level):
    """Heading and text of each section of a level, in order."""
    parts = re.split(rf"^{'#' * level} (.+)$", read(document), flags=re.M)
    return list(zip(parts[1::2], parts[2::2]))


def anchors(document):
    """The names that links may have after "#", derived from the headings."""
    headings = re.findall(r"^#+ (.+)$", prose(document), re.M)
    plain = [re.sub(r"[^\w\- ]", "", heading.lower()) for heading in headings]
    return {heading.replace(" ", "-") for heading in plain}


def commands(text):
    """The commands of a console block ("$ ", continued by "> ") with the output below each."""
    found = []
    for line in text.split("\n"):
        if line.startswith("$ "):
            found.append((line[2:], []))
        elif line.startswith("> ") and not found[-1][1]:
            found[-1] = (f"{found[-1][0]}\n{line[2:]}", [])
        else:
            found[-1][1].append(line)
    return [(command, "\n".join(output)) for command, output in found]


def as_pattern(output):
    """An expected output as a pattern: an ellipsis stands for any text within a line."""
    return re.compile(".*".join(re.escape(part) for part in output.split("…")))
