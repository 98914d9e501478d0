"""Tries mutants on several threads."""

import collections
import os
import queue
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from operators import Mutant
from workbench import call, digest, module_of, must

# A module's tests are in the folder of its name. These folders test the files beside the modules.
FOLDERS = {"": ["types", "assert", "owners"]}


@dataclass
class Outcome:
    mutant: Mutant
    verdict: str  # killed, endless, survived, unchanged, uncompilable
    program: str = ""
    seconds: float = 0.0


class Campaign:
    """Runs mutants on a workbench and counts the kills of each program."""

    def __init__(self, bench, sources):
        self.bench = bench
        self.sources = sources
        self.kills = collections.Counter()
        self.optimised = {}
        self.lock = threading.Lock()

    def module_of(self, file):
        return module_of(file, self.sources)

    def modules_of(self, unit):
        """The modules whose files an object includes."""
        inside = [f for f in unit.sources_included if f.startswith(self.sources + "/")]
        return {self.module_of(file) for file in inside}

    def callers_of(self, module):
        """The module and those that include its headers."""
        callers = {module}
        for unit in self.bench.library_units:
            if module in self.modules_of(unit):
                callers.add(self.module_of(unit.source))
        return callers

    def test_folders(self, file):
        module = self.module_of(file)
        return [f"tests/unit/{each}" for each in FOLDERS.get(module, [module])]

    def programs_for(self, file):
        """Programs that call the file's module, the likeliest killers first: by number of earlier kills,
        then those of the module itself, then the fastest."""
        folders = self.test_folders(file)
        callers = self.callers_of(self.module_of(file))
        calling = [
            program
            for program in self.bench.programs
            if any(callers & self.modules_of(unit) for unit in program.units)
        ]
        with self.lock:
            return sorted(
                calling,
                key=lambda p: (-self.kills[file, p.name], p.folder not in folders, p.seconds),
            )

    def try_mutant(self, mutant, place):
        start = time.monotonic()
        verdict, program = self._verdict(mutant, place)
        if verdict in ("killed", "endless"):
            with self.lock:
                self.kills[mutant.file, program] += 1
        return Outcome(mutant, verdict, program, time.monotonic() - start)

    def _verdict(self, mutant, place):
        bench = self.bench
        overlay = place / "overlay"
        changed = overlay / os.path.relpath(mutant.file, Path(self.sources).parent)
        changed.parent.mkdir(parents=True, exist_ok=True)
        changed.write_text(mutant.apply((bench.root / mutant.file).read_text()))
        try:
            return self._build_and_run(mutant, place, overlay, changed)
        finally:
            changed.unlink()

    def _build_and_run(self, mutant, place, overlay, changed):
        bench = self.bench
        touched = [u for u in bench.library_units if mutant.file in u.sources_included]
        objects = self._compile(mutant, touched, place, overlay, changed)
        if objects is None:
            return "uncompilable", ""
        differs = self._drop_unchanged(objects, bench.baseline)
        if differs:
            if not bench.link_library(place, objects):
                return "uncompilable", ""
            for program in self.programs_for(mutant.file):
                executable = bench.work / "programs" / program.name
                verdict, _ = bench.run(program, executable, place)
                if verdict != "passed":
                    return ("killed" if verdict == "failed" else verdict), program.name
        if mutant.file.endswith(".hpp"):
            tried, verdict, program = self._recompile_tests(mutant, place, overlay, changed, differs)
            if verdict != "passed" or tried:
                return ("survived" if verdict == "passed" else verdict), program
        if differs and self._differs_when_optimised(touched, mutant, place, overlay, changed):
            return "survived", ""
        return "unchanged", ""

    def _compile(self, mutant, units, place, overlay, changed):
        objects = {}
        for unit in units:
            target = place / f"{len(objects)}.{Path(unit.object).name}"
            source = changed if unit.source == mutant.file else unit.command[-1]
            command = self.bench.compile_command(unit, source, target, overlay)
            if call(command, self.bench.build).returncode != 0:
                return None
            objects[unit.object] = target
        return objects

    @staticmethod
    def _drop_unchanged(objects, baseline):
        for key in [k for k, path in objects.items() if digest(path) == digest(baseline[k])]:
            del objects[key]
        return bool(objects)

    def _differs_when_optimised(self, units, mutant, place, overlay, changed):
        """Whether the optimised code differs. An optimiser removes code without effect."""
        for unit in units:
            with self.lock:
                if unit.object not in self.optimised:
                    nothing = overlay / "none"
                    self.optimised[unit.object] = self._optimised(unit, place, nothing, "")
            source = changed if unit.source == mutant.file else ""
            if self._optimised(unit, place, overlay, source) != self.optimised[unit.object]:
                return True
        return False

    def _optimised(self, unit, place, overlay, source):
        target = place / "optimised.o"
        source = source or unit.command[-1]
        command = self.bench.compile_command(unit, source, target, overlay, "-O2")
        must(command, unit.source, self.bench.build)
        return digest(target)

    def _recompile_tests(self, mutant, place, overlay, changed, differs):
        """Compiles the test programs that include a changed header, which contain its inline procedures.
        Returns whether any of them changes, the verdict, and the program that gave it."""
        bench = self.bench
        if not differs:
            bench.link_library(place, {})
        in_tests = False
        folders = self.test_folders(mutant.file)
        for program in self.programs_for(mutant.file):
            units = [u for u in program.units if mutant.file in u.sources_included]
            if program.folder not in folders or not units:
                continue
            objects = self._compile(mutant, units, place, overlay, changed)
            if objects is None:
                return True, "uncompilable", ""
            if not self._drop_unchanged(objects, self._test_baseline(units)):
                continue
            in_tests = True
            executable = place / program.name
            bench.link_program(program, place, executable, objects)
            verdict, _ = bench.run(program, executable, place)
            if verdict != "passed":
                return True, ("killed" if verdict == "failed" else verdict), program.name
        return in_tests, "passed", ""

    def _test_baseline(self, units):
        bench = self.bench
        with self.lock:
            for unit in units:
                if unit.object not in bench.baseline_of_tests:
                    target = bench.work / "objects" / unit.object.replace("/", ".")
                    call(bench.compile_command(unit, unit.command[-1], target), bench.build)
                    bench.baseline_of_tests[unit.object] = target
        return bench.baseline_of_tests


def run_all(campaign, mutants, jobs, report):
    """Tries every mutant; calls `report` with each outcome as it comes."""
    waiting = queue.Queue()
    for each in mutants:
        waiting.put(each)
    outcomes, errors = [], []

    def work(number):
        place = campaign.bench.place(f"place-{number}")
        while not errors:
            try:
                mutant = waiting.get_nowait()
            except queue.Empty:
                return
            try:
                outcome = campaign.try_mutant(mutant, place)
            except Exception as error:  # passed on to the main thread
                errors.append(error)
                return
            outcomes.append(outcome)
            report(outcome)

    threads = [threading.Thread(target=work, args=(k,)) for k in range(jobs)]
    for each in threads:
        each.start()
    for each in threads:
        each.join()
    if errors:
        raise errors[0]
    return sorted(outcomes, key=lambda o: (o.mutant.file, o.mutant.start, o.mutant.replacement))
