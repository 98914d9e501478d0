#!/usr/bin/env python3
"""Holds the binary interface of the shared library against what it promises.

    exports  LIBRARY GOLDEN     the exported names are exactly those of the golden list
    imports  LIBRARY ALLOWED    every imported name is on the list of allowed ones
    storage  OBJECT             an object file takes memory from nobody but the host
    image    LIBRARY SOVERSION  name, dependencies and hardening of the ELF image
    startup  OBJECT...          object files run nothing when they are loaded

Reading of symbols (readelf, c++filt) and judging are kept apart.
"""

import re
import subprocess
import sys

HOST_LIBRARIES = {"libqv.so", "libqvx.so", "libut.so", "libzkoptimutil.so"}
SYSTEM_LIBRARIES = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6",
                    "ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1"}
HOST_MEMORY = {"qvMallocExOptim", "qvFreeExOptim"}
TOOLCHAIN = {"_GLOBAL_OFFSET_TABLE_"}

# Why a name has no business among the imports, where there is more to say than that it is not on
# the list.
REASONS = (
    (r"abort|__assert_fail|_ZSt9terminatev|exit|_exit", "the library never ends the process"),
    (r".*printf.*|puts|putchar|fwrite|fput.*|write", "the library never prints"),
    (r"_ZNSt.*(stream|ios_base).*|_ZSt4cout|_ZSt4cerr", "the library never prints"),
    (r"__cxa_throw.*|__cxa_allocate_exception|_ZSt.*__throw_.*", "the library never throws"),
    (r"_Unwind_.*|__gxx_personality.*|__cxa_(begin|end)_catch", "the library unwinds nothing"),
    (r"malloc|calloc|realloc|free|aligned_alloc|posix_memalign|_Zn[wa]m|_Znam.*",
     "array storage comes from the host's memory manager"),
)


def fail(sentence):
    sys.exit(f"check_abi: {sentence}")


# Reading

def output_of(*command):
    ran = subprocess.run(command, capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"{' '.join(command)}: {ran.stderr.strip()}")
    return ran.stdout


def symbols(path, dynamic):
    """(name, type, binding, defined) of each symbol of an ELF file, section symbols aside."""
    found = []
    for line in output_of("readelf", "--wide", "--dyn-syms" if dynamic else "--syms",
                          path).splitlines():
        fields = line.split()
        if len(fields) < 8 or not fields[0].rstrip(":").isdigit():
            continue
        kind, binding, visibility, section, name = *fields[3:6], fields[6], fields[7]
        defined = section != "UND" and visibility in ("DEFAULT", "PROTECTED")
        found.append((name.split("@")[0], kind, binding, defined, section == "UND"))
    return found


def exported(path):
    return {name for name, _, binding, defined, _ in symbols(path, True)
            if defined and binding != "LOCAL"}


def imported(path, dynamic=True):
    """Names that have to be found elsewhere; a weak one may be missing."""
    return {name for name, _, binding, _, undefined in symbols(path, dynamic)
            if undefined and binding == "GLOBAL"}


def listed(path):
    """The lines of a list, without comments."""
    with open(path, encoding="utf-8") as lines:
        return {line.split("#")[0].strip() for line in lines} - {""}


def demangled(names):
    if not names:
        return "none"
    text = subprocess.run(["c++filt"], input="\n".join(sorted(names)), capture_output=True,
                          text=True, check=True).stdout
    return "; ".join(f"{name} ({plain})" for name, plain in
                     zip(sorted(names), text.splitlines()))


# Judging

def check_exports(library, golden):
    there, wanted = exported(library), listed(golden)
    if there != wanted:
        fail(f"the exported names differ from {golden}\n"
             f"  missing: {demangled(wanted - there)}\n"
             f"  extra: {demangled(there - wanted)}\n"
             "  meant so? then change the golden list in the same commit")


def reason(name):
    for pattern, sentence in REASONS:
        if re.fullmatch(pattern, name):
            return sentence
    return "it is not on the list of allowed imports"


def check_imports(library, allowed):
    unwelcome = imported(library) - listed(allowed)
    if unwelcome:
        fail("\n".join(f"imports {name}: {reason(name)}" for name in sorted(unwelcome)))


def check_storage(item):
    unwelcome = imported(item, dynamic=False) - HOST_MEMORY - TOOLCHAIN
    if unwelcome:
        fail("\n".join(f"{item} imports {name}: {reason(name)}" for name in sorted(unwelcome)))


def check_image(library, soversion):
    dynamic = output_of("readelf", "--wide", "--dynamic", library)
    headers = output_of("readelf", "--wide", "--program-headers", library)
    soname = re.search(r"SONAME.*\[(.*)\]", dynamic)
    wanted = f"libzktarn_util.so.{soversion}"
    if soname is None or soname.group(1) != wanted:
        fail(f"the name of the library is not {wanted}")
    needed = set(re.findall(r"NEEDED.*\[(.*)\]", dynamic))
    if needed - HOST_LIBRARIES - SYSTEM_LIBRARIES:
        fail(f"needs {', '.join(sorted(needed - HOST_LIBRARIES - SYSTEM_LIBRARIES))}")
    if "libzkoptimutil.so" not in needed:
        fail("does not need libzkoptimutil.so, where the host's memory is")
    if "TEXTREL" in dynamic:
        fail("has text relocations")
    if "NOW" not in dynamic or "GNU_RELRO" not in headers:
        fail("does not protect its relocations")
    stack = re.search(r"GNU_STACK.*", headers)
    if stack is None or "E" in stack.group(0).split()[-2]:
        fail("has an executable stack")


def check_startup(*objects):
    for item in objects:
        if re.search(r"\.(init_array|ctors)", output_of("readelf", "--wide", "--sections", item)):
            fail(f"{item} runs code when it is loaded")


CHECKS = {"exports": check_exports, "imports": check_imports, "storage": check_storage,
          "image": check_image, "startup": check_startup}

if __name__ == "__main__":
    if len(sys.argv) < 3 or sys.argv[1] not in CHECKS:
        fail(f"usage: check_abi.py {'|'.join(CHECKS)} FILE...")
    CHECKS[sys.argv[1]](*sys.argv[2:])
