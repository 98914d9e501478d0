#!/usr/bin/env python3
"""Runs zero_half with several seeds and CglZeroHalf beside it, and Cbc with the cuts of both.

    solver_table.py PROGRAMS OUTPUT FOLDER... [--seeds 8] [--rounds 1000] [--time-limit 60]
                    [--cbc-time-limit 60] [--cbc-seeds 1] [--only NAME...]

PROGRAMS is the folder of a build with zero_half, zero_half_cbc and solver_peer. Each FOLDER has models and a
table optima.csv (file,optimum), or a README.md with columns `file` and `optimum`. Models without an optimum
are left out. Writes OUTPUT/solver_benchmarks.md, and into OUTPUT/solver_benchmarks the tables gap.csv
and cbc.csv and the picture profile.svg. All seconds are processor time.
"""
import argparse
import csv
import datetime
import json
import os
import pathlib
import platform
import statistics
import subprocess
import sys
import tempfile

VARIANTS = ["none", "CglZeroHalf, root", "zero_half, root", "CglZeroHalf, tree", "zero_half, tree"]
COLOURS = {("none", False): "#444444", ("CglZeroHalf", False): "#d95f02",
           ("CglZeroHalf", True): "#e6ab02", ("zero_half", False): "#1b9e77",
           ("zero_half", True): "#7570b3"}
GAP_HEADING = ["model", "closed %, median", "least", "most", "CglZeroHalf closed %", "seconds",
               "CglZeroHalf seconds", "end"]
# solver_families.py writes the section with this heading at the end of the page.
FAMILIES_HEADING = "## Families of models\n"


def optima_of_table(table):
    found = {}
    for row in csv.reader(table.read_text(encoding="utf-8").splitlines()):
        try:
            found[row[0]] = float(row[1])
        except (IndexError, ValueError):
            pass  # the heading
    return found


def optima_of_page(page):
    found = {}
    columns = None
    for line in page.read_text(encoding="utf-8").splitlines():
        cells = [cell.strip().strip("`") for cell in line.strip().strip("|").split("|")]
        if "file" in cells and "optimum" in cells:
            columns = (cells.index("file"), cells.index("optimum"))
        elif columns and len(cells) > max(columns) and ".mps" in cells[columns[0]]:
            found[cells[columns[0]]] = float(cells[columns[1]])
    return found


def models_of(folders, only):
    """Paths with optima. A name that occurs in several folders is taken from the first."""
    found = {}
    for folder in folders:
        table, page = folder / "optima.csv", folder / "README.md"
        optima = (optima_of_table(table) if table.exists() else
                  optima_of_page(page) if page.exists() else {})
        for name, optimum in optima.items():
            if (folder / name).exists() and (not only or name.split(".")[0] in only):
                found.setdefault(name, (folder / name, optimum))
    return [found[name] for name in sorted(found)]


def stem(path):
    return path.name.split(".")[0]


def closed(first, bound, optimum):
    gap = optimum - first
    return 100.0 if abs(gap) <= 1e-9 * (1 + abs(optimum)) else 100.0 * (bound - first) / gap


def run_own(options, model, optimum, seed):
    """The record of the JSON report; nothing when the solver refuses the model."""
    with tempfile.TemporaryDirectory() as folder:
        report = pathlib.Path(folder) / "report.json"
        subprocess.run([options.programs / "solvers/zero_half/zero_half", model, "--seed", str(seed),
                        "--rounds", str(options.rounds), "--time-limit", str(options.time_limit),
                        f"--optimum={optimum!r}", "--display", "off", "--json", report], check=False)
        models = json.loads(report.read_text(encoding="utf-8"))["models"]
    return models[0] if models else None


def run_peer(options, model, optimum):
    """Share closed and seconds; nothing when the peer cannot read the model."""
    call = subprocess.run([options.programs / "benchmarks/solver_peer", model, str(min(options.rounds, 50)),
                           str(options.time_limit)], capture_output=True, text=True, check=False)
    if call.returncode != 0:
        print(call.stderr.strip(), file=sys.stderr)
        return None
    first, bound, rounds, cuts, separation, seconds = map(float, call.stdout.split())
    return {"closed": closed(first, bound, optimum), "rounds": int(rounds), "cuts": int(cuts),
            "separation": separation, "cpu": seconds}


def own_figures(report):
    separation = sum(line["separation_ms"] for line in report["rounds"]) / 1e3
    return {"closed": report["gap_closed_percent"] or 0.0, "rounds": len(report["rounds"]),
            "cuts": report["cuts_kept"], "separation": separation, "cpu": report["cpu_seconds"],
            "status": report["status"]}


def measure_gaps(options, models, table):
    """One row for each model, and all runs as CSV."""
    rows = []
    writer = csv.writer(table)
    writer.writerow(["model", "solver", "seed", "closed_percent", "rounds", "cuts",
                     "separation_seconds", "cpu_seconds", "status"])
    for model, optimum in models:
        peer = run_peer(options, model, optimum)
        if peer:
            writer.writerow([stem(model), "CglZeroHalf", "", *peer.values(), ""])
        runs = []
        for seed in range(1, options.seeds + 1):
            report = run_own(options, model, optimum, seed)
            if report:
                runs.append(own_figures(report))
                writer.writerow([stem(model), "zero_half", seed, *runs[-1].values()])
        if not runs:
            continue
        shares = [run["closed"] for run in runs]
        rows.append({"model": stem(model), "shares": shares, "median": statistics.median(shares),
                     "peer": peer["closed"] if peer else None,
                     "cells": [stem(model), f"{statistics.median(shares):.2f}", f"{min(shares):.2f}",
                               f"{max(shares):.2f}", f"{peer['closed']:.2f}" if peer else "-",
                               f"{statistics.median(run['cpu'] for run in runs):.2f}",
                               f"{peer['cpu']:.2f}" if peer else "-", runs[0]["status"]]})
        print("  ".join(f"{cell:>12}" for cell in rows[-1]["cells"]), flush=True)
    return rows


def measure_cbc(options, models, table):
    """The runs, and the sentences of zero_half_cbc about all. Ends the script when optima differ."""
    call = subprocess.run([options.programs / "solvers/zero_half/zero_half_cbc",
                           *(model for model, _ in models), "--time-limit",
                           str(options.cbc_time_limit), "--seeds", str(options.cbc_seeds), "--csv",
                           table], capture_output=True, text=True, check=False)
    if call.returncode != 0:
        sys.exit(call.stderr.strip())
    print(call.stdout)
    with open(table, newline="", encoding="utf-8") as stream:
        return list(csv.DictReader(stream)), call.stdout[call.stdout.index("\n\n"):].strip()


def markdown(heading, rows):
    lines = ["| " + " | ".join(heading) + " |",
             "|---|" + "---:|" * (len(heading) - 1)]
    return "\n".join(lines + ["| " + " | ".join(row) + " |" for row in rows])


def cbc_rows(runs, figure):
    by_run = {}
    for run in runs:
        by_run.setdefault((run["model"], run["seed"]), {})[run["cuts_from"]] = figure(run)
    many_seeds = len({seed for _, seed in by_run}) > 1
    return [[model + (f", seed {seed}" if many_seeds else ""), *(cells[name] for name in VARIANTS)]
            for (model, seed), cells in by_run.items()]


def nodes_of(run):
    return run["nodes"] + (" (time)" if run["status"] == "time" else "")


def gap_profile(rows):
    """For each x the share of the models of which at least x per cent of the gap are closed."""
    shared = [row for row in rows if row["peer"] is not None]
    return {name: [(x, sum(row[key] >= x - 1e-6 for row in shared) / len(shared))
                   for x in range(101)]
            for key, name in (("median", "zero_half, median"), ("peer", "CglZeroHalf"))}


def node_profile(runs):
    """For each factor the share of the runs that a variant finished with at most that many times the
    least nodes + 1 of all variants (Dolan and More 2002)."""
    least = {}
    for run in runs:
        key = (run["model"], run["seed"])
        if run["status"] != "time":
            least[key] = min(least.get(key, 1e99), int(run["nodes"]) + 1)
    factors = [2 ** (k / 8) for k in range(41)]
    return {name: [(factor, sum(run["status"] != "time" and int(run["nodes"]) + 1 <=
                                factor * least[run["model"], run["seed"]] * (1 + 1e-9)
                                for run in runs if run["cuts_from"] == name) / max(1, len(least)))
                   for factor in factors] for name in VARIANTS}


def escaped(name):
    """gnuplot reads an underscore as the beginning of an index."""
    return name.replace("_", "\\_")


def panel(curves, label, extra):
    data = "".join("\n".join(f"{x} {y}" for x, y in points) + "\ne\n" for points in curves.values())
    return (f"{extra}\nset xlabel '{label}'\nplot " +
            ", ".join(f"'-' with steps lw 2 lc rgb '{COLOURS[name.split(', ')[0], 'tree' in name]}' "
                      f"title '{escaped(name)}'" for name in curves) + "\n" + data)


def draw(rows, runs, picture):
    commands = (f"set terminal svg size 1100,500 background rgb 'white'\nset output '{picture}'\n"
                "set multiplot layout 1,2\nset yrange [0:1.05]\n" +
                panel(gap_profile(rows), "gap closed, per cent",
                      "set ylabel 'share of the models'\nset key bottom right"))
    if runs:
        commands += panel(node_profile(runs), "nodes of Cbc, times the least",
                          "set ylabel 'share of the runs'\nset logscale x 2\nset key bottom right")
    subprocess.run(["gnuplot"], input=commands, text=True, check=True)


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text(encoding="utf-8").splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def page(options, rows, runs, sentences):
    version = subprocess.run([options.programs / "solvers/zero_half/zero_half", "--version"],
                             capture_output=True, text=True, check=True).stdout.strip()
    parts = [f"""# Benchmarks of the solver

`scripts/bench-solver` writes this page: {version}, {processor()},
{datetime.date.today().isoformat()}, {os.cpu_count()} processors, load {os.getloadavg()[2]:.1f} at the end. All seconds are processor time, but the
time limit of zero_half is in seconds of the clock: on a busy machine it ends runs early (`time_used`).

![Profiles of the gap closed and of the nodes of Cbc](solver_benchmarks/profile.svg)

## Share of the gap that cuts close

At most {options.rounds} rounds and {options.time_limit:g} s for each run. zero_half runs with default settings and the
seeds 1 to {options.seeds}. CglZeroHalf runs with default settings, and every cut is kept. Both bounds are moved to the next
value that the objective takes at integer points. The column `end` says why the first run ended. Each run is in [gap.csv](solver_benchmarks/gap.csv).

""" + markdown(GAP_HEADING, [row["cells"] for row in rows])]
    if runs:
        parts.append(f"""
## Inside Cbc

Cbc with its default settings, with no zero-half cuts, and with those of CglZeroHalf and of zero_half: at the root
only, or in the tree as well. At most {options.cbc_time_limit:g} s for each run. A run that ends at the root has 0 nodes.
Each run is in [cbc.csv](solver_benchmarks/cbc.csv).

```
{sentences}
```

### Nodes

""" + markdown(["model", *VARIANTS], cbc_rows(runs, nodes_of)) + """

### Seconds

""" + markdown(["model", *VARIANTS],
               cbc_rows(runs, lambda run: f"{float(run['cpu_seconds']):.2f}")) + """

### Bound at the root

""" + markdown(["model", *VARIANTS],
               cbc_rows(runs, lambda run: f"{float(run['root_bound']):.8g}"
                        if run["root_bound"] else "-")))
    return "\n".join(parts) + "\n"


def parsed_arguments():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n", maxsplit=1)[0])
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("output", type=pathlib.Path)
    parser.add_argument("folders", type=pathlib.Path, nargs="+")
    parser.add_argument("--seeds", type=int, default=8)
    parser.add_argument("--rounds", type=int, default=1000)
    parser.add_argument("--time-limit", type=float, default=60.0)
    parser.add_argument("--cbc-time-limit", type=float, default=60.0)
    parser.add_argument("--cbc-seeds", type=int, default=1)
    parser.add_argument("--only", nargs="+", default=[])
    options = parser.parse_args()
    if min(options.seeds, options.rounds, options.time_limit) <= 0:
        parser.error("--seeds, --rounds and --time-limit are greater than 0")
    return options


def write_results(options, rows, runs, sentences):
    draw(rows, runs, options.output / "solver_benchmarks" / "profile.svg")
    path = options.output / "solver_benchmarks.md"
    _, heading, families = (path.read_text(encoding="utf-8") if path.exists() else "").partition(FAMILIES_HEADING)
    kept = "\n" + heading + families if heading else ""
    path.write_text(page(options, rows, runs, sentences) + kept, encoding="utf-8")


def main():
    options = parsed_arguments()
    models = models_of(options.folders, options.only)
    if not models:
        sys.exit("solver_table.py: no models with an optimum in " +
                 ", ".join(map(str, options.folders)))
    results = options.output / "solver_benchmarks"
    results.mkdir(parents=True, exist_ok=True)
    print("  ".join(f"{cell:>12.12}" for cell in GAP_HEADING), flush=True)
    with open(results / "gap.csv", "w", newline="", encoding="utf-8") as table:
        rows = measure_gaps(options, models, table)
    write_results(options, rows, [], "")
    if options.cbc_time_limit > 0:
        runs, sentences = measure_cbc(options, models, results / "cbc.csv")
        write_results(options, rows, runs, sentences)


if __name__ == "__main__":
    main()
