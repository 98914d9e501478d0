#!/usr/bin/env python3
"""Checks that a library contains fused multiply-add instructions only where its source calls std::fma,
and nowhere else, so that a product and a sum are otherwise rounded separately.

    check_fused.py LIBRARY OBJDUMP

OBJDUMP is GNU's or LLVM's. The library is ELF or Mach-O, for x86-64 or 64-bit Arm.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1]))
import disassembly

# All fused multiply-add instructions on reals, scalar and vector; some have a suffix.
FUSED = re.compile(
    r"(vfn?m(add|sub|addsub|subadd)(132|213|231)?[sp][sdh]"    # x86-64
    r"|fn?m(add|sub)|fml[as]l?2?|fn?ml[as]|fn?m(ad|sb)|fcmla"  # 64-bit Arm
    r"|bfml[as]l?[bt]?)([.].*)?")

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


def fail(sentence):
    sys.exit(f"check_fused: {sentence}")


def complaint(function, count):
    """A sentence if a function has too many fused instructions, else None."""
    for name, limit in FUSING:
        if name.match(function):
            if limit is not None and count > limit:
                return f"{function} has {count} fused instructions, but its source asks for {limit}"
            return None
    return f"{function} has {count} fused instructions, but its source asks for none"


def check(library, objdump):
    try:
        text = disassembly.disassembly(library, objdump)
    except disassembly.CannotDisassemble as error:
        fail(error)
    counts = {function: count for function, count in
              disassembly.count_by_function(text, FUSED).items() if count}
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
