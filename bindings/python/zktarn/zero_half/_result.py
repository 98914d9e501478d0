"""The result of a run."""

from __future__ import annotations

import html
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Literal, NamedTuple, cast

import numpy as np
import scipy.sparse
from numpy.typing import NDArray

from zktarn import _zero_half
from zktarn.zero_half._model import FileName, Model

if TYPE_CHECKING:
    from matplotlib.axes import Axes

Status = Literal[
    "integral",
    "gap_closed",
    "no_cut_found",
    "no_integer_point",
    "no_progress",
    "rounds_used",
    "time_used",
    "memory_used",
    "interrupted",
    "stopped_by_output_function",
    "numeric_error",
]


class Round(NamedTuple):
    """The figures of one round.

    number         from 1
    bound          the bound of the relaxation with the cuts of this round
    cuts_found     the violated cuts that the separation found
    cuts_kept      those that were selected and added to the relaxation
    separation_ms  milliseconds that the separation took
    relaxation_ms  milliseconds that the relaxation took
    seconds        from the beginning of the run to the end of the round
    """

    number: int
    bound: float
    cuts_found: int
    cuts_kept: int
    separation_ms: float
    relaxation_ms: float
    seconds: float


@dataclass(frozen=True, eq=False, repr=False)
class Result:
    """A tightened relaxation: bounds, rounds, cuts, and why the run ended.

    `print(result)` prints the table of the program, a notebook shows tables of the run and of its
    rounds, and `plot` draws the bounds. Results can be pickled. The attributes are read-only:

    model          the `Model` that was tightened
    status         why the run ended; the names are those of the program's JSON report:
                     integral                    the optimum of the relaxation is integral
                     gap_closed                  the requested share of the gap is closed
                     no_cut_found                no violated cut was found
                     no_integer_point            the cuts leave no point, so there is no integer point
                     no_progress                 several rounds in succession did not raise the bound
                     rounds_used                 the limit of rounds was reached
                     time_used                   the time limit was reached
                     memory_used                 a further round may need more memory than is left
                     interrupted                 Ctrl-C, or an exception other than that of the
                                                 output function
                     stopped_by_output_function  it returned 1, or raised an exception
                     numeric_error               the relaxation with the last cuts could not be
                                                 decided
    message        the status as a sentence
    initial_bound  the bound of the relaxation without cuts, the LP value; None when the run ended
                   before it was solved
    relaxation_bound  the bound of the relaxation with the cuts; None where `initial_bound` is None
    bound          `relaxation_bound`, moved to the next value that the objective can take at integer
                   points. No integer point has a smaller objective (a greater one, if the model is
                   maximised). None where `initial_bound` is None
    optimum        the integer optimum: as it was given, or the bound when the status is "integral";
                   None when it is not known
    gap_closed     the share of the gap between initial bound and optimum that the bound closes, in
                   per cent, at most 100; None when the optimum is not known or is wrong
    rounds         a tuple with a `Round` for each round
    history        array: the initial bound, and `bound` after each round
    cuts           the cuts of the last relaxation, a `scipy.sparse.csr_array` with a row for each cut
                   and a column for each of the model: each integer point of the model satisfies
                   cuts @ x <= rhs. All numbers are integers.
    rhs            array: the right-hand sides of the cuts
    constraint     the cuts as a `scipy.optimize.LinearConstraint`
    point          array: the optimum of the last relaxation that was solved; its integer columns are
                   rounded if `objective` is not None. None where `initial_bound` is None
    objective      the objective of `point` if that is an integer point whose objective equals the
                   bound, and therefore an optimum of the model; else None
    seconds        the time that the run took
    cpu_seconds    the processor time of the process during the run, its other threads included
    seed           of the random numbers
    """

    model: Model
    status: Status
    message: str
    initial_bound: float | None
    relaxation_bound: float | None
    bound: float | None
    optimum: float | None
    gap_closed: float | None
    rounds: tuple[Round, ...]
    cuts: Any
    rhs: NDArray[np.float64]
    point: NDArray[np.float64] | None
    objective: float | None
    seconds: float
    cpu_seconds: float
    seed: int
    _table: str

    @classmethod
    def _of(cls, model: Model, seed: int, outcome: _zero_half.Outcome) -> "Result":
        cuts = outcome["cuts"]
        shape = (cuts["rhs"].size, model.c.size)
        return cls(
            model=model,
            status=cast(Status, outcome["status"]),
            message=outcome["message"],
            initial_bound=outcome["initial_bound"],
            relaxation_bound=outcome["relaxation_bound"],
            bound=outcome["bound"],
            optimum=outcome["optimum"],
            gap_closed=outcome["gap_closed"],
            rounds=tuple(Round(*figures) for figures in outcome["rounds"]),
            cuts=scipy.sparse.csr_array(
                (cuts["data"], cuts["indices"], cuts["indptr"]), shape=shape
            ),
            rhs=cuts["rhs"],
            point=outcome["point"],
            objective=outcome["objective"],
            seconds=outcome["seconds"],
            cpu_seconds=outcome["cpu_seconds"],
            seed=seed,
            _table=outcome["table"],
        )

    @property
    def history(self) -> NDArray[np.float64]:
        """The initial bound and that of each round; empty when the run ended before the first."""
        if self.initial_bound is None:
            return np.empty(0)
        return np.array([self.initial_bound, *(each.bound for each in self.rounds)])

    @property
    def constraint(self) -> Any:
        """The cuts as a `scipy.optimize.LinearConstraint`, for `scipy.optimize.milp`:

        milp(model.c, constraints=[model.constraints, result.constraint], ...)
        """
        from scipy.optimize import LinearConstraint

        return LinearConstraint(self.cuts, -np.inf, self.rhs)

    def write_mps(self, file: FileName) -> None:
        """Write the model with its cuts as additional rows, as free MPS.

        Columns keep their names, in which blanks become underscores, and their kinds; the integer
        optimum is the same. Raises OSError when the file cannot be opened, `ModelError` when it
        cannot be written.
        """
        import os

        with open(file, "wb"):
            pass
        cuts: _zero_half.Cuts = {
            "indptr": self.cuts.indptr.astype(np.int32),
            "indices": self.cuts.indices.astype(np.int32),
            "data": self.cuts.data,
            "rhs": self.rhs,
        }
        _zero_half.write_mps(self.model._arrays(), cuts, os.fsencode(file))

    def plot(
        self,
        ax: "Axes | None" = None,
        *,
        against: Literal["round", "time"] | None = None,
    ) -> "tuple[Axes, ...]":
        """Draw the bound, the LP value and the optimum with matplotlib.

        ax       the axes to draw on; None: a new figure
        against  "round" or "time" for one panel; None: both panels on a new figure, or the panel of
                 rounds if `ax` is given

        Returns the axes, one for each panel, with a legend. Time is in milliseconds, seconds or
        minutes.

        Raises ValueError when the run ended before a bound was known, and ImportError without
        matplotlib.
        """
        from zktarn.zero_half import _drawing

        return _drawing.draw(self, ax, against)

    def __str__(self) -> str:
        return self._table.rstrip("\n")

    def __repr__(self) -> str:
        closed = "" if self.gap_closed is None else f", {self.gap_closed:.2f} % of the gap closed"
        return (
            f"<zktarn.zero_half.Result {self.model._label()!r}: {self.status}, "
            f"bound {_text(self.initial_bound)} -> {_text(self.bound)}{closed}, "
            f"{self.rhs.size} cuts, {len(self.rounds)} rounds, {self.seconds:.3g} s>"
        )

    def _repr_html_(self) -> str:
        """Two tables, of the run and of its rounds, for notebooks."""
        facts = (
            ("LP value", _text(self.initial_bound)),
            ("bound", _text(self.bound)),
            ("optimum", _text(self.optimum)),
            ("gap closed", "-" if self.gap_closed is None else f"{self.gap_closed:.2f} %"),
            ("cuts", str(self.rhs.size)),
            ("time", f"{self.seconds:.3g} s"),
            ("end", self.message),
        )
        heading = ("round", "bound", "cuts found", "cuts kept", "separation (ms)", "LP (ms)", "time (s)")
        rows = [
            (
                str(each.number),
                _text(each.bound),
                str(each.cuts_found),
                str(each.cuts_kept),
                f"{each.separation_ms:.1f}",
                f"{each.relaxation_ms:.1f}",
                f"{each.seconds:.3f}",
            )
            for each in self.rounds
        ]
        label = html.escape(self.model._label())
        summary = "".join(
            f"<tr><th style='text-align:left'>{name}</th><td>{html.escape(value)}</td></tr>"
            for name, value in facts
        )
        head = "".join(f"<th>{html.escape(each)}</th>" for each in heading)
        body = "".join(
            "<tr>" + "".join(f"<td>{html.escape(each)}</td>" for each in row) + "</tr>"
            for row in rows
        )
        return (
            f"<table><caption>{label}</caption><tbody>{summary}</tbody></table>"
            f"<details><summary>{len(rows)} rounds</summary>"
            f"<table><thead><tr>{head}</tr></thead><tbody>{body}</tbody></table></details>"
        )


def _text(value: float | None) -> str:
    return "-" if value is None else f"{value:.9g}"
