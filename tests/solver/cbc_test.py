"""The comparison in Cbc: zero_half_cbc model model"""
import csv
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, *MODELS = sys.argv[1:]
VARIANTS = ["none", "CglZeroHalf, root", "zero_half, root", "CglZeroHalf, tree", "zero_half, tree"]


def run(*arguments):
    return subprocess.run([PROGRAM, *map(str, arguments)], capture_output=True, text=True,
                          check=False)


class Comparison(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def test_all_variants_find_the_known_optima(self):
        table, report = self.folder / "runs.csv", self.folder / "runs.json"
        found = run(*MODELS, "--csv", table, "--json", report)
        self.assertEqual((found.returncode, found.stderr), (0, ""))
        self.assertIn("The optima are the same in all variants.", found.stdout)
        with open(table, newline="", encoding="utf-8") as stream:
            runs = list(csv.DictReader(stream))
        self.assertEqual([each["cuts_from"] for each in runs], VARIANTS * len(MODELS))
        optima = dict(csv.reader(open(pathlib.Path(MODELS[0]).parent / "optima.csv",
                                      encoding="utf-8")))
        for each in runs:
            self.assertEqual(each["status"], "optimal")
            self.assertAlmostEqual(float(each["value"]), float(optima[each["model"] + ".mps"]), 5)
            self.assertLessEqual(float(each["root_bound"]), float(each["value"]))
        records = json.loads(report.read_text())
        self.assertEqual(len(records["models"]), len(MODELS))
        self.assertEqual(records["models"][0]["contradiction"], "")

    def test_own_cuts_are_used_at_the_root_and_in_the_tree(self):
        report = self.folder / "runs.json"
        found = run(MODELS[1], "--plain", "--every", "1", "--json", report)
        self.assertEqual((found.returncode, found.stderr), (0, ""))
        runs = {each["cuts_from"]: each
                for each in json.loads(report.read_text())["models"][0]["runs"]}
        self.assertEqual(runs["none"]["cuts"], 0)
        self.assertGreater(runs["zero_half, root"]["cuts"], 0)
        self.assertGreater(runs["zero_half, tree"]["cuts"], runs["zero_half, root"]["cuts"])
        self.assertGreater(runs["zero_half, root"]["root_bound"], runs["none"]["root_bound"])

    def test_a_different_optimum_is_an_error(self):
        model = shutil.copy(MODELS[0], self.folder)
        (self.folder / "optima.csv").write_text(f"{pathlib.Path(model).name},3088\n")
        found = run(model)
        self.assertEqual(found.returncode, 1)
        self.assertRegex(found.stderr, "the value is 3089, and the optimum is 3088\n$")
        self.assertNotIn("The optima are the same", found.stdout)

    def test_a_time_limit_of_zero_is_not_an_error(self):
        found = run(MODELS[1], "--time-limit", "0")
        self.assertEqual((found.returncode, found.stderr), (0, ""))

    def test_wrong_calls_and_files_are_explained(self):
        self.assertEqual(run("--help").returncode, 0)
        self.assertEqual(run().returncode, 2)
        self.assertEqual(run(MODELS[0], "--every", "0").returncode, 2)
        found = run(self.folder / "missing.mps", MODELS[0])
        self.assertEqual(found.returncode, 1)
        self.assertRegex(found.stderr, "^zero_half_cbc: .*missing.mps: there is no such file\n$")
        self.assertIn("p0033", found.stdout)
        found = run(MODELS[0], "--csv", self.folder / "no" / "folder.csv")
        self.assertEqual(found.returncode, 1)
        self.assertEqual(len(found.stderr.splitlines()), 1)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
