#!/usr/bin/env python3
"""Keeps the seeds of a fuzz target in one text file: a line a seed, its bytes in hexadecimal.

    seeds.py unpack FILE FOLDER
        Writes each seed as a file of FOLDER, which a fuzzer reads.
    seeds.py choose CONTROL FILE MOST LONGEST
        Writes into FILE at most MOST seeds that together reach most, each cut off after LONGEST bytes.

CONTROL is the file that libFuzzer writes with -set_cover_merge=1 -merge_control_file=CONTROL
-max_len=LONGEST: for each input, the edges and features that it reaches.
"""

import pathlib
import re
import sys

# Where an empty seed would be, a line would be empty.
EMPTY = "-"


def fail(sentence):
    sys.exit(f"seeds.py: {sentence}")


def read_seeds(path):
    seeds = []
    for number, line in enumerate(path.read_text(encoding="ascii").splitlines(), 1):
        try:
            seeds.append(b"" if line == EMPTY else bytes.fromhex(line))
        except ValueError:
            fail(f"{path}:{number}: is no line of hexadecimal digits")
    return seeds


def unpack(file, folder):
    folder = pathlib.Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    for number, seed in enumerate(read_seeds(pathlib.Path(file)), 1):
        (folder / f"seed-{number:03}").write_bytes(seed)


def read_control(path):
    """For each input that the fuzzer finished, its path and the set of what it reaches."""
    header, *rest = path.read_text(encoding="utf-8").splitlines()
    if not header.isdigit() or len(rest) < int(header) + 1:
        fail(f"{path} is no control file of a merge")
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
    """The inputs that together reach most: again and again the one that adds most, edges before
    features and short inputs before long ones."""
    left = dict(reached)
    chosen, known = [], set()
    while left and len(chosen) < most:
        def gain(path):
            new = left[path] - known
            edges = sum(kind == "COV" for kind, _ in new)
            return edges, len(new), -path.stat().st_size
        best = max(sorted(left), key=gain)
        if not left[best] - known:
            break
        known |= left.pop(best)
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
