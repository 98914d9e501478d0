"""The bridge between a solver written in Python and the host: reports, console, interrupts."""

from typing import Callable, Dict, Optional

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core
from ._numbers import _reals

_STOPPED = 3
_DISPLAYS = {"off": 0, "final": 1, "all": 2}


class Solve:
    """The state of one solve: an output function, a level of display, and interrupts.

    output_function    callable or None. It gets a report as a dict of str to str, float and arrays,
                       and ends the solve by returning 1.
    display            'off', 'final' or 'all': which lines `print` prints.
    interrupts         bool: whether Ctrl-C ends the solve.

    Only one solve can run at a time; a new one clears an interrupt that an earlier one reported.

        solve = Solve(output_function=follow)
        while not solve.has_interrupt():
            ...
            if solve.report("rounds", bound=bound, x=x):
                break
            solve.print(f"bound {bound}")

    TypeError: `output_function` is not callable. ValueError: `display` is none of these.
    C++: callbacks_util::cbinit, and the codes status, ctrlc, display and indicator of that module.
    """

    def __init__(
        self, output_function: Optional[Callable[[Dict[str, object]], object]] = None, *,
        display: str = "all", interrupts: bool = True,
    ) -> None:
        if output_function is not None and not callable(output_function):
            raise TypeError(
                f"output_function must be callable, not {type(output_function).__name__}")
        if display not in _DISPLAYS:
            raise ValueError(f"display must be 'off', 'final' or 'all', not {display!r}")
        self._output_function = output_function
        self._display = _DISPLAYS[display]
        self._ctrlc = 1 if interrupts else 0
        self._status = 0
        self._data = _core.begin()

    @property
    def data(self) -> _core.SolveData:
        """The counters of the solve. The solver sets them; the library does not read them.

        nodes_explored, feasible_points, node, parent_node, depth, branching_variable, lower_bound,
        upper_bound, gap, incumbent_node, cuts, restarts.

        C++: callbacks_type_util::cbdata, which states the initial values.
        """
        return self._data

    @property
    def has_output_function(self) -> bool:
        """Whether there is an output function. C++: callbacks_util::cbhasoutputfcn."""
        return _core.has_output_function(0 if self._output_function is None else 1)

    @property
    def is_display_off(self) -> bool:
        """Whether nothing is printed. C++: callbacks_util::cbisdisplayoff."""
        return _core.is_display_off(self._display)

    @property
    def is_display_final(self) -> bool:
        """Whether only the final output is printed. C++: callbacks_util::cbisdisplayfinal."""
        return _core.is_display_final(self._display)

    @property
    def polls(self) -> bool:
        """Whether Ctrl-C ends the solve. C++: callbacks_util::cbisctrlcon."""
        return _core.polls(self._ctrlc)

    @property
    def stopped(self) -> bool:
        """Whether the output function has ended the solve.

        C++: callbacks_util::cbstopfromoutputfcn."""
        return _core.stopped_by_output_function(self._status)

    def report(self, phase: str, /, **fields: ArrayLike) -> bool:
        """Calls the output function with a dict {"phase": phase, ...}.

        phase     str.
        fields    reals, or arrays of reals of one dimension, by their names.

        Returns whether to end the solve: True once the output function has returned 1. Returns
        False without an output function, and after an interrupt, without calling it.

        An exception of the output function ends the solve and is raised here. KeyboardInterrupt:
        Ctrl-C. TypeError: a field is not a real number. ValueError: it has two dimensions or more.
        C++: callbacks_util::qvinitcbarray, addrealscalartoqvstruct, addrealvectoqvstruct,
        qvcalloutputfcn.
        """
        if not isinstance(phase, str):
            raise TypeError(f"phase must be a str, not {type(phase).__name__}")
        if "phase" in fields:
            raise ValueError("the field 'phase' is the first argument of report()")
        arrays = {name: _field(name, value) for name, value in fields.items()}
        if self._output_function is None:
            return False
        if _core.report(self._output_function, phase, arrays, self._status, self._ctrlc):
            self._status = _STOPPED
        _core.raise_pending()
        return self.stopped

    def print(self, line: str) -> None:
        """Prints a line on `sys.stdout` and flushes it.

        line    str; a line feed is added.

        Prints nothing when the display is off, and after the solve was ended. KeyboardInterrupt:
        Ctrl-C. An exception of `sys.stdout` is raised here. C++: callbacks_util::cbprintdisplay.
        """
        if not isinstance(line, str):
            raise TypeError(f"line must be a str, not {type(line).__name__}")
        _core.display(self._status, self._ctrlc, self._display, line)

    def has_interrupt(self) -> bool:
        """Whether to end the solve: after the output function has ended it, or after an interrupt.

        KeyboardInterrupt: at the first poll after Ctrl-C; later polls return True.
        C++: callbacks_util::cbhasinterrupt.
        """
        return _core.has_interrupt(self._status, self._ctrlc)


def _field(name: str, value: ArrayLike) -> NDArray[np.float64]:
    array = _reals(value, name)
    if array.ndim > 1:
        raise ValueError(f"{name} must have at most one dimension, not {array.ndim}")
    return np.ascontiguousarray(array) if array.ndim == 1 else array


def tarnassert(condition: object) -> None:
    """Raises AssertionError unless the condition is true, as a false assertion in the library does.

    C++: assert_mod::tarnassert.
    """
    _core.assert_condition(bool(condition))
