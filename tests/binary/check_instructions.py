#!/usr/bin/env python3
"""Counts instructions in the machine code of a library, function by function.

    check_instructions.py fused LIBRARY OBJDUMP

fails unless fused multiply-add instructions occur where the source calls std::fma, and nowhere else, so that
a product and a sum are otherwise rounded separately.

    check_instructions.py prefetches LIBRARY OBJDUMP COMPILER

fails when the compiler deleted a prefetch: it may treat a function that only prefetches as one without
effects. COMPILER is GNU or Clang, whose counts differ because they unroll and merge loops differently.

OBJDUMP is GNU's or LLVM's. The library is ELF or, for `fused`, Mach-O, for x86-64 or 64-bit Arm.
"""

import collections
import re
import subprocess
import sys

FUNCTION = re.compile(r"[0-9a-f]+ <(.*)>:")
INSTRUCTION = re.compile(r"\s*[0-9a-f]+:\s+([a-z][a-z0-9.]*)")

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
    (re.compile(UTIL + r"(multiply_add|expand|rational_rep|get_rational_rep)\("), 2),
)
COMBINES = FUSING[0][0]

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
ONLY_X86 = "_fused"


def fail(sentence):
    sys.exit(f"check_instructions: {sentence}")


def disassembly(library, objdump):
    """The text that objdump prints of a library. Names are demangled."""
    command = [objdump, "--disassemble", "--demangle", "--no-show-raw-insn", library]
    try:
        ran = subprocess.run(command, capture_output=True, text=True, check=False)
    except OSError as error:
        fail(f"{objdump}: {error.strerror}")
    if ran.returncode != 0:
        fail(f"{objdump} cannot disassemble {library}: {ran.stderr.strip()}")
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


def complaint(function, count):
    """A sentence if a function has too many fused instructions, else None."""
    for name, limit in FUSING:
        if name.match(function):
            if limit is not None and count > limit:
                return f"{function} has {count} fused instructions, but its source asks for {limit}"
            return None
    return f"{function} has {count} fused instructions, but its source asks for none"


def check_fused(library, objdump):
    counts = {function: count for function, count in
              count_by_function(disassembly(library, objdump), FUSED).items() if count}
    complaints = [sentence for function, count in sorted(counts.items())
                  if (sentence := complaint(function, count))]
    if complaints:
        fail("\n".join(complaints))
    # Each supported processor has the instruction, so a library without any was not read correctly.
    if not any(COMBINES.match(function) for function in counts):
        fail(f"vectors_combine does not use the fused instruction in {library}")
    for function, count in sorted(counts.items()):
        print(f"{count:3}  {function}")


def check_prefetches(library, objdump, compiler):
    text = disassembly(library, objdump)
    arm = "aarch64" in text.splitlines()[1]
    counts = count_by_function(text, PREFETCH)
    short = []
    for name, pattern, gnu, clang in PARTS:
        if arm and pattern.endswith(ONLY_X86):
            continue
        least = gnu if compiler == "GNU" else clang
        found = sum(count for function, count in counts.items() if re.search(pattern, function))
        print(f"{found:3} of {least:2}  {name}")
        if found < least:
            short.append(f"{name}: {found} prefetches, expected at least {least}")
    if short:
        fail("\n".join(short))


def main():
    what, *arguments = sys.argv[1:] or [""]
    if what == "fused" and len(arguments) == 2:
        check_fused(*arguments)
    elif what == "prefetches" and len(arguments) == 3:
        check_prefetches(*arguments)
    else:
        fail("usage: check_instructions.py fused LIBRARY OBJDUMP | prefetches LIBRARY OBJDUMP COMPILER")


if __name__ == "__main__":
    main()
