#!/usr/bin/env python3
"""Tests of the tool: the mutants of a text, and the report on the library of sample_library.py."""

import argparse
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import equivalents
import mutate
import sample_library
from operators import mutants_of

HERE = Path(__file__).resolve().parent
# The mutants of the sample that its test does not detect.
UNDETECTED = """sums triple
constant: 3 into 2
constant: 3 into 4
The test calls it with 0 only. The mutants are not equivalent, but the tests of the tool need an entry.
"""
OPTIONS = argparse.Namespace(cmake="cmake", compiler="c++")


def changes(text, operator=None):
    """The changed lines of all mutants of a text."""
    return [
        mutant.after.strip()
        for mutant in mutants_of("some.cpp", text)
        if operator in (None, mutant.operator)
    ]


def deleted(text):
    return [m.before.strip() for m in mutants_of("x", text) if m.operator == "statement"]


def body(code):
    return "void f() noexcept {\n" + code + "\n}\n"


class Operators(unittest.TestCase):
    def test_a_comparison_moves_its_boundary_and_is_reversed(self):
        self.assertEqual(
            changes("bool b = x < y;") + changes("bool b = x >= y;") + changes("bool b = x == y;"),
            ["bool b = x <= y;", "bool b = x >= y;", "bool b = x < y;", "bool b = x > y;",
             "bool b = x != y;"],
        )  # fmt: skip

    def test_brackets_of_templates_are_not_comparisons(self):
        self.assertEqual(changes(body("g(static_cast<int>(x), h<T>());"), "relational"), [])

    def test_arithmetic_turns_into_its_opposite(self):
        self.assertEqual(
            changes("int k = a + b;") + changes("int k = a * b;") + changes("int k = a << b;"),
            ["int k = a - b;", "int k = a / b;", "int k = a >> b;"],
        )

    def test_pointers_and_references_are_not_arithmetic(self):
        self.assertEqual(changes("int* p(const int& a, int&& b, T* const c);"), [])

    def test_signs_and_negations_are_dropped(self):
        self.assertEqual(
            changes("bool b = !c;") + changes("int k = -a;") + changes("int k = ~a;"),
            ["bool b = c;", "int k = a;", "int k = a;"],
        )

    def test_constants_are_changed_by_one(self):
        self.assertEqual(
            changes("int k = 7;") + changes("double x = 0.0;") + changes("double x = 0x1p-3;")
            + changes("bool b = true;"),
            ["int k = 6;", "int k = 8;", "double x = -1.0;", "double x = 1.0;",
             "double x = (0x1p-3 + 1);", "double x = (0x1p-3 - 1);", "bool b = false;"],
        )  # fmt: skip

    def test_texts_comments_and_directives_have_no_mutants(self):
        self.assertEqual(changes('#if A < 7\n// a + 1\n/* b - 2 */ const char* t = "3 < 4";'), [])

    def test_code_for_the_compiler_only_has_no_mutants(self):
        self.assertEqual(
            changes(
                "static_assert(sizeof(x) == 8);\ntemplate <class T, int n = 2> struct s;\n"
                "using lanes = int __attribute__((vector_size(32)));\n"
                "template <class T> requires(n == 1) void f(T x);\n[[gnu::aligned(4)]] int k;"
            ),
            [],
        )

    def test_prefetching_has_no_mutants(self):
        self.assertEqual(changes(body("__builtin_prefetch(p + 1, 1);"), "arithmetic"), [])
        for call in ("prefetch_read(p, j);", "entries.prefetch(list[k]);"):
            self.assertEqual(changes(body(call), "statement"), [])
        self.assertEqual(changes(body("entries.clear(prefetch(k));"), "statement"), [";"])

    def test_conditions_are_negated_unless_another_mutant_does_it(self):
        self.assertEqual(changes(body("if (a && b) {\ng();\n}"), "condition"), ["if (!(a && b)) {"])
        self.assertEqual(changes(body("while (is(a)) {\ng();\n}"), "condition"),
                         ["while (!(is(a))) {"])  # fmt: skip
        self.assertEqual(changes(body("if (a < b) {\ng();\n}"), "condition"), [])
        self.assertEqual(changes(body("if (!a) {\ng();\n}"), "condition"), ["if (!(!a)) {"])
        self.assertEqual(changes(body("if (const x = g(); x.found) {\ng();\n}"), "condition"),
                         ["if (const x = g(); !(x.found)) {"])  # fmt: skip

    def test_statements_are_deleted_but_declarations_and_results_stay(self):
        code = "int k = g();\nstd::span<int> s(p, n);\nk += h;\nv.add(k);\n*out = k;\nreturn k;"
        mutants = deleted(body(code))
        self.assertEqual(mutants, ["k += h;", "v.add(k);", "*out = k;"])

    def test_statements_of_lambdas_and_branches_are_deleted(self):
        code = "h([&] {\n++k;\n});\nif (b) {\nreturn;\n} else {\nbreak;\n}"
        mutants = deleted(body(code))
        self.assertIn("++k;", mutants)
        self.assertIn("return;", mutants)
        self.assertIn("break;", mutants)

    def test_arguments_are_swapped_with_the_next_one(self):
        self.assertEqual(
            changes(body("g(a, b + c, d);"), "arguments"), ["g(b + c, a, d);", "g(a, d, b + c);"]
        )
        self.assertEqual(changes(body("return {a, b};"), "arguments"), ["return {b, a};"])

    def test_arguments_of_symmetric_procedures_are_not_swapped(self):
        self.assertEqual(changes(body("k = std::min(a, b) + h(c, c);"), "arguments"), [])
        self.assertEqual(
            changes(body("k = real_gcd(a, b, c);"), "arguments"), ["k = real_gcd(a, c, b);"]
        )

    def test_parameters_are_not_swapped(self):
        self.assertEqual(changes("int f(int a, int b) {\nreturn g([](int c, int d) {});\n}"), [])

    def test_several_lines_are_one_mutant(self):
        (mutant,) = (m for m in mutants_of("x", body("g(a,\n  b);")) if m.operator == "statement")
        self.assertEqual((mutant.line, mutant.before, mutant.after), (2, "g(a,\n  b);", ";"))

    def test_equal_changes_are_numbered(self):
        mutants = mutants_of("x", "int a = 1;\nint b = 2;\nint a = 1;\n")
        self.assertEqual(
            [m.occurrence for m in mutants if m.after == "int a = 0;"], [1, 2]
        )

    def test_an_unmatched_bracket_is_reported_with_its_line(self):
        with self.assertRaisesRegex(ValueError, "line 2: unmatched"):
            mutants_of("some.cpp", "int k = 1;\nint f(int a;\n")


NAMES = """
namespace a {
constexpr double limit = 2.0;
const int table[] = {1, 2};
struct [[nodiscard]] judge : base {
    int seen = 3;
    explicit judge(int n) : seen{n + 4} {}
    template <class T> bool operator()(T x) const { return x < 5; }

private:
    int total() const noexcept;
};
template <class T>
T judge::total(int n = 6) {
    return std::count(p, [&](int k) { if (k == 7) { return k; } else { return 8; } });
}
int after = 9;
} // namespace a
"""


class Kinds(unittest.TestCase):
    """Kinds of mutants, by which the list of equivalent mutants names them."""

    def kinds(self, text, file="src/zktarn/util/some.cpp"):
        return {equivalents.kind_of(m, "src/zktarn") for m in mutants_of(file, text)}

    def test_a_mutant_belongs_to_its_procedure_and_the_enclosing_types(self):
        found = {(change.split()[0], procedure)
                 for _, procedure, operator, change in self.kinds(NAMES) if operator == "constant"}
        self.assertEqual(found, {
            ("2.0", "limit"), ("1", "table"), ("2", "table"), ("3", "judge::seen"),
            ("4", "judge::judge"), ("5", "judge::operator()"), ("6", "total"), ("7", "total"),
            ("8", "total"), ("9", "after"),
        })  # fmt: skip

    def test_a_detail_folder_belongs_to_its_module(self):
        for file, module in (("util/detail/a.hpp", "util"), ("a.hpp", "-"), ("detail/a.hpp", "-")):
            (kind, *_) = self.kinds("int k = 1;", f"src/zktarn/{file}")
            self.assertEqual(kind[0], module)

    def test_layout_and_names_of_variables_make_no_difference(self):
        code = "int f(int a) {\n  if (a < 7 && g(a, 1)) {\n    a += 2;\n  }\n  return -a;\n}\n"
        other = "// f\n\nint f(int bound)\n{\n  if (bound < 7 &&\n    g(bound, 1)) { bound += 2; }\n" \
                "  return -bound;\n}\n"
        self.assertEqual(len(self.kinds(code)), 14)
        self.assertEqual(self.kinds(code), self.kinds(other))


class Tool(unittest.TestCase):
    """Runs on the sample library."""

    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.root = Path(cls.folder.name) / "sample"
        cls.build = Path(cls.folder.name) / "build"
        sample_library.write(cls.root)
        subprocess.run(
            [OPTIONS.cmake, "-S", cls.root, "-B", cls.build, "-G", "Ninja",
             f"-DCMAKE_CXX_COMPILER={OPTIONS.compiler}"],
            check=True, stdout=subprocess.DEVNULL,
        )  # fmt: skip
        subprocess.run(
            [OPTIONS.cmake, "--build", cls.build], check=True, stdout=subprocess.DEVNULL
        )
        cls.whole = cls.run_tool(UNDETECTED, "--jobs", "2")

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    @classmethod
    def run_tool(cls, listed, *more, files=()):
        entries = Path(cls.folder.name) / "listed.txt"
        entries.write_text(listed)
        return subprocess.run(
            [sys.executable, HERE / "mutate.py", "--root", cls.root, "--build", cls.build,
             "--sources", "src/sample", "--library", "sample", "--equivalents", entries, *more],
            capture_output=True, text=True, check=False,
        )  # fmt: skip

    def counts(self, done, file):
        """The numbers in the row of a file."""
        row = re.search(rf"^{file} +(.*)$", done.stdout, re.MULTILINE)
        return [int(each) for each in row.group(1).split()]

    def test_every_kind_of_outcome_is_counted(self):
        self.assertEqual(self.whole.stderr, "")
        self.assertEqual(self.whole.returncode, 0)
        # Mutants, then killed, endless, equivalent, survived, unchanged, uncompilable.
        self.assertEqual(self.counts(self.whole, "src/sample/sums/sums.cpp"),
                         [24, 23, 1, 0, 0, 3, 0])  # fmt: skip
        self.assertEqual(self.counts(self.whole, "src/sample/sums/sums.hpp"),
                         [3, 1, 0, 2, 0, 0, 0])  # fmt: skip

    def test_nothing_is_written_among_the_sources(self):
        files = {str(p.relative_to(self.root)): p.read_text(encoding="utf-8")
                 for p in self.root.rglob("*") if p.is_file()}
        self.assertEqual(files, sample_library.FILES)

    def test_a_survivor_that_is_not_listed_is_shown_and_fails(self):
        done = self.run_tool("", "--files", "sums.hpp")
        self.assertEqual(done.returncode, 1)
        self.assertIn("src/sample/sums/sums.hpp:12: triple: constant: 3 into 2\n"
                      "    - return 3 * value;\n    + return 2 * value;\n", done.stdout)
        self.assertIn("2 mutants survived that listed.txt does not explain", done.stderr)

    def test_an_entry_that_lists_more_than_exist_fails(self):
        entry = "sums capped_sum\nlogical: && into ||\nIt once had a condition.\n"
        done = self.run_tool(UNDETECTED + "\n" + entry,
                             "--files", "sums.hpp")  # fmt: skip
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"listed\.txt:\d+: sums capped_sum: logical: && into \|\|: "
                                      r"lists 1, but 0 exist")  # fmt: skip

    def test_an_entry_that_is_killed_fails(self):
        entry = "sums steps\nassignment: += into -=\nThe count is unused.\n"
        done = self.run_tool(UNDETECTED + "\n" + entry)
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"lists 1 of 1, but 1 did not survive, one of them at line 17 "
                                      r"\(killed sums_test\)")  # fmt: skip

    def test_an_entry_explains_no_more_survivors_than_it_counts(self):
        entry = "sums triple\nconstant: 3 into 2\nOne of two is explained.\n"
        done = self.run_tool(entry, "--files", "sums.hpp")
        self.assertIn("1 mutants survived that listed.txt does not explain", done.stderr)
        self.assertIn("triple: constant: 3 into 4", done.stdout)

    def test_a_count_may_be_given(self):
        entry = "sums triple\nconstant x2: 3 into 2\nconstant: 3 into 4\nThere is one.\n"
        done = self.run_tool(entry, "--files", "sums.hpp")
        self.assertIn("listed.txt:2: sums triple: constant: 3 into 2: lists 2, but 1 exist", done.stderr)

    def test_an_incomplete_entry_is_refused(self):
        for entry, sentence in (
            ("sums triple\nconstant: 3 into 2\n", "an entry needs a reason"),
            ("sums triple\nBecause.\n", "an entry needs a line with an operator and its change"),
            ("triple\nconstant: 3 into 2\nBecause.\n", "an entry begins with a module and a procedure"),
        ):
            done = self.run_tool(entry)
            self.assertEqual((done.returncode, done.stderr),
                             (2, f"mutate.py: listed.txt:1: {sentence}\n"))  # fmt: skip

    def test_too_few_kills_fail(self):
        done = self.run_tool(UNDETECTED, "--least", "99")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        done = self.run_tool("# Nothing is equivalent.\n", "--least", "99")
        self.assertEqual(done.returncode, 1)
        self.assertRegex(done.stderr, r"\d+\.\d % of the mutants were killed, fewer than 99\.0 %")

    def test_a_sample_is_the_same_each_time(self):
        runs = [
            self.run_tool(UNDETECTED, "--sample", "3", "--report", self.build / "r")
            and re.sub(r'"seconds": [\d.]+', "", (self.build / "r").read_text())
            for _ in range(2)
        ]
        self.assertEqual(runs[0], runs[1])
        self.assertEqual(len(runs[0].splitlines()), 3)

    def test_an_edit_elsewhere_does_not_change_a_sample(self):
        mutants = mutate.all_mutants(argparse.Namespace(root=self.root, sources="src/sample"))
        options = argparse.Namespace(files=[""], again=None, seed=1, sample=5)
        sample = mutate.chosen(options, mutants)
        without = mutate.chosen(options, [m for m in mutants if m in sample or m.line % 2 == 0])
        self.assertEqual(without, sample)

    def test_survivors_of_a_report_are_tried_again(self):
        report = Path(self.folder.name) / "report"
        self.run_tool("", "--report", report)
        again = self.run_tool("", "--again", report)
        self.assertIn("2 of 30 mutants are tried", again.stdout)

    def test_a_missing_build_is_reported(self):
        done = subprocess.run(
            [sys.executable, HERE / "mutate.py", "--build", "/nowhere"],
            capture_output=True, text=True, check=False,
        )  # fmt: skip
        self.assertEqual(done.returncode, 2)
        self.assertRegex(done.stderr, r"^mutate\.py: there is no compile_commands\.json[^\n]*\n$")


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--cmake", default=OPTIONS.cmake)
    parser.add_argument("--compiler", default=OPTIONS.compiler)
    parser.parse_known_args(namespace=OPTIONS)
    unittest.main(argv=[sys.argv[0]] + parser.parse_known_args()[1])
