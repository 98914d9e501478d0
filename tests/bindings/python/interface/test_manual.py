"""The manual, the examples, the docstrings and the types agree with the package."""

import doctest
import pathlib
import re
import subprocess
import sys

import pytest

import manual
import zktarn
from zktarn import _generators, _numbers, _solve, _sorting

ROOT = pathlib.Path(__file__).resolve().parents[4]
PACKAGE = ROOT / "bindings" / "python" / "zktarn"
PAGE = manual.PAGE.read_text(encoding="utf-8")


def run(*command):
    return subprocess.run([str(each) for each in command], capture_output=True, text=True, check=False)


def block(text, kind, name):
    return re.search(rf"<!-- {kind} {name} -->\n```\w+\n(.*?)```\n", text, flags=re.S).group(1)


def test_the_table_has_every_procedure():
    _, table, _ = manual.parts(PAGE)
    assert table == manual.table(zktarn)
    assert len(list(manual.rows(zktarn))) == len(manual.tables.exported(ROOT))


def test_a_procedure_without_a_name_or_a_reason_is_noticed(monkeypatch):
    monkeypatch.setattr(manual, "WITHOUT_NAME", manual.WITHOUT_NAME[1:])
    with pytest.raises(LookupError):
        manual.table(zktarn)
    monkeypatch.setattr(manual, "WITHOUT_NAME", [("xgcd_i4", "")])
    with pytest.raises(LookupError):
        manual.table(zktarn)


@pytest.mark.parametrize("name", ["first", "rows", "decimals", "solver"])
def test_the_programs_print_what_the_page_says(tmp_path, name):
    program = tmp_path / "program.py"
    program.write_text(block(PAGE, "program", name), encoding="utf-8")
    ran = run(sys.executable, program)
    assert (ran.stdout, ran.stderr) == (block(PAGE, "output", name), "")


def test_no_program_of_the_page_is_left_out():
    names = re.findall(r"<!-- program (\w+) -->", PAGE)
    assert names == ["first", "rows", "decimals", "solver", "tighten"]  # the last: solver/
    assert PAGE.count("```python") == len(names)


def test_the_example_prints_what_the_other_languages_print():
    ran = run(sys.executable, ROOT / "examples" / "python" / "vectors.py")
    assert (ran.returncode, ran.stderr) == (0, "")
    readme = (ROOT / "README.md").read_text(encoding="utf-8")
    start = readme.index("mode   arrays")
    table = readme[start:readme.index("\n\n", start)]
    assert table.count("\n") == 3 and table in ran.stdout
    assert ran.stdout.endswith(
        "\nThe vector is deleted, a view of its coefficients stays valid: 3, 2, -1.\n")
    wrong = run(sys.executable, ROOT / "examples" / "python" / "vectors.py", "x")
    assert (wrong.returncode, wrong.stderr) == (2, "vectors: takes no arguments, but was given 'x'\n")


@pytest.mark.parametrize("module", [_generators, _numbers, _solve, _sorting])
def test_the_examples_of_the_modules(module):
    assert doctest.testmod(module).failed == 0


def test_the_examples_of_the_docstrings_in_cpp():
    parser, runner = doctest.DocTestParser(), doctest.DocTestRunner()
    example = parser.get_doctest(zktarn.Vector.__doc__, {"Vector": zktarn.Vector},
                               "Vector", None, 0)
    assert len(example.examples) == 5
    assert runner.run(example).failed == 0


def mypy(*arguments):
    pytest.importorskip("mypy")
    return run(sys.executable, "-m", *arguments)


@pytest.mark.any_interpreter
def test_the_interface_has_strict_types():
    modules = [PACKAGE / name for name in (
        "__init__.py", "_core.pyi", "_host.pyi", "_generators.py", "_numbers.py", "_solve.py",
        "_sorting.py")]
    checked = mypy("mypy", "--strict", *modules, ROOT / "examples" / "python" / "vectors.py")
    assert checked.returncode == 0, checked.stdout


WRONG_LINES = [
    ("x: str = zktarn.Vector(8)[2]", "Incompatible types"),
    ("zktarn.Vector('8')", "incompatible type"),
    ("zktarn.Vector(8).combine(1, 1.0, 1.0, 0.0)", "incompatible type"),
    ("zktarn.rational(0.5, 1e-9, 100).numerator", "has no attribute"),
    ("zktarn.floor(1.0)", "No overload"),
    ("zktarn.sort(1, 2, 3)", "incompatible type"),
]


@pytest.mark.any_interpreter
def test_wrong_types_are_reported(tmp_path):
    program = tmp_path / "program.py"
    program.write_text("\n".join(["import zktarn", *(line for line, _ in WRONG_LINES)]) + "\n",
                       encoding="utf-8")
    checked = mypy("mypy", "--strict", program)
    assert checked.returncode == 1
    for number, (line, message) in enumerate(WRONG_LINES, 2):
        found = [each for each in checked.stdout.splitlines()
                 if f"program.py:{number}: error" in each]
        assert any(message in each for each in found), (line, checked.stdout)


@pytest.mark.any_interpreter
def test_right_types_are_not_reported(tmp_path):
    program = tmp_path / "program.py"
    program.write_text(
        "import numpy as np\nimport zktarn\n"
        "x = zktarn.Vector(8)\nx[2] = 3\nx.add_nz(np.int64(3), np.float32(1.0))\n"
        "entries: list[tuple[int, float]] = list(x)\n"
        "a: float = float(zktarn.floor(1.5, 1e-9))\n"
        "b = zktarn.is_int(np.ones(3), [1e-9, 1e-6, 0.0], out=np.empty(3, np.bool_))\n"
        "found = zktarn.rational(0.5, 1e-9, 100)\n"
        "assert found is not None and found.numerator == 1\n"
        "zktarn.sort(1, 2, lambda p, q: False)\n", encoding="utf-8")
    checked = mypy("mypy", "--strict", program)
    assert checked.returncode == 0, checked.stdout
    assert run(sys.executable, program).returncode == 0


@pytest.mark.any_interpreter
def test_the_types_are_those_of_the_extension_module():
    checked = mypy("mypy.stubtest", "zktarn._core", "--ignore-missing-stub", "--concise")
    # Functions that only the package calls have no signature that Python can read.
    wrong = [line for line in checked.stdout.splitlines()
             if re.match(r"zktarn\._core\.Vector\b", line) and "__init__" not in line]
    assert wrong == [] and "not checked" not in checked.stdout, checked.stdout
