#!/usr/bin/env python3
"""Reports the coverage of a finished test run, file by file, and fails where it falls short.

Reads the raw profiles of the coverage build, merges them over all test programs and libraries, and
prints lines, branches and conditions (MC/DC) of each source file of the project. A file that needs
not be covered is in exclusions.txt, with the reason.
"""

import argparse
import glob
import json
import os
import re
import subprocess
import sys
from pathlib import Path

HERE = Path(__file__).resolve().parent
MEASURES = ("lines", "branches", "mcdc")
# The folders whose files are reported, and the percentage of each file that has to be covered.
LEAST = {"src/zktarn": 100, "standin": 95}
COMMENT = re.compile(r"//.*")
# Parameters or a condition, and then a body.
CODE = re.compile(r"\)\s*((const|noexcept|override)\s*)*\{")


def fail(sentence):
    sys.exit(f"coverage: {sentence}")


def tool(compiler, name):
    """The LLVM tool that belongs to a compiler: same folder, same version suffix."""
    folder, base = os.path.split(compiler)
    return os.path.join(folder, base.replace("clang++", name))


def instrumented(build):
    """The libraries, and the test programs, which have the code of the headers."""
    libraries = []
    for pattern in ("so", "dylib"):
        libraries += glob.glob(f"{build}/src/zktarn/libzktarn_util.{pattern}")
        libraries += glob.glob(f"{build}/zktarn_standin/lib*.{pattern}")
    programs = glob.glob(f"{build}/tests/**/*_test", recursive=True)
    if not libraries or not programs:
        fail(f"no libraries or no test programs in {build}; build it first")
    return sorted(libraries) + sorted(programs)


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


def coverage_of(files, project):
    """For each file of the library and the stand-in, by its path in the project: its counts."""
    found = {}
    for entry in sorted(files, key=lambda e: e["filename"]):
        name = os.path.relpath(entry["filename"], project)
        if name.startswith(tuple(f"{folder}/" for folder in LEAST)):
            found[name] = [entry["summary"][measure] for measure in MEASURES]
    return found


def percent(count):
    return 100 * count["covered"] / count["count"] if count["count"] else 100.0


def row(name, counts):
    cells = [f"{c['covered']:>5}/{c['count']:<5}{percent(c):7.2f} %" for c in counts]
    return f"{name:<52}" + "  ".join(cells)


def files_with_code(project, folder):
    """The paths, in the project, of a folder's files in which something has a body."""
    return [
        str(path.relative_to(project)) for path in sorted((project / folder).rglob("*.?pp"))
        if CODE.search(COMMENT.sub("", path.read_text(encoding="utf-8")))
    ]


def read_exclusions(path):
    """The excluded files, each a line `path: reason`."""
    excluded = []
    for line in path.read_text(encoding="utf-8").splitlines():
        if not line or line.startswith("#"):
            continue
        name, _, reason = line.partition(": ")
        if not reason.strip():
            fail(f"{path.name} gives no reason in '{line}'")
        excluded.append(name)
    return excluded


def shortfall(counts, least):
    """What a file lacks: a percentage of its lines and branches or, at 100, of its conditions too."""
    if counts is None:
        return "not counted"
    measured = MEASURES if least == 100 else MEASURES[:2]
    lacking = [m for m, c in zip(measured, counts) if percent(c) < least]
    return f"below {least} % of its {', '.join(lacking)}" if lacking else ""


def findings(coverage, project, excluded):
    """What is wrong with files and exclusions, a line each."""
    lacking = {}
    for folder, least in LEAST.items():
        counted = {name for name in coverage if name.startswith(f"{folder}/")}
        for name in sorted(counted.union(files_with_code(project, folder))):
            lacking[name] = shortfall(coverage.get(name), least)
    wrong = [f"{n} is {lack}" for n, lack in lacking.items() if lack and n not in excluded]
    return wrong + [f"{n} is excluded for nothing" for n in excluded if not lacking.get(n)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="folder of the coverage build")
    parser.add_argument("--compiler", required=True, help="the clang++ that built it")
    arguments = parser.parse_args()

    project = HERE.parent.parent
    excluded = read_exclusions(HERE / "exclusions.txt")
    coverage = coverage_of(summary(arguments.build, arguments.compiler), project)
    print(f"{'file':<52}{'lines':^19}  {'branches':^19}  {'MC/DC':^19}")
    for name, counts in coverage.items():
        print(row(name, counts))
    wrong = findings(coverage, project, excluded)
    if wrong:
        fail("; ".join(wrong))


if __name__ == "__main__":
    main()
