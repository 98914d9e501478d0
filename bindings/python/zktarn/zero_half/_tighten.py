"""The run of the solver, and the exceptions that end one."""

from __future__ import annotations

import contextlib
import math
import os
import threading
import warnings
from collections.abc import Callable, Iterator
from typing import Any, Literal, TypedDict, cast

import numpy as np
from numpy.typing import ArrayLike, NDArray

from zktarn import _zero_half
from zktarn.zero_half import _numbers
from zktarn.zero_half._model import FileName, Model, read_model
from zktarn.zero_half._result import Result

Display = Literal["off", "final", "iter"]

_DISPLAYS: dict[str, int] = {"off": 0, "final": 1, "iter": 2}


class Progress(TypedDict):
    """The dict that the output function is called with.

    phase    "cutting" after each round, "done" once at the end of a run that nothing stopped
    round    the number of the round, from 1
    bound    the bound after the round
    history  array: the bound before the first round, and the bound after each round; all rounded to
             objective values like `Result.bound`
    """

    phase: str
    round: float
    bound: float
    history: NDArray[np.float64]


OutputFunction = Callable[[Progress], object]


def tighten(
    model: FileName | Model | ArrayLike,
    constraints: Any = None,
    bounds: Any = None,
    integrality: ArrayLike | None = None,
    *,
    output_function: OutputFunction | None = None,
    rounds: int = 1000,
    time_limit: float = 60.0,
    seed: int = 1,
    display: Display = "iter",
    optimum: float | None = None,
    stop_at_gap: float = 100.0,
) -> Result:
    """Tighten the linear relaxation of a mixed-integer program by zero-half cuts.

    model        what is tightened:
                   - the name of a file, text or path: MPS, fixed or free, plain or compressed by
                     gzip, or LP when the name ends in `.lp`;
                   - a `Model`, made of arrays or by `read_model`;
                   - the objective c, one number for each column. Then the three arguments that
                     follow describe the model as in `scipy.optimize.milp`; `Model` explains them.
    constraints  the rows: a LinearConstraint, a tuple (A, lower, upper), or a sequence of these
    bounds       of the columns: a Bounds or a pair (lower, upper); default 0 and infinity
    integrality  0 (continuous) or 1 (integer) for each column, or for all

    output_function  called after each round with a dict (`Progress`). The run stops when it returns
                     a number that is 1 after truncation, or True. None continues the run. An
                     exception that it raises ends the run.
    rounds           the maximum number of rounds, from 0 to 1000000
    time_limit       in seconds, from 0; `math.inf` for no limit. Polled in each iteration of the
                     simplex method.
    seed             of the random numbers, a 32-bit integer; they are those of
                     `numpy.random.PCG64(seed)`. The same seed gives the same result unless the time
                     limit ends the run.
    display          "iter" prints a line for each round and a table at the end, "final" the table,
                     "off" nothing. Lines go to `sys.stdout`.
    optimum          the integer optimum if it is known; the share of the gap closed is computed from
                     it. Default: looked up in a table `optima.csv` (lines `file,optimum`) in the
                     folder of the file, if there is one.
    stop_at_gap      the run ends when this share of the gap between the first bound and the optimum
                     is closed; in per cent, from 0 to 100

    Returns a `Result`: bounds, rounds, the cuts as a sparse matrix, the point, and in `status` why
    the run ended.

    A run ends early in these cases. The exceptions carry the `Result` so far in their attribute
    `result`; `partial_result(exception)` returns it with its type.

      - The output function returns 1: the result has the status "stopped_by_output_function".
      - The time limit is reached: the result has the status "time_used".
      - Ctrl-C (SIGINT) in the main thread: KeyboardInterrupt, or the exception that the program's own
        handler raises, at the next poll. The solver polls in each iteration of the simplex method and in the
        loops of the separation.
      - The output function, or a write to `sys.stdout`, raises an exception: that exception, with
        its traceback.
      - An internal check of the solver fails: AssertionError.

    Raises without a result:

      - TypeError, ValueError: an argument of a wrong type, shape or value;
      - FileNotFoundError and other OSErrors: the file cannot be opened;
      - ModelError, a ValueError: the file holds no model that the solver reads, no column is
        integer, numbers are beyond 1e15, bounds cross, or the relaxation is infeasible, unbounded
        or cannot be decided;
      - MemoryError;
      - RuntimeError: an output function calls `tighten`, whose run has not ended.

    Warns with a RuntimeWarning when the run disproves the given optimum, or when the relaxation with
    the last cuts could not be decided.

    One run at a time: a call on another thread waits until the first has ended. Other threads of
    Python continue during a run, because the interpreter's lock is held only for the operations of
    the host. Each round costs a separation and a linear program.
    """
    if output_function is not None and not callable(output_function):
        raise TypeError(
            f"output_function has to be callable, not {type(output_function).__name__}"
        )
    program = _model(model, constraints, bounds, integrality)
    options = _options(rounds, time_limit, seed, display, stop_at_gap)
    options["optimum"] = _optimum(program, optimum)
    with _one_run_at_a_time():
        outcome, raised = _zero_half.tighten(
            program._arrays(),
            options,
            cast("Callable[[dict[str, Any]], Any] | None", output_function),
        )
    result = None if outcome is None else Result._of(program, options["seed"], outcome)
    if raised is not None:
        _attach(raised, result)
        raise raised
    assert result is not None and outcome is not None
    if outcome["fault"]:
        warnings.warn(f"{program._label()}: {outcome['fault']}", RuntimeWarning, stacklevel=2)
    if display != "off":
        print(f"\n{result}" if display == "iter" else result)
    return result


def partial_result(exception: BaseException) -> Result | None:
    """Return the result that a run had reached when this exception ended it.

    None if the exception did not end a run, or ended it before the first relaxation.
    """
    result = getattr(exception, "result", None)
    return result if isinstance(result, Result) else None


_run_lock = threading.Lock()
_running_thread: int | None = None


@contextlib.contextmanager
def _one_run_at_a_time() -> Iterator[None]:
    """Waits for the run of another thread: the library has one interrupt flag for all runs."""
    global _running_thread
    if _running_thread == threading.get_ident():
        raise RuntimeError("an output function cannot call tighten before its run has ended")
    with _run_lock:
        _running_thread = threading.get_ident()
        try:
            yield
        finally:
            _running_thread = None


def _attach(raised: BaseException, result: Result | None) -> None:
    """Makes the result an attribute of the exception, and says so in its traceback."""
    if result is None:
        return
    # A class may refuse the attribute, or use the name itself.
    with contextlib.suppress(AttributeError, TypeError):
        raised.result = result  # type: ignore[attr-defined]
    bound = "no bound yet" if result.bound is None else f"bound {result.bound:.9g}"
    raised.add_note(
        f"The run ended after {len(result.rounds)} rounds with {bound}; "
        "zktarn.zero_half.partial_result(exception) returns its result."
    )


def _model(model: Any, constraints: Any, bounds: Any, integrality: Any) -> Model:
    if not isinstance(model, (str, bytes, os.PathLike, Model)):
        return Model(model, constraints, bounds, integrality)
    for name, value in (
        ("constraints", constraints),
        ("bounds", bounds),
        ("integrality", integrality),
    ):
        if value is not None:
            raise TypeError(f"{name} belongs to an array c: a file or a Model has its own")
    return model if isinstance(model, Model) else read_model(model)


def _options(
    rounds: int, time_limit: float, seed: int, display: str, stop_at_gap: float
) -> _zero_half.Options:
    if not isinstance(display, str) or display not in _DISPLAYS:
        raise ValueError(f"display is {display!r}, but has to be 'off', 'final' or 'iter'")
    return {
        "rounds": _numbers.integer("rounds", rounds, 0, 1_000_000),
        "time_limit": _numbers.real("time_limit", time_limit, 0.0, math.inf),
        "seed": _numbers.integer("seed", seed, -(2**31), 2**31 - 1),
        "display": _DISPLAYS[display],
        "optimum": None,
        "stop_at_gap": _numbers.real("stop_at_gap", stop_at_gap, 0.0, 100.0),
    }


def _optimum(model: Model, given: float | None) -> float | None:
    if given is not None:
        largest = float(np.finfo(np.float64).max)
        return _numbers.real("optimum", given, -largest, largest)
    return None if model.file is None else _zero_half.known_optimum(os.fsencode(model.file))
