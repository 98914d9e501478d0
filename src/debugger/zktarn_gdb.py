"""Pretty printers for gdb.

gdb loads this file with the library when it is installed in gdb's auto-load folder. Elsewhere:

    (gdb) source zktarn_gdb.py

A vector then prints as `marks vector, 3 of 8 = {x2 = 2, x3 = 9, x8 = -6}`.
"""

import re

import gdb
import gdb.printing


def is_present(array):
    """Whether a host array has a block."""
    return int(array["data"]) != 0


def extent(array, dimension=0):
    return int(array["extent"][dimension])


def plural(count, noun):
    return f"{count} {noun}" + ("" if count == 1 else "s")


class HostArrayPrinter:
    """An array with its elements; a matrix column by column."""

    def __init__(self, value):
        self.value = value
        self.rank = int(value.type.strip_typedefs().template_argument(1))

    def to_string(self):
        if not is_present(self.value):
            return "absent array"
        if self.rank == 1:
            return f"array of {extent(self.value)}"
        return f"array of {extent(self.value)} x {extent(self.value, 1)}, by columns"

    def children(self):
        if not is_present(self.value):
            return
        count = extent(self.value) * (extent(self.value, 1) if self.rank == 2 else 1)
        for k in range(count):
            yield str(k), self.value["data"][k]

    def display_hint(self):
        return "array"


class VectorPrinter:
    """A vector by what it has: coefficients, a list, marks."""

    KINDS = {
        # coef, ind, elm
        (True, True, True): "marks vector",
        (True, True, False): "list vector",
        (True, False, False): "dense vector",
        (True, False, True): "dense vector with marks",
        (False, True, True): "index set",
        (False, True, False): "index list",
        (False, False, True): "marks without a list",
        (False, False, False): "vector without arrays",
    }

    def __init__(self, value):
        self.value = value
        self.arrays = tuple(is_present(value[name]) for name in ("coef", "ind", "elm"))
        self.nz = int(value["nz"])

    def capacity(self):
        present = [n for n, has in zip(("coef", "ind", "elm"), self.arrays) if has]
        return min(extent(self.value[name]) for name in present) if present else 0

    def is_listed(self):
        return self.arrays[1]

    def to_string(self):
        kind = self.KINDS[self.arrays]
        capacity = self.capacity()
        if not any(self.arrays):
            return kind
        if not self.is_listed():
            return f"{kind} of {capacity}"
        if not 0 <= self.nz <= capacity:
            return f"{kind}, nz = {self.nz}, which is not within 0 and {capacity}"
        return f"{kind}, {self.nz} of {capacity}"

    def listed(self):
        """The listed entries in list order. One without a mark counts as 0."""
        has_coefficients, _, has_marks = self.arrays
        capacity = self.capacity()
        for k in range(self.nz if 0 <= self.nz <= capacity else 0):
            j = int(self.value["ind"]["data"][k])
            if not 1 <= j <= capacity:
                yield f"x{j}", "out of range"
            elif has_marks and int(self.value["elm"]["data"][j - 1]) < 1:
                yield f"x{j}", "no mark"
            elif has_coefficients:
                yield f"x{j}", self.value["coef"]["data"][j - 1]
            else:
                yield f"x{j}", 1

    def dense(self):
        name = "coef" if self.arrays[0] else "elm"
        for j in range(self.capacity()):
            yield f"x{j + 1}", self.value[name]["data"][j]

    def children(self):
        return self.listed() if self.is_listed() else self.dense()


class OptionalRefPrinter:
    """An optional argument, with its target."""

    def __init__(self, value):
        self.target = value["target_"]

    def to_string(self):
        return "absent" if int(self.target) == 0 else "reference"

    def children(self):
        if int(self.target) != 0:
            yield "target", self.target.dereference()


class RngStatePrinter:
    """A random number generator."""

    def __init__(self, value):
        self.generator = int(value["generator"])

    def to_string(self):
        return f"generator {self.generator:#x}" if self.generator != 0 else "no generator"


class ValueSlotPrinter:
    """The slot of a `cbdatalist`: the size and the place of its value."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        address = int(self.value["value"])
        if address == 0:
            return "empty slot"
        has_parameters = int(self.value["type"]["has_parameters"]) != 0
        size = self.value["parameters"]["value_size"] if has_parameters else self.value["type"]["size"]
        return f"value of {plural(int(size), 'byte')} at {address:#x}"


class CbdatalistPrinter:
    """The value of a `cbdatalist`, and its handles."""

    def __init__(self, value):
        self.value = value

    def to_string(self):
        return ValueSlotPrinter(self.value["slot"]).to_string()

    def children(self):
        yield "first_handle", self.value["first_handle"]
        yield "second_handle", self.value["second_handle"]


def printers():
    collection = gdb.printing.RegexpCollectionPrettyPrinter("zktarn")
    for name, pattern, printer in (
        ("host_array", r"^zktarn::host_array<.*>$", HostArrayPrinter),
        ("vector", r"^zktarn::vector_type::vector$", VectorPrinter),
        ("optional_ref", r"^zktarn::optional_ref<.*>$", OptionalRefPrinter),
        ("rng_state", r"^zktarn::random::rng_state$", RngStatePrinter),
        ("value_slot", r"^zktarn::callbacks_type_util::value_slot$", ValueSlotPrinter),
        ("cbdatalist", r"^zktarn::callbacks_type_util::cbdatalist$", CbdatalistPrinter),
    ):
        collection.add_printer(name, pattern, printer)
    return collection


gdb.printing.register_pretty_printer(gdb.current_objfile(), printers(), replace=True)
