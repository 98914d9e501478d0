"""Solve: reports, console, interrupts, and the exceptions that come back through them."""

import contextlib
import io
import os
import signal
import traceback

import numpy as np
import pytest

import zktarn
from test_whole_arrays import refuses


@pytest.fixture(autouse=True)
def no_interrupt_is_left():
    yield
    zktarn.Solve()


def printed(call, *args):
    with contextlib.redirect_stdout(io.StringIO()) as console:
        call(*args)
    return console.getvalue()


def test_a_report_is_a_dict():
    reports = []
    solve = zktarn.Solve(reports.append)
    assert solve.report("rounds", bound=2, x=[1.0, 2.0], empty=[], one=np.float32(0.5)) is False
    report, = reports
    assert list(report) == ["phase", "bound", "x", "empty", "one"]
    assert report["phase"] == "rounds" and report["bound"] == 2.0 and report["one"] == 0.5
    assert np.asarray(report["x"]).ravel().tolist() == [1.0, 2.0]
    assert np.asarray(report["empty"]).size == 0


def test_a_phase_and_names_are_any_text():
    reports = []
    zktarn.Solve(reports.append).report("Übung ", **{"größe": 1.0, "": 2.0})
    assert reports[0] == {"phase": "Übung ", "größe": 1.0, "": 2.0}


def test_the_output_function_ends_the_solve_by_returning_1():
    answers = iter([0, 0.5, None, 2, 1, 0])
    calls = []

    def follow(report):
        calls.append(report)
        return next(answers)

    solve = zktarn.Solve(follow)
    assert [solve.report("r") for _ in range(4)] == [False] * 4
    assert not solve.stopped and not solve.has_interrupt()
    assert solve.report("r") is True
    assert solve.stopped and solve.has_interrupt() and len(calls) == 5
    assert solve.report("r") is True and len(calls) == 5
    assert printed(solve.print, "after the end") == ""
    assert not zktarn.Solve(follow).stopped


def test_an_exception_of_the_output_function_arrives_with_its_traceback():
    def follow(report):
        raise LookupError("no such thing")

    solve = zktarn.Solve(follow)
    with pytest.raises(LookupError, match="^no such thing$") as raised:
        solve.report("r")
    assert "follow" in "".join(traceback.format_tb(raised.value.__traceback__))
    assert solve.stopped
    zktarn.Solve().report("r")  # nothing is left of it


def test_solves_nest():
    inner = zktarn.Solve(lambda report: 1)

    def follow(report):
        return 0 if inner.report("inner") else 1

    outer = zktarn.Solve(follow)
    assert outer.report("outer") is False and inner.stopped


def test_without_an_output_function():
    solve = zktarn.Solve()
    assert not solve.has_output_function and solve.report("r", x=1.0) is False
    assert zktarn.Solve(print).has_output_function


@pytest.mark.parametrize("display, shown, off, final", [
    ("off", "", True, False), ("final", "a line \n", False, True), ("all", "a line \n", False, False)])
def test_lines_go_to_standard_output(display, shown, off, final):
    solve = zktarn.Solve(display=display)
    assert printed(solve.print, "a line ") == shown
    assert (solve.is_display_off, solve.is_display_final) == (off, final)


def test_a_console_that_fails_raises():
    class Broken:
        def write(self, text):
            raise OSError("console is closed")

        def flush(self):
            pass

    with contextlib.redirect_stdout(Broken()):
        refuses(OSError, "console is closed", zktarn.Solve().print, "line")


def test_ctrl_c_becomes_keyboard_interrupt_once():
    solve = zktarn.Solve()
    assert solve.polls and not solve.has_interrupt()
    before = signal.signal(signal.SIGINT, signal.default_int_handler)
    try:
        with pytest.raises(KeyboardInterrupt):
            os.kill(os.getpid(), signal.SIGINT)
            solve.has_interrupt()
    finally:
        signal.signal(signal.SIGINT, before)


def test_the_record_of_a_solve():
    data = zktarn.Solve().data
    assert (data.nodes_explored, data.node, data.lower_bound) == (0, -1, -np.finfo(float).max)
    data.nodes_explored += 5
    data.gap = 0.25
    assert (data.nodes_explored, data.gap) == (5, 0.25)


def test_what_a_solve_refuses():
    refuses(TypeError, "output_function must be callable, not int", zktarn.Solve, 3)
    refuses(ValueError, "display must be 'off', 'final' or 'all', not 'none'", zktarn.Solve,
            display="none")
    solve = zktarn.Solve(lambda report: 1 / 0)
    refuses(TypeError, "phase must be a str, not int", solve.report, 1)
    refuses(TypeError, "x must be real numbers, not str", solve.report, "r", x="a")
    refuses(ValueError, "x must have at most one dimension, not 2", solve.report, "r", x=[[1.0]])
    refuses(ValueError, "the field 'phase' is the first argument of report()",
            lambda: solve.report("r", **{"phase": 1.0}))
    refuses(TypeError, "line must be a str, not bytes", solve.print, b"line")


def test_assertions():
    zktarn.tarnassert(True)
    zktarn.tarnassert([0])
    with pytest.raises(AssertionError):
        zktarn.tarnassert(0)
    zktarn.tarnassert(1)
