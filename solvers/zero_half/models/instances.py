#!/usr/bin/env python3
"""Writes small graph problems whose optima can be checked by hand, and the table of these.

Usage: instances.py FOLDER
"""

import pathlib
import sys

# Outer cycle, spokes, inner star.
PETERSEN = [(i, (i + 1) % 5) for i in range(5)] + [(i, i + 5) for i in range(5)] + [
    (5 + i, 5 + (i + 2) % 5) for i in range(5)]

# A Hamiltonian cycle and the chords of the LCF notation [-5 -2 -4 2 5 -2 2 5 -2 -5 4 2].
FRUCHT_CHORDS = [-5, -2, -4, 2, 5, -2, 2, 5, -2, -5, 4, 2]
FRUCHT = sorted({tuple(sorted((i, (i + 1) % 12))) for i in range(12)} |
                {tuple(sorted((i, (i + step) % 12))) for i, step in enumerate(FRUCHT_CHORDS)})

# Friendships in a karate club (Zachary 1977), the members counted from 1.
KARATE = [(a - 1, b - 1) for a, neighbours in {
    1: [2, 3, 4, 5, 6, 7, 8, 9, 11, 12, 13, 14, 18, 20, 22, 32],
    2: [3, 4, 8, 14, 18, 20, 22, 31], 3: [4, 8, 9, 10, 14, 28, 29, 33], 4: [8, 13, 14],
    5: [7, 11], 6: [7, 11, 17], 7: [17], 9: [31, 33, 34], 10: [34], 14: [34], 15: [33, 34],
    16: [33, 34], 19: [33, 34], 20: [34], 21: [33, 34], 23: [33, 34],
    24: [26, 28, 30, 33, 34], 25: [26, 28, 32], 26: [32], 27: [30, 34], 28: [34], 29: [32, 34],
    30: [33, 34], 31: [33, 34], 32: [33, 34], 33: [34]}.items() for b in neighbours]


def grid(rows, columns):
    """The edges of a grid graph, its nodes counted row by row."""
    at = lambda r, c: r * columns + c
    return ([(at(r, c), at(r, c + 1)) for r in range(rows) for c in range(columns - 1)] +
            [(at(r, c), at(r + 1, c)) for r in range(rows - 1) for c in range(columns)])


def nodes(edges):
    return 1 + max(max(edge) for edge in edges)


def stable_set(edges):
    """Most nodes of which no two are neighbours: maximise, as the least of minus."""
    columns = {f"x{v}": (-1, 1) for v in range(nodes(edges))}
    rows = [("L", {f"x{a}": 1, f"x{b}": 1}, 1) for a, b in edges]
    return columns, rows


def vertex_cover(edges):
    """Fewest nodes that touch every edge."""
    columns = {f"x{v}": (1, 1) for v in range(nodes(edges))}
    rows = [("G", {f"x{a}": 1, f"x{b}": 1}, 1) for a, b in edges]
    return columns, rows


def matching(edges):
    """Most edges of which no two share a node."""
    columns = {f"e{i}": (-1, 1) for i in range(len(edges))}
    rows = [("L", {f"e{i}": 1 for i, edge in enumerate(edges) if v in edge}, 1)
            for v in range(nodes(edges))]
    return columns, rows


def joining(edges, odd):
    """Fewest edges that meet the nodes `odd`, and only these, an odd number of times."""
    columns = {f"e{i}": (1, 1) for i in range(len(edges))}
    columns.update({f"h{v}": (0, None) for v in range(nodes(edges))})
    rows = [("E", {**{f"e{i}": 1 for i, edge in enumerate(edges) if v in edge}, f"h{v}": -2},
             1 if v in odd else 0) for v in range(nodes(edges))]
    return columns, rows


INSTANCES = [
    ("petersen_stable.mps", stable_set(PETERSEN), -4),
    ("petersen_cover.mps", vertex_cover(PETERSEN), 6),
    ("frucht_stable.mps", stable_set(FRUCHT), -5),
    ("karate_cover.mps", vertex_cover(KARATE), 14),
    ("karate_matching.mps", matching(KARATE), -13),
    ("grid_corners.mps", joining(grid(5, 5), {0, 4, 20, 24}), 8),
]


def mps(name, columns, rows):
    """The problem as free MPS: the columns' costs and upper bounds, all of them integer."""
    lines = [f"NAME {name}", "ROWS", " N cost"]
    lines += [f" {kind} r{i}" for i, (kind, _, _) in enumerate(rows)]
    lines += ["COLUMNS", " MARK 'MARKER' 'INTORG'"]
    for column, (cost, _) in columns.items():
        lines.append(f" {column} cost {cost}")
        lines += [f" {column} r{i} {row[column]}"
                  for i, (_, row, _) in enumerate(rows) if column in row]
    lines += [" MARK 'MARKER' 'INTEND'", "RHS"]
    lines += [f" rhs r{i} {rhs}" for i, (_, _, rhs) in enumerate(rows) if rhs]
    lines.append("BOUNDS")
    lines += [f" PL bnd {column}" if upper is None else f" UP bnd {column} {upper}"
              for column, (_, upper) in columns.items()]
    return "\n".join(lines + ["ENDATA", ""])


def main(arguments):
    if len(arguments) != 1:
        sys.exit("instances.py: give the folder to write to")
    folder = pathlib.Path(arguments[0])
    try:
        folder.mkdir(parents=True, exist_ok=True)
        for name, (columns, rows), _ in INSTANCES:
            (folder / name).write_text(mps(name.removesuffix(".mps"), columns, rows))
        table = ["file,optimum"] + [f"{name},{optimum}" for name, _, optimum in INSTANCES]
        (folder / "optima.csv").write_text("\n".join(table) + "\n")
    except OSError as found:
        sys.exit(f"instances.py: {found}")


if __name__ == "__main__":
    main(sys.argv[1:])
