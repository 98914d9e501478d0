"""Runs a program in a debugger and compares the printed values with the expected ones.

usage: printers_test.py (gdb|lldb) PROGRAM SCRIPT [LIBRARY]

SCRIPT contains the printers. With LIBRARY, gdb must load SCRIPT itself: a copy is in an auto-load folder
under the name of the library. If the debugger is missing or cannot run a program, the test prints why and
exits with status 77.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77

EXPECTED = {
    "*x": "marks vector, 3 of 8 = {x2 = 2, x3 = 9, x8 = -6}",
    "*list": "list vector, 3 of 8 = {x2 = 2, x3 = 9, x8 = -6}",
    "*dense": "dense vector of 8 = {x1 = 0, x2 = 2, x3 = 9, x4 = 0, x5 = 0, x6 = 0, x7 = 0, x8 = -6}",
    "*set": "index set, 3 of 8 = {x2 = 1, x3 = 1, x8 = 1}",
    "*unmarked": "marks vector, 3 of 8 = {x2 = 2, x3 = no mark, x8 = -6}",
    "*wrong": "marks vector, nz = 9, which is not within 0 and 8",
    "*stray": "marks vector, 3 of 8 = {x2 = 2, x99 = out of range, x8 = -6}",
    "bare": "vector without arrays",
    "absent": "absent array",
    "array": "array of 3 = {1, 2, 3}",
    "matrix": "array of 2 x 3, by columns = {1, 2, 3, 4, 5, 6}",
    "given": "reference = {target = 0.5}",
    "left_out": "absent",
    "idle": "no generator",
    "rng": "generator 0x40",
    "empty": "empty slot = {first_handle = 0, second_handle = 0}",
    "kept": "value of 8 bytes at ADDRESS = {first_handle = 7, second_handle = 0}",
}


def skip(reason: str) -> None:
    print(f"printers_test: skipped: {reason}")
    sys.exit(SKIPPED)


def commands_of(debugger: str, script: str, library: str | None, folder: str) -> list[str]:
    """The command line that stops in the caller of `look`."""
    if debugger == "lldb":
        return ["lldb", "--no-lldbinit", "--batch", "--source-quietly",
                "-o", f"command script import {script}", "-o", "breakpoint set --name look",
                "-o", "run", "-o", "up"]
    command = ["gdb", "-nx", "-batch", "-ex", "set disable-randomization off"]
    if library is None:
        command += ["-ex", f"source {script}"]
    else:
        real = pathlib.Path(library).resolve()
        copy = pathlib.Path(folder) / str(real.parent).lstrip("/") / f"{real.name}-gdb.py"
        copy.parent.mkdir(parents=True)
        shutil.copy(script, copy)
        command += ["-iex", f"add-auto-load-scripts-directory {folder}",
                    "-iex", f"add-auto-load-safe-path {folder}"]
    return command + ["-ex", "break look", "-ex", "run", "-ex", "up"]


def printed(debugger: str, output: str) -> list[str]:
    """The printed values in order, without names and addresses."""
    values = re.findall(r"^\$\d+ = (.*)$" if debugger == "gdb" else r"^\(.*?\) (?:\$\d+|[\w*]+) = (.*)$",
                        output, re.M)
    return [re.sub(r"at 0x[0-9a-f]+", "at ADDRESS", value) for value in values]


def main() -> int:
    debugger, program, script = sys.argv[1:4]
    library = sys.argv[4] if len(sys.argv) > 4 else None
    if shutil.which(debugger) is None:
        skip(f"there is no {debugger}")
    with tempfile.TemporaryDirectory() as folder:
        command = commands_of(debugger, script, library, folder)
        for expression in EXPECTED:
            command += ["-ex" if debugger == "gdb" else "-o", f"print {expression}"]
        ran = subprocess.run([*command, program], capture_output=True, text=True, check=False,
                             timeout=300, stdin=subprocess.DEVNULL)
    if not re.search(r"look \(?\)? ?at|stop reason = breakpoint", ran.stdout):
        skip(f"{debugger} cannot run a program here:\n{ran.stdout}{ran.stderr}")
    values = printed(debugger, ran.stdout)
    wrong = [(name, want, has) for (name, want), has in zip(EXPECTED.items(), values) if want != has]
    if wrong or len(values) != len(EXPECTED):
        for name, want, has in wrong:
            print(f"printers_test: {name} prints as\n    {has}\nexpected\n    {want}")
        print(f"printers_test: {len(values)} of {len(EXPECTED)} values printed\n{ran.stdout}{ran.stderr}")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
