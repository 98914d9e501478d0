#!/usr/bin/env python3
"""Tests of the coverage tool: the findings of its report, and the compilations that fail."""

import subprocess
import tempfile
import unittest
from pathlib import Path

import report

MEASURED = Path(__file__).resolve().parent / "measured.sh"
FUNCTION = "inline int twice(int x) noexcept {\n    return 2 * x;\n}\n"
DECLARATION = "// The body of twice(x) { ... } is elsewhere.\nint twice(int x) noexcept;\n"


def counts(lines, branches=100, conditions=100):
    """Counts of a file, each out of 100."""
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

    def test_a_file_with_code_but_without_counts_is_reported(self):
        self.write("src/zktarn/forgotten.hpp", FUNCTION)
        self.assertEqual(self.findings(), ["src/zktarn/forgotten.hpp is not counted"])
        self.assertEqual(self.findings(excluded=["src/zktarn/forgotten.hpp"]), [])

    def test_an_excluded_file_may_be_below_its_limit(self):
        self.assertEqual(self.findings(library=counts(99), excluded=["src/zktarn/code.hpp"]), [])

    def test_an_exclusion_that_is_not_needed_is_reported(self):
        for name in ("src/zktarn/code.hpp", "src/zktarn/declaration.hpp", "src/zktarn/missing.hpp"):
            self.assertEqual(self.findings(excluded=[name]), [f"{name} needs no exclusion"])

    def test_a_program_with_other_code_than_the_library_ships_is_left_out(self):
        for name in ("src/zktarn/libzktarn_util.so", "tests/unit/a/a_test", "tests/unit/check/check_on_test"):
            self.write(name, "")
        self.assertEqual(report.instrumented(self.project),
                         [f"{self.project}/src/zktarn/libzktarn_util.so", f"{self.project}/tests/unit/a/a_test"])

    def test_every_exclusion_names_a_file_and_has_a_reason(self):
        for file, _, reason in report.EXCLUSIONS:
            self.assertTrue((report.PROJECT / file).is_file(), file)
            self.assertRegex(reason, r"^[A-Z].*\.$", file)


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
    """Exclusions of single procedures."""

    def excuse(self, name, procedure):
        coverage = {"src/zktarn/code.hpp": counts(99, 97, 98)}
        stale = report.excuse(coverage, [(name, procedure)], lambda file: TABLE)
        uncovered = [c["count"] - c["covered"] for c in coverage["src/zktarn/code.hpp"]]
        return stale, uncovered

    def test_uncovered_code_of_an_excluded_procedure_is_not_counted(self):
        self.assertEqual(self.excuse("src/zktarn/code.hpp", "choose"), ([], [0, 1, 0]))

    def test_a_covered_procedure_needs_no_exclusion(self):
        for procedure in ("other", "start", "hoose", "missing"):
            stale, uncovered = self.excuse("src/zktarn/code.hpp", procedure)
            self.assertEqual(stale, [f"{procedure} of src/zktarn/code.hpp needs no exclusion"])
            self.assertEqual(uncovered, [1, 3, 2])

    def test_a_procedure_of_an_uncounted_file_needs_no_exclusion(self):
        stale, _ = self.excuse("src/zktarn/missing.cpp", "choose")
        self.assertEqual(stale, ["choose of src/zktarn/missing.cpp needs no exclusion"])


class Compilation(unittest.TestCase):
    def status_of(self, text, status=0):
        compiler = ["sh", "-c", f"echo '{text}' >&2; exit {status}"]
        ran = subprocess.run([MEASURED, *compiler], capture_output=True, text=True, check=False)
        self.assertEqual(ran.stderr, f"{text}\n")
        return ran.returncode

    def test_an_unmeasured_condition_of_the_library_is_an_error(self):
        warning = "code.hpp:3:5: warning: unsupported MC/DC boolean expression; contains more"
        self.assertEqual(self.status_of(f"/home/src/zktarn/util/{warning}"), 1)
        self.assertEqual(self.status_of(f"/home/tests/unit/util/{warning}"), 0)

    def test_other_warnings_and_errors_keep_the_compilers_status(self):
        self.assertEqual(self.status_of("src/zktarn/a.hpp:1:1: warning: unused"), 0)
        self.assertEqual(self.status_of("src/zktarn/a.hpp:1:1: error: unknown", status=4), 4)


if __name__ == "__main__":
    unittest.main()
