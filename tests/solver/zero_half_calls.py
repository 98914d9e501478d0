"""The program zero_half as its tests call it: models for it, its calls, and what a call prints."""

import json
import os
import pathlib
import random
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

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


class ZeroHalfTest(unittest.TestCase):
    """A test that runs the program. Each test writes to a folder of its own."""

    program = ""  # its path
    work = pathlib.Path()  # the folder of all tests

    @classmethod
    def setUpClass(cls):
        cls.own = cls.work / "instances"
        subprocess.run([sys.executable, str(MODELS / "instances.py"), str(cls.own)], check=True)
        cls.names = [name for name, _, _ in instances.INSTANCES]
        cls.labels = [name.removesuffix(".mps") for name in cls.names]
        cls.optima = {name: optimum for name, _, optimum in instances.INSTANCES}

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(dir=self.work))
        self.addCleanup(shutil.rmtree, self.folder)
        self.cover = self.own / "petersen_cover.mps"

    def write(self, name, content):
        path = self.folder / name
        path.write_bytes(content if isinstance(content, bytes) else content.encode())
        return path

    def call(self, *arguments, status=0, environment=None, folder=None):
        run = subprocess.run([self.program, *map(str, arguments)], stdin=subprocess.DEVNULL,
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


def main():
    """Runs the tests of a script that was called with the program, a folder to write to, and names of tests."""
    script, *arguments = sys.argv
    if len(arguments) < 2:
        sys.exit(f"{pathlib.Path(script).name}: give the program and a folder to write to")
    ZeroHalfTest.program = str(pathlib.Path(arguments[0]).resolve())
    ZeroHalfTest.work = pathlib.Path(arguments[1]).resolve()
    ZeroHalfTest.work.mkdir(parents=True, exist_ok=True)
    suppressions = ZeroHalfTest.work / "suppressions.txt"
    suppressions.write_text(LEAKS_OF_THE_READER)
    os.environ["LSAN_OPTIONS"] = ":".join(filter(None, [
        os.environ.get("LSAN_OPTIONS"), f"suppressions='{suppressions}'", "print_suppressions=0"]))
    unittest.main(argv=[script, *arguments[2:]])
