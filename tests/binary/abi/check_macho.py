#!/usr/bin/env python3
"""Checks the shared library for macOS.

    check_macho.py CHECK LIBRARY SOVERSION

CHECK is a key of CHECKS below, or `table`, which runs all of them and prints a table. macho.py reads
the library.
"""

import functools
import pathlib
import re
import subprocess
import sys

import macho
from check_abi import listed, reason

HERE = pathlib.Path(__file__).resolve().parent
HOST_HEADERS = HERE.parents[2] / "src/zktarn/host"
HOST_LIBRARIES = ("libqv", "libqvx", "libut", "libzkoptimutil")
SYSTEM_LIBRARIES = {"libSystem": "/usr/lib/libSystem.B.dylib", "libc++": "/usr/lib/libc++.1.dylib"}
OLDEST_MACOS = (11, 0, 0)
LARGEST = 100 * 1024
ANY_ARM64 = 0
SUBTYPES = {1: "arm64 v8", 2: "arm64e"}
PLATFORMS = {2: "iOS", 3: "tvOS", 4: "watchOS", 6: "Mac Catalyst", 7: "the iOS simulator",
             10: "DriverKit", 11: "visionOS"}


class Refused(Exception):
    """A check failed; the text states the violation."""


def demand(condition, sentence):
    if not condition:
        raise Refused(sentence)


def dotted(numbers):
    return ".".join(map(str, numbers))


# Expected names

def host_owners():
    """The host library that declares each operation."""
    owners = {}
    for stem in HOST_LIBRARIES:
        text = re.sub(r"//.*", "", (HOST_HEADERS / f"{stem}.hpp").read_text(encoding="utf-8"))
        declarations = text.split('extern "C" {', 1)[1]
        for name in re.findall(r"(\w+)\(", declarations):
            owners["_" + name] = stem
    return owners


@functools.cache
def allowed_owners():
    owners = host_owners()
    for line in listed(HERE / "imports.allowed"):
        owner, _, name = line.rpartition(" ")
        if owner:
            owners[name] = owner
    return owners


def demangled(names):
    ran = subprocess.run(["c++filt", "--no-strip-underscore"], input="\n".join(names),
                         capture_output=True, text=True, check=True)
    return ran.stdout.splitlines()


def on_macos(plain):
    """The demangled macOS name of a demangled Linux name. On macOS a 64-bit integer is a `long long` and
    the standard library has an inline namespace. `unsigned long` is std::size_t on both."""
    plain = re.sub(r"(?<!unsigned )\blong\b", "long long", plain)
    return re.sub(r"\bstd::", "std::__1::", plain)


# Checks: each returns what it found, in a few words.

def check_kind(library, _):
    demand(library.filetype == macho.DYLIB, "it is not a dynamic library")
    demand(library.cpu == macho.CPU_ARM64, "it is not for 64-bit Arm")
    demand(library.cpu_subtype == ANY_ARM64,
           f"it is for {SUBTYPES.get(library.cpu_subtype, f'subtype {library.cpu_subtype}')}, not "
           "for every 64-bit Arm processor")
    demand(library.platforms, "it names no system")
    for platform, minimum in library.platforms:
        demand(platform == macho.PLATFORM_MACOS,
               f"it is for {PLATFORMS.get(platform, f'platform {platform}')}, not for macOS")
        demand(minimum == OLDEST_MACOS,
               f"it needs macOS {dotted(minimum)}, not {dotted(OLDEST_MACOS)}")
    return f"MH_DYLIB, arm64, macOS {dotted(OLDEST_MACOS[:2])}"


def check_name(library, soversion):
    wanted = f"@rpath/libzktarn_util.{soversion}.dylib"
    demand(library.identity is not None, "it has no name")
    found = library.identity
    demand(found.name == wanted, f"its name is {found.name}, not {wanted}")
    demand(found.compatible <= found.current,
           f"its version {dotted(found.current)} is below {dotted(found.compatible)}, with which "
           "it is compatible")
    return found.name


def check_run_path(library, _):
    wanted = ["@loader_path", "@loader_path/zktarn_standin"]
    demand(library.run_path == wanted,
           f"it looks for libraries in {', '.join(library.run_path) or 'no folder'}, not in "
           f"{', '.join(wanted)}")
    return ", ".join(library.run_path)


def check_loads(library, _):
    names = {load.name for load in library.loads}
    host = {f"@rpath/{stem}.dylib" for stem in HOST_LIBRARIES}
    missing = (host | {SYSTEM_LIBRARIES["libSystem"]}) - names
    extra = names - host - set(SYSTEM_LIBRARIES.values())
    demand(not missing, f"it does not load {', '.join(sorted(missing))}")
    demand(not extra, f"it loads {', '.join(sorted(extra))}")
    for load in library.loads:
        demand(not load.how, f"{load.name} is loaded {load.how}")
        demand(load.name not in host or load.compatible == (0, 0, 0),
               f"it asks for a version of {load.name}")
    return ", ".join(load.stem for load in library.loads)


def imported_names(library):
    """The undefined names of the symbol table, and the names of the loader's tables."""
    return {found.name for found in [*library.imports, *library.bindings]}


def check_imports(library, _):
    names = imported_names(library)
    demand(not names - set(allowed_owners()), "\n".join(
        f"imports {name}: {reason(name.removeprefix('_'))}"
        for name in sorted(names - set(allowed_owners()))))
    return f"{len(names)} names, all allowed: nothing ends the process or unwinds"


def demand_owner(library, name, ordinal, place):
    """The loader must look up a name only in the library that owns it."""
    demand(1 <= ordinal <= len(library.loads),
           f"{name} is looked up in every library of the process ({place})")
    found = library.loads[ordinal - 1].stem
    owner = allowed_owners().get(name, found)
    demand(found == owner, f"{name} is taken from {found}, not from {owner} ({place})")


def check_bindings(library, _):
    demand(library.flags & macho.TWO_LEVEL and not library.flags & macho.FORCE_FLAT,
           "its imports are looked up in every library of the process")
    for found in library.imports:
        demand_owner(library, found.name, found.ordinal, "symbol table")
    # Tools read the symbol table. The loader reads one of two other tables.
    demand(len(library.binding_formats) == 1,
           f"it has {' and '.join(sorted(library.binding_formats)) or 'nothing'} to bind names by")
    for found in library.bindings:
        if found.table == "weak":
            # A program may replace operator new and delete in every library.
            demand(allowed_owners().get(found.name) == "libc++",
                   f"{found.name} can be replaced by any library of the process")
        else:
            demand_owner(library, found.name, found.ordinal, f"{found.table} bindings")
    unbound = {found.name for found in library.imports} - {found.name for found in library.bindings}
    if "chained fixups" in library.binding_formats:
        unbound.discard("dyld_stub_binder") # which only lazy bindings use
    demand(not unbound, f"{', '.join(sorted(unbound))} is imported and never bound")
    return f"{len(imported_names(library))} names, each from the library that owns it"


def check_exports(library, _):
    elf = sorted(listed(HERE / "exports.golden"))
    wanted = {on_macos(plain): name for plain, name in zip(demangled(elf), elf)}
    mangled = sorted(name.removeprefix("_") for name in library.exports)
    found = set(demangled(mangled))
    demand(found == set(wanted),
           "the exported names differ from exports.golden\n"
           f"  missing: {'; '.join(sorted(set(wanted) - found)) or 'none'}\n"
           f"  extra: {'; '.join(sorted(found - set(wanted))) or 'none'}")
    demand(len(mangled) == len(elf), f"{len(mangled)} names are exported, not {len(elf)}")
    return f"{len(found)} names, those of exports.golden"


def check_startup(library, _):
    for section in library.sections:
        demand(section.kind not in macho.STARTUP_SECTIONS,
               f"it runs code when it is loaded or unloaded: {section.name}")
    return "no initialisers"


def check_threads(library, _):
    for section in library.sections:
        demand(section.kind not in macho.THREAD_SECTIONS,
               f"it has thread-local variables: {section.name}")
    return "no thread-local variables"


def check_signature(library, _):
    demand(library.signature is not None, "it is not signed, and a Mac would not load it")
    demand(library.signature.ad_hoc, "its signature is not ad hoc")
    demand(library.signature.intact, "its signature does not match its contents")
    return "ad hoc, every page matches"


def check_size(library, _):
    size = len(library.data)
    demand(size < LARGEST, f"it has {size} bytes, not less than {LARGEST}")
    return f"{size} bytes of at most {LARGEST - 1}"


CHECKS = {"kind": check_kind, "name": check_name, "run_path": check_run_path,
          "loads": check_loads, "imports": check_imports, "bindings": check_bindings,
          "exports": check_exports, "startup": check_startup, "threads": check_threads,
          "signature": check_signature, "size": check_size}


def table(library, soversion):
    """Runs and prints every check; true when all pass."""
    passed = True
    print(f"{'macOS library':<14} {'verdict':<8} found")
    for name, check in CHECKS.items():
        try:
            verdict, found = "passed", check(library, soversion)
        except Refused as refused:
            verdict, found, passed = "FAILED", str(refused), False
        print(f"{name.replace('_', ' '):<14} {verdict:<8} {found}")
    return passed


def main(arguments):
    if len(arguments) != 3 or arguments[0] not in {*CHECKS, "table"}:
        sys.exit(f"usage: check_macho.py {'|'.join(CHECKS)}|table LIBRARY SOVERSION")
    check, path, soversion = arguments
    try:
        library = macho.Library(path)
        if check == "table":
            sys.exit(0 if table(library, soversion) else 1)
        print(CHECKS[check](library, soversion))
    except (macho.NotMachO, Refused) as refused:
        sys.exit(f"check_macho: {refused}")


if __name__ == "__main__":
    main(sys.argv[1:])
