#!/usr/bin/env python3
"""Counts the instructions of the solver's separation by library, host and solver, by valgrind.

Usage: solver_profile.py PROGRAM MODEL...

PROGRAM is zero_half, built with debug information (-g), so that inlined procedures are counted for
the library and not for the solver.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

LINE = re.compile(r"^\s*([\d,]+) \([^)]*\)\s+(\S+?):(.*?)(?: \[([^\]]*)\])?$")


def place(source, function, library):
    """The owner of the instructions: host, library or solver."""
    if "zktarn::standin::" in function or re.search(r"lib(qv|qvx|ut|zkoptimutil)\.", library):
        return "host"
    if re.search(r"(^|/)src/zktarn/", source) or re.match(r"(void |double |long )?zktarn::", function):
        return "library"
    return "solver"


def procedure(function):
    """The name of a procedure without its namespace and arguments."""
    name = re.sub(r"\(.*", "", function.removeprefix("void "))
    return "inlined procedures" if name.startswith("zero_half::") else name.rsplit("::", 1)[-1]


def profile(program, model):
    """Instruction counts by (owner, procedure)."""
    with tempfile.TemporaryDirectory() as folder:
        out = pathlib.Path(folder) / "out"
        subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={out}", "--collect-atstart=no",
             "--toggle-collect=zero_half::separator::find(*", program, "--display", "off",
             "--rounds", "20", model], check=True, stderr=subprocess.DEVNULL)
        table = subprocess.run(["callgrind_annotate", "--threshold=100", "--auto=no", str(out)],
                               check=True, capture_output=True, text=True).stdout
    counts = {}
    for line in table.splitlines():
        match = LINE.match(line)
        if match and "PROGRAM TOTALS" not in line:
            count, source, function, library = match.groups()
            owner = place(source, function, library or "")
            key = (owner, procedure(function) if owner == "library" else "")
            counts[key] = counts.get(key, 0) + int(count.replace(",", ""))
    return counts


def main(arguments):
    if len(arguments) < 2:
        sys.exit("solver_profile.py: give the program and at least one model")
    program, *models = arguments
    everything = {}
    print(f"{'model':<20} {'instructions':>14} {'library':>8} {'host':>6} {'solver':>7}")
    for model in models:
        counts = profile(program, model)
        total = sum(counts.values())
        if total == 0:
            sys.exit(f"solver_profile.py: {model}: no instructions were counted")
        share = {owner: sum(n for key, n in counts.items() if key[0] == owner) / total
                 for owner in ("library", "host", "solver")}
        print(f"{pathlib.Path(model).stem:<20} {total:>14,} {share['library']:>8.1%} "
              f"{share['host']:>6.1%} {share['solver']:>7.1%}")
        for key, n in counts.items():
            everything[key] = everything.get(key, 0) + n
    total = sum(everything.values())
    print("\nprocedure                    share of all")
    for key, n in sorted(everything.items(), key=lambda item: -item[1]):
        if key[0] == "library" and n / total >= 0.005:
            print(f"{key[1]:<28} {n / total:>12.1%}")
    for owner in ("library", "host", "solver"):
        n = sum(n for key, n in everything.items() if key[0] == owner)
        print(f"{'all of the ' + owner:<28} {n / total:>12.1%}")


if __name__ == "__main__":
    main(sys.argv[1:])
