#!/usr/bin/env python3
"""Reports the coverage of a finished test run for each file, and fails if a file is below its limit.

Reads the raw profiles of the coverage build, merges them over all test programs and libraries, and
prints lines, branches and conditions (MC/DC) of each source file of the project.
"""

import argparse
import glob
import json
import os
import re
import subprocess
import sys
from pathlib import Path

PROJECT = Path(__file__).resolve().parents[2]
MEASURES = ("lines", "branches", "mcdc")
# A procedure in the tables of llvm-cov: its linker name, and three columns for each measure.
PROCEDURE = re.compile(r"^(\S+)" + r" +(\d+) +(\d+) +[\d.]+%" * 4 + "$", re.MULTILINE)
# The reported folders, and the percentage of each file that must be covered.
LEAST = {"src/zktarn": 100, "standin": 95}
# Exempt from the required coverage: file, procedure or "" for the whole file, and reason.
EXCLUSIONS = (
    ("src/zktarn/vector/detail/checks.hpp", "",
     "Only a checked build compiles its code, and coverage is measured on the library as it ships; "
     "tests/binary/checked tests it."),
    ("src/zktarn/vector/vectors_combine.cpp", "zktarn_resolve_combine",
     "A processor takes only one branch; the gate identity runs it on processors that lack either instruction set."),
)
# Test programs that compile the headers in a way that does not ship: with checks. llvm-cov counts only one of two
# functions of the same name, and these programs have others.
NOT_AS_SHIPPED = {"check_on_test"}
COMMENT = re.compile(r"//.*")
# Matches a body after parameters or a condition.
CODE = re.compile(r"\)\s*((const|noexcept|override)\s*)*\{")


def fail(sentence):
    sys.exit(f"coverage: {sentence}")


def tool(compiler, name):
    """The LLVM tool with the folder and version suffix of the compiler."""
    folder, base = os.path.split(compiler)
    return os.path.join(folder, base.replace("clang++", name))


def instrumented(build):
    """The libraries, and the test programs, which contain the code of headers."""
    libraries = []
    for pattern in ("so", "dylib"):
        libraries += glob.glob(f"{build}/src/zktarn/libzktarn_util.{pattern}")
        libraries += glob.glob(f"{build}/zktarn_standin/lib*.{pattern}")
    programs = [path for path in glob.glob(f"{build}/tests/**/*_test", recursive=True)
                if os.path.basename(path) not in NOT_AS_SHIPPED]
    if not libraries or not programs:
        fail(f"no libraries or no test programs in {build}; build it first")
    return sorted(libraries) + sorted(programs)


def merge_profiles(build, compiler):
    """Merges the profiles of all programs into one."""
    profiles = glob.glob(f"{build}/profiles/*.profraw")
    if not profiles:
        fail(f"no profiles in {build}/profiles; run the tests with LLVM_PROFILE_FILE set to it")
    merged = f"{build}/profiles/all.profdata"
    listing = f"{build}/profiles/list"
    with open(listing, "w", encoding="utf-8") as out:
        out.write("\n".join(profiles))
    subprocess.run([tool(compiler, "llvm-profdata"), "merge", "-sparse", f"--input-files={listing}",
                    "-o", merged], check=True)


def llvm_cov(build, compiler, action, *arguments):
    """The output of llvm-cov for all libraries and programs."""
    first, *others = instrumented(build)
    command = [tool(compiler, "llvm-cov"), *action, "--show-mcdc-summary",
               f"--instr-profile={build}/profiles/all.profdata", first]
    for path in others:
        command += ["-object", path]
    return subprocess.run([*command, *arguments], check=True, capture_output=True, text=True).stdout


def missed_by(table, procedure):
    """The uncovered lines, branches and conditions of a procedure in llvm-cov's table, or None."""
    linked = f"{len(procedure)}{procedure}"
    found = None
    for name, *columns in PROCEDURE.findall(table):
        if name == procedure or linked in name:
            # The columns are regions, lines, branches and conditions; regions are not measured.
            missed = [int(each) for each in columns[3::2]]
            found = [a + b for a, b in zip(found or [0, 0, 0], missed)]
    return found


def coverage_of(files, project):
    """The counts of each file of the library and the stand-in, by its path in the project."""
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
    """The paths, in the project, of a folder's files that contain code."""
    return [
        str(path.relative_to(project)) for path in sorted((project / folder).rglob("*.?pp"))
        if CODE.search(COMMENT.sub("", path.read_text(encoding="utf-8")))
    ]


def excuse(coverage, procedures, table_of):
    """Subtracts the uncovered code of excluded procedures from the counts of their files. Returns a
    sentence for each exclusion that is not needed."""
    stale = []
    for file, procedure in procedures:
        missed = missed_by(table_of(file), procedure) if file in coverage else None
        if not missed or not any(missed):
            stale.append(f"{procedure} of {file} needs no exclusion")
            continue
        coverage[file] = [{"covered": c["covered"], "count": c["count"] - less}
                          for c, less in zip(coverage[file], missed)]
    return stale


def shortfall(counts, least):
    """How a file misses its limit on lines and branches, and on conditions if the limit is 100."""
    if counts is None:
        return "not counted"
    measured = MEASURES if least == 100 else MEASURES[:2]
    lacking = [m for m, c in zip(measured, counts) if percent(c) < least]
    return f"below {least} % of its {', '.join(lacking)}" if lacking else ""


def findings(coverage, project, excluded):
    """A sentence for each file below its limit and each exclusion that is not needed."""
    lacking = {}
    for folder, least in LEAST.items():
        counted = {name for name in coverage if name.startswith(f"{folder}/")}
        for name in sorted(counted.union(files_with_code(project, folder))):
            lacking[name] = shortfall(coverage.get(name), least)
    wrong = [f"{n} is {lack}" for n, lack in lacking.items() if lack and n not in excluded]
    return wrong + [f"{n} needs no exclusion" for n in excluded if not lacking.get(n)]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="folder of the coverage build")
    parser.add_argument("--compiler", required=True, help="the clang++ that built it")
    arguments = parser.parse_args()

    build, compiler = arguments.build, arguments.compiler
    merge_profiles(build, compiler)
    files = json.loads(llvm_cov(build, compiler, ["export", "--summary-only"]))["data"][0]["files"]
    coverage = coverage_of(files, PROJECT)
    excused = [(file, procedure) for file, procedure, _ in EXCLUSIONS if procedure]
    wrong = excuse(coverage, excused, lambda file: llvm_cov(
        build, compiler, ["report", "--show-functions"], str(PROJECT / file)))
    print(f"{'file':<52}{'lines':^19}  {'branches':^19}  {'MC/DC':^19}")
    for name, counts in coverage.items():
        print(row(name, counts))
    wrong += findings(coverage, PROJECT, [file for file, procedure, _ in EXCLUSIONS if not procedure])
    if wrong:
        fail("; ".join(wrong))


if __name__ == "__main__":
    main()
