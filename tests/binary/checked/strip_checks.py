#!/usr/bin/env python3
"""strip_checks.py SOURCE COPY: copies the folder SOURCE with every use of ZKTARN_CHECK deleted.

Touches COPY.stamp and writes the files that it read into COPY.d, for the build. Prints the number of
deleted checks; fails when there is none to delete.
"""

import pathlib
import re
import sys


def statement_end(text, start):
    """The position after the statement that begins with a check at `start`."""
    depth = 0
    for position in range(text.index("(", start), len(text)):
        depth += {"(": 1, ")": -1}.get(text[position], 0)
        if depth == 0:
            return text.index(";", position) + 1
    sys.exit("strip_checks: a check does not end")


def stripped(text):
    """The text without its checks, and the number of checks."""
    count = 0
    while found := re.search(r"^[ ]*ZKTARN_CHECK\(", text, re.MULTILINE):
        text = text[:found.start()] + text[statement_end(text, found.start()):]
        count += 1
    return text, count


def main():
    if len(sys.argv) != 3 or not pathlib.Path(sys.argv[1]).is_dir():
        sys.exit("strip_checks: usage: strip_checks.py SOURCE COPY")
    source, copy = map(pathlib.Path, sys.argv[1:])
    total = 0
    files = sorted(source.rglob("*.?pp"))
    for file in files:
        text, count = stripped(file.read_text(encoding="utf-8"))
        total += count
        target = copy / file.relative_to(source)
        target.parent.mkdir(parents=True, exist_ok=True)
        # An unchanged file keeps its time, so that the build does not compile it again.
        if not target.exists() or target.read_text(encoding="utf-8") != text:
            target.write_text(text, encoding="utf-8")
        if "ZKTARN_CHECK(" in text and file.name != "check.hpp":
            sys.exit(f"strip_checks: {file} has a check that is not a statement")
    if total == 0:
        sys.exit(f"strip_checks: {source} has no check")
    stamp = pathlib.Path(f"{copy}.stamp")
    read = " ".join(str(file).replace(" ", "\\ ") for file in files)
    pathlib.Path(f"{copy}.d").write_text(f"{stamp}: {read}\n", encoding="utf-8")
    stamp.touch()
    print(f"{total} checks deleted")


if __name__ == "__main__":
    main()
