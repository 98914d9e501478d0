"""Runs zero_half on large sparse models: scale_test.py PROGRAM WRITER FOLDER.

The peak of the resident memory, that of the simplex method included, is below the size of one array of rows
times columns, so the program holds no such array. A time limit or too little memory ends it in an orderly way.
"""
import json
import os
import pathlib
import re
import resource
import subprocess
import sys
import unittest

PROGRAM, WRITER, FOLDER = sys.argv[1], sys.argv[2], pathlib.Path(sys.argv[3])
ROWS = 4000
DENSE_ARRAY = 8 * ROWS * ROWS


def peak_of(command):
    """The greatest resident memory of the process, in bytes, and its exit status."""
    process = subprocess.Popen(command)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    unit = 1 if sys.platform == "darwin" else 1024
    return usage.ru_maxrss * unit, process.returncode


def written(kind, rows):
    FOLDER.mkdir(parents=True, exist_ok=True)
    model = FOLDER / f"{kind}_{rows}.mps"
    subprocess.run([sys.executable, WRITER, kind, str(rows), str(rows), str(model)], check=True)
    return model


class Scale(unittest.TestCase):
    def test_a_round_takes_less_than_a_dense_array(self):
        model = written("cover", ROWS)
        report = FOLDER / "report.json"
        peak, status = peak_of([PROGRAM, str(model), "--rounds", "1", "--time-limit", "10000",
                                "--display", "off", "--json", str(report)])
        self.assertEqual(status, 0)
        (solved,) = json.loads(report.read_text(encoding="utf-8"))["models"]
        self.assertEqual(len(solved["rounds"]), 1)
        self.assertGreater(solved["rounds"][0]["cuts_found"], 0)
        self.assertLess(peak, DENSE_ARRAY)

    def test_time_limit_within_the_first_relaxation_gives_no_bound(self):
        model = written("packing", 30_000)
        report, cuts = FOLDER / "limited.json", FOLDER / "limited.mps"
        run = subprocess.run([PROGRAM, str(model), "--time-limit", "4", "--display", "final",
                              "--json", str(report), "--cuts", str(cuts)],
                             capture_output=True, text=True, check=True)
        self.assertRegex(run.stdout, r" - +- +- +- +0 .* time\n\Z")
        (solved,) = json.loads(report.read_text(encoding="utf-8"))["models"]
        self.assertEqual(solved["status"], "time_used")
        for figure in ("lp_bound", "relaxation_bound", "bound", "gap_closed_percent"):
            self.assertIsNone(solved[figure], figure)
        self.assertEqual(solved["rounds"], [])
        self.assertTrue(cuts.read_text(encoding="ascii").endswith("ENDATA\n"))

    @unittest.skipUnless(sys.platform == "linux", "the address space in use is read on Linux")
    def test_too_little_memory_is_one_sentence(self):
        model = written("packing", 10_000)
        estimates = 0
        for megabytes in range(24, 64, 4):
            limit = megabytes << 20
            run = subprocess.run([PROGRAM, str(model), "--display", "off", "--rounds", "0"],
                                 capture_output=True, text=True, check=False,
                                 preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS,
                                                                       (limit, limit)))
            if run.returncode == 127:  # the shared libraries do not fit
                continue
            self.assertIn(run.returncode, (0, 1), run.stderr)
            if run.returncode == 1:
                self.assertRegex(run.stderr, rf"\Azero_half: {re.escape(str(model))}: [^\n]+\n\Z")
                estimates += "the model needs at least" in run.stderr
        self.assertGreater(estimates, 0)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
