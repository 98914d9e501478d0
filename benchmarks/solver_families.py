#!/usr/bin/env python3
"""Runs zero_half and CglZeroHalf on random models of several families, and cross-validates the constants of zero_half.

    solver_families.py PROGRAMS OUTPUT [--models 3] [--seeds 2] [--time-limit 10] [--no-constants] [--only FAMILY...]

PROGRAMS is the folder of a build with zero_half, solver_peer and solver_tuning. Writes the section "Families of models"
at the end of OUTPUT/solver_benchmarks.md, and OUTPUT/solver_benchmarks/families.csv and constants.csv. Optima are
those of Cbc; models that it does not solve in ten times the time limit are left out. All seconds are processor time.
"""
import argparse
import csv
import itertools
import pathlib
import random
import statistics
import subprocess
import sys

import solver_table

# For each constant the values that are tried; the first one is the default.
CONSTANTS = {"restarts": [5, 2, 10], "cuts_for_each_selected": [3, 2, 6], "least_cuts": [40, 20, 80],
             "divisors": [8, 4, 16], "divides_cuts": [0, 1], "selected": [200, 100, 400],
             "max_cosine": [0.85, 0.7, 0.95], "most_stalled_rounds": [15, 8, 30],
             "most_slack_rounds": [5, 3, 10], "most_other_points": [40, 10]}


class Model:
    """Minimises. Columns are integer with bounds 0 and `upper` unless `continuous`."""

    def __init__(self):
        self.columns = []
        self.rows = []

    def column(self, cost, upper=1, continuous=False):
        self.columns.append((cost, upper, continuous))
        return len(self.columns) - 1

    def row(self, entries, sense, rhs):
        self.rows.append((list(entries), sense, rhs))

    def mps(self):
        entries = [[] for _ in self.columns]
        for i, (row, _, _) in enumerate(self.rows):
            for j, value in row:
                entries[j].append((f"r{i}", value))
        lines = ["NAME model FREE", "ROWS", " N cost"]
        lines += [f" {sense} r{i}" for i, (_, sense, _) in enumerate(self.rows)]
        lines.append("COLUMNS")
        for j, (cost, _, continuous) in enumerate(self.columns):
            marker = f" M{j} 'MARKER' '{{}}'"
            lines += [] if continuous else [marker.format("INTORG")]
            lines += [f" x{j} {row} {value}" for row, value in [("cost", cost), *entries[j]]]
            lines += [] if continuous else [marker.format("INTEND")]
        lines.append("RHS")
        lines += [f" rhs r{i} {rhs}" for i, (_, _, rhs) in enumerate(self.rows)]
        lines.append("BOUNDS")
        lines += [f" UP bnd x{j} {upper}" for j, (_, upper, _) in enumerate(self.columns)]
        return "\n".join(lines + ["ENDATA", ""])


def knapsack(rng):
    """Weights and profits correlated."""
    model = Model()
    weights = [rng.randint(20, 1000) for _ in range(60)]
    columns = [model.column(-(weight + rng.randint(1, 100))) for weight in weights]
    model.row(zip(columns, weights), "L", sum(weights) // 3)
    return model


def multidimensional_knapsack(rng):
    model = Model()
    columns = [model.column(-rng.randint(50, 150)) for _ in range(40)]
    for _ in range(5):
        weights = [rng.randint(1, 100) for _ in columns]
        model.row(zip(columns, weights), "L", sum(weights) // 2)
    return model


def covering(rng, sense, costs, rhs=1):
    model = Model()
    columns = [model.column(rng.choice(costs)) for _ in range(60)]
    for _ in range(50):
        model.row([(j, 1) for j in rng.sample(columns, rng.randint(3, 8))], sense, rhs)
    return model


def set_cover(rng):
    return covering(rng, "G", range(1, 6))


def set_packing(rng):
    return covering(rng, "L", range(-5, 0))


def multiple_cover(rng):
    """Each row is covered twice, by at most a given number of columns."""
    model = covering(rng, "G", range(1, 6), 2)
    model.row([(j, 1) for j in range(60)], "L", 40)
    return model


def set_partitioning(rng):
    """Random blocks, and a partition so that there is a point."""
    model = Model()
    blocks = []
    ground = list(range(40))
    for _ in range(4):
        rng.shuffle(ground)
        blocks += [ground[i:i + 4] for i in range(0, 40, 4)]
    blocks += [rng.sample(ground, rng.randint(2, 6)) for _ in range(160)]
    columns = [model.column(sum(rng.randint(5, 15) for _ in block)) for block in blocks]
    for item in range(40):
        model.row([(j, 1) for j, block in zip(columns, blocks) if item in block], "E", 1)
    return model


def random_graph(rng, nodes, edges):
    return rng.sample(list(itertools.combinations(range(nodes), 2)), edges)


def weighted_matching(rng):
    model = Model()
    edges = random_graph(rng, 60, 150)
    columns = [model.column(-rng.randint(1, 20)) for _ in edges]
    for node in range(60):
        model.row([(j, 1) for j, edge in zip(columns, edges) if node in edge], "L", 1)
    return model


def stable_set(rng):
    model = Model()
    for _ in range(50):
        model.column(-rng.randint(1, 5))
    for a, b in random_graph(rng, 50, 120):
        model.row([(a, 1), (b, 1)], "L", 1)
    return model


def vertex_cover(rng):
    model = Model()
    for _ in range(60):
        model.column(rng.randint(1, 5))
    for a, b in random_graph(rng, 60, 120):
        model.row([(a, 1), (b, 1)], "G", 1)
    return model


def t_join(rng):
    """The degree of each node is odd for half of the nodes: a sum of edges minus twice a column."""
    model = Model()
    edges = [(a, a + 1) for a in range(39)] + random_graph(rng, 40, 80)
    columns = [model.column(rng.randint(1, 10)) for _ in edges]
    odd = set(rng.sample(range(40), 20))
    for node in range(40):
        incident = [(j, 1) for j, edge in zip(columns, edges) if node in edge]
        model.row([*incident, (model.column(0, len(incident)), -2)], "E", int(node in odd))
    return model


def lot_sizing(rng):
    """Production with fixed charges, and stock, over 20 periods."""
    model = Model()
    stock = None
    for _ in range(20):
        demand = rng.randint(5, 40)
        setup = model.column(rng.randint(60, 150))
        amount = model.column(rng.randint(1, 4), 1000, True)
        next_stock = model.column(1, 1000, True)
        before = [(stock, 1)] if stock is not None else []
        model.row([*before, (amount, 1), (next_stock, -1)], "E", demand)
        model.row([(amount, 1), (setup, -100)], "L", 0)
        stock = next_stock
    return model


def generalized_assignment(rng):
    model = Model()
    agents, tasks = range(5), range(20)
    weight = {(a, t): rng.randint(5, 25) for a in agents for t in tasks}
    column = {key: model.column(40 - weight[key] + rng.randint(0, 10)) for key in weight}
    for task in tasks:
        model.row([(column[agent, task], 1) for agent in agents], "E", 1)
    for agent in agents:
        total = sum(weight[agent, task] for task in tasks)
        model.row([(column[agent, task], weight[agent, task]) for task in tasks], "L", total * 22 // 100)
    return model


def capacitated_facility(rng):
    """Flows are continuous, openings are binary."""
    model = Model()
    demands = [rng.randint(5, 35) for _ in range(20)]
    served = [[] for _ in demands]
    for _ in range(8):
        opening = model.column(rng.randint(100, 200))
        capacity = rng.randint(80, 140)
        flows = [model.column(rng.randint(1, 10), demand, True) for demand in demands]
        model.row([*((j, 1) for j in flows), (opening, -capacity)], "L", 0)
        for place, (j, demand) in enumerate(zip(flows, demands)):
            served[place].append((j, 1))
            model.row([(j, 1), (opening, -demand)], "L", 0)
    for flows, demand in zip(served, demands):
        model.row(flows, "E", demand)
    return model


def bin_packing(rng):
    model = Model()
    weights = [rng.randint(20, 60) for _ in range(14)]
    bins = [model.column(1) for _ in range(7)]
    column = {(i, b): model.column(0) for i in range(14) for b in bins}
    for item in range(14):
        model.row([(column[item, b], 1) for b in bins], "E", 1)
    for b in bins:
        model.row([*((column[i, b], weight) for i, weight in enumerate(weights)), (b, -100)], "L", 0)
    return model


def integer_program(rng):
    """General integers with small coefficients."""
    model = Model()
    columns = [model.column(-rng.randint(5, 20), 5) for _ in range(25)]
    for _ in range(12):
        row = [(j, rng.randint(1, 9)) for j in rng.sample(columns, 10)]
        model.row(row, "L", 2 * sum(value for _, value in row) + 1)
    return model


FAMILIES = [knapsack, multidimensional_knapsack, set_cover, set_packing, multiple_cover, set_partitioning,
            weighted_matching, stable_set, vertex_cover, t_join, lot_sizing, generalized_assignment,
            capacitated_facility, bin_packing, integer_program]


def write_models(options, folder):
    """The models with optima, as (family, path, optimum)."""
    made = []
    for family in FAMILIES:
        for seed in range(1, options.models + 1):
            if options.only and family.__name__ not in options.only:
                continue
            path = folder / f"{family.__name__}_{seed}.mps"
            path.write_text(family(random.Random(f"{family.__name__} {seed}")).mps(), encoding="utf-8")
            found = subprocess.run([options.programs / "benchmarks/solver_tuning", "optimum", path,
                                    str(10 * options.time_limit)], capture_output=True, text=True,
                                   check=True).stdout.split()[-1]
            if found != "unknown":
                made.append((family.__name__, path, float(found)))
    return made


def tuned(options, path, optimum, seed, assignment):
    call = subprocess.run([options.programs / "benchmarks/solver_tuning", "run", path, str(seed),
                           str(options.time_limit), *assignment], capture_output=True, text=True, check=False)
    if call.returncode != 0:
        sys.exit(call.stderr.strip())
    first, bound, _, seconds = map(float, call.stdout.split())
    return solver_table.closed(first, bound, optimum), seconds


def compare_families(options, models, table):
    """For each family the cells of a row, and all runs as CSV."""
    writer = csv.writer(table)
    writer.writerow(["family", "model", "solver", "seed", "closed_percent", "cpu_seconds"])
    cells = []
    for family, group in itertools.groupby(models, key=lambda each: each[0]):
        own, peer = [], []
        for _, path, optimum in group:
            found = solver_table.run_peer(options, path, optimum)
            peer.append((found["closed"], found["cpu"]))
            writer.writerow([family, path.stem, "CglZeroHalf", "", *peer[-1]])
            for seed in range(1, options.seeds + 1):
                own.append(tuned(options, path, optimum, seed, []))
                writer.writerow([family, path.stem, "zero_half", seed, *own[-1]])
        shares = [share for share, _ in own]
        cells.append([family.replace("_", " "), f"{statistics.median(shares):.2f}", f"{min(shares):.2f}",
                      f"{max(shares):.2f}", f"{statistics.median(share for share, _ in peer):.2f}",
                      f"{statistics.median(seconds for _, seconds in own):.3f}",
                      f"{statistics.median(seconds for _, seconds in peer):.3f}"])
        print("  ".join(f"{cell:>12}" for cell in cells[-1]), flush=True)
    return cells


def measure_constants(options, models, table):
    """Mean share closed and mean seconds as {(constant, value): {family: (share, seconds)}}."""
    writer = csv.writer(table)
    writer.writerow(["constant", "value", "family", "closed_percent", "cpu_seconds"])
    means = {}
    default = None
    for constant, values in CONSTANTS.items():
        for value in values:
            if value != values[0] or default is None:
                default_now = default is None
                runs = {}
                for family, path, optimum in models:
                    assignment = [] if default_now else [f"{constant}={value}"]
                    runs.setdefault(family, []).append(tuned(options, path, optimum, 1, assignment))
                found = {family: tuple(map(statistics.mean, zip(*each))) for family, each in runs.items()}
                default = found if default_now else default
            means[constant, value] = default if value == values[0] else found
            for family, (share, seconds) in means[constant, value].items():
                writer.writerow([constant, value, family, f"{share:.4f}", f"{seconds:.4f}"])
        print(f"{constant}: measured", flush=True)
    return means


def cross_validate(means):
    """For each constant the cells of a row. The value for a family is the one that closes most on average over the
    other families; it is measured by what it closes on that family."""
    cells = []
    for constant, values in CONSTANTS.items():
        families = list(means[constant, values[0]])
        chosen, shares, seconds = [], [], []
        for left_out in families:
            best = max(values, key=lambda value: (statistics.mean(
                means[constant, value][family][0] for family in families if family != left_out),
                value == values[0]))
            chosen.append(best)
            shares.append(means[constant, best][left_out][0])
            seconds.append(means[constant, best][left_out][1])
        default = means[constant, values[0]].values()
        gain = statistics.mean(shares) - statistics.mean(share for share, _ in default)
        factor = sum(seconds) / max(1e-9, sum(each for _, each in default))
        stands = gain < 0.5 or factor > 1 + gain
        cells.append([constant, str(values[0]), ", ".join(map(str, values[1:])),
                      ", ".join(f"{value}: {chosen.count(value)}" for value in values if value in chosen),
                      f"{gain:+.2f}", f"{factor:.2f}", "stands" if stands else "change"])
    return cells


def section(options, models, families, constants):
    text = f"""{solver_table.FAMILIES_HEADING}
`scripts/bench-solver --families` writes this section. Random models of {len(families)} families, {len(models)} models with
optima by Cbc; {options.seeds} seeds of zero_half for each, at most {options.time_limit:g} s and 50 rounds of CglZeroHalf. The columns are the
median, least and most share of the gap that zero_half closes, the median that CglZeroHalf closes, and the median
seconds of both. Each run is in [families.csv](solver_benchmarks/families.csv).

""" + solver_table.markdown(["family", "closed %, median", "least", "most", "CglZeroHalf closed %", "seconds",
                             "CglZeroHalf seconds"], families) + "\n"
    if constants:
        text += """
### Constants, cross-validated

For each constant and each family, the value is chosen that closes most on average over all other families, and measured
on the family that was left out: by the percentage points that it closes more than the default does, and by its seconds
as a multiple, on average over the families. A default stands unless the choice closes at least 0.5 points more, and
takes a share of additional time that is no greater than these points. The means are in
[constants.csv](solver_benchmarks/constants.csv).

""" + solver_table.markdown(["constant", "default", "other values", "families that choose a value", "points more",
                             "times the seconds", "the default"], constants) + "\n"
    return text


def replace_section(page, text):
    before = page.read_text(encoding="utf-8").split(solver_table.FAMILIES_HEADING)[0].rstrip() if page.exists() else \
        "# Benchmarks of the solver"
    page.write_text(before + "\n\n" + text, encoding="utf-8")


def parsed_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    parser.add_argument("--models", type=int, default=3)
    parser.add_argument("--seeds", type=int, default=2)
    parser.add_argument("--time-limit", type=float, default=10.0)
    parser.add_argument("--no-constants", action="store_true")
    parser.add_argument("--only", nargs="+", default=[])
    options = parser.parse_args()
    if min(options.models, options.seeds, options.time_limit) <= 0:
        parser.error("--models, --seeds and --time-limit are greater than 0")
    options.rounds = 50
    return options


def main():
    options = parsed_arguments()
    results = options.output / "solver_benchmarks"
    folder = options.programs / "families"
    results.mkdir(parents=True, exist_ok=True)
    folder.mkdir(exist_ok=True)
    models = write_models(options, folder)
    if not models:
        sys.exit("solver_families.py: Cbc solved no model")
    with open(results / "families.csv", "w", newline="", encoding="utf-8") as table:
        families = compare_families(options, models, table)
    constants = []
    if not options.no_constants:
        with open(results / "constants.csv", "w", newline="", encoding="utf-8") as table:
            constants = cross_validate(measure_constants(options, models, table))
    replace_section(options.output / "solver_benchmarks.md", section(options, models, families, constants))


if __name__ == "__main__":
    main()
