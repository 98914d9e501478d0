#!/usr/bin/env python3
"""Checks that a library contains fused multiply-add instructions only where its source calls std::fma,
and nowhere else, so that a product and a sum are otherwise rounded separately.

    check_fused.py LIBRARY OBJDUMP

OBJDUMP is GNU's or LLVM's. The library is ELF or Mach-O, for x86-64 or 64-bit Arm.
"""

import collections
import re
import subprocess
import sys

# All fused multiply-add instructions on reals, scalar and vector.
FUSED = re.compile(
    r"vfn?m(add|sub|addsub|subadd)(132|213|231)?[sp][sdh]"    # x86-64
    r"|fn?m(add|sub)|fml[as]l?2?|fn?ml[as]|fn?m(ad|sb)|fcmla"  # 64-bit Arm
    r"|bfml[as]l?[bt]?")

# The procedures that call std::fma, with the functions that a compiler may inline them into. A limit
# is the number of calls in the source of a function that also has arithmetic that must not be fused.
VECTOR_MOD = r"zktarn::vector_mod::(detail::)?"
UTIL = r"zktarn::util::(detail::)?(\(anonymous namespace\)::)?"
FUSING = (
    # beta * y + x, in each loop.
    (re.compile(VECTOR_MOD + r"(\(anonymous namespace\)::)?(vectors_combine|combine|"
                             r"combine(_otherwise|_in_list_order)?_(portable|fused))\("), None),
    # The exact remainder.
    (re.compile(UTIL + r"(remainder|real_gcd|xgcd_r8)\("), 1),
    # Integers too large for an exact product: numerator and denominator of the next convergent.
    (re.compile(UTIL + r"(multiply_add|continued_fraction|rational_rep|get_rational_rep)\("), 2),
)
COMBINES = FUSING[0][0]

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
    """The number of fused instructions of each function, 0 included."""
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
    """A sentence if a function has too many fused instructions, else None."""
    for name, limit in FUSING:
        if name.match(function):
            if limit is not None and count > limit:
                return f"{function} has {count} fused instructions, but its source asks for {limit}"
            return None
    return f"{function} has {count} fused instructions, but its source asks for none"


def check(library, objdump):
    counts = {function: count for function, count in
              fused_by_function(disassembly(library, objdump)).items() if count}
    complaints = [sentence for function, count in sorted(counts.items())
                  if (sentence := complaint(function, count))]
    if complaints:
        fail("\n".join(complaints))
    # Each supported processor has the instruction, so a library without any was not read correctly.
    if not any(COMBINES.match(function) for function in counts):
        fail(f"vectors_combine does not use the fused instruction in {library}")
    for function, count in sorted(counts.items()):
        print(f"{count:3}  {function}")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        fail("usage: check_fused.py LIBRARY OBJDUMP")
    check(*sys.argv[1:])
