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

STANDIN_BEGIN = "<!-- begin: stand-in, written by tests/bindings/manuals/tables.py -->"
BEGIN = "<!-- begin: written by tests/bindings/manuals/tables.py -->"
END = "<!-- end -->"

# The stand-in's control: functions in C whose counterpart in C++ is not the function of the same name.
STANDIN_IN_CPP = {
    "array_kind_of": "array_value::kind",
    "array_rows": "array_value::rows",
    "array_columns": "array_value::columns",
    "array_scalar": "array_value::scalar",
    "array_reals": "array_value::reals",
    "array_characters": "array_value::text",
    "array_field_count": "array_value::field_names",
    "array_field_name": "array_value::field_names",
    "array_has_field": "array_value::has_field",
    "array_field": "array_value::field",
    "free_array": "destructor of array_value",
    "block_origin": "block::origin",
    "object_description": "live_object::description",
    "object_origin": "live_object::origin",
    "call_stack": "call_stack::current",
    "reply_scalar": "reply",
    "reply_column": "reply",
    "reply_text": "reply",
    "logged_call_count": "logged_calls",
    "logged_call": "logged_calls",
    "free_call": "destructor of host_call",
    "call_operation": "host_call::what",
    "call_integers": "host_call::integers",
    "call_reals": "host_call::reals",
    "call_addresses": "host_call::addresses",
    "call_text_count": "host_call::texts",
    "call_characters": "host_call::texts",
    "call_result": "host_call::result",
    "call_result_address": "host_call::result",
    "call_in_words": "text_of",
    "answer_number": "answer::number",
    "answer_address": "answer::address",
    "answer_reals": "answer::reals",
    "answer_handles": "answer::handles",
    "version": "zktarn_standin_version",
}

# Functions in C whose counterpart in Fortran is not standin_ and the name.
STANDIN_IN_FORTRAN = {
    "array_kind_of": ["standin_kind"],
    "reply_scalar": ["standin_reply"],
    "reply_column": ["standin_reply"],
    "reply_text": ["standin_reply"],
    "set_function": ["standin_set_function", "standin_remove_function"],
    "answer_calls": ["standin_answer_calls", "standin_leave_calls"],
}
# Procedures of Fortran for texts of a fault, which are components of a record in C.
STANDIN_FORTRAN_ONLY = {"standin_sentence", "standin_origin", "standin_place"}


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


def c_functions(source):
    """The prototype of each function, in the order of the header, by its name without the prefix."""
    text = (source / "bindings/c/include/zktarn_standin.h").read_text(encoding="utf-8")
    text = re.sub(r"/\*.*?\*/|^#.*?$", "", text, flags=re.S | re.M)
    pattern = (r"^(?:ZKTARN_STANDIN_C_API\s+)?((?!typedef)[\w ]+?[\s*]+(?:const\s*\*\s*)?"
               r"zktarn_standin_(\w+)\([^)]*\))[\w ]*;")
    return {match.group(2): re.sub(r"\s+", " ", match.group(1)).replace("( ", "(")
            for match in re.finditer(pattern, text, flags=re.M)}


def cpp_functions(source):
    """The names of the functions in the namespace of the stand-in's control."""
    found = set()
    for header in sorted((source / "standin/include/zktarn_standin").glob("*.hpp")):
        text = re.sub(r"//.*", "", header.read_text(encoding="utf-8"))
        found |= set(re.findall(r"^(?:\[\[nodiscard\]\] )?[\w:<>]+[\w:<> *&]*?(?<=[ *&])(\w+)\([^;{}]*\)"
                                r"(?: noexcept)?;", text, flags=re.M))
    return found


def in_cpp(source, functions):
    known = cpp_functions(source)
    if len(known) < 30:
        fail("too few functions are found in the stand-in's control")
    cells = {name: STANDIN_IN_CPP.get(name, name) for name in functions}
    for name in known - set(cells.values()):
        fail(f"'{name}' of the stand-in's control is missing in zktarn_standin.h")
    for name, cell in cells.items():
        if name not in STANDIN_IN_CPP and cell not in known:
            fail(f"'zktarn_standin_{name}' has no counterpart in C++")
    return cells


def public_in_fortran(source):
    found = set()
    for module in (source / "bindings/fortran").glob("zktarn_standin*.f90"):
        text = module.read_text(encoding="utf-8")
        for names in re.findall(r"^ +public :: (.*)", text, flags=re.M):
            found |= set(re.findall(r"standin_\w+", names))
        abstract = re.search(r"abstract interface(.*?)end interface", text, flags=re.S)
        if abstract:
            found -= set(re.findall(r"(?:subroutine|function) (standin_\w+)\(", abstract.group(1)))
        found |= set(re.findall(r"^    interface (standin_\w+)", text, flags=re.M))
    return found


def in_fortran(source, functions):
    public = public_in_fortran(source)
    cells = {name: STANDIN_IN_FORTRAN.get(name, ["standin_" + name.removeprefix("array_")])
             for name in functions}
    shown = {each for cell in cells.values() for each in cell}
    for name in shown - public:
        fail(f"'{name}' is missing in the Fortran control of the stand-in")
    for name in public - shown - STANDIN_FORTRAN_ONLY:
        fail(f"'{name}' of the Fortran control of the stand-in is missing in the table")
    return cells


def standin_table(source, language):
    functions = c_functions(source)
    cpp = in_cpp(source, functions)
    fortran = in_fortran(source, functions)
    lines = [STANDIN_BEGIN, "", f"| C++ | {language} |", "|---|---|"]
    for name, prototype in functions.items():
        cell = (f"`{prototype}`" if language == "C" else
                ", ".join(f"`{each}`" for each in fortran[name]))
        left = cpp[name] if " " in cpp[name] else f"`{cpp[name]}`"
        lines.append(f"| {left} | {cell} |")
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
                           (STANDIN_BEGIN, standin_table(source, language))):
            before, old, after = page_parts(path, begin)
            if sys.argv[1] == "write":
                path.write_text(before + new + after, encoding="utf-8")
            elif old != new:
                fail(f"a table of docs/{name} differs from the headers; write it again")
    print(f"{len(exported(source))} procedures in two languages")


if __name__ == "__main__":
    main()
