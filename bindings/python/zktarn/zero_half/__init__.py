"""Tightens the linear relaxations of mixed-integer programs by zero-half cuts.

A zero-half cut is a sum of rows, halved and rounded down. Every integer point satisfies it; the
optimum of the linear relaxation often does not. The solver finds such cuts, adds them to the
relaxation and solves it again, round after round, so that the bound of the relaxation rises towards
the integer optimum. It runs inside the Python process: NumPy is the host of libzktarn_util, and Clp
solves the linear programs.

    >>> from zktarn import zero_half
    >>> result = zero_half.tighten("p0033.mps")          # a file, or:
    >>> result = zero_half.tighten(c, constraints=(A, lb, ub), integrality=1)
    >>> result.bound, result.gap_closed
    >>> result.plot()

`tighten` runs the solver and returns a `Result`, which has a `Round` for each round. `read_model`
reads a file into a `Model`, which holds arrays. `partial_result` returns the result of a run that an
exception ended. `ModelError` reports a model that cannot be tightened.
"""

import importlib.util

if importlib.util.find_spec("zktarn._zero_half") is None:
    raise ImportError(
        "this build of zktarn has no zktarn.zero_half, because Clp or Boost was missing when it was "
        "built; install both (on Debian: coinor-libclp-dev, libboost-dev) and build zktarn again",
        name="zktarn.zero_half",
    )
if importlib.util.find_spec("scipy") is None:
    raise ImportError(
        "zktarn.zero_half needs SciPy for its sparse matrices (on Debian: python3-scipy)",
        name="scipy",
    )

from zktarn._zero_half import ModelError
from zktarn.zero_half._model import Model, read_model
from zktarn.zero_half._result import Result, Round, Status
from zktarn.zero_half._tighten import OutputFunction, Progress, partial_result, tighten

__all__ = [
    "Model",
    "ModelError",
    "OutputFunction",
    "Progress",
    "Result",
    "Round",
    "Status",
    "partial_result",
    "read_model",
    "tighten",
]
