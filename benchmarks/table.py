#!/usr/bin/env python3
"""Makes one table and pictures of the results of the benchmark programs.

    table.py RESULTS DOCS

RESULTS has a file PROGRAM.PAGES.json for each program, as Google Benchmark writes it; PAGES is small
(4 KiB) or huge; and python.txt, the lines of python/interface_bench.py, if it was run. Writes
DOCS/benchmarks.md, DOCS/benchmarks/table.csv and pictures: bars for each operation, of the library and
everything it is compared with, and, with gnuplot, nanoseconds an entry over the capacity.
"""

import csv
import datetime
import json
import pathlib
import re
import subprocess
import sys

from bars import duration, picture
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

# The curves: operation, fill and order.
CURVES = (
    ("combine", "10%", "shuffled"), ("combine", "1%", "shuffled"),
    ("scale_and_combine", "10%", "shuffled"), ("sym_diff", "10%", "sorted"),
    ("mod2", "10%", "shuffled"), ("rem_zeros", "10%", "shuffled"), ("identical", "10%", "shuffled"),
)
# Bar pictures: file name, title, and the panels: title and the comparisons shown, in the order in which
# they were measured.
BARS = (
    ("vectors", "Operations on whole vectors", (
        ("x := x + beta y", r"combine/.*"),
        ("x := alpha x + beta y", r"scale_and_combine/.*"),
        ("Symmetric difference of supports", r"sym_diff/.*"),
        ("Coefficients modulo 2", r"mod2/.*"),
        ("Dropping zeros", r"rem_zeros/.*"),
        ("Comparing vectors", r"identical/.*"))),
    ("numbers", "Numbers, entries, sorting, memory", (
        ("Integrality, fractions, divisors", r"(scalar|rational|xgcd_r8|xgcd_i4)/.*"),
        ("Loops over the entries of a vector", r"(get_coef_loop|add_nz_loop|clear|list_combine)/.*"),
        ("Sorting through an exchange procedure", r"sort_(inline|exported)/.*"),
        ("Memory of the host", r"(allocmem_freemem_r8_1d|vector_alloc_free|standin_malloc_free)/.*"))),
    ("languages", "Calls in C and Fortran, and the separator", (
        ("A call in C and Fortran", r"(c|c_inlined|fortran)/.*"),
        ("Separating zero-half cuts at the optima of a run", r"separate/.*"))),
)
# Panels of comparisons without a target. The other panels show comparisons of the table.
FREE = (r"(get_coef_loop|add_nz_loop|clear|list_combine)/.*", r"sort_(inline|exported)/.*",
        r"(allocmem_freemem_r8_1d|vector_alloc_free|standin_malloc_free)/.*", r"(c|c_inlined|fortran)/.*",
        r"separate/.*")
# The curve of each contender: colour, width and dashes.
STYLES = {
    "library": ("#1f6fb2", 3, 1), "limit": ("#52606d", 1.5, 2), "ideal": ("#7b8794", 1.5, 1),
    "ideal_marks": ("#9fb3c8", 1.5, 3), "Coin": ("#e0912f", 1.5, 1), "Eigen": ("#2f8f83", 1.5, 1),
    "std": ("#b4432f", 1.5, 1), "fmod": ("#8a5fb0", 1.5, 1),
}
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


def draw_bars(found, folder, measured_on):
    """Draws a picture for each group of comparisons that was measured; returns their file names and titles."""
    targets = {}
    for _, comparison, peer, target in ROWS:
        targets.setdefault(comparison, []).append(f"{peer.replace('_', ' ')} {target:.2f}")
    drawn = []
    for name, title, subjects in BARS:
        panels = []
        for subject, pattern in subjects:
            groups = []
            for comparison, measured in found.items():
                if (pattern in FREE or comparison in targets) and re.fullmatch(pattern, comparison):
                    limits = targets.get(comparison)
                    remark = f"{measured['rounds']:.0f} rounds" + (f"; at most {', '.join(limits)}" if limits else "")
                    groups.append((readable(comparison), remark, contenders_of(measured)))
            if groups:
                panels.append((subject, groups))
        if panels:
            (folder / f"{name}.svg").write_text(picture(panels, measured_on), encoding="utf-8")
            drawn.append((f"{name}.svg", title))
    return drawn


def others(found):
    """The comparisons without a target: a row for each peer of each comparison."""
    with_target = {comparison for _, comparison, _, _ in ROWS}
    patterns = [pattern for _, _, subjects in BARS for _, pattern in subjects if pattern in FREE]
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


def draw_python(lines, folder, measured_on):
    """Draws a picture with a panel for each peer; returns its file name and title."""
    panels = []
    for kind, limit in PYTHON_LIMITS.items():
        groups = [(name, f"at most {limit:.2f}", [("library", ours, None), (kind, theirs, ratio)])
                  for each, name, ratio, ours, theirs in lines if each == kind]
        if groups:
            panels.append((f"Python, beside {kind}", groups))
    if not panels:
        return []
    (folder / "python.svg").write_text(picture(panels, measured_on), encoding="utf-8")
    return [("python.svg", "The Python package")]


def curve(contender, points, title=""):
    """The end of gnuplot's command plot for one curve."""
    colour, width, dashes = STYLES[contender]
    return (f'{points} with linespoints linecolor "{colour}" linewidth {width} dashtype {dashes} pointtype 7 '
            f'pointsize 0.4 title "{title}"')


def curves_of(found, operation, fill, order):
    """The contenders of one diagram, the points of each, and the command that draws it."""
    label = f"{operation}_{fill.rstrip('%')}"
    points = {name: measured for name in STYLES
              if len(measured := per_entry(found, operation, fill, order, name)) > 1}
    data = [f"${label}_{name} << EOD\n" + "\n".join(f"{n} {ns:.3f}" for n, ns in measured) + "\nEOD"
            for name, measured in points.items()]
    title = f'set title "{operation.replace("_", " ")}, {fill.replace("%", " %")} filled, {order}"'
    return list(points), data, title + "\nplot " + ", ".join(curve(name, f"${label}_{name}") for name in points)


def draw_curves(found, folder):
    """Draws the diagrams of CURVES into one picture; returns its name and title, if anything was measured."""
    diagrams = [each for shown in CURVES if (each := curves_of(found, *shown))[0]]
    if not diagrams:
        return []
    # The legend follows the diagrams.
    name, rows = "capacities.svg", (len(diagrams) + 2) // 2
    legend = [curve(each, "NaN", each.replace("_", " ")) for each in STYLES
              if any(each in names for names, _, _ in diagrams)]
    # gnuplot reads no data between the diagrams of one picture.
    script = [line for _, data, _ in diagrams for line in data]
    script += [f'set terminal svg size 1000,{330 * rows} font "DejaVu Sans,12" background "#ffffff"',
               f'set output "{folder / name}"',
               f"set multiplot layout {rows},2 margins 0.06,0.985,0.045,0.975 spacing 0.08,{0.28 / rows}",
               "set logscale xy", 'set xlabel "capacity n" offset 0,0.4', 'set ylabel "ns an entry" offset 1.5,0',
               'set format x "10^{%L}"', "set xrange [8:1.3e7]", "set yrange [1:100<*]", "unset key",
               'set border 3 linecolor "#52606d"', "set tics nomirror",
               'set grid linetype 1 linewidth 0.5 linecolor "#e4e7eb"']
    script += [command for _, _, command in diagrams]
    script += ["unset border", "unset tics", "unset grid", "unset title", "unset xlabel", "unset ylabel",
               "set yrange [1:2]", "set key center center spacing 1.5 samplen 6 font ',13'",
               "plot " + ", ".join(legend), "unset multiplot"]
    try:
        subprocess.run(["gnuplot"], input="\n".join(script), text=True, check=True)
    except (OSError, subprocess.CalledProcessError) as error:
        fail(f"gnuplot cannot draw {name}: {error}")
    return [(name, "Nanoseconds an entry over the capacity, on pages of 4 KiB")]


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
    python = python_lines(folder)
    measured_on = f"{machine}; {date}"
    drawn = draw_bars(small, pictures, measured_on) + draw_python(python, pictures, measured_on)
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
    text += [f"![{title}](benchmarks/{name})\n" for name, title in draw_curves(small, pictures)]
    (docs / "benchmarks.md").write_text("\n".join(text).rstrip() + "\n", encoding="utf-8")
    for line in [header, *lines]:
        print("{:<53} {:<18} {:>6} {:>7} {:<7} {:>8} {:>10} {:>6}".format(*map(str, line)))


if __name__ == "__main__":
    main()
