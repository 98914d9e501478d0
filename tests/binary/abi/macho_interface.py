#!/usr/bin/env python3
"""The interface of the libraries for macOS, as text: exported names, records, types and functions of C.

    describe DWARFDUMP FILE ITEM...     writes the interface into FILE
    compare  DWARFDUMP FILE ITEM...     fails when the interface breaks programs made for that in FILE

An ITEM is a shared library, whose exported names count, or an object file with debug information, whose
records and functions of C count, as far as a header of the project declares them. Names and types may be
added; none may be changed or removed.
"""

import pathlib
import re
import subprocess
import sys

import macho

HERE = pathlib.Path(__file__).resolve().parent
HEADERS = re.compile(r"/(src/zktarn/.*[.]hpp|bindings/c/include/.*[.]h)$")
ENTRY = re.compile(r"^0x[0-9a-f]+:( +)(DW_TAG_\w+|NULL)")
ATTRIBUTE = re.compile(r"^ +(DW_AT_\w+)\s+\((.*)\)$")
SCOPES = ("DW_TAG_namespace", "DW_TAG_structure_type", "DW_TAG_class_type", "DW_TAG_union_type")


def fail(sentence):
    sys.exit(f"macho_interface: {sentence}")


class Entry:
    """One entry of the debug information and those inside it."""

    def __init__(self, tag, depth, outer):
        self.tag, self.depth = tag, depth
        self.scope = [each.text("DW_AT_name") for each in outer if each.tag in SCOPES]
        self.is_local = any(each.tag == "DW_TAG_subprogram" for each in outer)
        self.values, self.inside = {}, []

    def text(self, attribute):
        """The text in quotes: a name, a path, or the name of a type."""
        found = re.search(r'"(.*)"', self.values.get(attribute, ""))
        return found.group(1) if found else ""

    def number(self, attribute):
        return int(self.values.get(attribute, "0"), 0)

    @property
    def name(self):
        return "::".join(filter(None, [*self.scope, self.text("DW_AT_name")]))

    @property
    def is_in_header(self):
        return HEADERS.search(self.text("DW_AT_decl_file")) is not None


def entries(dwarfdump, item):
    """Every entry of an object file; nested entries precede the one that contains them."""
    ran = subprocess.run([dwarfdump, "--debug-info", item], capture_output=True, text=True, check=False)
    if ran.returncode != 0 or "DW_TAG_compile_unit" not in ran.stdout:
        fail(f"{item} has no debug information: {ran.stderr.strip()}")
    found, open_entries = [], []
    for line in ran.stdout.splitlines():
        if entry := ENTRY.match(line):
            while open_entries and open_entries[-1].depth >= len(entry.group(1)):
                open_entries.pop()
            if entry.group(2) == "NULL":
                continue
            new = Entry(entry.group(2), len(entry.group(1)), open_entries)
            if open_entries:
                open_entries[-1].inside.append(new)
            open_entries.append(new)
            found.append(new)
        elif open_entries and (attribute := ATTRIBUTE.match(line)):
            open_entries[-1].values[attribute.group(1)] = attribute.group(2)
    return found


def record(entry):
    parts = [f"{part.number('DW_AT_data_member_location')} {part.text('DW_AT_type')} "
             f"{part.text('DW_AT_name')}"
             for part in entry.inside
             if part.tag in ("DW_TAG_member", "DW_TAG_inheritance") and
             "DW_AT_data_member_location" in part.values]
    return f"record {entry.name} {entry.number('DW_AT_byte_size')}: {'; '.join(parts)}"


def function(entry):
    arguments = [part.text("DW_AT_type") for part in entry.inside
                 if part.tag == "DW_TAG_formal_parameter"]
    return f"function {entry.text('DW_AT_type') or 'void'} {entry.name}({', '.join(arguments)})"


def lines_of(entry):
    internal = "detail" in entry.scope or entry.is_local
    if internal or not entry.is_in_header or "DW_AT_declaration" in entry.values or not entry.text("DW_AT_name"):
        return
    if entry.tag in ("DW_TAG_structure_type", "DW_TAG_class_type", "DW_TAG_union_type"):
        yield record(entry)
    elif entry.tag == "DW_TAG_typedef" and not entry.scope:
        yield f"type {entry.name} = {entry.text('DW_AT_type')}"


def interface(dwarfdump, items):
    lines = set()
    for item in items:
        if item.endswith(".dylib"):
            try:
                lines |= {f"export {name}" for name in macho.Library(item).exports}
            except macho.NotMachO as error:
                fail(error)
            continue
        for entry in entries(dwarfdump, item):
            lines |= set(lines_of(entry))
            # C says nothing about the arguments in a name; the file that defines the function counts.
            if entry.tag == "DW_TAG_subprogram" and entry.text("DW_AT_name").startswith("zktarn_") \
                    and "DW_AT_external" in entry.values and "DW_AT_low_pc" in entry.values:
                lines.add(function(entry))
    return lines


def main(arguments):
    if len(arguments) < 4 or arguments[0] not in ("describe", "compare"):
        fail("usage: macho_interface.py describe|compare DWARFDUMP FILE ITEM...")
    action, dwarfdump, path, *items = arguments
    file = pathlib.Path(path)
    if action == "compare" and not file.exists():
        fail(f"there is no description of an interface in {path}; after a change of SOVERSION, the "
             "target abi_baseline writes it")
    now = interface(dwarfdump, items)
    if action == "describe":
        file.write_text("".join(f"{line}\n" for line in sorted(now)), encoding="utf-8")
        return
    before = set(file.read_text(encoding="utf-8").splitlines())
    if not before:
        fail(f"{path} is empty")
    if before - now:
        names = {" ".join(line.split()[:3]).rstrip(":").split("(")[0] for line in before - now}
        print("\n".join(f"- {line}" for line in sorted(before - now)))
        print("\n".join(f"+ {line}" for line in sorted(now - before)))
        fail(f"the binary interface is broken: {', '.join(sorted(names))}")
    print(f"{len(before)} names, types and functions are as before, {len(now - before)} are new")


if __name__ == "__main__":
    main(sys.argv[1:])
