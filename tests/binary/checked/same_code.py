#!/usr/bin/env python3
"""same_code.py OBJDUMP LIBRARY OTHER: two libraries have the same functions, instruction by instruction."""

import re
import subprocess
import sys


def fail(sentence):
    sys.exit(f"same_code: {sentence}")


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


def main():
    if len(sys.argv) != 4:
        fail("usage: same_code.py OBJDUMP LIBRARY OTHER")
    first, second = (functions(sys.argv[1], library) for library in sys.argv[2:])
    if not first:
        fail(f"{sys.argv[2]} has no functions")
    if first.keys() != second.keys():
        fail(f"only one of the two has {', '.join(sorted(first.keys() ^ second.keys()))}")
    different = [name for name in first if first[name] != second[name]]
    if different:
        fail(f"the code differs in {', '.join(different)}")
    print(f"{len(first)} functions, {sum(map(len, first.values()))} instructions, all the same")


if __name__ == "__main__":
    main()
