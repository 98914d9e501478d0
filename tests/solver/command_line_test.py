#!/usr/bin/env python3
"""Runs the zero-half solver and checks its output, the files it writes and its exit status.

Usage: command_line_test.py PROGRAM FOLDER [TEST ...]
"""

import errno
import gzip
import json
import math
import os
import pathlib
import pty
import random
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

import jsonschema

HERE = pathlib.Path(__file__).resolve().parent
MODELS = HERE.parents[1] / "solvers" / "zero_half" / "models"
sys.path.insert(0, str(MODELS))
sys.dont_write_bytecode = True
import instances  # noqa: E402

SCHEMA = json.loads((HERE / "report.schema.json").read_text(encoding="utf-8"))
TABLE = ["model", "rows", "columns", "lp_bound", "bound", "optimum", "closed", "cuts", "seconds",
         "end"]
ROUND = ["round", "bound", "closed", "found", "kept", "separation_ms", "lp_ms"]
NO_LEAK = re.compile(r"host memory: \d+ requests, 0 refused, 0 blocks not released")
CALL_TIMEOUT = 60  # seconds

# CoinMpsIO leaks memory on some invalid files, which a leak checker must ignore.
LEAKS_OF_THE_READER = "leak:CoinMpsIO::readMps\n"

PROGRAM = ""
FOLDER = pathlib.Path()



def program(columns, rows, rhs=(), bounds=(), head=(), integer=True):
    """A free MPS file from {column: {row: coefficient}} and {row: kind}, with numbers as given."""
    marked = lambda what: [f" M 'MARKER' '{what}'"] if integer else []
    lines = ["NAME t", *head, "ROWS", " N cost", *(f" {kind} {row}" for row, kind in rows.items()),
             "COLUMNS", *marked("INTORG")]
    lines += [f" {column} {row} {value}" for column, entries in columns.items()
              for row, value in entries.items()]
    lines += [*marked("INTEND"), "RHS", *(f" rhs {row} {value}" for row, value in rhs),
              "BOUNDS", *bounds, "ENDATA", ""]
    return "\n".join(lines)


def one_column(cost=-1, coefficient=1, rhs=1, bound=" UP b x 1", **more):
    """Minimise cost * x subject to coefficient * x <= rhs."""
    return program({"x": {"cost": cost, "r": coefficient}}, {"r": "L"}, [("r", rhs)], [bound],
                   **more)


def mixed_columns(is_fixed=False, head=()):
    """Columns with every kind of bound, a continuous column and a constant. Fixed MPS has a name
    with a blank."""
    name = "my col" if is_fixed else "my_col"
    entries = [(name, "cost", -1), (name, "r0", 1), (name, "r1", 1), ("x1", "cost", -1),
               ("x1", "r0", 1), ("x1", "r2", 1), ("x2", "cost", -1), ("x2", "r1", 1),
               ("x2", "r2", 1), ("x3", "cost", 2), ("x3", "r3", 1), ("x4", "cost", 1),
               ("x4", "r3", 1)]
    y = [("y", "cost", 0.25), ("y", "r3", 1)]
    bounds = [("UP", name, 1), ("UP", "x1", 1), ("UP", "x2", 1), ("LO", "x3", -9), ("UP", "x3", 7),
              ("FX", "x4", 2), ("LO", "y", 0.5), ("UP", "y", 2.5)]
    line = ("    {:<10}{:<8}  {:>12}" if is_fixed else " {} {} {}").format
    bound = (" {} BND       {:<8}  {:>12}" if is_fixed else " {} BND {} {}").format
    marker = ("    M         'MARKER'                 '{}'" if is_fixed
              else " M 'MARKER' '{}'").format
    return "\n".join(
        ["NAME          MIXED" + ("" if not head else " ".join(["", *head])), "ROWS", " N  cost",
         " L  r0", " L  r1", " L  r2", " G  r3", "COLUMNS", marker("INTORG"),
         *(line(*entry) for entry in entries), marker("INTEND"), *(line(*entry) for entry in y),
         "RHS", *(line("RHS", *entry) for entry in
                  [("r0", 1), ("r1", 1), ("r2", 1), ("r3", -1), ("cost", -7)]),
         "BOUNDS", *(bound(*entry) for entry in bounds), "ENDATA", ""])


def random_cover(nodes, edges):
    """A vertex cover problem that takes many rounds."""
    generator = random.Random(7)
    chosen = set()
    while len(chosen) < edges:
        chosen.add(tuple(sorted(generator.sample(range(nodes), 2))))
    return instances.mps("random", *instances.vertex_cover(sorted(chosen)))


def random_set_cover(columns, rows):
    """A set cover problem whose relaxation takes long."""
    generator = random.Random(1)
    entries = {f"x{j}": {"cost": generator.choice((1, 2)),
                         **{f"r{i}": 1 for i in generator.sample(range(rows), 5)}}
               for j in range(columns)}
    kinds = {f"r{i}": "G" for i in range(rows)}
    return program(entries, kinds, [(row, 1) for row in kinds])


def columns_of(file):
    """The columns of a free MPS file: names in order, names of integer columns, bounds."""
    section, in_integers, names, integers, bounds = "", False, [], set(), {}
    for line in file.read_text().splitlines():
        words = line.split()
        if not line.startswith(" "):
            section = words[0]
        elif section == "COLUMNS" and words[1] == "'MARKER'":
            in_integers = words[-1] == "'INTORG'"
        elif section == "COLUMNS":
            names += [] if words[0] in names else [words[0]]
            integers |= {words[0]} if in_integers else set()
        elif section == "BOUNDS":
            kind, _, name = words[:3]
            low, high = bounds.get(name, (0.0, float("inf")))
            value = float(words[3]) if len(words) > 3 else 0.0
            if kind in ("BV", "LI", "UI"):
                integers.add(name)
            bounds[name] = {"UP": (low, value), "UI": (low, value), "LO": (value, high),
                            "LI": (value, high), "FX": (value, value), "BV": (0.0, 1.0),
                            "PL": (low, float("inf")),
                            "MI": (-float("inf"), high)}[kind]
    return names, integers, {name: bounds.get(name, (0.0, float("inf"))) for name in names}


class Call:
    """The exit status and the output of a call."""

    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err

    def table(self):
        lines = self.out.splitlines()
        start = next(i for i, line in enumerate(lines) if line.startswith("model "))
        names = TABLE if " rows " in lines[start] else TABLE[:1] + TABLE[3:]
        return [dict(zip(names, line.split())) for line in lines[start + 1:]
                if not line.startswith("host memory")]

    def rounds(self):
        """The printed rounds of each model."""
        models = []
        for line in self.out.splitlines():
            if line.startswith("round "):
                models.append([])
            elif models and re.match(r" *\d+ ", line):
                models[-1].append(dict(zip(ROUND, line.split())))
        return models


class CommandLine(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.own = FOLDER / "instances"
        subprocess.run([sys.executable, str(MODELS / "instances.py"), str(cls.own)], check=True)
        cls.names = [name for name, _, _ in instances.INSTANCES]
        cls.labels = [name.removesuffix(".mps") for name in cls.names]
        cls.optima = {name: optimum for name, _, optimum in instances.INSTANCES}

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=FOLDER))
        self.addCleanup(shutil.rmtree, self.folder)
        self.cover = self.own / "petersen_cover.mps"

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def call(self, *arguments, status=0, environment=None, folder=None):
        run = subprocess.run([PROGRAM, *map(str, arguments)], stdin=subprocess.DEVNULL,
                             capture_output=True, timeout=CALL_TIMEOUT, env=environment,
                             cwd=folder)
        found = Call(run.returncode, run.stdout.decode(), run.stderr.decode())
        self.assertEqual(found.status, status, (found.out, found.err))
        if status == 0:
            self.assertEqual(found.err, "")
        return found

    def report(self, *arguments, status=0):
        """Runs the solver and checks its JSON report against the schema. Returns the call and the models."""
        file = self.folder / "report.json"
        call = self.call(*arguments, "--json", file, status=status)
        return call, self.read_report(file)

    def read_report(self, file):
        record = json.loads(file.read_text(encoding="utf-8"))
        jsonschema.Draft7Validator(SCHEMA).validate(record)
        return record["models"]

    def assert_one_sentence(self, call, about):
        """Standard error is one sentence about the file."""
        self.assertRegex(call.err, r"\Azero_half: [^\n]+\n\Z")
        self.assertTrue(call.err.startswith(f"zero_half: {about}: "), call.err)
        self.assertNotRegex(call.err[:-1], r"[\x00-\x1f\x7f]")

    def refuse(self, file, saying=""):
        """The file is refused, but the model after it is solved, printed and written."""
        call, models = self.report(file, self.cover, status=1)
        self.assert_one_sentence(call, file)
        self.assertIn(saying, call.err)
        self.assertEqual([model["file"] for model in models], [str(self.cover)])
        self.assertEqual([row["model"] for row in call.table()], [self.cover.stem])
        self.assertEqual(models[0]["gap_closed_percent"], 100.0)
        self.assertRegex(call.out, NO_LEAK)

    def refuse_program(self, content, saying=""):
        self.refuse(self.write("bad.mps", content), saying)

    # Bounds and figures

    def test_every_generated_instance_closes_its_gap(self):
        call = self.call(*(self.own / name for name in self.names))
        table = call.table()
        self.assertEqual([row["model"] for row in table], self.labels)
        for row, name in zip(table, self.names):
            with self.subTest(name):
                self.assertEqual(float(row["optimum"]), self.optima[name])
                self.assertEqual(float(row["bound"]), self.optima[name])
                self.assertLess(float(row["lp_bound"]), self.optima[name])
                self.assertEqual(row["closed"], "100.00")
                # Costs are integers, so a bound is rounded up, and may then be the optimum at once.
                if math.ceil(float(row["lp_bound"]) - 1e-6) < self.optima[name]:
                    self.assertGreater(int(row["cuts"]), 0)
        self.assertGreater(sum(int(row["cuts"]) for row in table), 0)
        self.assertRegex(call.out.splitlines()[-1], NO_LEAK)

    def test_report_agrees_with_table_and_lines(self):
        call, models = self.report(*(self.own / name for name in self.names))
        table, rounds = call.table(), call.rounds()
        self.assertEqual(len(models), len(self.names))
        self.assertEqual(len(rounds), len(self.names))
        for name, model, row, lines in zip(self.names, models, table, rounds):
            with self.subTest(name):
                self.assert_row_says(row, model)
                self.assert_lines_say(lines, model)
                self.assertEqual(model["file"], str(self.own / name))

    def assert_row_says(self, row, model):
        self.assertEqual(row["model"], pathlib.Path(model["file"]).stem)
        for key in ("rows", "columns"):
            if key in row:
                self.assertEqual(int(row[key]), model[key])
        self.assertEqual(int(row["cuts"]), model["cuts_kept"])
        for key, member in (("lp_bound", "lp_bound"), ("bound", "bound"), ("optimum", "optimum"),
                            ("closed", "gap_closed_percent")):
            self.assert_printed(row[key], model[member])
        self.assertAlmostEqual(float(row["seconds"]), model["seconds"], delta=0.006)

    def assert_lines_say(self, lines, model):
        self.assertEqual(len(lines), len(model["rounds"]))
        for count, (line, figures) in enumerate(zip(lines, model["rounds"]), start=1):
            self.assertEqual(int(line["round"]), count)
            self.assertEqual(figures["round"], count)
            self.assertEqual(int(line["found"]), figures["cuts_found"])
            self.assertEqual(int(line["kept"]), figures["cuts_kept"])
            self.assertLessEqual(figures["cuts_kept"], figures["cuts_found"])
            self.assert_printed(line["bound"], figures["bound"])
            self.assert_printed(line["closed"], figures["gap_closed_percent"])
            self.assertAlmostEqual(float(line["lp_ms"]), figures["lp_ms"], delta=0.06)
        bounds = [figures["bound"] for figures in model["rounds"]] + [model["bound"]]
        self.assertEqual(bounds, sorted(bounds))
        self.assertEqual(model["bound"], bounds[max(0, len(bounds) - 2)])
        # The costs of these models are integers.
        relaxations = [model["lp_bound"]] + [each["relaxation_bound"] for each in model["rounds"]]
        self.assertEqual(relaxations, sorted(relaxations))
        self.assertEqual(model["relaxation_bound"], relaxations[-1])
        for rounded, bound in zip(bounds, relaxations[1:]):
            self.assertAlmostEqual(rounded, math.ceil(bound - 1e-6), delta=1e-9)
        self.assertGreaterEqual(sum(figures["cuts_kept"] for figures in model["rounds"]),
                                model["cuts_kept"])

    def assert_printed(self, text, value):
        if value is None:
            self.assertEqual(text, "-")
        else:
            self.assertAlmostEqual(float(text), value, delta=0.0051 if "." in text else 0.5)

    def test_unknown_optimum_is_null_in_json_and_a_dash_in_the_table(self):
        file = self.write("cover.mps", random_cover(40, 90))
        call, (model,) = self.report(file, "--rounds", "1")
        self.assertIsNone(model["optimum"])
        self.assertIsNone(model["gap_closed_percent"])
        self.assertEqual({figures["gap_closed_percent"] for figures in model["rounds"]}, {None})
        self.assertEqual((call.table()[0]["optimum"], call.table()[0]["closed"]), ("-", "-"))
        self.assertGreater(model["bound"], model["lp_bound"])

    def test_integral_relaxation_gives_the_unknown_optimum(self):
        file = self.write("cover.mps", self.cover.read_bytes())
        call, (model,) = self.report(file)
        self.assertEqual((model["status"], model["optimum"]), ("integral", 6.0))
        self.assertEqual([figures["gap_closed_percent"] for figures in model["rounds"]], [100.0])
        self.assertEqual((call.table()[0]["optimum"], call.table()[0]["closed"]), ("6", "100.00"))

    def test_optimum_from_the_command_line(self):
        file = self.write("cover.mps", self.cover.read_bytes())
        _, (model,) = self.report(file, "--optimum", "7")
        self.assertEqual(model["optimum"], 7.0)
        self.assertAlmostEqual(model["gap_closed_percent"], 50.0)

    def test_optimum_that_a_bound_disproves_is_wrong(self):
        for optimum, rounds, bound in (("5.25", 1, "6"), ("5.25", 9, "6"), ("4", 0, "5")):
            with self.subTest((optimum, rounds)):
                call, (model,) = self.report(self.cover, "--optimum", optimum, "--rounds", rounds,
                                             status=1)
                self.assertEqual(call.err, f"zero_half: {self.cover}: the given optimum {optimum} is "
                                 f"wrong: no point has a value below the bound {bound}\n")
                self.assertIsNone(model["gap_closed_percent"])
                self.assertEqual(call.table()[0]["closed"], "-")

    def test_command_line_overrides_the_table_of_optima(self):
        _, (model,) = self.report(self.cover, "--optimum", "7")
        self.assertEqual(model["optimum"], 7.0)

    def test_table_of_optima_beside_the_model(self):
        self.write("optima.csv", "file,optimum\nxcover.mps,1\ncover.mps,6.5\n")
        file = self.write("cover.mps", self.cover.read_bytes())
        _, (model,) = self.report(file)
        self.assertEqual(model["optimum"], 6.5)
        self.assertAlmostEqual(model["gap_closed_percent"], 100 / 1.5)

    def test_invalid_optimum_in_the_table_is_ignored(self):
        file = self.write("cover.mps", random_cover(40, 90))
        for text in ("", "many", "nan", "inf", "1e999"):
            with self.subTest(text):
                self.write("optima.csv", f"cover.mps,{text}\n")
                call, (model,) = self.report(file, "--rounds", "1")
                self.assertIsNone(model["optimum"])
                self.assertEqual(call.table()[0]["optimum"], "-")

    def test_same_seed_gives_the_same_figures(self):
        times = {"seconds", "cpu_seconds", "separation_ms", "lp_ms"}
        without = lambda record: {key: value for key, value in record.items() if key not in times}
        file = self.write("random.mps", random_cover(60, 200))
        found = []
        for _ in range(2):
            _, (model,) = self.report(file, "--seed", "5", "--rounds", "6")
            model["rounds"] = [without(figures) for figures in model["rounds"]]
            found.append(without(model))
        self.assertEqual(found[0], found[1])
        self.assertGreaterEqual(len(found[0]["rounds"]), 2)

    def test_divided_and_rounded_row_is_a_cut(self):
        _, (model,) = self.report(
            self.write("divided.mps", one_column(coefficient=3, bound=" PL b x")))
        self.assertAlmostEqual(model["lp_bound"], -1 / 3)
        self.assertEqual((model["bound"], model["status"]), (0.0, "integral"))

    def test_bound_includes_the_constant(self):
        _, (model,) = self.report(self.write(
            "constant.mps", program({"x": {"cost": -1, "r": 1}}, {"r": "L"},
                                    [("r", 1), ("cost", -7)], [" UP b x 1"])))
        self.assertEqual((model["lp_bound"], model["bound"]), (6.0, 6.0))

    # Ends of a run

    def test_no_rounds(self):
        call, (model,) = self.report(self.cover, "--rounds", "0")
        self.assertEqual((model["status"], model["rounds"]), ("rounds_used", []))
        self.assertEqual((model["bound"], model["gap_closed_percent"]), (5.0, 0.0))
        self.assertEqual(call.table()[0]["end"], "rounds")

    def test_no_time(self):
        _, (model,) = self.report(self.cover, "--time-limit", "0")
        self.assertEqual((model["status"], model["rounds"]), ("time_used", []))

    def test_time_limit_ends_a_long_run(self):
        file = self.write("long.mps", random_cover(250, 750))
        _, (model,) = self.report(file, "--time-limit", "0.5", "--rounds", "100000")
        self.assertEqual(model["status"], "time_used")
        self.assertGreaterEqual(model["seconds"], 0.5)
        self.assertLess(model["seconds"], 10)

    def test_unfinished_round_leaves_no_cuts(self):
        file = self.write("long.mps", random_cover(400, 2000))
        for limit in ("0.05", "0.1", "0.2", "0.4"):
            _, (model,) = self.report(file, "--time-limit", limit)
            self.assertEqual(model["cuts_kept"],
                             sum(figures["cuts_kept"] for figures in model["rounds"]))

    def test_stops_when_the_requested_share_of_the_gap_is_closed(self):
        file = self.write("cover.mps", random_cover(40, 90))
        _, (model,) = self.report(file, "--optimum", "100", "--stop-at-gap", "0.5")
        self.assertEqual((model["status"], len(model["rounds"])), ("gap_closed", 1))
        self.assertGreaterEqual(model["gap_closed_percent"], 0.5)
        self.assertLess(model["gap_closed_percent"], 50)

    def test_cuts_prove_that_there_is_no_integer_point(self):
        alone = one_column(cost=1, coefficient=2).replace(" L r", " E r")
        pair = program({"x": {"cost": 1, "r": 2}, "y": {"cost": 1, "r": 2}}, {"r": "E"},
                       [("r", 1)], [" UP b x 1", " UP b y 1"])
        for content in (alone, pair):
            call, (model,) = self.report(self.write("odd.mps", content))
            self.assertEqual(model["status"], "no_integer_point")
            self.assertEqual(call.table()[0]["end"], "infeasible")

    def test_optimum_of_a_model_without_integer_points_is_an_error(self):
        file = self.write("odd.mps", one_column(cost=1, coefficient=2).replace(" L r", " E r"))
        call = self.call(file, "--optimum", "2", "--display", "final", status=1)
        self.assert_one_sentence(call, file)
        self.assertIn("there is no integer point", call.err)
        self.assertEqual(len(call.table()), 1)

    def test_integers_beyond_32_bits_are_rounded_correctly(self):
        for least in (3_000_000_000, -3_000_000_000, -2_147_483_647, 123_456_789_012):
            content = program({"x": {"cost": 1, "r": 2}, "y": {"cost": 1, "r": 2}}, {"r": "G"},
                              [("r", 4 * least + 1)],
                              [f" LO b {name} {least}.0" for name in "xy"])
            _, (model,) = self.report(self.write("large.mps", content))
            self.assertEqual((model["lp_bound"], model["bound"], model["status"]),
                             (2 * least + 0.5, 2 * least + 1, "integral"))

    def test_large_decimal_right_hand_side_is_scaled_exactly(self):
        content = program({"x": {"cost": -1, "r": 0.01}, "y": {"cost": -2, "r": 0.03},
                           "z": {"cost": -1, "s": 2, "r": 0}}, {"r": "L", "s": "L"},
                          [("r", 583704.70), ("s", 1)],
                          [" UP b x 1e8", " UP b y 1e8", " UP b z 1"])
        _, (model,) = self.report(self.write("cents.mps", content))
        self.assertEqual((model["lp_bound"], model["bound"]), (-58370470.5, -58370470))

    def test_interrupt_ends_the_run_and_keeps_the_results(self):
        file, report = self.write("long.mps", random_cover(300, 900)), self.folder / "report.json"
        child = subprocess.Popen([PROGRAM, str(file), str(self.cover), "--rounds", "100000",
                                  "--time-limit", "600", "--json", str(report)],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        try:
            seen = b""
            deadline = time.monotonic() + CALL_TIMEOUT
            while not re.search(rb"\n +2 .*\n", seen) and time.monotonic() < deadline:
                if select.select([child.stdout], [], [], 1)[0]:
                    seen += os.read(child.stdout.fileno(), 65536)
            sent = time.monotonic()
            child.send_signal(signal.SIGINT)
            rest, err = child.communicate(timeout=CALL_TIMEOUT)
        finally:
            child.kill()
            child.wait()
        self.assertLess(time.monotonic() - sent, 5)
        call = Call(child.returncode, (seen + rest).decode(), err.decode())
        self.assertEqual((call.status, call.err), (130, ""))
        (model,) = self.read_report(report)
        self.assertEqual(model["status"], "interrupted")
        self.assertGreater(model["bound"], model["lp_bound"])
        self.assertEqual(model["bound"], model["rounds"][-1]["bound"])
        (row,) = call.table()
        self.assert_printed(row["bound"], model["bound"])
        self.assertEqual(row["end"], "interrupt")
        self.assertEqual(len(call.rounds()[0]), len(model["rounds"]))
        self.assertRegex(call.out.splitlines()[-1], NO_LEAK)

    @unittest.skipUnless(os.path.exists("/proc/self/status"), "needs /proc")
    def test_interrupt_before_the_first_round(self):
        file = self.write("long.mps", random_cover(300, 900))
        for delay in (0, 0.001, 0.003, 0.01, 0.03):
            models = self.interrupt_at_start(file, "--rounds", "100000", delay=delay)
            # A model that was not read completely is not in the report.
            self.assertEqual([model["status"] for model in models], ["interrupted"] * len(models))

    def interrupt_at_start(self, *arguments, delay=0, stdin=None):
        """Interrupts the program `delay` seconds after it listens, and returns its report."""
        report = self.folder / "report.json"
        child = subprocess.Popen([PROGRAM, *map(str, arguments), "--json", str(report)],
                                 stdin=stdin, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
        try:
            status = pathlib.Path(f"/proc/{child.pid}/status")
            deadline = time.monotonic() + CALL_TIMEOUT
            while time.monotonic() < deadline:
                caught = re.search(r"SigCgt:\s*(\w+)", status.read_text())
                if caught and int(caught[1], 16) >> (signal.SIGINT - 1) & 1:
                    break
            time.sleep(delay)
            child.send_signal(signal.SIGINT)
            child.wait(timeout=CALL_TIMEOUT)
            self.assertEqual((child.returncode, child.stderr.read()), (130, b""))
        finally:
            child.kill()
            child.wait()
            child.stderr.close()
        return self.read_report(report)

    @unittest.skipUnless(os.path.exists("/proc/self/status"), "needs /proc")
    def test_interrupt_while_waiting_for_a_pipe(self):
        named = self.folder / "named"
        os.mkfifo(named)
        for name in ("-", named):
            with self.subTest(name):
                read, write = os.pipe()
                try:
                    self.assertEqual(self.interrupt_at_start(name, stdin=read), [])
                finally:
                    os.close(read)
                    os.close(write)

    def test_time_limit_while_waiting_for_a_pipe(self):
        named = self.folder / "named"
        os.mkfifo(named)
        call, models = self.report(named, "--time-limit", "0.2", status=1)
        self.assertEqual(models, [])
        self.assertEqual(call.err, f"zero_half: {named}: the time limit was reached before the file"
                                   " was read\n")

    # Reading

    def test_fixed_free_and_compressed_files_are_the_same_model(self):
        files = [self.write("fixed.mps", mixed_columns(is_fixed=True)),
                 self.write("free.mps", mixed_columns()),
                 self.write("marked.mps", mixed_columns(head=["FREE"])),
                 self.write("packed.mps.gz", gzip.compress(mixed_columns().encode()))]
        _, models = self.report(*files)
        figures = [{key: model[key] for key in ("rows", "columns", "lp_bound", "bound",
                                                "cuts_kept", "status")} for model in models]
        self.assertEqual(figures, [figures[0]] * len(files))
        # The constant is 7 and x4 = 2. By row r3, y = 2.5 and x3 = -5.5 without cuts, y = 2 and x3 = -5
        # with cuts. At most one of the other three columns can be 1: their sum is 1.5 without cuts, 1
        # with cuts.
        relaxed = 7 + 2 + 2.5 / 4 - 2 * 5.5 - 1.5
        self.assertEqual((figures[0]["lp_bound"], figures[0]["bound"]),
                         (relaxed, 7 + 2 + 2 / 4 - 2 * 5 - 1))

    def test_explicit_minimisation_is_read(self):
        for head in (["OBJSENSE", "    MIN"], ["OBJSENSE", "    minimize"], ["* MAX"]):
            call, (model,) = self.report(self.write("minimise.mps", one_column(head=head)),
                                         "--display", "off")
            self.assertEqual((call.out, model["bound"]), ("", -1.0))

    def test_maximisation_is_read(self):
        # 3 x <= 4 with the objective x + 7, maximised: 25/3 without cuts, 8 with them.
        whole = program({"x": {"cost": 1, "r": 3}}, {"r": "L"}, [("r", 4), ("cost", -7)],
                        [" UP b x 9"])
        heads = [whole.replace("ROWS", f"{head}\nROWS", 1) for head in
                 ("OBJSENSE\n    MAX", "OBJSENSE MAX", "OBJSENSE\n    Maximize")]
        for content in (*heads, whole.replace("RHS\n", "OBJSENSE\n MAX\nRHS\n", 1),
                        whole.replace("NAME t", "NAME t (MAX)")):
            with self.subTest(content):
                tightened = self.folder / "tightened.mps"
                file = self.write("max.mps", content)
                call, (model,) = self.report(file, "--cuts", tightened)
                self.assertAlmostEqual(model["lp_bound"], 25 / 3)
                self.assertEqual((model["bound"], model["optimum"]), (8.0, 8.0))
                self.assertEqual(model["gap_closed_percent"], 100.0)
                self.assertEqual(call.rounds()[0][-1]["bound"], "8.0000")
                _, (after,) = self.report(tightened, "--rounds", "0")
                self.assertAlmostEqual(after["lp_bound"], 8.0)
                call = self.call(file, "--optimum", "9", status=1)
                self.assertIn("no point has a value above the bound 8\n", call.err)

    def test_minimisation_in_a_comment_or_in_the_name_line(self):
        for content in (one_column(head=["* MAX"]),
                        one_column().replace("NAME t", "NAME t (MIN)")):
            _, (model,) = self.report(self.write("min.mps", content))
            self.assertEqual(model["bound"], -1.0)

    def test_lp_files_are_read(self):
        rows = "Subject To\n r1: x + y <= 1\n r2: y + z <= 1\n r3: x + z <= 1\nBinary\n x y z\nEnd\n"
        for head, bound in (("Maximize\n obj: 2 x + 2 y + 2 z\n", 2.0),
                            ("Minimize\n obj: - x - y - z\n", -1.0)):
            call, (model,) = self.report(self.write("triangle.lp", head + rows))
            self.assertEqual((model["bound"], model["status"]), (bound, "integral"))
            self.assertEqual(model["lp_bound"], 1.5 * bound)
            self.assertEqual(call.out.splitlines()[0].split(" ")[0], model["file"])
        for cut_off in ("no model", "Minimize\n obj: x\nSubject To\n",
                        "Minimize\n obj: x\nSubject To\n r: x >= 1\nGenerals\n x", "\\ End\n"):
            self.refuse(self.write("bad.lp", cut_off), "this is not an LP file that can be read; line")

    def test_every_form_of_an_lp_file_is_read(self):
        text = ("\\ a comment: End\nMINIMISE\n obj: 2x + y - 0.5e1 z +\n3 + 0 u\nsubject   to\n"
                " -4 <= x - z <= 5\n 3 >= y\n\n z: + - x[1] => -inf\n u + 2ex >= -2\n empty: <= 0\n"
                " x + y + z >=\n 1.5\n"
                "Bounds\n x <= 4\n -1 <= z <= 2.5 \\ End\n u free\n u >= -7\n ex = 1\n 0 <= y\n"
                " x[1] <= +infinity\nGenerals\n x z\n u\nBinaries\n y\nEND")
        # z = 2, so that -5 z = -10; x >= -2 needs x = 0; y = 0 as x + y + z >= 1.5 holds.
        for content in (text, text.replace("\n", "\r\n"), "\ufeff" + text):
            for name, data in (("form.lp", content.encode()),
                               ("form.lp.gz", gzip.compress(content.encode())),
                               ("form.txt", content.encode())):
                with self.subTest(name=name, content=content[:2]):
                    _, (model,) = self.report(self.write(name, data))
                    self.assertEqual((model["rows"], model["columns"]), (6, 6))
                    self.assertEqual((model["bound"], model["status"]), (-7.0, "integral"))

    def test_lp_files_with_anything_else_are_refused(self):
        head, tail = "Minimize\n x\nSubject To\n", "Generals\n x\nEnd\n"
        row = " x + y >= 1\n"
        for content, saying in (
                (f"Minimize\n [ x^2 ] / 2\nSubject To\n{row}{tail}", "line 2: quadratic"),
                (f"{head} c: x = 1 -> y >= 1\n{tail}", "line 4: quadratic and logical parts"),
                (f"{head} x * y >= 1\n{tail}", "line 4: quadratic and logical parts"),
                (f"{head} 3 x y >= 1\n{tail}", "line 4: unexpected y"),
                (f"{head} x >= y\n{tail}", "line 4: unexpected y"),
                (f"{head} 1..5 x >= 1\n{tail}", "line 4: unexpected .5"),
                (f"{head} x >= nan\n{tail}", "line 4: unexpected nan"),
                (f"{head} x + 4 >= 1\n{tail}", "line 4: a row needs columns on one side"),
                (f"{head} <= 3\n{tail}", "columns on one side"),
                (f"{head} c: 3 <= 4\n{tail}", "line 4: a row needs columns on one side"),
                (f"{head} x + x >= 1\n{tail}", "line 4: the column x occurs twice in a row"),
                (f"Minimize\n x + x\nSubject To\n{row}{tail}", "line 2: the column x occurs twice in the objective"),
                (f"{head} 3 = x >= 1\n{tail}", "line 4: the two sides of a row contradict"),
                (f"{head} c:{row} c:{row}{tail}", "the name c occurs twice"),
                (f"{head} 1e16 x >= 1\n{tail}", "beyond 1e15"),
                (f"{head} x >= 1e400\n{tail}", "beyond 1e15"),
                (f"{head}{row}Bounds\n 5 <= x <= 3\n{tail}", "between the bounds of column x"),
                (f"{head}{row}Bounds\n x\n{tail}", "line 7: unexpected Generals"),
                (f"{head}{row}SOS\n s: S1:: x:1\n{tail}", "section SOS is not supported"),
                (f"{head}{row}Semi-Continuous\n y\n{tail}", "section Semi-Continuous"),
                (f"{head}{row}Lazy  Constraints\n x >= 1\n{tail}", "section Lazy  Constraints"),
                (f"{head}{row}General Constraints\n z = MAX ( x , y )\n{tail}", "section General"),
                (f"Minimize multi-objectives\n x\nSubject To\n{row}{tail}", "unexpected"),
                (f"{head}{row}{tail} x", "there is text behind End"),
                (f"{head} {'n' * 151} >= 1\n{tail}", "name of more than 150 characters"),
                (f"Minimize\n x\0\nSubject To\n{row}{tail}", "a control character in a name"),
                ("Subject To\n x >= 1\nEnd\n", "it does not begin with Minimize")):
            with self.subTest(content):
                self.refuse(self.write("bad.lp", content), saying)

    def test_standard_input_and_pipes_are_read(self):
        for command in (f"'{PROGRAM}' - --display final < '{self.cover}'",
                        f"'{PROGRAM}' <(cat '{self.cover}') --display final",
                        f"gzip -c '{self.cover}' | '{PROGRAM}' - --display final"):
            with self.subTest(command):
                done = subprocess.run(["bash", "-c", command], capture_output=True, text=True,
                                      timeout=CALL_TIMEOUT, check=False)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertEqual(Call(0, done.stdout, "").table()[0]["bound"], "6")
        call = self.call("-", status=1)
        self.assertEqual(call.err, "zero_half: -: the input is empty\n")

    def test_byte_order_mark_and_missing_name(self):
        plain = one_column()
        for content in (b"\xef\xbb\xbf" + plain.encode(), plain.replace("NAME t\n", "").encode(),
                        b"\xef\xbb\xbf" + plain.replace("NAME t\n", "").encode()):
            with self.subTest(content):
                call, (model,) = self.report(self.write("marked.mps", content))
                self.assertEqual((model["rows"], model["bound"]), (1, -1.0))
                self.assertEqual(call.out.splitlines()[0], model["file"], "no line of the reader")

    def test_unknown_sense_of_the_objective_is_refused(self):
        for head in (["OBJSENSE", "  LARGEST"], ["OBJSENSE LARGEST"]):
            self.refuse_program(one_column(head=head), "neither MAX nor MIN")

    def test_xz_is_refused(self):
        self.refuse(self.write("packed.mps.xz", b"\xfd7zXZ\x00" + bytes(50)), "compressed by xz")

    def test_integer_columns_without_bounds_are_binary(self):
        for bound, least in ((" LO b x 0", -7.0), (" PL b x", -7.0), ("* none", -1.0)):
            _, (model,) = self.report(self.write("wide.mps", one_column(rhs=7, bound=bound)))
            self.assertEqual(model["bound"], least)

    def test_crossed_bounds_are_refused_with_their_line(self):
        self.refuse_program(one_column(bound=" UP b x 2\n LO b x 3"), "at line 14 <  LO b x 3 >")

    def test_sets_cones_and_quadratic_parts_are_refused(self):
        whole = one_column()
        at_end = lambda *lines: whole.replace("ENDATA", "\n".join([*lines, "ENDATA"]))
        for content, saying in (
                (at_end("SOS", " S1 SOS s 1", " SOS x 1"), "a section SOS"),
                (at_end("QUADOBJ", " x x 1"), "a section QUADOBJ"),
                (at_end("CSECTION k 0 QUAD", " x"), "a section CSECTION"),
                (whole.replace("INTORG", "SOSORG"), "a set"),
                (one_column(bound=" SC b x 1"), "semi-continuous")):
            with self.subTest(saying):
                self.refuse_program(content, saying)

    def test_repeated_names_are_refused(self):
        again = one_column().replace("RHS\n", " y r 1\n x s 1\nRHS\n").replace(
            " L r\n", " L r\n L s\n")
        call = self.call(self.write("again.mps", again), status=1)
        self.assertRegex(call.err, r"again\.mps: the name x occurs twice\n\Z")

    def test_names_have_at_most_150_characters(self):
        for length, status in ((150, 0), (151, 1), (400, 1)):
            name = "n" * length
            for content in (one_column().replace(" x", " " + name),
                            one_column().replace(" r ", f" {name} ").replace(
                                " L r\n", f" L {name}\n"),
                            one_column().replace("NAME t", "NAME " + name)):
                call = self.call(self.write("long.mps", content), "--display", "off",
                                 status=status)
                self.assertEqual(call.err, "" if status == 0 else
                                 f"zero_half: {self.folder / 'long.mps'}: there is a name of more "
                                 "than 150 characters\n")

    def test_tabs_and_long_comments_are_read(self):
        plain = self.cover.read_text()
        changed = "* " + "long " * 500 + "\n" + re.sub(r"(?<=\S) +(?=\S)", "\t", plain)
        _, (model,) = self.report(self.write("tabs.mps", changed))
        self.assertEqual((model["rows"], model["lp_bound"]), (15, 5.0))

    def test_missing_file(self):
        self.refuse(self.folder / "none.mps", "there is no such file")

    def test_empty_file(self):
        self.refuse_program("", "the file is empty")

    def test_folder(self):
        self.refuse(self.folder, "not a file")

    @unittest.skipIf(os.geteuid() == 0, "root can read every file")
    def test_unreadable_file(self):
        file = self.write("secret.mps", self.cover.read_bytes())
        file.chmod(0)
        self.refuse(file, "cannot be read")

    def test_truncated_file(self):
        whole = self.cover.read_text()
        for percent in (10, 50, 75, 90, 97):
            with self.subTest(percent):
                self.refuse_program(whole[:len(whole) * percent // 100], "this is not an MPS file")
        with self.subTest("without its last line"):
            self.refuse_program(whole.replace("ENDATA\n", ""), "this is not an MPS file")

    def test_truncated_compressed_file(self):
        packed = gzip.compress(self.cover.read_bytes())
        for size in (5, len(packed) // 2):
            with self.subTest(size):
                self.refuse(self.write("bad.mps.gz", packed[:size]), "this is not an MPS file")

    def test_error_in_a_free_file_is_reported_by_the_free_reader(self):
        self.refuse_program(self.cover.read_text().replace("UP bnd x5 1", "UP bnd x77 1"), "x77")

    def test_file_of_another_format(self):
        self.refuse_program("hello\nworld\n", "this is not an MPS file")

    def test_binary_file(self):
        self.refuse_program(bytes(range(256)) * 50, "this is not an MPS file")

    def test_no_integer_column(self):
        self.refuse_program(one_column(integer=False), "no column is integer")

    def test_infeasible_relaxation(self):
        self.refuse_program(one_column(rhs=5).replace(" L r", " G r"), "no feasible point")

    def test_rows_take_memory_only_for_their_entries(self):
        count = 30_000  # squared, times 8 bytes, is 7 GB
        columns = {f"x{j}": {"cost": -1, f"r{j}": 2} for j in range(count)}
        file = self.write("sparse.mps", program(columns, {f"r{j}": "L" for j in range(count)},
                                                [(f"r{j}", 1) for j in range(count)]))
        _, (model,) = self.report(file, "--rounds", "1")
        self.assertEqual((model["lp_bound"], model["bound"]), (-0.5 * count, 0.0))

    def test_empty_range_of_an_integer_column(self):
        self.refuse_program(one_column(bound=" LO b x 0.3\n UP b x 0.7"),
                            "no integer between the bounds of column x")

    def test_unbounded_relaxation_reported_infeasible_by_the_simplex_method(self):
        self.refuse(HERE / "models" / "unbounded_free_column.mps", "the relaxation is unbounded")

    def test_no_claim_without_a_proof(self):
        # Column y makes the relaxation unbounded, but its cost is within the tolerance of the simplex
        # method, which reports an optimum.
        self.refuse_program(program({"x": {"cost": -1, "r": 1}, "y": {"cost": "1e-11"}}, {"r": "L"},
                                    [("r", 5)], [" PL b x", " MI b y"]), "could not be decided")

    def test_integer_points_of_a_model_with_numbers_far_apart(self):
        # There are ten; the optimum is 2913.5.
        file = HERE / "models" / "ten_integer_points.mps"
        for seed in range(1, 6):
            _, (model,) = self.report(file, "--seed", seed)
            self.assertEqual((model["status"], model["bound"]), ("integral", 2913.5))

    def test_unbounded_relaxation(self):
        self.refuse_program(one_column(coefficient=-1, bound=" PL b x"), "unbounded")

    def test_numbers_that_are_not_finite(self):
        for value in ("nan", "inf", "-inf"):
            for content in (one_column(cost=value), one_column(coefficient=value),
                            one_column(rhs=value), one_column(bound=f" UP b x {value}")):
                with self.subTest(content):
                    self.refuse_program(content, value)

    def test_numbers_too_large_to_compute_with(self):
        for value in ("1e16", "1e30", "-1e30", "1e308", "1e400", "-1e400"):
            for content in (one_column(cost=value), one_column(coefficient=value)):
                with self.subTest(content):
                    self.refuse_program(content, "too large")
        self.refuse_program(program({"x": {"cost": 1, "r": "1e30"}, "y": {"cost": 1, "r": "1e-30"}},
                                    {"r": "L"}, [("r", 1)], [" UP b x 1"]), "too large")

    def test_bounds_too_large_to_compute_with(self):
        # An upper bound of 1e30 means no bound; one of -1e30 is a number.
        values = ("1e16", "-1e16", "-1e29", "-1e30", "-1e31", "-1e400")
        for content in (*(one_column(rhs=value) for value in values),
                        *(one_column(bound=f" MI b x\n UP b x {value}") for value in values)):
            with self.subTest(content):
                self.refuse_program(content, "a bound or a right-hand side is beyond 1e15")

    def test_infinite_right_hand_side_is_ignored(self):
        _, (model,) = self.report(self.write("free_row.mps", one_column(rhs="1e30")))
        self.assertEqual(model["bound"], -1.0)

    def test_report_without_models(self):
        call, models = self.report(self.folder / "none.mps", status=1)
        self.assertEqual(models, [])
        self.assertNotIn("model ", call.out)

    # Writing

    def test_model_with_its_cuts_keeps_the_columns_and_has_the_bound(self):
        for name, content in (("cover.mps", self.cover.read_text()),
                              ("mixed.mps", mixed_columns()),
                              ("corners.mps", (self.own / "grid_corners.mps").read_text())):
            with self.subTest(name):
                file, tightened = self.write(name, content), self.folder / "tightened.mps"
                _, (before,) = self.report(file, "--cuts", tightened)
                self.assertGreater(before["bound"], before["lp_bound"])
                self.assertEqual(columns_of(tightened), columns_of(file))
                _, (after,) = self.report(tightened, "--rounds", "0")
                self.assertEqual(after["rows"], before["rows"] + before["cuts_kept"])
                self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_model_with_its_cuts_keeps_ranges_and_replaces_blanks_in_names(self):
        plain = mixed_columns(is_fixed=True).replace(
            "BOUNDS", "RANGES\n    RNG       r3                   2\nBOUNDS")
        line = "    {:<10}{:<8}  {:>12}".format
        tightened = self.folder / "tightened.mps"
        for cost, least in ((2, -1.5), (-2, 12.125)):  # each side of the range is active once
            file = self.write("fixed.mps", plain.replace(line("x3", "cost", 2),
                                                         line("x3", "cost", cost)))
            _, (before,) = self.report(file, "--cuts", tightened)
            self.assertEqual(before["bound"], least)
            self.assertEqual(columns_of(tightened)[0], ["mycol", "x1", "x2", "x3", "x4", "y"])
            _, (after,) = self.report(tightened, "--rounds", "0")
            self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_names_of_cuts_differ_from_names_of_rows(self):
        file, tightened = self.write("named.mps", re.sub(
            r"\br1\b", "ZH1", self.cover.read_text())), self.folder / "tightened.mps"
        _, (before,) = self.report(file, "--cuts", tightened)
        _, (after,) = self.report(tightened, "--rounds", "0")
        self.assertAlmostEqual(after["lp_bound"], before["bound"], places=6)

    def test_outputs_do_not_overwrite_models_or_each_other(self):
        content = one_column()
        model, link = self.write("model.mps", content), self.folder / "link.mps"
        link.symlink_to(model)
        output = self.folder / "new" / ".." / "out"
        for options in (["--cuts", model], ["--json", model], ["--certificate", link],
                        ["--cuts", link], ["--json", self.folder / "x", "--cuts", self.folder / "x"],
                        ["--json", output, "--certificate", self.folder / "out"],
                        ["--json", ""], ["--cuts", "-"]):
            with self.subTest(options):
                call = self.call(model, *options, status=2)
                self.assertRegex(call.err, r"\Azero_half: [^\n]+\n\Z")
                self.assertEqual(model.read_text(), content)
                self.assertEqual(sorted(each.name for each in self.folder.iterdir()),
                                 ["link.mps", "model.mps"])
        self.call(model, "--json", "/dev/null", "--cuts", "/dev/null")
        self.assertIn("only once", self.call("-", "-", status=2).err)

    def test_files_that_cannot_be_written(self):
        folder = self.folder / "folder.svg"
        folder.mkdir()
        for option in ("--json", "--cuts", "--plot"):
            for place in (self.folder / "none" / "out.svg", folder):
                with self.subTest(option=option, place=place):
                    call = self.call(self.cover, option, place, "--display", "final", status=1)
                    self.assert_one_sentence(call, place)
                    self.assertEqual(len(call.out.splitlines()), 2, "only the table")

    def test_plot_is_a_picture_with_titles(self):
        picture = self.folder / "it's a picture.svg"
        self.call(self.cover, self.own / "frucht_stable.mps", "--plot", picture)
        root = xml.etree.ElementTree.parse(picture).getroot()
        self.assertEqual(root.tag, "{http://www.w3.org/2000/svg}svg")
        text = [each.strip() for each in root.itertext()]
        for title in ("petersen_cover", "frucht_stable", "round", "bound", "LP bound",
                      "bound with cuts", "optimum"):
            self.assertIn(title, text)
        self.assertEqual(text.count("optimum"), 1, "one legend")
        self.assertTrue(any(re.fullmatch(r"time \((µs|ms|s)\)", each) for each in text), text)

    def test_plot_counts_rounds_in_whole_numbers(self):
        picture = self.folder / "picture.svg"
        self.call(self.write("cover.mps", random_cover(40, 90)), "--rounds", "2", "--plot", picture)
        text = [each.strip() for each in xml.etree.ElementTree.parse(picture).getroot().itertext()]
        axis = [each for each in text[:text.index("round")] if re.fullmatch(r"[\d.]+", each)]
        self.assertEqual([each for each in axis if float(each) < 4], ["0", "1", "2"])

    def test_plot_as_png(self):
        picture = self.folder / "picture.png"
        self.call(self.cover, "--plot", picture)
        self.assertEqual(picture.read_bytes()[:8], b"\x89PNG\r\n\x1a\n")

    def test_plot_without_gnuplot(self):
        picture = self.folder / "picture.svg"
        environment = {**os.environ, "PATH": str(self.folder)}
        call = self.call(self.cover, "--plot", picture, status=1, environment=environment)
        self.assert_one_sentence(call, picture)
        self.assertIn("gnuplot", call.err)
        self.assertFalse(picture.exists())

    def test_plot_leaves_out_models_without_a_bound(self):
        picture = self.folder / "picture.svg"
        file = self.write("long.mps", random_cover(250, 750))
        call, (model,) = self.report(file, "--time-limit", "0", "--plot", picture, status=1)
        self.assertIsNone(model["lp_bound"])
        self.assert_one_sentence(call, picture)
        self.assertIn("there is no bound to draw", call.err)
        self.assertFalse(picture.exists())
        # The relaxation of the first model exceeds the time limit, the second one does not.
        file = self.write("long.mps", random_set_cover(30000, 1500))
        self.call(file, self.cover, "--time-limit", "2", "--plot", picture)
        text = [each.strip() for each in xml.etree.ElementTree.parse(picture).getroot().itertext()]
        self.assertIn("petersen_cover", text)
        self.assertNotIn("long", text)

    def test_file_names_are_not_run_as_gnuplot_commands(self):
        trace = self.folder / "trace"
        name = "x\nsystem 'touch trace'\n.mps"
        self.call(self.write(name, self.cover.read_bytes()), "--plot", "picture.svg",
                  folder=self.folder)
        call = self.call(self.cover, "--plot", "|touch trace; .svg", status=1, folder=self.folder)
        self.assertRegex(call.err, r"\Azero_half: [^\n]+\n\Z")
        self.assertFalse(trace.exists())

    # Printing

    @unittest.skipUnless(os.path.exists("/dev/full"), "there is no /dev/full")
    def test_error_when_standard_output_is_full(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            done = subprocess.run([PROGRAM, self.cover, "--display", "final"], stdout=full,
                                  stderr=subprocess.PIPE, text=True, timeout=CALL_TIMEOUT, check=False)
        self.assertEqual((done.returncode, done.stderr),
                         (1, "zero_half: the standard output cannot be written\n"))

    def test_display_off_prints_nothing(self):
        self.assertEqual(self.call(self.cover, "--display", "off").out, "")

    def test_display_final_prints_the_table(self):
        call = self.call(self.cover, "--display", "final")
        self.assertEqual(len(call.out.splitlines()), 2)
        self.assertEqual(call.table()[0]["bound"], "6")

    def test_display_iter_prints_lines_and_is_the_default(self):
        for arguments in ([], ["--display", "iter"]):
            call = self.call(self.cover, *arguments)
            self.assertEqual(call.out.splitlines()[0], str(self.cover))
            self.assertEqual([line["bound"] for line in call.rounds()[0]], ["6.0000"])

    def test_no_control_characters_in_a_pipe(self):
        for show in ("off", "final", "iter"):
            call = self.call(self.cover, "--display", show)
            self.assertNotRegex(call.out + call.err, r"[^\n -~]")

    def on_terminal(self, *arguments):
        """The program's output to standard error, a terminal, and to standard output."""
        ours, theirs = pty.openpty()
        try:
            child = subprocess.Popen([PROGRAM, *map(str, arguments)], stdout=subprocess.PIPE,
                                     stderr=theirs)
            os.close(theirs)
            written = b""
            while True:
                try:
                    piece = os.read(ours, 65536)
                except OSError as found:  # Linux reports EIO when the other end is closed.
                    self.assertEqual(found.errno, errno.EIO)
                    piece = b""
                if not piece:
                    break
                written += piece
            out, _ = child.communicate(timeout=CALL_TIMEOUT)
        finally:
            os.close(ours)
        self.assertEqual(child.returncode, 0)
        return written.decode(), out.decode()

    def test_progress_line_on_a_terminal_is_erased_at_the_end(self):
        written, out = self.on_terminal(self.cover, "--display", "final")
        self.assertEqual(written, "\rround 1, bound 6\x1b[K\r\x1b[K")
        self.assertEqual(len(out.splitlines()), 2)

    def test_no_progress_line_with_display_iter_or_off(self):
        for show in ("iter", "off"):
            self.assertEqual(self.on_terminal(self.cover, "--display", show)[0], "")

    # Usage

    def test_wrong_usage(self):
        for arguments in ([], ["--wrong"], [self.cover, "--rounds", "-1"],
                          [self.cover, "--rounds", "many"], [self.cover, "--display", "loud"],
                          [self.cover, "--time-limit", "-1"], [self.cover, "--time-limit", "nan"],
                          [self.cover, "--stop-at-gap", "101"],
                          [self.cover, "--stop-at-gap", "nan"],
                          [self.cover, "--optimum", "nan"], [self.cover, "--optimum", "inf"],
                          [self.cover, "--seed", "x"], [self.cover, "--json"],
                          [self.cover, "--plot", self.folder / "picture.jpg"],
                          [self.cover, self.cover, "--optimum", "6"],
                          [self.cover, self.cover, "--cuts", self.folder / "cuts.mps"]):
            with self.subTest(arguments):
                call = self.call(*arguments, status=2)
                self.assertEqual(call.out, "")
                self.assertRegex(call.err, r"\Azero_half: [^\n]+; see zero_half --help\n\Z")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_table_is_at_most_80_columns_wide(self):
        models = [*(self.own / name for name in self.names),
                  *sorted(MODELS.glob("*.mps")),
                  self.write("a_model_with_a_very_long_name_indeed.mps", self.cover.read_bytes())]
        call = self.call(*models, "--display", "final", "--rounds", "3")
        self.assertLessEqual(max(map(len, call.out.splitlines())), 80)
        self.assertEqual(len(call.table()), len(models))
        self.assertRegex(call.out, r"\na_mode\S*\.\.\S*indeed ")

    def test_files_of_one_name_have_different_labels(self):
        for folder in ("one", "other"):
            (self.folder / folder).mkdir()
            self.write(f"{folder}/cover.mps", self.cover.read_bytes())
        call = self.call(self.folder / "one/cover.mps", self.folder / "other/cover.mps", self.cover)
        self.assertEqual([row["model"] for row in call.table()],
                         ["one/cover", "other/cover", "petersen_cover"])

    def test_help_explains_every_ending(self):
        text = self.call("--help").out
        for word in ("integral", "closed", "no-cut", "infeasible", "rounds", "time", "interrupt",
                     "stopped", "numeric"):
            self.assertRegex(text, rf"\n  {word} +[a-z]")

    def test_help_names_every_option(self):
        text = self.call("--help").out
        for option in ("--rounds", "--time-limit", "--seed", "--display", "--stop-at-gap",
                       "--optimum", "--cuts", "--json", "--plot", "--version"):
            self.assertIn(option, text)

    def test_version(self):
        self.assertRegex(self.call("--version").out, r"\Azero_half \d+\.\d+\.\d+\n\Z")


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit("command_line_test.py: give the program and a folder to write to")
    PROGRAM, FOLDER = str(pathlib.Path(sys.argv[1]).resolve()), pathlib.Path(sys.argv[2]).resolve()
    FOLDER.mkdir(parents=True, exist_ok=True)
    (FOLDER / "suppressions.txt").write_text(LEAKS_OF_THE_READER)
    os.environ["LSAN_OPTIONS"] = ":".join(filter(None, [
        os.environ.get("LSAN_OPTIONS"), f"suppressions='{FOLDER / 'suppressions.txt'}'",
        "print_suppressions=0"]))
    unittest.main(argv=[sys.argv[0], *sys.argv[3:]])
