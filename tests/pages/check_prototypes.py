"""Compares the C prototypes of the page about hosts with the declarations in the host's headers.

usage: check_prototypes.py PAGE HEADER...

Both must declare the same functions with the same arguments, in the same order within a library. Exits
with status 1, and a line for each difference, when they do not, and with 2 for a page or a header in
which there is nothing to compare.
"""

import pathlib
import re
import sys

ALIASES = {"array_handle": "int64_t", "data_address": "double *"}


def normal(text: str) -> str:
    """One space between words, none beside punctuation."""
    text = re.sub(r"\s+", " ", text).strip()
    return re.sub(r" ?([*&(),]) ?", r"\1", text)


def as_c(argument: str) -> str:
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


def split(declaration: str) -> tuple[str, list[str]]:
    """Result with name, and arguments, of "result name(arguments)"."""
    head, _, arguments = declaration.partition("(")
    inside = arguments.rpartition(")")[0].strip()
    return head.strip(), [] if inside in ("", "void") else inside.split(",")


def from_header(path: pathlib.Path) -> list[str]:
    code = re.sub(r"//.*", "", path.read_text())
    block = re.search(r'extern "C" \{(.*?)\n\}', code, re.S)
    prototypes = []
    for declaration in (block.group(1).split(";") if block else []):
        if "(" in declaration:
            head, arguments = split(declaration.replace("noexcept", ""))
            prototypes.append(f"{as_c(head)}({','.join(map(as_c, arguments)) or 'void'})")
    return prototypes


def from_page(path: pathlib.Path) -> dict[str, list[str]]:
    """The prototypes of each library: they follow a comment with its name."""
    libraries: dict[str, list[str]] = {}
    for block in re.findall(r"```c\n(.*?)```", path.read_text(), re.S):
        for library, code in re.findall(r"/\* (\w+) \*/(.*?)(?=/\*|\Z)", block, re.S):
            libraries[library] = [
                f"{normal(head)}({','.join(map(normal, arguments)) or 'void'})"
                for head, arguments in map(split, filter(str.strip, code.split(";")))
            ]
    return libraries


def main(arguments: list[str]) -> int:
    if len(arguments) < 2:
        print("check_prototypes: a page and at least one header are needed", file=sys.stderr)
        return 2
    page, *headers = map(pathlib.Path, arguments)
    said = from_page(page)
    declared = {header.stem: from_header(header) for header in headers}
    if not said or not all(declared.values()):
        print("check_prototypes: found nothing to compare", file=sys.stderr)
        return 2
    differences = 0
    for library in sorted(said.keys() | declared.keys()):
        ours, theirs = declared.get(library, []), said.get(library, [])
        for prototype in ours + theirs:
            if prototype not in theirs or prototype not in ours:
                place = page.name if prototype not in theirs else f"{library}.hpp"
                print(f"check_prototypes: {place} does not have {prototype}", file=sys.stderr)
                differences += 1
        if sorted(ours) == sorted(theirs) and ours != theirs:
            print(f"check_prototypes: {page.name} has {library} in another order", file=sys.stderr)
            differences += 1
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
