"""The picture of a run. Only this file imports matplotlib, and only `Result.plot` imports this file."""

from __future__ import annotations

from typing import TYPE_CHECKING, Literal

import matplotlib.pyplot
from matplotlib.ticker import MaxNLocator

if TYPE_CHECKING:
    from matplotlib.axes import Axes

    from zktarn.zero_half._result import Result

Panel = Literal["round", "time"]


def draw(result: "Result", ax: "Axes | None", against: Panel | None) -> "tuple[Axes, ...]":
    """The panels of `Result.plot`."""
    if against not in (None, "round", "time"):
        raise ValueError(f"against is {against!r}, but has to be 'round', 'time' or None")
    if result.initial_bound is None:
        raise ValueError("there is nothing to draw: the run ended before a bound was known")
    if ax is not None or against is not None:
        if ax is None:
            ax = matplotlib.pyplot.subplots(layout="constrained")[1]
        _panel(result, ax, against or "round")
        ax.set_title(result.model._label())
        ax.legend()
        return (ax,)
    figure, axes = matplotlib.pyplot.subplots(
        1, 2, sharey=True, figsize=(9.0, 4.0), layout="constrained"
    )
    _panel(result, axes[0], "round")
    _panel(result, axes[1], "time")
    axes[1].set_ylabel("")
    axes[0].legend()
    figure.suptitle(result.model._label())
    return tuple(axes)


def _panel(result: "Result", ax: "Axes", against: Panel) -> None:
    """One panel, without its legend."""
    if against == "round":
        places = [0.0, *(float(each.number) for each in result.rounds)]
        ax.set_xlabel("round")
        ax.xaxis.set_major_locator(MaxNLocator(integer=True))
    else:
        unit, size = _time_unit(result.rounds[-1].seconds if result.rounds else 0.0)
        places = [0.0, *(each.seconds / size for each in result.rounds)]
        ax.set_xlabel(f"time ({unit})")
    kind = "upper" if result.model.maximise else "lower"
    ax.set_ylabel(f"objective, {kind} bound")
    ax.axhline(
        result.initial_bound, color="0.6", linewidth=1.5, label=f"LP value {result.initial_bound:.9g}"
    )
    if result.optimum is not None:
        ax.axhline(
            result.optimum,
            color="black",
            linewidth=1.0,
            linestyle="--",
            label=f"optimum {result.optimum:.9g}",
        )
    ax.plot(
        places,
        result.history,
        color="#1f5fa8",
        marker="o",
        markersize=3.0,
        label="bound with cuts",
    )
    ax.set_xlim(0.0, max(places[-1], 1.0 if against == "round" else 1e-9))


def _time_unit(seconds: float) -> tuple[str, float]:
    """A unit in which the duration is not below 2, from milliseconds up."""
    if seconds < 2.0:
        return "ms", 1e-3
    return ("s", 1.0) if seconds < 120.0 else ("min", 60.0)
