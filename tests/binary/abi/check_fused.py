#!/usr/bin/env python3
"""Holds the machine code of a library against what it says about rounding: a product and a sum are
rounded once only where the source asks for that, with std::fma, and twice everywhere else.

    check_fused.py LIBRARY OBJDUMP

OBJDUMP is a GNU or LLVM one that disassembles the library: ELF or Mach-O, x86-64 or 64-bit Arm.
"""

import collections
import re
import subprocess
import sys

# Every instruction that multiplies and adds reals with one rounding, scalar or vector.
FUSED = re.compile(
    r"vfn?m(add|sub|addsub|subadd)(132|213|231)?[sp][sdh]"    # x86-64
    r"|fn?m(add|sub)|fml[as]l?2?|fn?ml[as]|fn?m(ad|sb)|fcmla"  # 64-bit Arm
    r"|bfml[as]l?[bt]?")

# The procedures that ask for it, with all that a compiler may inline them into. A limit counts the
# places in the source, where other arithmetic that must not fuse stands next to them.
VECTOR_MOD = r"zktarn::vector_mod::(detail::)?"
UTIL = r"zktarn::util::(detail::)?(\(anonymous namespace\)::)?"
ASKED_FOR = (
    # beta * y + x, scalar and in as many copies as there are loops.
    (re.compile(VECTOR_MOD + r"(\(anonymous namespace\)::)?(vectors_combine|combine|"
                             r"combine(_otherwise|_in_list_order)?_(portable|fused))\("), None),
    # The exact remainder.
    (re.compile(UTIL + r"(remainder|real_gcd|xgcd_r8)\("), 1),
    # Integers too large for an exact product: numerator and denominator of the next convergent.
    (re.compile(UTIL + r"(multiply_add|continued_fraction|rational_rep|get_rational_rep)\("), 2),
)
COMBINES = ASKED_FOR[0][0]

FUNCTION = re.compile(r"[0-9a-f]+ <(.*)>:")
INSTRUCTION = re.compile(r"\s*[0-9a-f]+:\s+([a-z][a-z0-9.]*)")


def fail(sentence):
    sys.exit(f"check_fused: {sentence}")


def disassembly(library, objdump):
    command = [objdump, "--disassemble", "--demangle", "--no-show-raw-insn", library]
    try:
        ran = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError as error:
        fail(f"{objdump}: {error.strerror}")
    if ran.returncode != 0:
        fail(f"{objdump} cannot disassemble {library}: {ran.stderr.strip()}")
    return ran.stdout


def fused_by_function(text):
    """How many fused instructions each function has; functions without any are in it too."""
    counts = collections.Counter()
    function = None
    for line in text.splitlines():
        if match := FUNCTION.match(line):
            function = match.group(1)
            counts[function] += 0
        elif (match := INSTRUCTION.match(line)) and FUSED.fullmatch(match.group(1).split(".")[0]):
            counts[function] += 1
    return counts


def complaint(function, count):
    """What is wrong with that many fused instructions in a function; None when nothing is."""
    for name, limit in ASKED_FOR:
        if name.match(function):
            if limit is not None and count > limit:
                return f"{function} fuses {count} times, and asks for {limit}"
            return None
    return f"{function} fuses {count} times, and never asks for it"


def check(library, objdump):
    counts = {function: count for function, count in
              fused_by_function(disassembly(library, objdump)).items() if count}
    complaints = [said for function, count in sorted(counts.items())
                  if (said := complaint(function, count))]
    if complaints:
        fail("\n".join(complaints))
    # All processors that the library has code for can do it, so that none of it would also mean
    # that this did not look at the code.
    if not any(COMBINES.match(function) for function in counts):
        fail(f"vectors_combine does not use the fused instruction in {library}")
    for function, count in sorted(counts.items()):
        print(f"{count:3}  {function}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        fail("usage: check_fused.py LIBRARY OBJDUMP")
    check(*sys.argv[1:])
