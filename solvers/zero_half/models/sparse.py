"""Writes a random sparse model with binary columns as an MPS file.

    sparse.py KIND ROWS COLUMNS FILE [--entries 5] [--seed 1]

KIND is `packing` (each row a sum of columns, at most 1, maximal weight), `cover` (at least 1, minimal
weight) or `knapsack` (coefficients 1 to 9, at most half of their sum, maximal weight). Each row has the
given number of entries in random columns. The same arguments give the same file everywhere.
"""
import argparse
import random


def row_of(kind, generator, columns, entries):
    """The columns and coefficients of a row, and its right-hand side."""
    places = sorted(generator.sample(range(columns), entries))
    if kind != "knapsack":
        return [(j, 1) for j in places], 1
    coefficients = [(j, generator.randint(1, 9)) for j in places]
    return coefficients, sum(value for _, value in coefficients) // 2


def line(first, second, value):
    return f"    {first:8}  {second:8}  {value:12}\n"


def marker(kind):
    return f"    MARKER                 'MARKER'                 '{kind}'\n"


def write(kind, rows, columns, entries, seed, stream):
    generator = random.Random(seed)
    sign = 1 if kind == "cover" else -1
    entries_of = [[] for _ in range(columns)]
    sides = []
    for i in range(rows):
        coefficients, rhs = row_of(kind, generator, columns, entries)
        sides.append(rhs)
        for j, value in coefficients:
            entries_of[j].append((i, value))
    stream.write(f"NAME          {kind}\nROWS\n N  COST\n")
    stream.writelines(f" {'G' if kind == 'cover' else 'L'}  R{i}\n" for i in range(rows))
    stream.write("COLUMNS\n" + marker("INTORG"))
    for j, entries_of_column in enumerate(entries_of):
        stream.write(line(f"X{j}", "COST", sign * generator.randint(1, 20)))
        stream.writelines(line(f"X{j}", f"R{i}", value) for i, value in entries_of_column)
    stream.write(marker("INTEND") + "RHS\n")
    stream.writelines(line("RHS", f"R{i}", rhs) for i, rhs in enumerate(sides))
    stream.write("BOUNDS\n")
    stream.writelines(f" UP BND       X{j:<8} 1\n" for j in range(columns))
    stream.write("ENDATA\n")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("kind", choices=("packing", "cover", "knapsack"))
    parser.add_argument("rows", type=int)
    parser.add_argument("columns", type=int)
    parser.add_argument("file")
    parser.add_argument("--entries", type=int, default=5)
    parser.add_argument("--seed", type=int, default=1)
    options = parser.parse_args()
    if not (options.rows > 0 and 0 < options.entries <= options.columns):
        parser.error("rows and entries have to be positive, and entries at most columns")
    try:
        with open(options.file, "w", encoding="ascii") as stream:
            write(options.kind, options.rows, options.columns, options.entries, options.seed, stream)
    except OSError as error:
        parser.exit(1, f"sparse.py: {error}\n")


if __name__ == "__main__":
    main()
