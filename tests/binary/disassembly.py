"""The machine code of a library, as objdump prints it, counted by function."""

import collections
import re
import subprocess

FUNCTION = re.compile(r"[0-9a-f]+ <(.*)>:")
INSTRUCTION = re.compile(r"\s*[0-9a-f]+:\s+([a-z][a-z0-9.]*)")


class CannotDisassemble(Exception):
    """The sentence that says why."""


def disassembly(library, objdump):
    """The text that objdump, GNU's or LLVM's, prints of a library. Names are demangled."""
    command = [objdump, "--disassemble", "--demangle", "--no-show-raw-insn", library]
    try:
        ran = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError as error:
        raise CannotDisassemble(f"{objdump}: {error.strerror}") from error
    if ran.returncode != 0:
        raise CannotDisassemble(f"{objdump} cannot disassemble {library}: {ran.stderr.strip()}")
    return ran.stdout


def count_by_function(text, pattern):
    """The number of instructions of each function whose name, with its suffix, matches; 0 included."""
    counts = collections.Counter()
    function = None
    for line in text.splitlines():
        if match := FUNCTION.match(line):
            function = match.group(1)
            counts[function] += 0
        elif (match := INSTRUCTION.match(line)) and pattern.fullmatch(match.group(1)):
            counts[function] += 1
    return counts
