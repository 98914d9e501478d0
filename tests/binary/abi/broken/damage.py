#!/usr/bin/env python3
"""damage.py WHAT LIBRARY COPY: a copy of a library for macOS in which one thing is changed.

    code            one byte of the code
    subtype         the processor: arm64e
    platform        the system: iOS
    loader_table    the command that says where the loader's tables are: an unknown one
    bindings        the loader's tables of bindings: empty
    NAME=LIBRARY    where the loader takes a name from: another library that is loaded

The signature stays as it was, so it no longer fits.
"""

import pathlib
import struct
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
import macho  # pylint: disable=wrong-import-position

ARM64E = 0x80000002
IOS = 2
UNKNOWN_COMMAND = 0x7FFFFFFF


def fail(sentence):
    sys.exit(f"damage: {sentence}")


def command(contents, wanted):
    """Where a load command begins."""
    at = 32
    for _ in range(struct.unpack_from("<I", contents, 16)[0]):
        kind, size = struct.unpack_from("<II", contents, at)
        if kind == wanted:
            return at
        at += size
    return fail(f"there is no load command {wanted:#x}")


def loader_table(contents):
    return command(contents, macho.LC_DYLD_INFO[1])


def take_from(library, contents, name, stem):
    """Changes where the loader takes `name` from; the symbol table stays as it was."""
    ordinal = [load.stem for load in library.loads].index(stem) + 1
    found = [binding for binding in library.bindings
             if binding.name == name and binding.table != "weak"]
    if len(found) != 1:
        fail(f"{name} is bound {len(found)} times")
    if found[0].table == "chained":
        contents[found[0].at] = ordinal
    else:
        contents[found[0].at] = macho.BIND_ORDINAL | ordinal


def main():
    if len(sys.argv) != 4:
        fail("usage: damage.py WHAT LIBRARY COPY")
    what, path, copy = sys.argv[1:]
    library = macho.Library(path)
    contents = bytearray(library.data)
    if what == "code":
        contents[len(contents) // 2] ^= 1
    elif what == "subtype":
        struct.pack_into("<I", contents, 8, ARM64E)
    elif what == "platform":
        struct.pack_into("<I", contents, command(contents, macho.LC_BUILD_VERSION) + 8, IOS)
    elif what == "loader_table":
        struct.pack_into("<I", contents, loader_table(contents), UNKNOWN_COMMAND)
    elif what == "bindings":
        for size_of_table in (20, 36):
            struct.pack_into("<I", contents, loader_table(contents) + size_of_table, 0)
    elif "=" in what:
        take_from(library, contents, *what.split("="))
    else:
        fail(f"there is no '{what}' to change")
    pathlib.Path(copy).write_bytes(contents)


if __name__ == "__main__":
    main()
