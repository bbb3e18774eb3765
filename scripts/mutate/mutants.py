"""Small faults: where a line of the product can be changed, and how."""

import re
from collections import namedtuple

# column: where the change begins. text: the whole line as it becomes.
Mutant = namedtuple("Mutant", "path line column text")

# What is looked for in code outside of strings and comments, and what takes its place.
_BOTH = [
    (r" < ", " <= "),
    (r" <= ", " < "),
    (r" > ", " >= "),
    (r" >= ", " > "),
    (r" && ", " || "),
    (r" \|\| ", " && "),
    (r" \+ ", " - "),
    (r" - ", " + "),
    (r" \+= ", " -= "),
    (r" & ", " | "),
    (r" << ", " >> "),
    (r"\btrue\b", "false"),
    (r"\bfalse\b", "true"),
    (r"(?<=[( ])!(?=[\w(])", ""),
    (r"\bbreak;", "continue;"),
    (r"\bcontinue;", "break;"),
    (r"(?<![\w.])(\d+)(?![\w.])", lambda match: str(int(match[1]) + 1)),
    (r"(?<![\w.])0x([0-9A-F]+)(?!\w)", lambda match: f"0x{int(match[1], 16) + 1:X}"),
    (r"^( +)((?!const )[\w.>\[\]-]+ = [^;]*;)$", r"\1;  // \2"),
]
# In a header it could be a declaration.
_CALL_LEFT_OUT = [
    (
        r"^( +)(?!return|delete|using|const |break|continue|throw|await)([\w.>:\[\]-]+\([^;]*\);)$",
        r"\1;  // \2",
    ),
]
_CPP = [
    (r" == ", " != "),
    (r" != ", " == "),
    (r"\+\+(?=\w)", "--"),
    (r"\breturn -1;", "return 0;"),
    (r"\breturn 0;", "return -1;"),
]
_SCRIPT = [
    (r" === ", " !== "),
    (r" !== ", " === "),
    (r"\breturn null;", "return undefined;"),
    (r" \?\? ", " || "),
    (r"\?\.(?=\w)", "."),
    (r"^( +)await ", r"\1void "),
]
_PAGES = _BOTH + _SCRIPT + _CALL_LEFT_OUT
CHANGES = {
    ".cpp": _BOTH + _CPP + _CALL_LEFT_OUT,
    ".h": _BOTH + _CPP,
    ".ts": _PAGES,
    ".tsx": _PAGES,
}
# Lines that hold no behaviour of their own.
LEFT_OUT = re.compile(
    r"^\s*(#|//|static_assert|assert|template|using|namespace|ENC_ASSERT|import |export type|type |\*)"
)
LITERAL = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])+\'|//.*')


def masked(line):
    """The line with its strings and comments blanked, so that nothing in them is found."""
    return LITERAL.sub(lambda match: '"' + " " * (len(match[0]) - 2) + '"', line)


def mutants_of_line(path, number, line, changes):
    if LEFT_OUT.match(line):
        return
    code = masked(line)
    for pattern, wanted in changes:
        for match in re.finditer(pattern, code):
            to = wanted(match) if callable(wanted) else match.expand(wanted)
            yield Mutant(path, number, match.start(), line[: match.start()] + to + line[match.end() :])


def mutants_of_file(path, text):
    """Every mutant of a file, in order."""
    changes = CHANGES["." + path.rsplit(".", 1)[1]]
    found = []
    for number, line in enumerate(text.split("\n"), 1):
        found += mutants_of_line(path, number, line, changes)
    return sorted(found)


def spread(mutants, count, seed):
    """At most `count` of them, evenly apart; the seed moves all of them along."""
    if count >= len(mutants):
        return mutants
    step = len(mutants) / count
    offset = seed * 7919 % 1000 / 1000 * step
    return [mutants[int(offset + number * step)] for number in range(count)]
