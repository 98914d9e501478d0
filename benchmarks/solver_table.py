"""Runs zero_half with several seeds, and CglZeroHalf beside it, on MPS files; writes a table, a CSV
file and a performance profile of the share of the gap closed. All seconds are processor time.

    solver_table.py ZERO_HALF SOLVER_PEER FOLDER [--seeds 8] [--time-limit 60] [--rounds 50]
                    [--output build/bench-solver] [--only NAME...]

FOLDER has the models, and a table optima.csv (file,optimum) or a README.md with the columns `file` and
`optimum`. A model without an optimum is left out.
"""
import argparse
import csv
import json
import pathlib
import statistics
import subprocess
import sys
import tempfile


def optima_of(folder):
    found = {}
    table = folder / "optima.csv"
    if table.exists():
        for row in csv.reader(table.read_text().splitlines()):
            if len(row) == 2:
                try:
                    found[row[0]] = float(row[1])
                except ValueError:
                    pass  # the heading
    readme = folder / "README.md"
    if not found and readme.exists():
        column = None
        for line in readme.read_text().splitlines():
            cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
            if "file" in cells and "optimum" in cells:
                column = (cells.index("file"), cells.index("optimum"))
            elif column and len(cells) > max(column) and ".mps" in cells[column[0]]:
                found[cells[column[0]]] = float(cells[column[1]])
    return found


def closed(first, bound, optimum):
    gap = optimum - first
    return 100.0 if abs(gap) <= 1e-9 * (1 + abs(optimum)) else 100.0 * (bound - first) / gap


def run_own(options, model, optimum, seed):
    with tempfile.NamedTemporaryFile(suffix=".json") as report:
        subprocess.run([options.zero_half, model, "--seed", str(seed), "--rounds",
                        str(options.rounds), "--time-limit", str(options.time_limit), "--optimum",
                        str(optimum), "--display", "off", "--json", report.name], check=False)
        return json.load(open(report.name, encoding="utf-8"))["models"][0]


def run_peer(options, model, optimum):
    found = subprocess.run([options.peer, model, str(options.rounds), str(options.time_limit)],
                           capture_output=True, text=True, check=True).stdout.split()
    return {"closed": closed(float(found[0]), float(found[1]), optimum), "rounds": int(found[2]),
            "cuts": int(found[3]), "separation": float(found[4]), "cpu": float(found[5])}


def own_figures(report):
    separation = sum(line["separation_ms"] for line in report["rounds"]) / 1e3
    return {"closed": report["gap_closed_percent"], "rounds": len(report["rounds"]),
            "cuts": report["cuts_kept"], "separation": separation, "cpu": report["cpu_seconds"],
            "status": report["status"]}


def draw_profile(rows, picture):
    """For each share x the part of the models of which at least x per cent of the gap is closed."""
    data = "".join(
        "\n".join(f"{x} {sum(row[key] >= x - 1e-6 for row in rows) / len(rows)}"
                  for x in range(101)) + "\ne\n" for key in ("median", "peer"))
    commands = (f"set terminal svg size 700,450\nset output '{picture}'\n"
                "set xlabel 'gap closed, per cent'\nset ylabel 'part of the models'\n"
                "set yrange [0:1.05]\nset key bottom left\n"
                "plot '-' with steps lw 2 title 'zero\\_half, median over seeds', "
                "'-' with steps lw 2 title 'CglZeroHalf'\n")
    subprocess.run(["gnuplot"], input=commands + data, text=True, check=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("zero_half")
    parser.add_argument("peer")
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--seeds", type=int, default=8)
    parser.add_argument("--time-limit", type=float, default=60.0)
    parser.add_argument("--rounds", type=int, default=50)
    parser.add_argument("--output", type=pathlib.Path, default=pathlib.Path("build/bench-solver"))
    parser.add_argument("--only", nargs="+", default=[])
    options = parser.parse_args()
    optima = optima_of(options.folder) if options.folder.is_dir() else {}
    files = [name for name in optima if not options.only or name.split(".")[0] in options.only]
    if not files:
        print(f"solver_table: {options.folder}: no models with an optimum", file=sys.stderr)
        return 1
    options.output.mkdir(parents=True, exist_ok=True)
    rows = []
    print(f"{'model':20}{'median':>8}{'least':>8}{'most':>8}{'peer':>8}{'cpu s':>8}{'peer s':>8}  end",
          flush=True)
    with open(options.output / "runs.csv", "w", newline="", encoding="utf-8") as stream:
        table = csv.writer(stream)
        table.writerow(["model", "solver", "seed", "closed_percent", "rounds", "cuts",
                        "separation_seconds", "cpu_seconds", "status"])
        for name in files:
            model = options.folder / name
            peer = run_peer(options, model, optima[name])
            table.writerow([name, "CglZeroHalf", "", *peer.values(), ""])
            runs = []
            for seed in range(1, options.seeds + 1):
                runs.append(own_figures(run_own(options, model, optima[name], seed)))
                table.writerow([name, "zero_half", seed, *runs[-1].values()])
            shares = [run["closed"] for run in runs]
            rows.append({"median": statistics.median(shares), "peer": peer["closed"]})
            print(f"{name.split('.')[0]:20}{rows[-1]['median']:8.2f}{min(shares):8.2f}"
                  f"{max(shares):8.2f}{peer['closed']:8.2f}"
                  f"{statistics.median(run['cpu'] for run in runs):8.2f}{peer['cpu']:8.2f}  "
                  f"{runs[0]['status']}", flush=True)
    draw_profile(rows, options.output / "profile.svg")
    print(f"written: {options.output / 'runs.csv'}, {options.output / 'profile.svg'}")
    return 0


if __name__ == "__main__":
    sys.exit(main())
