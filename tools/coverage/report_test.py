#!/usr/bin/env python3
"""Tests of the coverage tool: what its report objects to, and which compilations fail."""

import subprocess
import tempfile
import unittest
from pathlib import Path

import report

MEASURED = Path(__file__).resolve().parent / "measured.sh"
FUNCTION = "inline int twice(int x) noexcept {\n    return 2 * x;\n}\n"
DECLARATION = "// The body of twice(x) { ... } is elsewhere.\nint twice(int x) noexcept;\n"


def counts(lines, branches=100, conditions=100):
    """Counts of a file of which so many of 100 are covered."""
    return [{"covered": covered, "count": 100} for covered in (lines, branches, conditions)]


class Project(unittest.TestCase):
    """A project with one file of each kind."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.project = Path(folder.name)
        self.write("src/zktarn/code.hpp", FUNCTION)
        self.write("src/zktarn/declaration.hpp", DECLARATION)
        self.write("standin/src/code.cpp", FUNCTION)

    def write(self, name, text):
        path = self.project / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return path

    def findings(self, library=None, standin=None, excluded=()):
        coverage = {"src/zktarn/code.hpp": library or counts(100),
                    "standin/src/code.cpp": standin or counts(100)}
        return report.findings(coverage, self.project, excluded)

    def test_complete_coverage_has_no_fault(self):
        self.assertEqual(self.findings(), [])

    def test_the_library_is_covered_completely_and_the_stand_in_nearly(self):
        self.assertEqual(self.findings(library=counts(99, 98, 97)),
                         ["src/zktarn/code.hpp is below 100 % of its lines, branches, mcdc"])
        self.assertEqual(self.findings(standin=counts(95, 95, 0)), [])
        self.assertEqual(self.findings(standin=counts(94)),
                         ["standin/src/code.cpp is below 95 % of its lines"])
        self.assertEqual(self.findings(standin=counts(95, 94)),
                         ["standin/src/code.cpp is below 95 % of its branches"])

    def test_a_file_with_code_and_without_counts_is_missed(self):
        self.write("src/zktarn/forgotten.hpp", FUNCTION)
        self.assertEqual(self.findings(), ["src/zktarn/forgotten.hpp is not counted"])
        self.assertEqual(self.findings(excluded=["src/zktarn/forgotten.hpp"]), [])

    def test_an_excluded_file_may_fall_short(self):
        self.assertEqual(self.findings(library=counts(99), excluded=["src/zktarn/code.hpp"]), [])

    def test_an_exclusion_that_excuses_nothing_is_stale(self):
        for name in ("src/zktarn/code.hpp", "src/zktarn/declaration.hpp", "src/zktarn/gone.hpp"):
            self.assertEqual(self.findings(excluded=[name]), [f"{name} is excluded for nothing"])

    def test_an_exclusion_has_a_reason(self):
        path = self.write("exclusions.txt", "# comment\n\na.hpp: for a reason\n")
        self.assertEqual(report.read_exclusions(path), [("a.hpp", "")])
        path.write_text("a.hpp:\n", encoding="utf-8")
        with self.assertRaisesRegex(SystemExit, "no reason in 'a.hpp:'"):
            report.read_exclusions(path)


TABLE = """File '/home/src/zktarn/code.hpp':
Name            Regions    Miss   Cover     Lines    Miss   Cover  Branches    Miss   Cover  MC/DC Conditions    Miss   Cover
-----------------------------------------------------------------------------------------------------------------------------
_ZN1n5otherEi         4       0 100.00%         1       0 100.00%         2       0 100.00%                 0       0   0.00%
_ZN1n6chooseEv        6       1  83.33%         3       1  66.67%         4       2  50.00%                 2       2   0.00%
start                 1       0 100.00%         1       0 100.00%         0       0   0.00%                 0       0   0.00%
-----------------------------------------------------------------------------------------------------------------------------
TOTAL                11       1  90.91%         5       1  80.00%         6       2  66.67%                 2       2   0.00%
"""


class Procedures(unittest.TestCase):
    """Procedures that are excluded, and nothing else of their files."""

    def excuse(self, name, procedure):
        coverage = {"src/zktarn/code.hpp": counts(99, 97, 98)}
        stale = report.excuse(coverage, [(name, procedure)], lambda file: TABLE)
        left = [c["count"] - c["covered"] for c in coverage["src/zktarn/code.hpp"]]
        return stale, left

    def test_what_an_excluded_procedure_misses_is_not_counted(self):
        self.assertEqual(self.excuse("src/zktarn/code.hpp", "choose"), ([], [0, 1, 0]))

    def test_a_procedure_that_misses_nothing_is_excluded_for_nothing(self):
        for procedure in ("other", "start", "hoose", "gone"):
            stale, left = self.excuse("src/zktarn/code.hpp", procedure)
            self.assertEqual(stale, [f"{procedure} of src/zktarn/code.hpp is excluded for nothing"])
            self.assertEqual(left, [1, 3, 2])

    def test_a_procedure_of_a_file_that_is_not_counted_is_excluded_for_nothing(self):
        stale, _ = self.excuse("src/zktarn/gone.cpp", "choose")
        self.assertEqual(stale, ["choose of src/zktarn/gone.cpp is excluded for nothing"])

    def test_an_exclusion_may_name_a_procedure(self):
        with tempfile.TemporaryDirectory() as folder:
            path = Path(folder) / "exclusions.txt"
            path.write_text("a.cpp choose: for a reason\n", encoding="utf-8")
            self.assertEqual(report.read_exclusions(path), [("a.cpp", "choose")])


class Compilation(unittest.TestCase):
    def status_of(self, says, status=0):
        compiler = ["sh", "-c", f"echo '{says}' >&2; exit {status}"]
        ran = subprocess.run([MEASURED, *compiler], capture_output=True, text=True, check=False)
        self.assertEqual(ran.stderr, f"{says}\n")
        return ran.returncode

    def test_a_condition_of_the_library_that_is_left_out_is_an_error(self):
        left_out = "code.hpp:3:5: warning: unsupported MC/DC boolean expression; contains more"
        self.assertEqual(self.status_of(f"/home/src/zktarn/util/{left_out}"), 1)
        self.assertEqual(self.status_of(f"/home/tests/unit/util/{left_out}"), 0)

    def test_anything_else_is_left_to_the_compiler(self):
        self.assertEqual(self.status_of("src/zktarn/a.hpp:1:1: warning: unused"), 0)
        self.assertEqual(self.status_of("src/zktarn/a.hpp:1:1: error: unknown", status=4), 4)


if __name__ == "__main__":
    unittest.main()
