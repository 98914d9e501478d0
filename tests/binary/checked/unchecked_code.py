#!/usr/bin/env python3
"""Compares the machine code of an unchecked library with that of a library without checks in its sources.

    unchecked_code.py strip SOURCE COPY
        copies the folder SOURCE and deletes every use of ZKTARN_CHECK in the copy. For the build, touches
        COPY.stamp and writes the names of the files that it read into COPY.d. Prints the number of deleted
        checks; fails when there is none.

    unchecked_code.py compare OBJDUMP LIBRARY OTHER
        fails unless two static libraries have the same functions, instruction by instruction.
"""

import pathlib
import re
import subprocess
import sys


def fail(sentence):
    sys.exit(f"unchecked_code: {sentence}")


# strip

def statement_end(text, start):
    """The position after the statement that begins with a check at `start`."""
    depth = 0
    for position in range(text.index("(", start), len(text)):
        depth += {"(": 1, ")": -1}.get(text[position], 0)
        if depth == 0:
            return text.index(";", position) + 1
    return fail("a check has no closing parenthesis")


def stripped(text):
    """The text without its checks, and the number of checks."""
    count = 0
    while found := re.search(r"^[ ]*ZKTARN_CHECK\(", text, re.MULTILINE):
        text = text[:found.start()] + text[statement_end(text, found.start()):]
        count += 1
    return text, count


def strip(folder, copy):
    source = pathlib.Path(folder)
    if not source.is_dir():
        fail(f"{source} is not a folder")
    total = 0
    files = sorted(source.rglob("*.?pp"))
    for file in files:
        text, count = stripped(file.read_text(encoding="utf-8"))
        total += count
        target = pathlib.Path(copy) / file.relative_to(source)
        target.parent.mkdir(parents=True, exist_ok=True)
        # An unchanged file keeps its time, so that the build does not compile it again.
        if not target.exists() or target.read_text(encoding="utf-8") != text:
            target.write_text(text, encoding="utf-8")
        if "ZKTARN_CHECK(" in text and file.name != "check.hpp":
            fail(f"{file} has a check that is not a statement")
    if total == 0:
        fail(f"{source} has no check")
    stamp = pathlib.Path(f"{copy}.stamp")
    read = " ".join(str(file).replace(" ", "\\ ") for file in files)
    pathlib.Path(f"{copy}.d").write_text(f"{stamp}: {read}\n", encoding="utf-8")
    stamp.touch()
    print(f"{total} checks deleted")


# compare

def functions(objdump, library):
    """The disassembled instructions of each function, by its name."""
    ran = subprocess.run([objdump, "--disassemble", "--reloc", "--no-show-raw-insn", library],
                         capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(ran.stderr.strip())
    found = {}
    name = member = ""
    for line in ran.stdout.splitlines():
        # LLVM's disassembler prints LIBRARY(MEMBER), GNU's prints MEMBER.
        if heading := re.match(r"(?:.*[(/])?([^(/]+?)\)?:\s+file format", line):
            member = heading.group(1)
        elif heading := re.match(r"[0-9a-f]+ <(.*)>:$", line):
            name = f"{member} {heading.group(1)}"
            found[name] = []
        elif line.strip() and name:
            found[name].append(line)
    return found


def compare(objdump, library, other):
    first, second = functions(objdump, library), functions(objdump, other)
    if not first:
        fail(f"{library} has no functions")
    if first.keys() != second.keys():
        fail(f"only one library has {', '.join(sorted(first.keys() ^ second.keys()))}")
    different = [name for name in first if first[name] != second[name]]
    if different:
        fail(f"the code differs in {', '.join(different)}")
    print(f"{len(first)} functions, {sum(map(len, first.values()))} instructions, all equal")


def main(arguments):
    if len(arguments) == 3 and arguments[0] == "strip":
        strip(*arguments[1:])
    elif len(arguments) == 4 and arguments[0] == "compare":
        compare(*arguments[1:])
    else:
        fail("usage: unchecked_code.py strip SOURCE COPY | compare OBJDUMP LIBRARY OTHER")


if __name__ == "__main__":
    main(sys.argv[1:])
