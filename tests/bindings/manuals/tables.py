#!/usr/bin/env python3
"""Generates the tables of docs/c.md and docs/fortran.md: each procedure in C++ and in the other language, and
the control of the stand-in host.

    tables.py check SOURCE   fails when the table of a page differs from the headers
    tables.py write SOURCE   writes the tables to the pages

The signatures come from the headers and modules, the list of procedures from exports.golden.
"""

import pathlib
import re
import sys

import standin_tables

BEGIN = "<!-- begin: written by tests/bindings/manuals/tables.py -->"
END = "<!-- end -->"


def fail(sentence):
    sys.exit(f"tables: {sentence}")


def squeezed(text):
    return re.sub(r"\s+", " ", text).replace("( ", "(").strip()


def exported(source):
    """The module and name of each exported procedure, sorted."""
    text = (source / "tests/binary/abi/exports.golden").read_text(encoding="utf-8")
    found = []
    for mangled in re.findall(r"^_ZN6zktarn(\w+)$", text, flags=re.M):
        parts = []
        while mangled[0].isdigit():
            length, rest = re.match(r"(\d+)(.*)", mangled).groups()
            parts.append(rest[:int(length)])
            mangled = rest[int(length):]
        found.append(tuple(parts))
    if len(found) < 80:
        fail("there are too few names in exports.golden")
    return sorted(set(found), key=lambda pair: (pair[0], pair[1].lstrip("_")))


def cpp_signatures(source):
    found = {}
    for header in sorted((source / "src/zktarn").rglob("*.hpp")):
        text = re.sub(r"//.*", "", header.read_text(encoding="utf-8"))
        text = re.sub(r"\[\[.*?\]\]", "", text)
        for match in re.finditer(r"ZKTARN_API(?:_INLINE)?\s+([^;{}()]*?(\w+)\((?:[^;{}]|{})*?\))"
                                 r"\s*noexcept", text):
            found[match.group(2)] = squeezed(match.group(1))
    return found


def c_prototypes(source):
    text = (source / "bindings/c/include/zktarn_util.h").read_text(encoding="utf-8")
    text = re.sub(r"/\*.*?\*/", "", text, flags=re.S)
    found = {}
    pattern = r"^ZKTARN_C_API\s+(?:ZKTARN_C_RESULT\s+)?([\w ]+?[\s*]+zktarn_(\w+)\([^)]*\));"
    for match in re.finditer(pattern, text, flags=re.M):
        found[match.group(2)] = squeezed(match.group(1))
    inlined = set(re.findall(r"^(?:ZKTARN_C_RESULT )?static inline \w+ zktarn_(\w+)\(", text,
                             flags=re.M))
    return found, inlined


def fortran_procedures(source):
    """The interfaces of each public procedure, and the specific procedures of each generic name."""
    forms = {}
    generics = {}
    for module in sorted((source / "bindings/fortran").glob("zktarn_*.f90")):
        if module.stem.startswith("zktarn_standin"):
            continue
        text = re.sub(r"&\s*\n\s*", "", module.read_text(encoding="utf-8"))
        for match in re.finditer(r"^ +(function|subroutine) (\w+)\(([^)]*)\)([^\n]*)\n(.*?)"
                                 r"^ +end \1", text, flags=re.M | re.S):
            kind, name, arguments, rest, body = match.groups()
            names = [each.strip() for each in arguments.split(",") if each.strip()]
            bound = re.search(r'bind\(c, name="zktarn_(\w+)"\)', rest)
            result = re.search(r"result\((\w+)\)", rest)
            forms[name] = form(kind, name, names, result.group(1) if result else name, body,
                               bound.group(1) if bound else None)
        for match in re.finditer(r"^ +interface (\w+)\n(.*?)^ +end interface", text,
                                 flags=re.M | re.S):
            generics[match.group(1)] = re.findall(r"\w+", re.sub(r"\b(module|procedure)\b", " ",
                                                                 match.group(2)))
    return forms, generics


def form(kind, name, names, result, body, bound):
    declared = {}
    result_type = ""
    for line in body.splitlines():
        match = re.match(r"\s+((?:integer|real|character|type|procedure|logical)\b.*?) :: (.*)", line)
        if not match:
            continue
        for each in re.split(r",\s*(?![^()]*\))", match.group(2)):
            bare = re.match(r"\w+", each).group(0)
            if bare in names:
                declared[bare] = f"{match.group(1)} :: {each}"
            elif bare == result:
                result_type = match.group(1)
    if set(declared) != set(names):
        fail(f"no declaration of {set(names) - set(declared)} of {name}")
    return {"kind": kind, "names": names, "declared": declared, "result": result_type,
            "bound": bound}


def fortran_cell(called, shown):
    head = f"{shown['result']} function " if shown["kind"] == "function" else "subroutine "
    lines = [f"{head}{called}({', '.join(shown['names'])})"]
    lines += [shown["declared"][each] for each in shown["names"]]
    return "<br>".join(f"`{line}`" for line in lines)


def fortran_cells(name, forms, generics):
    """The interface of a procedure, or those of a generic name."""
    if name in forms:
        return fortran_cell(name, forms[name])
    if name in generics:
        return "<br><br>".join(fortran_cell(name, forms[each]) for each in generics[name])
    return fail(f"'{name}' is missing in Fortran")


def table(source, language):
    cpp = cpp_signatures(source)
    prototypes, inlined = c_prototypes(source)
    forms, generics = fortran_procedures(source)
    lines = [BEGIN, ""]
    previous = None
    for module, name in exported(source):
        if name not in cpp:
            fail(f"'{name}' is missing in the C++ headers")
        bare = name.lstrip("_")
        if bare not in prototypes:
            fail(f"'{bare}' is missing in the C header")
        if module != previous:
            lines += ["", f"### {module}", "", f"| C++ | {language} |", "|---|---|"]
            previous = module
        if language == "C":
            cell = f"`{prototypes[bare]}`" + (" (inlined)" if bare in inlined else "")
        else:
            cell = fortran_cells(bare, forms, generics)
        lines.append(f"| `{cpp[name]}` | {cell} |")
    return "\n".join(lines + ["", END])


def page_parts(path, begin):
    text = path.read_text(encoding="utf-8")
    before, found, rest = text.partition(begin)
    old, closed, after = rest.partition(END)
    if not found or not closed:
        fail(f"{path.name} has no place for the table after {begin}")
    return before, begin + old + END, after


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("check", "write"):
        fail("takes `check` or `write`, and the folder of the sources")
    source = pathlib.Path(sys.argv[2])
    for name, language in (("c.md", "C"), ("fortran.md", "Fortran")):
        path = source / "docs" / name
        for begin, new in ((BEGIN, table(source, language)),
                           (standin_tables.BEGIN, standin_tables.table(source, language, fail))):
            before, old, after = page_parts(path, begin)
            if sys.argv[1] == "write":
                path.write_text(before + new + after, encoding="utf-8")
            elif old != new:
                fail(f"a table of docs/{name} differs from the headers; write it again")
    print(f"{len(exported(source))} procedures in two languages")


if __name__ == "__main__":
    main()
