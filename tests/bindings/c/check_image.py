#!/usr/bin/env python3
"""Checks the exported functions and the name of a shared library.

    check_image.py LIBRARY GOLDEN NAME

The library is an ELF or a Mach-O image; in the latter each name has a leading underscore.
"""

import pathlib
import subprocess
import sys


def fail(sentence):
    sys.exit(f"check_image: {sentence}")


def said_by(*command):
    ran = subprocess.run(command, capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"{' '.join(command)}: {ran.stderr.strip()}")
    return ran.stdout


def is_macho(library):
    return pathlib.Path(library).read_bytes()[:4] == b"\xcf\xfa\xed\xfe"


def macho_tool(stem):
    """`llvm-nm-19`, `llvm-nm` or, on a Mac, `nm`."""
    for name in (f"llvm-{stem}-19", f"llvm-{stem}", stem):
        if subprocess.run(["which", name], capture_output=True, check=False).returncode == 0:
            return name
    return fail(f"there is no llvm-{stem}")


def exported(library, macho):
    if macho:
        lines = said_by(macho_tool("nm"), "--extern-only", "--defined-only", library).splitlines()
        names = [line.split()[-1] for line in lines]
        for name in names:
            if not name.startswith("_"):
                fail(f"{name} has no leading underscore")
        return {name[1:] for name in names}
    lines = said_by("nm", "--dynamic", "--defined-only", library).splitlines()
    return {line.split()[-1] for line in lines}


def check_elf(library, name):
    dynamic = said_by("readelf", "--dynamic", "--wide", library)
    if f"soname: [{name}]" not in dynamic:
        fail(f"the name of the library is not {name}")
    if "(BIND_NOW)" not in dynamic and "Flags: NOW" not in dynamic:
        fail("binds names at their first use")
    segments = said_by("readelf", "--program-headers", "--wide", library).splitlines()
    stack = [line for line in segments if "GNU_STACK" in line]
    if len(stack) != 1 or "RWE" in stack[0]:
        fail("has an executable stack")
    if not any("GNU_RELRO" in line for line in segments):
        fail("leaves its relocations writable")


def check_macho(library, name):
    if name not in said_by(macho_tool("otool") if sys.platform != "darwin" else "otool", "-D",
                           library):
        fail(f"the name of the library is not {name}")


def main():
    if len(sys.argv) != 4:
        fail("takes a library, the list of its functions, and its name")
    library, golden, name = sys.argv[1:]
    for path in (library, golden):
        if not pathlib.Path(path).is_file():
            fail(f"there is no file {path}")
    macho = is_macho(library)
    (check_macho if macho else check_elf)(library, name)
    wanted = set(pathlib.Path(golden).read_text(encoding="utf-8").split())
    found = exported(library, macho)
    if not wanted or found != wanted:
        fail(f"missing: {sorted(wanted - found)}; extra: {sorted(found - wanted)}")
    print(f"{len(found)} functions")


if __name__ == "__main__":
    main()
