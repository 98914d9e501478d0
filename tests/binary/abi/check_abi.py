#!/usr/bin/env python3
"""Checks the binary interface of the shared library.

    exports  LIBRARY GOLDEN     the exported names are exactly those of the golden list
    imports  LIBRARY ALLOWED    every imported name is on the list of allowed ones
    storage  OBJECT             an object file allocates memory only from the host
    image    LIBRARY SOVERSION  name, dependencies and hardening of the ELF image
    startup  OBJECT...          object files have no initialisers
    control  LIBRARY OBJECT...  indirect jumps and returns are protected: landing pads at each
                                exported function, shadow stacks or signed return addresses
    state    LIBRARY NAME...    the writable objects are exactly these
    unbroken ABIDW ABIDIFF LIBRARY FILE
                                programs made for the interface in FILE, a library or a description of
                                one, run with LIBRARY. Both have debug information.

    describe ABIDW LIBRARY FILE writes the description for `unbroken`

The first part reads symbols with readelf and c++filt, the second part checks them, and the third part
compares interfaces with abidw and abidiff.
"""

import pathlib
import re
import subprocess
import sys
import tempfile

HOST_LIBRARIES = {"libqv.so", "libqvx.so", "libut.so", "libzkoptimutil.so"}
SYSTEM_LIBRARIES = {"libstdc++.so.6", "libm.so.6", "libgcc_s.so.1", "libc.so.6",
                    "ld-linux-x86-64.so.2", "ld-linux-aarch64.so.1"}
HOST_MEMORY = {"qvMallocExOptim", "qvFreeExOptim"}
TOOLCHAIN = {"_GLOBAL_OFFSET_TABLE_"}
# Optional functions that the system's start-up objects call if they exist.
LINKER_HOOKS = {"_ITM_deregisterTMCloneTable", "_ITM_registerTMCloneTable", "__gmon_start__",
                "__cxa_finalize"}

# Why a name must not be imported. Other names are just not on the list.
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


# Reading symbols

def output_of(*command):
    ran = subprocess.run(command, capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"{' '.join(command)}: {ran.stderr.strip()}")
    return ran.stdout


def symbols(path, dynamic):
    """(name, type, binding, defined) of each symbol of an ELF file, without section symbols."""
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
    """The undefined names, weak ones included."""
    return {name for name, _, _, _, undefined in symbols(path, dynamic)
            if undefined and name not in LINKER_HOOKS}


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


# Checks

def check_exports(library, golden):
    found, expected = exported(library), listed(golden)
    if found != expected:
        fail(f"the exported names differ from {golden}\n"
             f"  missing: {demangled(expected - found)}\n"
             f"  extra: {demangled(found - expected)}\n"
             "  if this is intended, change the golden list in the same commit")


def reason(name):
    for pattern, sentence in REASONS:
        if re.fullmatch(pattern, name):
            return sentence
    return "it is not on the list of allowed imports"


def check_imports(library, allowed):
    forbidden = imported(library) - listed(allowed)
    if forbidden:
        fail("\n".join(f"imports {name}: {reason(name)}" for name in sorted(forbidden)))


def check_storage(item):
    forbidden = imported(item, dynamic=False) - HOST_MEMORY - TOOLCHAIN
    if forbidden:
        fail("\n".join(f"{item} imports {name}: {reason(name)}" for name in sorted(forbidden)))


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
    if "GNU_RELRO" not in headers:
        fail("leaves its relocations writable")
    if not re.search(r"\bBIND_NOW\b|FLAGS_1.*\bNOW\b", dynamic):
        fail("binds names at their first use, in a table that stays writable")
    stack = re.search(r"GNU_STACK.*", headers)
    if stack is None or "E" in stack.group(0).split()[-2]:
        fail("has an executable stack")


# The properties that object files must state, and the instructions with which an exported function
# may begin: a landing pad, or on Arm the signing of the return address.
CONTROL = {"X86-64": ({"IBT", "SHSTK"}, (b"\xf3\x0f\x1e\xfa",)),
           "AArch64": ({"BTI", "PAC"}, (b"\x5f\x24\x03\xd5", b"\x3f\x23\x03\xd5"))}


def control_properties(path):
    found = re.findall(r"feature: (.*)", output_of("readelf", "--wide", "--notes", path))
    return {word.strip() for line in found for word in line.split(",")}


def functions(path):
    """(name, offset in the file) of each exported function."""
    segments = [(int(address, 16), int(offset, 16), int(size, 16)) for offset, address, size in
                re.findall(r"LOAD +(0x\w+) (0x\w+) 0x\w+ (0x\w+)",
                           output_of("readelf", "--wide", "--program-headers", path))]
    for line in output_of("readelf", "--wide", "--dyn-syms", path).splitlines():
        fields = line.split()
        if len(fields) >= 8 and fields[3] == "FUNC" and fields[6] != "UND":
            value = int(fields[1], 16)
            for address, offset, size in segments:
                if address <= value < address + size:
                    yield fields[7], value - address + offset


def check_control(library, *objects):
    machine = next((name for name in CONTROL if name in output_of("readelf", "--file-header", library)),
                   None)
    if machine is None:
        fail(f"{library} is for an unknown processor")
    properties, landings = CONTROL[machine]
    for item in objects:
        missing = properties - control_properties(item)
        if missing:
            fail(f"{item} is not built for {', '.join(sorted(missing))}")
    # The library's property of landing pads is not checked: the system's start-up objects may lack them.
    if machine == "X86-64" and "SHSTK" not in control_properties(library):
        fail(f"{library} is not marked for shadow stacks")
    with open(library, "rb") as file:
        contents = file.read()
    found = list(functions(library))
    if not found:
        fail(f"{library} exports no function")
    for name, offset in found:
        if not contents.startswith(landings, offset):
            fail(f"{name} does not begin with a landing pad")


# Writable objects that the compiler's start-up objects, the linker and the compiler's detection of the
# processor put into a shared library.
START_FILES = {"__cpu_model", "__cpu_features2",
               "completed.0", "__dso_handle", "__TMC_END__", "__do_global_dtors_aux_fini_array_entry",
               "__frame_dummy_init_array_entry", "_DYNAMIC", "_GLOBAL_OFFSET_TABLE_", "__bss_start",
               "_edata", "_end", "__bss_start__", "__bss_end__", "_bss_end__", "__end__"}


def check_state(library, *wanted):
    found = set()
    for line in output_of("nm", "--defined-only", "--demangle", library).splitlines():
        kind, name = re.match(r"\w* *(\w) (.*)", line).groups()
        # Initialised, zeroed, small, common and unique data, without Arm's mapping symbols ($d, $x).
        # `constants` finds the objects that only the loader writes.
        if kind in "bBdDgGsSCcu" and name not in START_FILES and not name.startswith("$"):
            found.add(name)
    sections = output_of("readelf", "--wide", "--sections", library)
    if re.search(r" \.t(data|bss) ", sections):
        fail("has a thread-local object")
    constant = set(constants(library))
    if found - constant != set(wanted):
        fail("the writable objects differ from the expected ones\n"
             f"  missing: {', '.join(sorted(set(wanted) - found)) or 'none'}\n"
             f"  extra: {', '.join(sorted(found - constant - set(wanted))) or 'none'}")


def constants(library):
    """Names of the objects in .data.rel.ro, which only the loader writes."""
    numbers = re.findall(r"\[ *(\d+)\] \.data\.rel\.ro", output_of("readelf", "--wide", "--sections",
                                                                library))
    plain = [line.split() for line in output_of("readelf", "--wide", "--syms", library).splitlines()]
    mangled = [fields[7] for fields in plain if len(fields) > 7 and fields[6] in numbers]
    return subprocess.run(["c++filt"], input="\n".join(mangled), capture_output=True, text=True,
                          check=True).stdout.splitlines()


def check_startup(*objects):
    for item in objects:
        if re.search(r"\.(init_array|ctors)", output_of("readelf", "--wide", "--sections", item)):
            fail(f"{item} runs code when it is loaded")


# Comparing interfaces

HERE = pathlib.Path(__file__).resolve().parent
SUPPRESSIONS = ("--suppressions", str(HERE / "standard_library.abignore"))
HEADERS = ("--headers-dir", str(HERE.parents[2] / "src/zktarn"),
           "--headers-dir", str(HERE.parents[2] / "bindings/c/include"))


def describe(abidw, library, file):
    """The types of the project's headers, and nothing that depends on compiler, processor or folder."""
    output_of(abidw, *SUPPRESSIONS, *HEADERS, "--exported-interfaces-only", "--no-parameter-names",
              "--no-show-locs", "--no-comp-dir-path", "--no-corpus-path", "--no-architecture",
              "--no-elf-needed", "--no-write-default-sizes", "--out-file", file, library)


def check_unbroken(abidw, abidiff, library, file):
    if not pathlib.Path(file).exists():
        fail(f"there is no description of an interface in {file}; after a change of SOVERSION, the target "
             "abi_baseline writes it")
    with tempfile.TemporaryDirectory() as folder:
        before, after = file, f"{folder}/after.abi"
        describe(abidw, library, after)
        if not file.endswith(".abi"):
            before = f"{folder}/before.abi"
            describe(abidw, file, before)
        ran = subprocess.run([abidiff, "--no-added-syms", *SUPPRESSIONS, before, after],
                             capture_output=True, text=True, check=False)
    if ran.returncode != 0:
        fail(f"{ran.stdout}{ran.stderr}\nthe binary interface is broken")


CHECKS = {"exports": check_exports, "imports": check_imports, "storage": check_storage,
          "image": check_image, "startup": check_startup,
          "control": check_control, "state": check_state, "unbroken": check_unbroken,
          "describe": describe}

if __name__ == "__main__":
    if len(sys.argv) < 3 or sys.argv[1] not in CHECKS:
        fail(f"usage: check_abi.py {'|'.join(CHECKS)} FILE...")
    CHECKS[sys.argv[1]](*sys.argv[2:])
