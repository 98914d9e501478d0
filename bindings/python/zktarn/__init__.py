"""Support routines for integer and mixed-integer optimisation solvers, on NumPy.

Sparse vectors       Vector
Whole arrays         floor, ceil, nearest, is_int, fractional, fractionality, is_even, is_even_int,
                     is_int_scalar, nearest_scalar
Fractions            rational, gcd, scalar_integral, find_scalar_integral
Sorting              sort
Random numbers       Generator
Solvers in Python    Solve, tarnassert
Cutting planes       module zktarn.zero_half

Element indices and list positions are the library's: they count from 1. The functions on whole
arrays are universal functions of NumPy: they broadcast, and take `out=` and `where=`. Errors are
exceptions: TypeError for another type, IndexError for an index out of range, ValueError for any
other argument, MemoryError.

Each docstring names the C++ procedure, whose header in zktarn/ states all of the contract.
"""

# First, because it loads libzktarn_util together with the host made of CPython and NumPy.
from . import _host
from ._core import (
    Vector,
    ceil,
    floor,
    fractional,
    fractionality,
    is_even,
    is_even_int,
    is_int,
    is_int_scalar,
    nearest,
    nearest_scalar,
)
from ._generators import Generator, GeneratorState
from ._numbers import Rationals, find_scalar_integral, gcd, rational, scalar_integral, sort
from ._solve import Solve, tarnassert

__version__: str = _host.version
__all__ = [
    "Generator",
    "GeneratorState",
    "Rationals",
    "Solve",
    "Vector",
    "__version__",
    "ceil",
    "find_scalar_integral",
    "floor",
    "fractional",
    "fractionality",
    "gcd",
    "is_even",
    "is_even_int",
    "is_int",
    "is_int_scalar",
    "nearest",
    "nearest_scalar",
    "rational",
    "scalar_integral",
    "sort",
    "tarnassert",
]
