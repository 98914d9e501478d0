"""The list of mutants that no test can notice, each with its reason.

An entry is a paragraph: the file; pairs of the lines as they are, after "- ", and as the mutant has
them, after "+ "; then the reason. Where a change can be made in several places of a file, "@ 2"
below it means the second of them only. Lines that begin with "#" are comments."""

import re
from pathlib import Path

from operators import squeeze
from workbench import Trouble


class Listed:
    """Changes, each with the place in the list where it stands."""

    def __init__(self, name):
        self.name = name
        self.places = {}

    def place_of(self, mutant):
        """Where a mutant is listed, or None."""
        *change, occurrence = mutant.key()
        return self.places.get((*change, occurrence)) or self.places.get((*change, None))

    def stale(self, mutants):
        """Places of entries that speak of none of the mutants."""
        used = {self.place_of(each) for each in mutants}
        return [place for place in self.places.values() if place not in used]


def read(path):
    listed = Listed(Path(path).name)
    number = 0
    for paragraph in re.split(r"\n(?=[ \t]*\n)", Path(path).read_text()):
        lines = paragraph.split("\n")
        entry = [(number + k + 1, line.strip()) for k, line in enumerate(lines)]
        number += len(lines)
        entry = [(k, line) for k, line in entry if line and not line.startswith("#")]
        if entry:
            _read_entry(entry, listed)
    return listed


def _read_entry(entry, listed):
    (first, file), *rest = entry
    place = f"{listed.name}:{first}"
    count = 0
    while rest and rest[0][1].startswith("- "):
        number = rest[0][0]
        before, rest = _take(rest, "- ")
        after, rest = _take(rest, "+ ")
        if not after:
            raise Trouble(f'{listed.name}:{number}: lines with "- " need some with "+ "')
        occurrence = None
        if rest and rest[0][1].startswith("@ "):
            occurrence = int(rest.pop(0)[1][2:])
        listed.places[file, before, after, occurrence] = f"{listed.name}:{number}"
        count += 1
    if count == 0:
        raise Trouble(f'{place}: an entry needs lines with "- " and with "+ "')
    if not rest:
        raise Trouble(f"{place}: an entry needs a reason")


def _take(lines, mark):
    """The lines at the front that begin with the mark, as one text, and the rest."""
    count = 0
    while count < len(lines) and lines[count][1].startswith(mark):
        count += 1
    return squeeze(" ".join(line[2:] for _, line in lines[:count])), lines[count:]
