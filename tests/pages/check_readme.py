#!/usr/bin/env python3
"""Compares the pages of the project with the programs and files that they describe.

A comment before a block says what the block is:

    <!-- program NAME -->   source of a whole program, in C++ or Python
    <!-- source NAME -->    source that is compiled, but is not a whole program
    <!-- output NAME -->    what the program of that name prints, to the letter
"""

import inspect
import json
import pathlib
import re
import subprocess
import sys

MARKED = re.compile(r"^<!-- (program|source|output) (\w+) -->\n+```\w+\n(.*?)^```$",
                    re.MULTILINE | re.DOTALL)
MARK = re.compile(r"^<!-- (?:program|source|output) .*$", re.MULTILINE)
CODE = re.compile(r"^```(?:cpp|py|python)$", re.MULTILINE)
# What types of the host's headers are in C.
ALIASES = {"array_handle": "int64_t", "data_address": "double *"}


def fail(sentence):
    sys.exit(f"check_readme: {sentence}")


def read(path):
    try:
        return pathlib.Path(path).read_text(encoding="utf-8")
    except OSError as error:
        fail(f"cannot read {path}: {error.strerror}")


def block(page, kind, name):
    found = [text for k, n, text in MARKED.findall(read(page)) if (k, n) == (kind, name)]
    if len(found) != 1:
        fail(f"{page} has {len(found)} blocks marked '{kind} {name}' instead of one")
    return found[0]


def extract(page, name, target):
    """Writes the program, or the source, that the page shows into a file."""
    kinds = [k for k, n, _ in MARKED.findall(read(page)) if n == name and k != "output"]
    kind = kinds[0] if kinds else "program"
    pathlib.Path(target).write_text(block(page, kind, name), encoding="utf-8")


def source(page, name, path):
    """The program that the page shows is the file, to the letter."""
    if block(page, "program", name) != read(path):
        fail(f"the program '{name}' in {page} is not {path}")


def output(page, name, program, *arguments):
    """The program, with these arguments, succeeds and prints what the page says."""
    expected = block(page, "output", name)
    ran = subprocess.run([program, *arguments], capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"'{name}' ended with status {ran.returncode}: {ran.stderr.strip()}")
    if ran.stderr:
        fail(f"'{name}' writes to standard error: {ran.stderr.strip()}")
    if ran.stdout != expected:
        fail(f"'{name}' prints something else than {page} says:\n{ran.stdout}")


def marks(page):
    """Every mark has its block, and no block of C++ or Python goes unchecked."""
    text = read(page)
    programs = [name for kind, name, _ in MARKED.findall(text) if kind == "program"]
    if len(MARK.findall(text)) != len(MARKED.findall(text)):
        fail(f"{page} has a mark without a block")
    sources = [name for kind, name, _ in MARKED.findall(text) if kind == "source"]
    if len(CODE.findall(text)) != len(programs) + len(sources):
        fail(f"{page} has a block of C++ or Python that is not marked as a program")
    for name in programs:
        block(page, "output", name)


def modules(page, exports):
    """The table of modules has a row for each module that exports something, and no other row."""
    shown = set(re.findall(r"^\| `(\w+)` \| `zktarn/", read(page), re.MULTILINE))
    # A mangled name has the namespace and the module, each after the number of its characters.
    mangled = re.findall(r"^_ZN6zktarn(\d+)(\w+)$", read(exports), re.MULTILINE)
    exported = {rest[:int(length)] for length, rest in mangled}
    if shown != exported:
        fail(f"{page} and {exports} differ in {', '.join(sorted(shown ^ exported))}")


def presets(page, file):
    """The table of presets names each of them."""
    shown = set()
    for row in re.findall(r"^\| ((?:`[\w-]+`(?:, )?)+) \|", read(page), re.MULTILINE):
        shown.update(re.findall(r"`([\w-]+)`", row))
    for preset in json.loads(read(file))["configurePresets"]:
        if not preset.get("hidden") and preset["name"] not in shown:
            fail(f"{page} does not explain the preset {preset['name']}")


def gates(page, script):
    """The table of gates has a row for each gate, and no other row."""
    section = re.search(r"^## Gates\n(.*?)(?:^## |\Z)", read(page), re.MULTILINE | re.DOTALL)
    shown = set(re.findall(r"^\| `([\w-]+)` \|", section[1], re.MULTILINE)) if section else set()
    run = set(re.findall(r"^([\w-]+) +\| (?:short|all) +\|", read(script), re.MULTILINE))
    if shown != run:
        fail(f"{page} and {script} differ in {', '.join(sorted(shown ^ run))}")


def normal(text):
    """One space between words, none beside punctuation."""
    text = re.sub(r"\s+", " ", text).strip()
    return re.sub(r" ?([*&(),]) ?", r"\1", text)


def as_c(argument):
    """An argument or result of a header as C has it: a reference is an address."""
    argument = argument.replace("std::", "").strip()
    is_const_reference = argument.startswith("const ") and "&" in argument
    for alias, meaning in ALIASES.items():
        if re.search(rf"\b{alias}\b", argument):
            if is_const_reference and meaning.endswith("*"):
                # A constant pointer, not a pointer to constants.
                argument = argument.replace(f"const {alias}", f"{meaning}const ")
            else:
                argument = argument.replace(alias, meaning)
    return normal(argument.replace("&", "*"))


def split(declaration):
    """Result with name, and arguments, of "result name(arguments)"."""
    head, _, arguments = declaration.partition("(")
    inside = arguments.rpartition(")")[0].strip()
    return head.strip(), [] if inside in ("", "void") else inside.split(",")


def declared_in(path):
    """The prototypes of a header, in C."""
    code = re.sub(r"//.*", "", read(path))
    block = re.search(r'extern "C" \{(.*?)\n\}', code, re.S)
    found = []
    for declaration in (block.group(1).split(";") if block else []):
        if "(" in declaration:
            head, arguments = split(declaration.replace("noexcept", ""))
            found.append(f"{as_c(head)}({','.join(map(as_c, arguments)) or 'void'})")
    return found


def shown_on(path):
    """The prototypes of each library: they follow a comment with its name."""
    libraries = {}
    for block in re.findall(r"```c\n(.*?)```", read(path), re.S):
        for library, code in re.findall(r"/\* (\w+) \*/(.*?)(?=/\*|\Z)", block, re.S):
            libraries[library] = [
                f"{normal(head)}({','.join(map(normal, arguments)) or 'void'})"
                for head, arguments in map(split, filter(str.strip, code.split(";")))
            ]
    return libraries


def prototypes(page, *headers):
    """The C prototypes on the page are the declarations of the headers: the same functions with the same
    arguments, in the same order within a library."""
    shown, declared = shown_on(page), {pathlib.Path(each).stem: declared_in(each) for each in headers}
    if not shown or not declared or not all(declared.values()):
        fail(f"there is nothing to compare {page} with")
    for library in sorted(shown.keys() | declared.keys()):
        ours, theirs = declared.get(library, []), shown.get(library, [])
        if lacking := [each for each in ours if each not in theirs]:
            fail(f"{page} does not have {', '.join(lacking)}")
        if lacking := [each for each in theirs if each not in ours]:
            fail(f"{library}.hpp does not have {', '.join(lacking)}")
        if ours != theirs:
            fail(f"{page} has {library} in another order")


CHECKS = {check.__name__: check
          for check in (extract, source, output, marks, modules, presets, gates, prototypes)}


def main():
    usage = f"usage: check_readme.py {'|'.join(CHECKS)} PAGE [ARGUMENT...]"
    if len(sys.argv) < 3 or sys.argv[1] not in CHECKS:
        fail(usage)
    check = CHECKS[sys.argv[1]]
    given, wanted = len(sys.argv) - 2, check.__code__.co_argcount
    takes_more = check.__code__.co_flags & inspect.CO_VARARGS
    if given < wanted or (given > wanted and not takes_more):
        fail(usage)
    check(*sys.argv[2:])


if __name__ == "__main__":
    main()
