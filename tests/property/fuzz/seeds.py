#!/usr/bin/env python3
"""Reads and writes the seeds of a fuzz target: a text file, one seed a line in hexadecimal digits.

    seeds.py unpack FILE FOLDER
        Writes each seed to a file of FOLDER, for the fuzzer to read.
    seeds.py choose CONTROL FILE MOST LONGEST
        Writes to FILE at most MOST seeds that together reach the most features, each truncated to
        LONGEST bytes.

CONTROL is the file that libFuzzer writes with -set_cover_merge=1 -merge_control_file=CONTROL
-max_len=LONGEST: for each input, the edges and features that it reaches.
"""

import pathlib
import re
import sys

# Stands for an empty seed, whose line would be empty.
EMPTY = "-"


def fail(sentence):
    sys.exit(f"seeds.py: {sentence}")


def read_seeds(path):
    seeds = []
    for number, line in enumerate(path.read_text(encoding="ascii").splitlines(), 1):
        try:
            seeds.append(b"" if line == EMPTY else bytes.fromhex(line))
        except ValueError:
            fail(f"{path}:{number}: is not a line of hexadecimal digits")
    return seeds


def unpack(file, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for number, seed in enumerate(read_seeds(pathlib.Path(file)), 1):
        (folder / f"seed-{number:03}").write_bytes(seed)


def read_control(path):
    """The edges and features that each completed input reaches, by its path."""
    header, *rest = path.read_text(encoding="utf-8").splitlines()
    if not header.isdigit() or len(rest) < int(header) + 1:
        fail(f"{path} is not the control file of a merge")
    inputs = [pathlib.Path(line) for line in rest[1:int(header) + 1]]
    reached = {}
    for line in rest[int(header) + 1:]:
        found = re.fullmatch(r"(FT|COV) (\d+)((?: \d+)*)", line)
        if found:
            kind, number, values = found.groups()
            marks = reached.setdefault(inputs[int(number)], set())
            marks.update((kind, value) for value in values.split())
    return reached


def cover(reached, most):
    """Greedy cover: repeatedly takes the input that adds the most edges, then features, then is shortest.
    Returns the inputs and the number of edges and features that they reach."""
    remaining = dict(reached)
    chosen, known = [], set()
    while remaining and len(chosen) < most:
        def gain(path):
            new = remaining[path] - known
            edges = sum(kind == "COV" for kind, _ in new)
            return edges, len(new), -path.stat().st_size
        best = max(sorted(remaining), key=gain)
        if not remaining[best] - known:
            break
        known |= remaining.pop(best)
        chosen.append(best)
    return chosen, len(known)


def choose(control, file, most, longest):
    reached = read_control(pathlib.Path(control))
    chosen, known = cover(reached, int(most))
    every = len(set().union(*reached.values())) if reached else 0
    seeds = sorted({path.read_bytes()[:int(longest)] for path in chosen}, key=lambda seed: (len(seed), seed))
    if not seeds:
        fail(f"{control} names no input that reaches anything")
    lines = [seed.hex() or EMPTY for seed in seeds]
    pathlib.Path(file).write_text("\n".join(lines) + "\n", encoding="ascii")
    print(f"{len(seeds)} of {len(reached)} inputs kept; they reach {known} of {every} features")


def main(arguments):
    forms = {"unpack": (unpack, 2), "choose": (choose, 4)}
    action, count = forms.get(arguments[0] if arguments else "", (None, 0))
    if action is None or len(arguments) != count + 1:
        fail("usage: seeds.py unpack FILE FOLDER | choose CONTROL FILE MOST LONGEST")
    if action is choose and not (arguments[3] + arguments[4]).isdigit():
        fail("MOST and LONGEST are numbers")
    try:
        action(*arguments[1:])
    except (OSError, UnicodeDecodeError) as error:
        fail(f"{error}")


if __name__ == "__main__":
    main(sys.argv[1:])
