"""The list of equivalent mutants, which behave like the library for every caller, with reasons.

An entry is a paragraph. Its first line names the module and the procedure. Then each line names an
operator and its change, with a count if several such changes of the procedure are equivalent:

    util screen::passes
    relational: > into >=
    constant x2: 7 into 8
    The reason, in one sentence or more.

An entry stays valid when the code is reformatted, moves within its module, or renames local variables. It is
wrong, and the tool reports it, when the procedure has fewer such changes than listed, or when tests kill one
that the count includes. For code outside of procedures, the entry gives the declared name or a dash. Lines
that begin with "#" are comments."""

import collections
import re
from dataclasses import dataclass
from pathlib import Path

from workbench import ToolError, module_of

CHANGE = re.compile(
    r"(relational|logical|arithmetic|assignment|negation|condition|constant|statement|arguments)"
    r"(?: x([1-9]\d*))?: (.+)"
)


@dataclass
class Entry:
    """The number of equivalent mutants of one kind, and the place of the entry."""

    place: str
    count: int = 0


def kind_of(mutant, sources):
    """The kind of a mutant, as entries name it: module, procedure, operator and change."""
    return module_of(mutant.file, sources) or "-", mutant.procedure or "-", mutant.operator, mutant.change


class Judgement:
    """Compares a list with a run: the explained survivors, the unexplained ones, and the wrong entries."""

    def __init__(self, listed, outcomes, mutants, sources):
        self.explained, self.unexplained, self.wrong = [], [], []
        existing = collections.Counter(kind_of(each, sources) for each in mutants)
        tried = collections.defaultdict(list)
        for each in outcomes:
            tried[kind_of(each.mutant, sources)].append(each)
        for kind, entry in listed.items():
            self._judge_entry(kind, entry, existing[kind], tried.get(kind, []))
        for kind, group in tried.items():
            survivors = [each.mutant for each in group if each.verdict == "survived"]
            entry = listed.get(kind)
            if entry and len(survivors) <= entry.count:
                self.explained += survivors
            else:
                self.unexplained += survivors

    def _judge_entry(self, kind, entry, existing, group):
        words = "{} {}: {}: {}".format(*kind)
        if existing < entry.count:
            self.wrong.append(f"{entry.place}: {words}: lists {entry.count}, but {existing} exist")
            return
        detected = [each for each in group if each.verdict != "survived"]
        if len(detected) > existing - entry.count:
            self.wrong.append(
                f"{entry.place}: {words}: lists {entry.count} of {existing}, but {len(detected)} "
                f"did not survive, one of them at line {detected[0].mutant.line} "
                f"({detected[0].verdict} {detected[0].program})".replace(" )", ")")
            )


def read(path):
    """The entries of a list, by kind of mutant."""
    listed = {}
    name = Path(path).name
    entry = []
    for number, line in enumerate([*Path(path).read_text().splitlines(), ""], 1):
        if line.startswith("#"):
            continue
        if line.strip():
            entry.append((number, line.strip()))
        elif entry:
            _read_entry(entry, name, listed)
            entry = []
    return listed


def _read_entry(lines, name, listed):
    (first, heading), *rest = lines
    words = heading.split(" ", 1)
    if len(words) != 2:
        raise ToolError(f"{name}:{first}: an entry begins with a module and a procedure")
    changes = 0
    for number, line in rest:
        found = CHANGE.fullmatch(line)
        if not found:
            break
        operator, count, change = found.groups()
        entry = listed.setdefault((*words, operator, change), Entry(f"{name}:{number}"))
        entry.count += int(count or 1)
        changes += 1
    if changes == 0:
        raise ToolError(f"{name}:{first}: an entry needs a line with an operator and its change")
    if changes == len(rest):
        raise ToolError(f"{name}:{first}: an entry needs a reason")
