"""Support routines for integer and mixed-integer optimisation solvers, on NumPy."""

# First, because it loads libzktarn_util together with the host made of CPython and NumPy.
from . import _host
from . import _core

__version__: str = _host.version
__all__ = ["__version__"]
