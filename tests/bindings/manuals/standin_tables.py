"""The tables of the stand-in's control: each function of the C header with its name in C++ or Fortran."""

import re

BEGIN = "<!-- begin: stand-in, written by tests/bindings/manuals/tables.py -->"

# What a function in C is in C++ where that is not the function of the same name.
IN_CPP = {
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

# What a function in C is in Fortran where that is not standin_ and its name.
IN_FORTRAN = {
    "array_kind_of": ["standin_kind"],
    "reply_scalar": ["standin_reply"],
    "reply_column": ["standin_reply"],
    "reply_text": ["standin_reply"],
    "set_function": ["standin_set_function", "standin_remove_function"],
    "answer_calls": ["standin_answer_calls", "standin_leave_calls"],
}
# Texts of a fault, which C reads in the record.
FORTRAN_ALONE = {"standin_sentence", "standin_origin", "standin_place"}


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


def in_cpp(source, functions, fail):
    known = cpp_functions(source)
    if len(known) < 30:
        fail("too few functions are found in the stand-in's control")
    cells = {name: IN_CPP.get(name, name) for name in functions}
    for name in known - set(cells.values()):
        fail(f"'{name}' of the stand-in's control is missing in zktarn_standin.h")
    for name, cell in cells.items():
        if name not in IN_CPP and cell not in known:
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


def in_fortran(source, functions, fail):
    public = public_in_fortran(source)
    cells = {name: IN_FORTRAN.get(name, ["standin_" + name.removeprefix("array_")])
             for name in functions}
    shown = {each for cell in cells.values() for each in cell}
    for name in shown - public:
        fail(f"'{name}' is missing in the Fortran control of the stand-in")
    for name in public - shown - FORTRAN_ALONE:
        fail(f"'{name}' of the Fortran control of the stand-in is missing in the table")
    return cells


def table(source, language, fail):
    functions = c_functions(source)
    cpp = in_cpp(source, functions, fail)
    fortran = in_fortran(source, functions, fail)
    lines = [BEGIN, "", f"| C++ | {language} |", "|---|---|"]
    for name, prototype in functions.items():
        cell = (f"`{prototype}`" if language == "C" else
                ", ".join(f"`{each}`" for each in fortran[name]))
        left = cpp[name] if " " in cpp[name] else f"`{cpp[name]}`"
        lines.append(f"| {left} | {cell} |")
    return "\n".join(lines + ["", "<!-- end -->"])
