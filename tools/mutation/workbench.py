"""Compiles mutants, links them into a shared library, and runs the test programs with it.

A workbench uses a Ninja build of the project with its tests. It takes the objects of the tests from
that build and links each program once, with a shared library in which every symbol is visible. A
mutant then costs the compilation of the objects it changes, one link of a small library, and the
runs. The workbench writes only to its own folder.
"""

import hashlib
import json
import math
import os
import re
import resource
import shlex
import shutil
import signal
import subprocess
import time
from dataclasses import dataclass, field
from pathlib import Path

# The file name of the shared library, for the linker and at run time.
SONAME = "lib{}.so.1"

# Makes the standard library abort on an index that is out of range.
CHECKED = "-D_GLIBCXX_ASSERTIONS"


class ToolError(Exception):
    """An error that stops the tool; the text is one sentence."""


@dataclass
class Unit:
    """One source with its compile command in the build."""

    command: list
    source: str
    object: str
    sources_included: frozenset = frozenset()


@dataclass
class Program:
    """A test program: its link command, its arguments, and its time without mutants."""

    name: str
    folder: str
    link: list
    units: list
    arguments: list
    replaced: dict = field(default_factory=dict)
    seconds: float = 0.0


def call(command, cwd=None):
    return subprocess.run(
        command, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT, text=True, errors="replace", check=False,
    )  # fmt: skip


def must(command, what, cwd=None):
    done = call(command, cwd)
    if done.returncode != 0:
        raise ToolError(f"{what}: {done.stdout.strip()[-2000:]}")
    return done.stdout


def digest(path):
    return hashlib.sha256(Path(path).read_bytes()).hexdigest()


def module_of(file, sources):
    """The module of a source, or "" for a file beside the modules. detail/ belongs to the module around
    it."""
    folders = Path(os.path.relpath(file, sources)).parts[:-1]
    return folders[0] if folders and folders[0] != "detail" else ""


def without(command, *dropped):
    return [each for each in command if each not in dropped]


class Workbench:
    def __init__(self, root, build, work, sources, library, leave_out=()):
        self.root, self.build, self.work = Path(root), Path(build), Path(work)
        self.sources, self.library = sources, library
        self.soname = SONAME.format(library)
        if not (self.build / "compile_commands.json").is_file():
            raise ToolError(f"there is no compile_commands.json in {build}; build the tests first")
        shutil.rmtree(self.work, ignore_errors=True)
        for each in ("objects", "programs"):
            (self.work / each).mkdir(parents=True)
        self.library_units, self.test_units = self._read_units()
        self.programs = self._read_programs(leave_out)

    # Reading the build

    def _read_units(self):
        included = self._read_includes()
        library, tests = [], {}
        for entry in json.loads((self.build / "compile_commands.json").read_text()):
            command = shlex.split(entry["command"])
            target_object = command[command.index("-o") + 1]
            file = os.path.relpath(entry["file"], self.root)
            unit = Unit(command, file, target_object, included.get(target_object, frozenset()))
            if file.startswith(self.sources + "/"):
                # Some tests compile the library again with other options.
                if not target_object.startswith("tests/"):
                    library.append(unit)
            elif file.startswith("tests/"):
                tests[target_object] = unit
        if not library:
            raise ToolError(f"{self.build} compiles nothing of {self.sources}")
        return library, tests

    def _read_includes(self):
        """The files of the project that each object includes."""
        included = {}
        for line in must(["ninja", "-t", "deps"], "ninja", self.build).splitlines():
            if line and not line[0].isspace():
                current = included.setdefault(line.split(":")[0], set())
            elif line.strip():
                path = os.path.relpath(os.path.join(self.build, line.strip()), self.root)
                if not path.startswith(".."):
                    current.add(path)
        return {key: frozenset(value) for key, value in included.items()}

    def _read_programs(self, leave_out):
        owners = {}
        for unit in self.test_units.values():
            match = re.match(r"(?:(.*)/)?CMakeFiles/([^/]+)\.dir/(?:(.*)/)?[^/]+$", unit.object)
            if match and match.group(2).endswith(("_test", "_replay")):
                # A test program is built in the folder of its sources.
                path = "/".join(filter(None, (match.group(1), match.group(3), match.group(2))))
                if path.startswith("tests/"):
                    owners.setdefault(path, []).append(unit)
        paths = [p for p in sorted(owners) if not p.startswith(tuple(leave_out))]
        commands = must(["ninja", "-t", "commands", *paths], "ninja", self.build).splitlines()
        programs = []
        for path in paths:
            marker = f" -o {path} "
            link = next(each for each in commands if marker in each)
            words = shlex.split(link.split(" && ")[1])
            libraries = [w for w in words if Path(w).name.split(".")[0] == f"lib{self.library}"]
            if libraries:
                folder, name = path.rsplit("/", 1)
                programs.append(
                    Program(name, folder, words, owners[path], self._arguments(folder, name))
                )
        return programs

    def _arguments(self, folder, name):
        if name.endswith("_replay"):
            return [str(self.root / folder / f"{name[: -len('_replay')]}.seeds")]
        return ["--gtest_brief=1", "--gtest_fail_fast", "--gtest_print_time=0"]

    # The baseline without mutants

    def prepare(self):
        """Builds the baseline and runs all programs, which must pass. Returns the seconds it took."""
        start = time.monotonic()
        self._precompile()
        self.baseline, self.baseline_of_tests = {}, {}
        for unit in self.library_units:
            target = self.work / "objects" / Path(unit.object).name
            must(self.compile_command(unit, unit.command[-1], target), unit.source, self.build)
            self.baseline[unit.object] = target
        bench = self.place("baseline")
        self.link_library(bench, {})
        for program in self.programs:
            self._prepare_program(program, bench)
        return time.monotonic() - start

    def _prepare_program(self, program, bench):
        for unit in program.units:
            # A test that loads the library by its path must load the mutant.
            if any("_LIBRARY=" in word for word in unit.command):
                target = self.work / "objects" / f"{program.name}.{Path(unit.object).name}"
                must(self.compile_command(unit, unit.command[-1], target), unit.source, self.build)
                program.replaced[unit.object] = target
        executable = self.work / "programs" / program.name
        self.link_program(program, bench, executable, {})
        start = time.monotonic()
        verdict, output = self.run(program, executable, bench, limit=120)
        program.seconds = time.monotonic() - start
        if verdict != "passed":
            raise ToolError(f"{program.name} fails without a mutant: {output.strip()[-2000:]}")

    def _precompile(self):
        """Precompiles the headers of the standard library, most of the text of each source."""
        names = {
            name
            for each in (self.root / self.sources).rglob("*.[ch]pp")
            for name in re.findall(r"#include <([\w/.]+)>", each.read_text())
        }
        header = self.work / "precompiled.hpp"
        header.write_text("".join(f"#include <{name}>\n" for name in sorted(names)))
        command = self.library_units[0].command
        flags = without(command[: command.index("-o")], "-Werror", "-g") + ["-O0", "-w", CHECKED]
        must(
            [*flags, "-x", "c++-header", str(header), "-o", f"{header}.gch"],
            "precompiling", self.build,
        )  # fmt: skip
        self.precompiled = header

    def place(self, name):
        """A folder in which one thread tries its mutants."""
        bench = self.work / name
        bench.mkdir(exist_ok=True)
        return bench

    def compile_command(self, unit, source, target, overlay=None, level="-O0"):
        end = unit.command.index("-o")
        command = without(unit.command[:end], "-Werror", "-fvisibility=hidden", "-g")
        command = [
            f'{each.split("=")[0]}="{self.soname}"' if "_LIBRARY=" in each else each
            for each in command
        ]
        if overlay is not None:
            command.insert(1, f"-I{overlay}")
        command += ["-w", level]
        # Precompiled headers are valid for one optimisation level only.
        if level == "-O0" and unit in self.library_units:
            command[1:1] = ["-include", str(self.precompiled), CHECKED]
        return [*command, "-o", str(target), "-c", str(source)]

    def link_library(self, bench, objects):
        """Links the library of a mutant: its objects replace those of the baseline."""
        files = [objects.get(key, path) for key, path in self.baseline.items()]
        compiler = self.library_units[0].command
        flags = [each for each in compiler if each.startswith("-fsanitize")]
        command = [
            compiler[0], "-shared", *flags, f"-Wl,-soname,{self.soname}",
            "-Wl,-Bsymbolic-functions,-z,now", "-o", bench / self.soname, *files,
        ]  # fmt: skip
        return call([str(each) for each in command]).returncode == 0

    def link_program(self, program, bench, executable, objects):
        replaced = {**program.replaced, **objects}
        words = [str(replaced.get(word, word)) for word in program.link]
        # The shared library refers to all operations of the host, so the archives are linked completely.
        archives = dict.fromkeys(w for w in words if w.startswith("tests/") and w.endswith(".a"))
        words = [w for w in words if w not in archives]
        words = [
            str(bench / self.soname) if Path(w).name.split(".")[0] == f"lib{self.library}" else w
            for w in words
        ]
        end = words.index("-o")
        everything = ["-Wl,--whole-archive", *archives, "-Wl,--no-whole-archive"]
        words[end:end] = ["-Wl,--no-as-needed", *everything]
        words[words.index("-o") + 1] = str(executable)
        must(words, f"linking {program.name}", self.build)

    # Running

    def run(self, program, executable, bench, limit=None):
        """Returns "passed", "failed" or "endless", and what was printed.

        The limit is on processor time, which does not depend on the load of the machine."""
        seconds = limit or math.ceil(1 + 5 * program.seconds)
        environment = dict(
            os.environ,
            LD_LIBRARY_PATH=str(bench),
            ZKTARN_TEST_SCALE=os.environ.get("ZKTARN_TEST_SCALE", "0.02"),
            # Fills new and released memory with a nonzero byte.
            MALLOC_PERTURB_="165",
        )

        def limited():
            # A shell ignores SIGINT in processes that it starts in the background.
            signal.signal(signal.SIGINT, signal.SIG_DFL)
            resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 1))
            resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
            resource.setrlimit(resource.RLIMIT_FSIZE, (1 << 26, 1 << 26))
            resource.setrlimit(resource.RLIMIT_AS, (4 << 30, 4 << 30))

        with open(bench / "output", "w+", errors="replace") as output:
            process = subprocess.Popen(
                [str(executable), *program.arguments], cwd=bench, env=environment,
                stdin=subprocess.DEVNULL, stdout=output, stderr=output, preexec_fn=limited,
                start_new_session=True,
            )  # fmt: skip
            try:
                code = process.wait(timeout=20 * seconds)
            except subprocess.TimeoutExpired:
                code = None
            if code != 0:
                # Also ends child processes, such as those of death tests.
                try:
                    os.killpg(process.pid, 9)
                except ProcessLookupError:
                    pass
                process.wait()
            output.seek(0)
            text = output.read(100000)
        if code == 0:
            return "passed", text
        return ("endless" if code is None or code in (-9, -24) else "failed"), text
