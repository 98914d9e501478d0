#!/usr/bin/env python3
"""damage.py WHAT LIBRARY COPY: a copy of a library for macOS with one change.

    code            one byte of the code
    subtype         the processor: arm64e
    platform        the system: iOS
    loader_table    the command with the positions of the loader's tables: an unknown one
    bindings        the loader's tables of bindings: empty
    NAME=LIBRARY    the library in which the loader looks up a name: another loaded one

The signature is not updated, so it no longer matches.
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
    """The position of a load command."""
    at = 32
    for _ in range(struct.unpack_from("<I", contents, 16)[0]):
        kind, size = struct.unpack_from("<II", contents, at)
        if kind == wanted:
            return at
        at += size
    return fail(f"there is no load command {wanted:#x}")


def loader_table(contents):
    return command(contents, macho.LC_DYLD_INFO[1])


def bind_to(library, contents, name, stem):
    """Binds `name` to another library in the loader's tables, but not in the symbol table."""
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
        bind_to(library, contents, *what.split("="))
    else:
        fail(f"there is no '{what}' to change")
    pathlib.Path(copy).write_bytes(contents)


if __name__ == "__main__":
    main()
