"""Inspects the libraries of the Python host for macOS.

    check_python_host.py FOLDER [FILE NAME]

A library for macOS takes each name from the library that it was linked with. So each of the host's
four names has to re-export the host: libzktarn_util, unchanged, then finds every operation. Prints a
line a library; ends with a sentence and status 1 at the first that is wrong. With FILE, checks it in the place
of the library NAME of the folder.
"""

import pathlib
import re
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[3] / "binary" / "abi"))

import check_macho  # noqa: E402, pylint: disable=wrong-import-position
import macho  # noqa: E402, pylint: disable=wrong-import-position

HOST = "libzktarn_python_host"
EVERYWHERE = 254  # the ordinal of a name that is looked up in every library of the process
# What the process of Python has, and what a Mac's libc++ has.
OF_THE_PROCESS = re.compile(r"_Py|__Py|__Z|___cxa_|___gxx_personality_v0$|__Unwind_")


def demand(condition, sentence):
    """Ends the check with one sentence unless the condition holds."""
    if not condition:
        sys.exit(f"check_python_host: {sentence}")


def check_image(library, name):
    """Kind, name, run path and signature."""
    demand((library.cpu, library.filetype) == (macho.CPU_ARM64, macho.DYLIB),
           f"{name} is no dynamic library for 64-bit Arm")
    demand(library.platforms == [(macho.PLATFORM_MACOS, (11, 0, 0))], f"{name} is not for macOS 11")
    identity = library.identity.name
    demand(identity == f"@rpath/{name}.dylib", f"{name}: its name is {identity}")
    demand(library.run_path == ["@loader_path"],
           f"{name} looks for libraries in {', '.join(library.run_path) or 'no folder'}")
    demand(library.signature is not None and library.signature.intact, f"{name} is not signed")


def check_host(library, operations):
    """The host has every operation, and takes from everywhere only what Python's process has."""
    check_image(library, HOST)
    missing = sorted(operations - library.exports)
    demand(not missing, f"the host lacks {', '.join(missing)}")
    extra = sorted(name for name in library.exports - operations
                   if not name.startswith("_zktarn_python_"))
    demand(not extra, f"the host exports {', '.join(extra)}, too")
    strange = sorted(each.name for each in library.imports
                     if each.ordinal == EVERYWHERE and not OF_THE_PROCESS.match(each.name))
    demand(not strange, f"the host takes {', '.join(strange)} from any library of the process")


def check_name(library, name):
    """A library of one of the host's names re-exports the host, and exports nothing of its own."""
    check_image(library, name)
    demand([each.stem for each in library.loads if each.how == "as a re-export"] == [HOST],
           f"{name} does not re-export the host")
    demand(not library.exports, f"{name} exports {', '.join(sorted(library.exports))} itself")


def main(arguments):
    """Checks the folder; returns the status."""
    demand(len(arguments) in (1, 3), "usage: check_python_host.py FOLDER [FILE NAME]")
    folder, other, replaced = (*arguments, None, None)[:3]

    def library_of(name):
        file = f"{name}.dylib"
        return macho.Library(pathlib.Path(other) if file == replaced else pathlib.Path(folder, file))

    owners = check_macho.host_owners()
    try:
        host = library_of(HOST)
        libraries = {name: library_of(name) for name in sorted(set(owners.values()))}
    except macho.NotMachO as error:
        sys.exit(f"check_python_host: {error}")
    for name, library in libraries.items():
        check_name(library, name)
        taken = [operation for operation, owner in owners.items() if owner == name]
        print(f"{name:<24} re-exports {HOST}; libzktarn_util takes {len(taken)} names from it")
    check_host(host, set(owners))
    print(f"{HOST:<24} {len(owners)} operations")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
