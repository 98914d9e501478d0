"""One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes;
and a view of its coefficients that outlives it."""

import sys
from typing import Dict, List, Tuple

import zktarn

COLUMNS = 8

MODES: List[Tuple[str, Dict[str, bool], str]] = [
    ("marks", {}, "j is marked: elm(j) = 1"),
    ("list", {"elm": False}, "j is found in the list"),
    ("dense", {"ind": False, "elm": False}, "every j, a zero included"),
]


def show(row: zktarn.Vector, membership: str) -> None:
    """Fills and prints the row."""
    row.add_nz(2, 3.0)
    row.add_nz(5, 2.0)
    row[7] = -1.0  # the same as add_nz

    ind = "ind" if row.ind is not None else ""
    elm = "elm" if row.elm is not None else ""
    coefficients = "".join(f"{row[j]:3g}" for j in range(1, COLUMNS + 1))
    entries = "".join(f" {j}:{a:g}" for j, a in row)
    print(f"{row.mode:5s}  coef {ind:3s} {elm:3s}  {membership:24s} {coefficients}  {entries}")


def main() -> int:
    if len(sys.argv) > 1:
        print(f"vectors: takes no arguments, but was given '{sys.argv[1]}'", file=sys.stderr)
        return 2
    print(f"The row 3 x2 + 2 x5 - x7 over {COLUMNS} columns, in each mode of a vector:\n")
    print("mode   arrays        members                   x1 x2 x3 x4 x5 x6 x7 x8   entries")
    for mode, arrays, membership in MODES:
        row = zktarn.Vector(COLUMNS, **arrays)
        assert row.mode == mode
        show(row, membership)

    coef = row.coef
    assert coef is not None  # None for coef=False
    del row
    values = ", ".join(f"{coef[j - 1]:g}" for j in (2, 5, 7))
    print(f"\nThe vector is deleted, a view of its coefficients stays valid: {values}.")
    return 0


if __name__ == "__main__":
    sys.exit(main())
