#!/usr/bin/env python3
"""Changes the library by one small fault at a time and shows the faults that no test detects."""

import argparse
import collections
import hashlib
import json
import sys
import time
from pathlib import Path

import equivalents
from campaign import Campaign, run_all
from operators import mutants_of
from workbench import ToolError, Workbench

HERE = Path(__file__).resolve().parent

# Folders whose programs do not test the library itself.
LEAVE_OUT = (
    "tests/unit/standin", "tests/pages", "tests/conformance", "tests/binary/abi", "tools/mutation",
    "tests/solver", "tests/bindings", "tests/threads",
)  # fmt: skip


def read_arguments():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--root", type=Path, default=HERE.parents[1], help="the checkout")
    parser.add_argument("--build", type=Path, required=True, help="a Ninja build with its tests")
    parser.add_argument("--work", type=Path, help="where mutants are built (in the build)")
    parser.add_argument("--sources", default="src/zktarn", help="the folder to mutate")
    parser.add_argument("--library", default="zktarn_util", help="the library's name")
    parser.add_argument("--equivalents", type=Path, default=HERE / "equivalent.txt")
    parser.add_argument("--files", nargs="+", default=[""], help="only files with one in the path")
    parser.add_argument("--sample", type=int, help="the size of a random sample")
    parser.add_argument("--seed", type=int, default=1, help="seed of the sample")
    parser.add_argument("--again", type=Path, help="only survivors of the report in this file")
    parser.add_argument("--report", type=Path, help="the file for the outcome of each mutant")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--least", type=float, default=0.0, help="the percentage that must be killed")
    arguments = parser.parse_args()
    arguments.root, arguments.build = arguments.root.resolve(), arguments.build.resolve()
    arguments.work = (arguments.work or arguments.build / "mutation").resolve()
    if arguments.sample is not None and arguments.sample < 1 or arguments.jobs < 1:
        parser.error("--sample and --jobs must be above 0")
    return arguments


def all_mutants(arguments):
    found = []
    for path in sorted((arguments.root / arguments.sources).rglob("*.[ch]pp")):
        file = path.relative_to(arguments.root).as_posix()
        found += mutants_of(file, path.read_text())
    return found


def rank(mutant, seed):
    """A random number for a mutant. It depends on no other, so that an edit changes few mutants of a sample."""
    return hashlib.sha256(f"{seed} {mutant.key()}".encode()).digest()


def chosen(arguments, mutants):
    mutants = [m for m in mutants if any(part in m.file for part in arguments.files)]
    if arguments.again:
        lines = arguments.again.read_text().splitlines()
        earlier = [json.loads(line) for line in lines]
        survivors = {tuple(each["key"]) for each in earlier if each["verdict"] == "survived"}
        mutants = [m for m in mutants if m.key() in survivors]
    if arguments.sample is not None and arguments.sample < len(mutants):
        mutants = sorted(mutants, key=lambda m: rank(m, arguments.seed))[:arguments.sample]
    # Mutants of a file are tried in sequence, because earlier ones show which programs kill.
    return sorted(mutants, key=lambda m: (m.file, m.start, m.end, m.replacement))


class Reporter:
    """Writes each outcome to the report file and prints the progress."""

    def __init__(self, arguments, total):
        self.file = open(arguments.report, "w") if arguments.report else None
        self.total, self.done = total, 0

    def __call__(self, outcome):
        self.done += 1
        mutant = outcome.mutant
        if self.file:
            line = {
                "key": mutant.key(), "line": mutant.line, "operator": mutant.operator,
                "verdict": outcome.verdict, "program": outcome.program, "seconds": round(outcome.seconds, 3),
            }  # fmt: skip
            self.file.write(json.dumps(line) + "\n")
            self.file.flush()
        if self.done % 100 == 0:
            print(f"{self.done} of {self.total} mutants tried", flush=True)


def show(mutant, out):
    where = f"{mutant.file}:{mutant.line}: {mutant.procedure or '-'}"
    print(f"{where}: {mutant.operator}: {mutant.change}", file=out)
    for mark, text in (("-", mutant.before), ("+", mutant.after)):
        for line in text.splitlines():
            print(f"    {mark} {line.strip()}", file=out)


def show_table(outcomes, judgement):
    explained = {id(each) for each in judgement.explained}
    rows = collections.defaultdict(collections.Counter)
    for each in outcomes:
        kind = "equivalent" if id(each.mutant) in explained else each.verdict
        for row in (each.mutant.file, "all"):
            rows[row][kind] += 1
    kinds = ("killed", "endless", "equivalent", "survived", "unchanged", "uncompilable")
    width = max(len(row) for row in rows) if rows else 4
    print("file".ljust(width), "mutants", *(kind.rjust(12) for kind in kinds))
    for row, counts in rows.items():
        total = sum(counts[kind] for kind in kinds[:4])
        if row != "all":
            print(row.ljust(width), f"{total:7}", *(f"{counts[kind]:12}" for kind in kinds))
    counts = rows["all"]
    total = sum(counts[kind] for kind in kinds[:4])
    print("all".ljust(width), f"{total:7}", *(f"{counts[kind]:12}" for kind in kinds))
    return total, counts["killed"] + counts["endless"]


def failures(judgement, name):
    """Prints the unexplained survivors and returns a sentence for each reason to fail."""
    for each in judgement.unexplained:
        show(each, sys.stdout)
    if not judgement.unexplained:
        return judgement.wrong
    return [*judgement.wrong, f"{len(judgement.unexplained)} mutants survived that {name} does not explain"]


def main():
    arguments = read_arguments()
    start = time.monotonic()
    listed = equivalents.read(arguments.equivalents)
    mutants = all_mutants(arguments)
    selected = chosen(arguments, mutants)
    if not selected:
        raise ToolError("there is no mutant to try; see --files and --again")
    bench = Workbench(
        arguments.root, arguments.build, arguments.work, arguments.sources, arguments.library,
        leave_out=LEAVE_OUT,
    )  # fmt: skip
    seconds = bench.prepare()
    print(f"{len(bench.programs)} test programs pass without mutants, after {seconds:.0f} s")
    print(f"{len(selected)} of {len(mutants)} mutants are tried", flush=True)
    reporter = Reporter(arguments, len(selected))
    outcomes = run_all(Campaign(bench, arguments.sources), selected, arguments.jobs, reporter)
    judgement = equivalents.Judgement(listed, outcomes, mutants, arguments.sources)
    wrong = failures(judgement, arguments.equivalents.name)
    total, killed = show_table(outcomes, judgement)
    # The mutation score: equivalent mutants do not count.
    total -= len(judgement.explained)
    percent = 100.0 * killed / total if total else 0.0
    print(f"{percent:.1f} % of {total} mutants killed, without equivalent ones, "
          f"in {time.monotonic() - start:.0f} s")
    if percent < arguments.least:
        wrong.append(f"{percent:.1f} % of the mutants were killed, fewer than {arguments.least} %")
    for each in wrong:
        print(f"mutate.py: {each}", file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except (ToolError, OSError, ValueError) as error:
        print(f"mutate.py: {error}", file=sys.stderr)
        sys.exit(2)
