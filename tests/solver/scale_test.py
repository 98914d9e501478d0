"""Runs zero_half on sparse models and checks what its memory depends on: scale_test.py PROGRAM WRITER FOLDER.

The peak of the resident memory, that of the simplex method included, is below the size of one array of rows
times columns, so the program holds no such array.
"""
import json
import os
import pathlib
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


class Scale(unittest.TestCase):
    def test_a_round_takes_less_than_a_dense_array(self):
        FOLDER.mkdir(parents=True, exist_ok=True)
        model = FOLDER / "cover.mps"
        subprocess.run([sys.executable, WRITER, "cover", str(ROWS), str(ROWS), str(model)], check=True)
        report = FOLDER / "report.json"
        peak, status = peak_of([PROGRAM, str(model), "--rounds", "1", "--time-limit", "10000",
                                "--display", "off", "--json", str(report)])
        self.assertEqual(status, 0)
        (solved,) = json.loads(report.read_text(encoding="utf-8"))["models"]
        self.assertEqual(len(solved["rounds"]), 1)
        self.assertGreater(solved["rounds"][0]["cuts_found"], 0)
        self.assertLess(peak, DENSE_ARRAY)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
