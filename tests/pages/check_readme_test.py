#!/usr/bin/env python3
"""Tests that check_readme.py accepts a correct page and refuses each kind of incorrect page."""

import contextlib
import io
import pathlib
import subprocess
import sys
import tempfile
import types
import unittest
from unittest import mock

import check_readme

CHECK = pathlib.Path(__file__).with_name("check_readme.py")

CODE = "int main() {}\n"
PAGE = f"""# A page

<!-- program greet -->
```cpp
{CODE}```

prints

<!-- output greet -->
```text
hello
```

| module | header |
|---|---|
| `one_mod` | `zktarn/one/one_mod.hpp` |
| `two_mod` | `zktarn/two/two_mod.hpp` |

| preset | guarantees |
|---|---|
| `plain`, `checked` | something |

## Gates

| gate | guarantees |
|---|---|
| `all-is-well` | everything |

```c
/* libone */
void *take(int64_t nbytes);
void put(void *address, const int32_t *count);
/* libtwo */
int64_t make(void);
double *const *data(int64_t handle);
```
"""
EXPORTS = "# Names\n\n_ZN6zktarn7one_mod1fERKl\n_ZN6zktarn7one_mod2_gEv\n_ZN6zktarn7two_mod1hEv\n"
PRESETS = """{"configurePresets": [
    {"name": "base", "hidden": true}, {"name": "plain"}, {"name": "checked"}]}"""
LIBONE = """extern "C" {
void* take(std::int64_t nbytes) noexcept; // may be null
void put(void* address, const std::int32_t& count) noexcept;
}
"""
LIBTWO = """extern "C" {
array_handle make() noexcept;
const data_address& data(array_handle handle) noexcept;
}
"""
GATES = "all-is-well | short | library | everything\n"


class CheckReadme(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.page = self.write("page.md", PAGE)

    def write(self, name, text):
        path = self.folder / name
        path.write_text(text, encoding="utf-8")
        return path

    def program(self, script):
        path = self.write("program", f"#!/bin/sh\n{script}\n")
        path.chmod(0o755)
        return path

    def replace_in_page(self, old, new):
        self.assertIn(old, PAGE)
        self.page = self.write("page.md", PAGE.replace(old, new))

    def run_check(self, check, *arguments):
        """Runs a check in this process, which is faster. The result is that of a program."""
        error, status = io.StringIO(), 0
        command = [str(CHECK), check, *map(str, arguments)]
        with mock.patch.object(sys, "argv", command), contextlib.redirect_stderr(error):
            try:
                check_readme.main()
            except SystemExit as end:
                # Python prints a sentence given to sys.exit, and ends with status 1.
                status = 1
                error.write(f"{end.code}\n")
        return types.SimpleNamespace(returncode=status, stderr=error.getvalue())

    def accepted(self, check, *arguments):
        ran = self.run_check(check, self.page, *arguments)
        self.assertEqual((ran.returncode, ran.stderr), (0, ""))

    def refused(self, reason, check, *arguments):
        ran = self.run_check(check, self.page, *arguments)
        self.assertEqual(ran.returncode, 1)
        self.assertIn(reason, ran.stderr)

    def test_code_is_extracted(self):
        self.accepted("extract", "greet", self.folder / "code.cpp")
        self.assertEqual((self.folder / "code.cpp").read_text(encoding="utf-8"), CODE)

    def test_source_is_extracted_and_needs_no_output(self):
        self.replace_in_page("<!-- program greet -->", "<!-- source part -->")
        self.accepted("extract", "part", self.folder / "code.cpp")
        self.assertEqual((self.folder / "code.cpp").read_text(encoding="utf-8"), CODE)
        self.accepted("marks")

    def test_code_equal_to_the_source(self):
        self.accepted("source", "greet", self.write("code.cpp", CODE))

    def test_code_that_differs(self):
        code = self.write("code.cpp", CODE)
        self.replace_in_page("int main() {}", "int main() { }")
        self.refused("is not ", "source", "greet", code)

    def test_correct_output(self):
        self.accepted("output", "greet", self.program("echo hello"))

    def test_output_that_differs(self):
        self.refused("prints something else", "output", "greet", self.program("echo Hello"))

    def test_output_of_a_program_with_arguments(self):
        self.accepted("output", "greet", self.program('echo "$2"'), "good day", "hello")

    def test_output_without_its_last_line_feed(self):
        self.refused("prints something else", "output", "greet", self.program("printf hello"))

    def test_program_that_fails(self):
        self.refused("ended with status 3", "output", "greet", self.program("echo hello; exit 3"))

    def test_program_that_prints_errors(self):
        self.refused("standard error: oh", "output", "greet",
                     self.program("echo hello; echo oh >&2"))

    def test_unknown_block(self):
        self.refused("0 blocks marked 'output other'", "output", "other", self.program("true"))

    def test_duplicate_block(self):
        self.page = self.write("page.md", PAGE + PAGE)
        self.refused("2 blocks marked 'output greet'", "output", "greet", self.program("true"))

    def test_complete_marks(self):
        self.accepted("marks")

    def test_cpp_block_without_a_mark(self):
        self.replace_in_page("<!-- program greet -->\n", "")
        self.refused("not marked as a program", "marks")

    def test_python_block_without_a_mark(self):
        self.replace_in_page("prints\n", "prints\n\n```py\nprint()\n```\n")
        self.refused("not marked as a program", "marks")

    def test_program_without_its_output(self):
        self.replace_in_page("<!-- output greet -->\n", "")
        self.refused("0 blocks marked 'output greet'", "marks")

    def test_mark_without_a_block(self):
        self.replace_in_page("prints\n", "<!-- program other -->\nprints\n")
        self.refused("a mark without a block", "marks")

    def test_equal_modules(self):
        self.accepted("modules", self.write("exports.golden", EXPORTS))

    def test_module_that_is_not_in_the_table(self):
        self.refused("differ in new_mod", "modules",
                     self.write("exports.golden", EXPORTS + "_ZN6zktarn7new_mod1fEv\n"))

    def test_module_that_exports_nothing(self):
        self.refused("differ in two_mod", "modules",
                     self.write("exports.golden", EXPORTS.replace("two_mod", "one_mod")))

    def test_presets_that_are_explained(self):
        self.accepted("presets", self.write("presets.json", PRESETS))

    def test_preset_that_is_not_explained(self):
        self.refused("the preset fuzz", "presets", self.write(
            "presets.json", PRESETS.replace('"plain"', '"fuzz"')))

    def test_equal_gates(self):
        self.accepted("gates", self.write("script", GATES))

    def test_gate_that_is_not_in_the_table(self):
        self.refused("differ in new", "gates",
                     self.write("script", GATES + "new | all | library tests | x\n"))

    def test_gate_that_is_not_run(self):
        self.refused("differ in all-is-well", "gates", self.write("script", ""))

    def prototypes(self, one=LIBONE, two=LIBTWO):
        """The arguments of the check of prototypes, for headers with these texts."""
        return "prototypes", self.write("libone.hpp", one), self.write("libtwo.hpp", two)

    def test_equal_prototypes(self):
        self.accepted(*self.prototypes())

    def test_prototype_that_is_not_on_the_page(self):
        self.refused("page.md does not have void more(int64_t n)",
                     *self.prototypes(one=LIBONE.replace("\n}", "\nvoid more(std::int64_t n);\n}")))

    def test_prototype_that_no_header_has(self):
        self.replace_in_page("int64_t make(void);", "int64_t make(void);\nvoid more(void);")
        self.refused("libtwo.hpp does not have void more(void)", *self.prototypes())

    def test_prototype_with_other_arguments(self):
        self.refused("page.md does not have void*take(int32_t nbytes)",
                     *self.prototypes(one=LIBONE.replace("int64_t", "int32_t")))

    def test_prototypes_in_another_order(self):
        first, second = LIBONE.splitlines(keepends=True)[1:3]
        self.refused("page.md has libone in another order",
                     *self.prototypes(one=LIBONE.replace(first + second, second + first)))

    def test_library_that_is_not_on_the_page(self):
        self.refused("page.md does not have void f(void)", *self.prototypes(),
                     self.write("libthree.hpp", 'extern "C" {\nvoid f();\n}\n'))

    def test_header_without_prototypes(self):
        for arguments in (self.prototypes(two="int make();\n"), ("prototypes",)):
            self.refused("there is nothing to compare", *arguments)

    def test_wrong_arguments(self):
        for arguments in ((), ("output",), ("nothing", self.page), ("output", self.page),
                          ("marks", self.page, "more")):
            ran = self.run_check(*arguments) if arguments else self.run_check("")
            self.assertEqual(ran.returncode, 1)
            self.assertIn("usage:", ran.stderr)

    def test_the_program_itself(self):
        """The only test that starts check_readme.py as a program."""
        for page, status, reason in ((PAGE, 0, ""), (PAGE + PAGE, 1, "check_readme: ")):
            ran = subprocess.run(
                [sys.executable, CHECK, "output", self.write("page.md", page), "greet",
                 self.program("echo hello")], capture_output=True, text=True, check=False)
            self.assertEqual(ran.returncode, status)
            self.assertEqual(ran.stderr[:len("check_readme: ")], reason)

    def test_missing_page(self):
        self.page = self.folder / "nowhere.md"
        self.refused("cannot read", "marks")


if __name__ == "__main__":
    unittest.main()
