#!/usr/bin/env python3
"""same_code.py OBJDUMP LIBRARY OTHER: two libraries have the same functions, instruction by instruction."""

import re
import subprocess
import sys


def fail(sentence):
    sys.exit(f"same_code: {sentence}")


def functions(objdump, library):
    """The instructions of each function, by its name, as the disassembler writes them."""
    ran = subprocess.run([objdump, "--disassemble", "--reloc", "--no-show-raw-insn", library],
                         capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(ran.stderr.strip())
    found = {}
    name = member = ""
    for line in ran.stdout.splitlines():
        # LIBRARY(MEMBER) with LLVM's disassembler, MEMBER alone with GNU's.
        if beginning := re.match(r"(?:.*[(/])?([^(/]+?)\)?:\s+file format", line):
            member = beginning.group(1)
        elif beginning := re.match(r"[0-9a-f]+ <(.*)>:$", line):
            name = f"{member} {beginning.group(1)}"
            found[name] = []
        elif line.strip() and name:
            found[name].append(line)
    return found


def main():
    if len(sys.argv) != 4:
        fail("usage: same_code.py OBJDUMP LIBRARY OTHER")
    ours, others = (functions(sys.argv[1], library) for library in sys.argv[2:])
    if not ours:
        fail(f"{sys.argv[2]} has no functions")
    if ours.keys() != others.keys():
        fail(f"only one of the two has {', '.join(sorted(ours.keys() ^ others.keys()))}")
    different = [name for name in ours if ours[name] != others[name]]
    if different:
        fail(f"the code differs in {', '.join(different)}")
    print(f"{len(ours)} functions, {sum(map(len, ours.values()))} instructions, all the same")


if __name__ == "__main__":
    main()
