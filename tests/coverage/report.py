#!/usr/bin/env python3
"""Reports the coverage of a finished test run, file by file, and fails where it has to be complete.

Reads the raw profiles of the coverage build, merges them over all test programs and libraries, and
prints lines, branches and conditions (MC/DC) of each source file of the project.
"""

import argparse
import glob
import json
import os
import subprocess
import sys

MEASURES = ("lines", "branches", "mcdc")


def fail(sentence):
    sys.exit(f"coverage: {sentence}")


def tool(compiler, name):
    """The LLVM tool that belongs to a compiler: same folder, same version suffix."""
    folder, base = os.path.split(compiler)
    return os.path.join(folder, base.replace("clang++", name))


def instrumented(build):
    """The libraries, which hold all code of the project but the templates of types.hpp, and the test
    program that instantiates those. Counts of other programs come in through the merged profile; as
    objects of their own they would report every inline procedure that they do not use as missed.
    """
    found = [f"{build}/tests/types/types_test"]
    for pattern in ("so", "dylib"):
        found += glob.glob(f"{build}/src/zktarn/libzktarn_util.{pattern}")
        found += glob.glob(f"{build}/zktarn_standin/lib*.{pattern}")
    return found


def summary(build, compiler):
    """Coverage of each file, merged over everything that ran."""
    profiles = glob.glob(f"{build}/profiles/*.profraw")
    if not profiles:
        fail(f"no profiles in {build}/profiles; run the tests with LLVM_PROFILE_FILE set to it")
    merged = f"{build}/profiles/all.profdata"
    listing = f"{build}/profiles/list"
    with open(listing, "w", encoding="utf-8") as out:
        out.write("\n".join(profiles))
    subprocess.run([tool(compiler, "llvm-profdata"), "merge", "-sparse", f"--input-files={listing}",
                    "-o", merged], check=True)
    first, *others = instrumented(build)
    command = [tool(compiler, "llvm-cov"), "export", "--summary-only", "--show-mcdc-summary",
               f"--instr-profile={merged}", first]
    for path in others:
        command += ["-object", path]
    text = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return json.loads(text)["data"][0]["files"]


def row(name, counts):
    cells = [f"{c['covered']:>5}/{c['count']:<5}{c['percent'] if c['count'] else 100:7.2f} %"
             for c in counts]
    return f"{name:<52}" + "  ".join(cells)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="folder of the coverage build")
    parser.add_argument("--compiler", required=True, help="the clang++ that built it")
    parser.add_argument("--complete", action="append", default=[],
                        help="folder, from the project's, whose files must be covered completely")
    arguments = parser.parse_args()

    project = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
    shown = ("src/zktarn/", "standin/")
    incomplete = []
    print(f"{'file':<52}{'lines':^19}  {'branches':^19}  {'MC/DC':^19}")
    for entry in sorted(summary(arguments.build, arguments.compiler), key=lambda e: e["filename"]):
        name = os.path.relpath(entry["filename"], project)
        if not name.startswith(shown):
            continue
        counts = [entry["summary"][measure] for measure in MEASURES]
        print(row(name, counts))
        gated = any(name.startswith(f"{folder}/") for folder in arguments.complete)
        if gated and any(c["covered"] < c["count"] for c in counts):
            incomplete.append(name)
    if incomplete:
        fail("not covered completely: " + ", ".join(incomplete))


if __name__ == "__main__":
    main()
