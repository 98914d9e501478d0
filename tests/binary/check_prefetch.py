#!/usr/bin/env python3
"""Counts the prefetch instructions of each procedure of a library and fails if the compiler deleted
one: a compiler may treat a function that only prefetches as one without effects.

    check_prefetch.py LIBRARY OBJDUMP COMPILER

The library is ELF, for x86-64 or 64-bit Arm. COMPILER is GNU or Clang, whose counts differ because they
unroll and merge loops differently.
"""

import re
import sys

import disassembly

PREFETCH = re.compile(r"prefetch\w*|prfm")

# Name of a part, pattern of its functions, and its least number of prefetches with GCC and with Clang.
# The patterns match parts of names, because not every objdump can demangle templates.
PARTS = (
    ("vectors_calc_sym_diff", r"vectors_calc_sym_diff", 2, 2),
    ("compaction of a symmetric difference", r"compact.*unmarked_entries", 2, 2),
    ("vector_mod2", r"compact.*reducing_entries", 4, 4),
    ("vector_mod2 in blocks", r"reduce_in_blocks|vector_mod2", 2, 2),
    ("vectors_are_identical", r"vectors_are_identical", 7, 7),
    ("vector_rem_zeros", r"detail::drop_zeros", 5, 5),
    ("compaction with marks", r"compact.*(?<!un)marked_entries", 4, 4),
    ("compaction without marks", r"compact.*listed_entries", 2, 2),
    ("scaling with marks", r"scale_marked", 2, 2),
    ("vectors_combine in list order, any machine", r"combine_in_list_order_portable", 28, 28),
    ("vectors_combine in list order, fused", r"combine_in_list_order_fused", 28, 28),
    ("other ways of vectors_combine, any machine", r"combine_otherwise_portable", 11, 10),
    ("other ways of vectors_combine, fused", r"combine_otherwise_fused", 11, 10),
    ("vectors_combine without sums", r"combine_without_sums|scale_entries", 4, 4),
)
# The end of the patterns of parts that exist only on x86-64.
FUSED = "_fused"


def fail(sentence):
    sys.exit(f"check_prefetch: {sentence}")


def check(library, objdump, compiler):
    try:
        text = disassembly.disassembly(library, objdump)
    except disassembly.CannotDisassemble as error:
        fail(error)
    arm = "aarch64" in text.splitlines()[1]
    counts = disassembly.count_by_function(text, PREFETCH)
    short = []
    for name, pattern, gnu, clang in PARTS:
        if arm and pattern.endswith(FUSED):
            continue
        least = gnu if compiler == "GNU" else clang
        found = sum(count for function, count in counts.items() if re.search(pattern, function))
        print(f"{found:3} of {least:2}  {name}")
        if found < least:
            short.append(f"{name}: {found} prefetches, expected at least {least}")
    if short:
        fail("\n".join(short))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        fail("usage: check_prefetch.py LIBRARY OBJDUMP COMPILER")
    check(*sys.argv[1:])
