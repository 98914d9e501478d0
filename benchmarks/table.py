#!/usr/bin/env python3
"""Makes one table and pictures of the results of the benchmark programs.

    table.py RESULTS DOCS

RESULTS has a file PROGRAM.PAGES.json for each program, as Google Benchmark writes it; PAGES is small
(4 KiB) or huge; and python.txt, the lines of python/interface_bench.py, if it was run. Writes DOCS/benchmarks.md, DOCS/benchmarks/table.csv and pictures: bars for each
operation, of the library and everything it is compared with, and, with gnuplot, nanoseconds an entry
over the capacity.
"""

import csv
import datetime
import json
import pathlib
import re
import subprocess
import sys

from bars import bars, duration
from python.interface_bench import LIMITS as PYTHON_LIMITS

# Label, comparison, peer, and the largest ratio that meets the target.
ROWS = (
    ("combine, 1 entry, n = 10", "combine/10/10%/shuffled", "ideal_marks", 1.30),
    ("combine, 1 entry, n = 1000", "combine/1000/0.1%/shuffled", "ideal_marks", 1.30),
    ("combine, 10 entries, n = 10", "combine/10/100%/shuffled", "ideal_marks", 1.15),
    ("combine, 10 entries, n = 100", "combine/100/10%/shuffled", "ideal_marks", 1.15),
    ("combine, 10 entries, n = 1000", "combine/1000/1%/shuffled", "ideal_marks", 1.15),
    ("combine, n = 10^5, 10 %", "combine/100000/10%/shuffled", "ideal", 1.03),
    ("combine, n = 10^5, 1 %", "combine/100000/1%/shuffled", "ideal", 1.10),
    ("combine, n = 10^5, 10 %", "combine/100000/10%/shuffled", "Coin", 0.37),
    ("combine, n = 10^5, 1 %", "combine/100000/1%/shuffled", "Coin", 0.50),
    ("combine, n = 10^6, 1 %", "combine/1000000/1%/shuffled", "ideal", 1.05),
    ("combine, n = 10^6, 10 %", "combine/1000000/10%/shuffled", "ideal", 0.80),
    ("combine, n = 10^7, 1 %", "combine/10000000/1%/shuffled", "ideal", 1.05),
    ("combine, n = 10^7, 10 %", "combine/10000000/10%/shuffled", "ideal", 0.80),
    ("combine, n = 10^6, 1 %", "combine/1000000/1%/shuffled", "Coin", 1.00),
    ("combine, n = 10^6, 10 %", "combine/1000000/10%/shuffled", "Coin", 0.80),
    ("combine, n = 10^7, 1 %", "combine/10000000/1%/shuffled", "Coin", 1.00),
    ("combine, n = 10^7, 10 %", "combine/10000000/10%/shuffled", "Coin", 0.80),
    ("combine, alpha 3, n = 10^7, 1 %", "scale_and_combine/10000000/1%/shuffled", "ideal", 0.90),
    ("combine, alpha 3, n = 10^7, 10 %", "scale_and_combine/10000000/10%/shuffled", "ideal", 0.75),
    ("combine, alpha 3, n = 10^5, 1 %", "scale_and_combine/100000/1%/shuffled", "ideal", 1.15),
    ("combine, alpha 3, n = 10^5, 10 %", "scale_and_combine/100000/10%/shuffled", "ideal", 1.15),
    ("combine, n = 10^6, full", "combine/1000000/100%/shuffled", "Coin", 1.10),
    ("combine, n = 10^7, full", "combine/10000000/100%/shuffled", "Coin", 1.10),
    ("sym_diff, n = 10^5, 10 %", "sym_diff/100000/10%/shuffled", "ideal", 0.55),
    ("sym_diff, n = 10^7, 1 %", "sym_diff/10000000/1%/shuffled", "ideal", 0.58),
    ("sym_diff, n = 10^7, 10 %, sorted", "sym_diff/10000000/10%/sorted", "ideal", 0.60),
    ("sym_diff, n = 10^5, 10 %, sorted", "sym_diff/100000/10%/sorted", "std", 0.42),
    ("sym_diff, n = 10^7, 10 %, sorted", "sym_diff/10000000/10%/sorted", "std", 0.85),
    ("mod2, n = 10^5, 10 %", "mod2/100000/10%/shuffled", "ideal", 0.60),
    ("mod2, n = 10^7, 10 %", "mod2/10000000/10%/shuffled", "ideal", 0.70),
    ("rem_zeros, n = 10^5, 10 %", "rem_zeros/100000/10%/shuffled", "ideal_marks", 0.90),
    ("rem_zeros, n = 10^7, 10 %", "rem_zeros/10000000/10%/shuffled", "ideal_marks", 0.90),
    ("identical, n = 10^5, 10 %", "identical/100000/10%/shuffled", "ideal_marks", 0.90),
    ("identical, n = 10^7, 10 %", "identical/10000000/10%/shuffled", "ideal_marks", 0.90),
    ("find_scalar_integral, halves and thirds, n = 10", "scalar/halves_and_thirds/10", "plain_supplied", 0.60),
    ("find_scalar_integral, decimals, n = 10", "scalar/decimals/10", "plain_supplied", 0.60),
    ("find_scalar_integral, failing, n = 10", "scalar/failing/10", "plain_supplied", 0.60),
    ("get_rational_rep, denominators 500..1000, bound 10^6", "rational/den500..1000/1000000", "continued_fraction", 2.20),
    ("xgcd_r8 of quarters", "xgcd_r8/quarters", "fmod", 0.40),
    ("xgcd_i4 of 31 bits", "xgcd_i4/31bit", "Boost", 0.75),
)

# Pictures: operation, fill and order.
PICTURES = (
    ("combine", "10%", "shuffled"), ("combine", "1%", "shuffled"),
    ("scale_and_combine", "10%", "shuffled"), ("sym_diff", "10%", "sorted"),
    ("mod2", "10%", "shuffled"), ("rem_zeros", "10%", "shuffled"), ("identical", "10%", "shuffled"),
)
# Bar pictures: file name, title, and the comparisons shown, in the order in which they were measured.
BARS = (
    ("bars_combine", "x := x + beta y", r"combine/.*"),
    ("bars_scale_and_combine", "x := alpha x + beta y", r"scale_and_combine/.*"),
    ("bars_sym_diff", "Symmetric difference of supports", r"sym_diff/.*"),
    ("bars_mod2", "Coefficients modulo 2", r"mod2/.*"),
    ("bars_rem_zeros", "Dropping zeros", r"rem_zeros/.*"),
    ("bars_identical", "Comparing vectors", r"identical/.*"),
    ("bars_entries", "Loops over the entries of a vector", r"(get_coef_loop|add_nz_loop|clear|list_combine)/.*"),
    ("bars_numbers", "Integrality, fractions, divisors", r"(scalar|rational|xgcd_r8|xgcd_i4)/.*"),
    ("bars_sort", "Sorting through an exchange procedure", r"sort_(inline|exported)/.*"),
    ("bars_host", "Memory of the host", r"(allocmem_freemem_r8_1d|vector_alloc_free|standin_malloc_free)/.*"),
    ("bars_separate", "Separating zero-half cuts at the optima of a run", r"separate/.*"),
    ("bars_languages", "A call in C and Fortran", r"(c|c_inlined|fortran)/.*"),
)
# Bar pictures of comparisons without a target. The other bar pictures show comparisons of the table.
FREE = ("bars_entries", "bars_sort", "bars_host", "bars_languages", "bars_separate")
CAPACITIES = [10**k for k in range(1, 8)]


def fail(sentence):
    sys.exit(f"table.py: {sentence}")


def results(folder, pages):
    """The comparisons of a run, by name, and the context of the machine."""
    found, context = {}, {}
    for path in sorted(folder.glob(f"*.{pages}.json")):
        try:
            content = json.loads(path.read_text(encoding="utf-8"))
        except ValueError as error:
            fail(f"{path} is not a result of a benchmark: {error}")
        context = context or content["context"]
        for each in content["benchmarks"]:
            found[each["name"].removesuffix("/manual_time")] = each
    return found, context


def ratio(found, comparison, peer):
    return found.get(comparison, {}).get(f"library/{peer}")


def shown(value):
    return "-" if value is None else f"{value:.2f}"


def table(small, huge):
    lines = []
    for label, comparison, peer, target in ROWS:
        reached = ratio(small, comparison, peer)
        verdict = "-" if reached is None else "met" if round(reached, 2) <= target else "missed"
        rounds = int(small[comparison]["rounds"]) if comparison in small else 0
        lines.append((label, peer, f"{target:.2f}", shown(reached), verdict, shown(ratio(small, comparison, "limit")),
                      shown(ratio(huge, comparison, peer)), rounds))
    return lines


def per_entry(found, operation, fill, order, contender):
    """The measured pairs of capacity and nanoseconds per entry."""
    points = []
    for capacity in CAPACITIES:
        entries = max(1, capacity * float(fill.rstrip("%")) / 100)
        time = found.get(f"{operation}/{capacity}/{fill}/{order}", {}).get(f"{contender}_ns")
        if time is not None:
            points.append((capacity, time / entries))
    return points


def contenders_of(measured):
    """Name, nanoseconds and the first one's ratio to it, of each contender; the first one first."""
    ratios = {key.split("/")[1]: value for key, value in measured.items() if key.count("/") == 1}
    names = [key.removesuffix("_ns") for key in measured if key.endswith("_ns")]
    names.sort(key=lambda name: (name in ratios, name not in ("limit", "ideal", "ideal_marks"), name))
    return [(name, measured[f"{name}_ns"], ratios.get(name)) for name in names]


def readable(comparison):
    """The name of a comparison, with its powers of ten written as 10^k."""
    text = re.sub(r"/(\d+)/([\d.]+)%/(\w+)", r"/n = \1, \2 % filled, \3", comparison)
    text = re.sub(r"\b10(0{3,})\b", lambda found: f"10^{len(found[1]) + 1}", text)
    return text.replace("/", ", ").replace("_", " ")


def draw_bars(found, folder, date, machine):
    """Draws a picture for each group of comparisons that was measured; returns their file names."""
    targets = {}
    for _, comparison, peer, target in ROWS:
        targets.setdefault(comparison, []).append(f"{peer.replace('_', ' ')} {target:.2f}")
    drawn = []
    for name, title, pattern in BARS:
        groups = []
        for comparison, measured in found.items():
            if (name in FREE or comparison in targets) and re.fullmatch(pattern, comparison):
                contenders = contenders_of(measured)
                limits = targets.get(comparison)
                remark = f"{measured['rounds']:.0f} rounds" + (f"; at most {', '.join(limits)}" if limits else "")
                groups.append((readable(comparison), remark, contenders))
        if groups:
            (folder / f"{name}.svg").write_text(bars(title, f"{machine}; {date}", groups), encoding="utf-8")
            drawn.append((f"{name}.svg", title))
    return drawn


def others(found):
    """The comparisons without a target: a row for each peer of each comparison."""
    with_target = {comparison for _, comparison, _, _ in ROWS}
    patterns = [pattern for name, _, pattern in BARS
                if name in FREE]
    return [(readable(comparison), contenders[0][0], duration(contenders[0][1]), name, duration(time),
             shown(value), f"{measured['rounds']:.0f}")
            for comparison, measured in found.items()
            if comparison not in with_target and any(re.fullmatch(each, comparison) for each in patterns)
            for contenders in [contenders_of(measured)] for name, time, value in contenders[1:]]


def python_lines(folder):
    """The results of python/interface_bench.py: kind, name, ratio, both times in nanoseconds."""
    path = folder / "python.txt"
    if not path.is_file():
        return []
    line = re.compile(rf"({'|'.join(map(re.escape, PYTHON_LIMITS))})\s+(.*?)\s+([\d.]+)\s+\[[^]]*\]"
                      r"\s+([\d.]+)\s+([\d.]+) us")
    found = [match.groups() for match in map(line.match, path.read_text(encoding="utf-8").splitlines()) if match]
    if not found:
        fail(f"{path} has no measurements")
    return [(kind, name, float(ratio), float(ours) * 1e3, float(theirs) * 1e3)
            for kind, name, ratio, ours, theirs in found]


def python_section(lines):
    """The table of the Python interface."""
    text = ["", "## Python", "",
            "Whole arrays against a loop in C++ over the same procedures and against a formulation in NumPy, calls",
            "of a method against calls of a pybind11 method that does nothing, fractions against",
            "`Fraction.limit_denominator`: medians of the ratios of times taken one after the other.", "",
            "| against | what | target | reached | verdict | time | its time |", "|---|---|---:|---:|---|---:|---:|"]
    for kind, name, ratio, ours, theirs in lines:
        limit = PYTHON_LIMITS[kind]
        verdict = "met" if ratio <= limit else "missed"
        text.append(f"| {kind} | `{name}` | {limit:.2f} | {ratio:.3f} | {verdict} | {duration(ours)} | "
                    f"{duration(theirs)} |")
    return text


def draw_python(lines, folder, date, machine):
    """Draws a picture for each peer; returns their file names."""
    drawn = []
    for kind, limit in PYTHON_LIMITS.items():
        groups = [(name, f"at most {limit:.2f}", [("library", ours, None), (kind, theirs, ratio)])
                  for each, name, ratio, ours, theirs in lines if each == kind]
        if groups:
            name = "bars_python_" + re.sub(r"\W+", "_", kind.lower()).strip("_") + ".svg"
            title = f"Python, beside {kind}"
            (folder / name).write_text(bars(title, f"{machine}; {date}", groups), encoding="utf-8")
            drawn.append((name, title))
    return drawn


def draw(found, folder, operation, fill, order):
    """Draws one picture. Returns its file name, or None if nothing was measured."""
    prefix = f"{operation}/"
    contenders = sorted({key.removesuffix("_ns") for name, each in found.items() if name.startswith(prefix)
                         for key in each if key.endswith("_ns")}, key=lambda c: (c != "library", c))
    curves = [(c, points) for c in contenders
              if len(points := per_entry(found, operation, fill, order, c)) > 1]
    if not curves:
        return None
    name = f"{operation}_{fill.rstrip('%')}.svg"
    script = [f'set terminal svg size 720,440 font "sans,13" background "#ffffff"', f'set output "{folder / name}"',
              "set logscale xy", 'set xlabel "capacity n"', 'set ylabel "ns an entry"',
              'set format x "10^{%L}"', "set key left top", "set grid",
              f'set title "{operation.replace("_", " ")}, {fill} filled, {order}, 4 KiB pages"']
    plots = []
    for i, (contender, points) in enumerate(curves):
        rows = "\n".join(f"{n} {ns:.3f}" for n, ns in points)
        script.append(f"$d{i} << EOD\n{rows}\nEOD")
        plots.append(f'$d{i} with linespoints linewidth {3 if i == 0 else 1.5} '
                     f'title "{contender.replace("_", " ")}"')
    script.append("plot " + ", ".join(plots))
    try:
        subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        fail(f"gnuplot cannot draw {name}: {error}")
    return name


def main():
    if len(sys.argv) != 3:
        fail("usage: table.py RESULTS DOCS")
    folder, docs = map(pathlib.Path, sys.argv[1:])
    small, context = results(folder, "small")
    huge, _ = results(folder, "huge")
    if not small:
        fail(f"no results in {folder}")
    pictures = docs / "benchmarks"
    pictures.mkdir(parents=True, exist_ok=True)
    lines = table(small, huge)
    header = ("row", "of", "target", "reached", "verdict", "of limit", "huge pages", "rounds")
    with open(pictures / "table.csv", "w", newline="", encoding="utf-8") as out:
        csv.writer(out, lineterminator="\n").writerows([header, *lines])
    date = datetime.date.today().isoformat()
    machine = f"{context.get('processor', 'unknown')}, {context.get('compiler', 'unknown')}"
    drawn = draw_bars(small, pictures, date, machine)
    python = python_lines(folder)
    drawn += draw_python(python, pictures, date, machine)
    names = [name for picture in PICTURES if (name := draw(small, pictures, *picture))]
    met = sum(line[4] == "met" for line in lines)
    text = ["# Results of the benchmarks", "",
            "Time of the library divided by that of another contender doing the same job in the same",
            "process: medians of the ratios of single rounds, each with fresh input. `scripts/bench`",
            "measures this and writes this page; `benchmarks/README.md` describes the contenders.", "",
            f"- Processor: {context.get('processor', 'unknown')}, {context.get('num_cpus', '?')} available",
            f"- Compiler: {context.get('compiler', 'unknown')}, {context.get('flags', '')}",
            f"- Date: {date}",
            f"- Targets met: {met} of {len(lines)}", "",
            "All contenders lie on pages of 4 KiB; \"huge pages\" is the same ratio with all of them on",
            "pages of 2 MiB, where that was measured. \"Of limit\" is the ratio to the limit of the contract,",
            "a loop that reads and writes only what the contract demands, with prefetches.", "",
            "| " + " | ".join(header) + " |", "|---|---|---:|---:|---|---:|---:|---:|"]
    text += ["| " + " | ".join(map(str, line)) + " |" for line in lines]
    if more := others(small):
        text += ["", "## Without a target", "",
                 "What the library adds to a call of the host, of C or of Fortran, loops over entries, sorting, and",
                 "the solver's separator beside CglZeroHalf at the same points: `solver_bench` prints how many cuts",
                 "each finds.", "",
                 "| comparison | first | time | other | its time | ratio | rounds |", "|---|---|---:|---|---:|---:|---:|"]
        text += ["| " + " | ".join(line) + " |" for line in more]
    if python:
        text += python_section(python)
    text += ["", "## Pictures", "",
             "Blue is the library, grey are the limit of the contract and the ideal loops that",
             "`benchmarks/README.md` describes, orange are peers. The ratio is that of the library's time to the",
             "bar's; below 1 the library is faster.", ""]
    text += [f"![{title}](benchmarks/{name})\n" for name, title in drawn]
    text += ["", "## Nanoseconds an entry", ""]
    text += [f"![{name}](benchmarks/{name})\n" for name in names]
    (docs / "benchmarks.md").write_text("\n".join(text).rstrip() + "\n", encoding="utf-8")
    for line in [header, *lines]:
        print("{:<53} {:<18} {:>6} {:>7} {:<7} {:>8} {:>10} {:>6}".format(*map(str, line)))


if __name__ == "__main__":
    main()
