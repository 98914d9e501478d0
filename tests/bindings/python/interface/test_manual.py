"""The manual, the examples, the docstrings and the types agree with the package.

    PYTHONPATH=build/python/python /usr/bin/python3 test_manual.py write

writes the table of docs/python.md: each procedure in C++ and in Python. The procedures are those that the
library exports; the names in Python are those of the public members whose docstrings name the procedure; the
reasons why a procedure has no name are in WITHOUT_NAME.
"""

import doctest
import inspect
import pathlib
import re
import subprocess
import sys

import pytest

import zktarn
from zktarn import _generators, _numbers, _solve

ROOT = pathlib.Path(__file__).resolve().parents[4]
PACKAGE = ROOT / "bindings" / "python" / "zktarn"
PAGE = ROOT / "docs" / "python.md"
TEXT = PAGE.read_text(encoding="utf-8")
BEGIN = "<!-- begin: written by tests/bindings/python/interface/test_manual.py -->"
END = "<!-- end -->"

sys.path.insert(0, str(ROOT / "tests" / "bindings" / "manuals"))
import tables  # noqa: E402  The lists of procedures and signatures.

# Patterns of names, and what a program in Python does instead.
WITHOUT_NAME = [
    (r"_\w+initialise", "records are initialised when they are made"),
    (r"_cbdatalist\w+", "the value of a variable has any type, and Python copies and releases it"),
    (r"(alloc|free)mem_\w+", "`numpy.empty` makes arrays, and they release themselves"),
    (r"m(allocate|deallocate)", "`numpy.empty` makes arrays, and they release themselves"),
    (r"xcopy_\w+", "`numpy.copyto(destination, source)`"),
    (r"xzero_\w+", "`array.fill(0)`"),
    (r"lowercasee", "`text.replace(\"E\", \"e\")`"),
]


def public_members(package):
    """Name as a program writes it, and docstring, of everything public."""
    for name in sorted(package.__all__):
        member = getattr(package, name)
        yield f"zktarn.{name}", inspect.getdoc(member) or ""
        if inspect.isclass(member):
            for inner, attribute in sorted(vars(member).items()):
                if not inner.startswith("_"):
                    yield f"{name}.{inner}", inspect.getdoc(attribute) or ""


def names_in_python(package):
    """Module::procedure to the names of the members whose docstrings name it."""
    found = {}
    for name, text in public_members(package):
        for statement in re.findall(r"C\+\+: (.*?)(?:\Z|\n\n)", text, flags=re.S):
            module = None
            for module_here, procedure in re.findall(r"(?:(\w+)::)?\b(\w+)\b", statement):
                module = module_here or module
                found.setdefault((module, procedure), []).append(name)
    return found


def reason(procedure):
    for pattern, instead in WITHOUT_NAME:
        if re.fullmatch(pattern, procedure):
            return instead
    return None


def rows(package):
    """Module, signature in C++, cell for Python, of each procedure. Fails for one without a cell."""
    known = names_in_python(package)
    signatures = tables.cpp_signatures(ROOT)
    for module, procedure in tables.exported(ROOT):
        names = known.get((module, procedure))
        instead = reason(procedure)
        if bool(names) == bool(instead):
            raise LookupError(f"{module}::{procedure} has {names} in Python, and the reason {instead}")
        cell = ", ".join(f"`{name}`" for name in names) if names else f"none: {instead}"
        yield module, signatures[procedure], cell


def table(package):
    lines, current = [], None
    for module, signature, cell in rows(package):
        if module != current:
            lines += ["", f"### {module}", "", "| C++ | Python |", "|---|---|"]
            current = module
        lines.append(f"| `{signature}` | {cell} |")
    return "\n".join(lines) + "\n\n"


def parts(text):
    """The page before the table, the table, and the page after it."""
    before, rest = text.split(BEGIN + "\n", 1)
    current, after = rest.split(END, 1)
    return before + BEGIN + "\n", current, END + after


def run(*command):
    return subprocess.run([str(each) for each in command], capture_output=True, text=True, check=False)


def block(text, kind, name):
    return re.search(rf"<!-- {kind} {name} -->\n```\w+\n(.*?)```\n", text, flags=re.S).group(1)


def test_the_table_has_every_procedure():
    _, written, _ = parts(TEXT)
    assert written == table(zktarn)
    assert len(list(rows(zktarn))) == len(tables.exported(ROOT))


def test_a_procedure_without_a_name_or_a_reason_is_noticed(monkeypatch):
    this_module = sys.modules[__name__]
    monkeypatch.setattr(this_module, "WITHOUT_NAME", WITHOUT_NAME[1:])
    with pytest.raises(LookupError):
        table(zktarn)
    monkeypatch.setattr(this_module, "WITHOUT_NAME", [("xgcd_i4", "")])
    with pytest.raises(LookupError):
        table(zktarn)


@pytest.mark.parametrize("name", ["first", "rows", "decimals", "solver"])
def test_the_programs_print_the_output_on_the_page(tmp_path, name):
    program = tmp_path / "program.py"
    program.write_text(block(TEXT, "program", name), encoding="utf-8")
    ran = run(sys.executable, program)
    assert (ran.stdout, ran.stderr) == (block(TEXT, "output", name), "")


def test_no_program_of_the_page_is_left_out():
    names = re.findall(r"<!-- program (\w+) -->", TEXT)
    assert names == ["first", "rows", "decimals", "solver", "tighten"]  # the last: solver/
    assert TEXT.count("```python") == len(names)


def test_the_example_prints_the_same_as_in_other_languages():
    ran = run(sys.executable, ROOT / "examples" / "python" / "vectors.py")
    assert (ran.returncode, ran.stderr) == (0, "")
    readme = (ROOT / "README.md").read_text(encoding="utf-8")
    start = readme.index("mode   arrays")
    shown = readme[start:readme.index("\n\n", start)]
    assert shown.count("\n") == 3 and shown in ran.stdout
    assert ran.stdout.endswith(
        "\nThe vector is deleted, a view of its coefficients stays valid: 3, 2, -1.\n")
    wrong = run(sys.executable, ROOT / "examples" / "python" / "vectors.py", "x")
    assert (wrong.returncode, wrong.stderr) == (2, "vectors: takes no arguments, but was given 'x'\n")


@pytest.mark.parametrize("module", [_generators, _numbers, _solve])
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
        "__init__.py", "_core.pyi", "_host.pyi", "_generators.py", "_numbers.py", "_solve.py")]
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


def main():
    if sys.argv[1:] != ["write"]:
        sys.exit("test_manual: takes one argument, 'write'")
    before, _, after = parts(TEXT)
    PAGE.write_text(before + table(zktarn) + after, encoding="utf-8")


if __name__ == "__main__":
    main()
