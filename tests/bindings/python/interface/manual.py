#!/usr/bin/env python3
"""The table of docs/python.md: each procedure in C++ and in Python.

    manual.py write    writes the table into the page

The procedures are those that the library exports; the names in Python are those of the public members
whose docstrings name the procedure; the reasons why a procedure has no name are here.
"""

import inspect
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[4]
PAGE = ROOT / "docs" / "python.md"
BEGIN = "<!-- begin: written by tests/bindings/python/interface/manual.py -->"
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


def main():
    if sys.argv[1:] != ["write"]:
        sys.exit("manual: takes one argument, 'write'")
    sys.path.insert(0, str(ROOT / "build" / "python" / "python"))
    import zktarn
    before, _, after = parts(PAGE.read_text(encoding="utf-8"))
    PAGE.write_text(before + table(zktarn) + after, encoding="utf-8")


if __name__ == "__main__":
    main()
