"""How runs end: limits, the output function, exceptions."""

import functools
import gc
import math
import threading
import time
import traceback
import warnings
from typing import get_args

import numpy as np
import pytest
from problems import MODELS, petersen, random_graph

from zktarn import _host, zero_half
from zktarn._zero_half import endings

P0282 = MODELS / "p0282.mps"


tighten = functools.partial(zero_half.tighten, display="off")


# Limits


def test_rounds_are_limited():
    for rounds in (0, 1, 3):
        result = tighten(P0282, rounds=rounds)
        assert result.status == "rounds_used"
        assert [each.number for each in result.rounds] == list(range(1, rounds + 1))
        assert len(result.history) == rounds + 1
        assert (len(result.rhs) > 0) == (rounds > 0)
    assert np.array_equal(tighten(P0282, rounds=3).history, result.history)


def test_time_is_limited():
    result = tighten(P0282, time_limit=0)
    assert result.status == "time_used" and result.rounds == ()
    assert tighten(**petersen(), time_limit=math.inf).status == "integral"


def test_a_share_of_the_gap_ends_the_run():
    result = tighten(P0282, stop_at_gap=10.0)
    assert result.status == "gap_closed"
    assert 10.0 <= result.gap_closed < 100.0
    assert result.bound < 258411
    assert result.gap_closed == pytest.approx(
        100 * (result.bound - result.initial_bound) / (258411 - result.initial_bound))


def test_every_status_has_its_sentence():
    assert set(endings()) == set(get_args(zero_half.Status))
    for name in endings():
        assert f"\n                     {name}  " in zero_half.Result.__doc__


# The optimum that the caller gives


def test_a_wrong_optimum_is_warned_of():
    with pytest.warns(RuntimeWarning, match="p0282.mps: the given optimum 200000 is wrong: "
                      "no point has a value below the bound") as caught:
        result = tighten(P0282, optimum=200000)
    assert caught[0].filename == __file__
    assert result.optimum == 200000 and result.gap_closed is None
    with warnings.catch_warnings():
        warnings.simplefilter("error")
        assert tighten(P0282).gap_closed > 0


# The output function


def test_the_output_function_sees_each_round():
    seen = []
    result = tighten(P0282, rounds=4, output_function=seen.append)
    assert [info["phase"] for info in seen] == ["cutting"] * 4 + ["done"]
    for info, each in zip(seen, result.rounds):
        assert set(info) == {"phase", "round", "bound", "history"}
        assert info["round"] == each.number and info["bound"] == each.bound
        assert np.array_equal(info["history"][1:], result.history[1:each.number + 1])
        assert info["history"][0] == np.ceil(result.initial_bound)  # costs of p0282 are integers
        assert type(info["phase"]) is str and type(info["bound"]) is float
    assert seen[-1]["bound"] == result.bound
    assert [len(info["history"]) for info in seen] == [2, 3, 4, 5, 5]


@pytest.mark.parametrize("answer", [1, 1.0, True, np.int32(1), np.bool_(True), [1.0], 1.9,
                                    np.array([[1, 0]])], ids=repr)
def test_the_answer_one_stops_the_run(answer):
    seen = []

    def stop_at_two(info):
        seen.append(info)
        return answer if info["round"] == 2 else None

    result = tighten(P0282, output_function=stop_at_two)
    assert result.status == "stopped_by_output_function"
    assert result.message == "the output function stopped the run"
    assert len(result.rounds) == len(seen) == 2
    assert np.array_equal(result.history, tighten(P0282, rounds=2).history)
    assert len(result.rhs) > 0 and result.point is not None


@pytest.mark.parametrize("answer", [None, 0, 0.0, False, 2, 0.9, -1, math.nan, [0, 1]], ids=repr)
def test_every_other_answer_goes_on(answer):
    result = tighten(P0282, rounds=3, output_function=lambda info: answer)
    assert result.status == "rounds_used"


class Refusal(Exception):
    pass


def raising_at(round_number, exception):
    def refuse(info):
        if info["round"] == round_number:
            raise exception
    return refuse


@pytest.mark.parametrize("exception", [
    Refusal("enough"), ValueError("enough"), KeyError("enough"), MemoryError("enough"),
    StopIteration("enough"), SystemExit(3), KeyboardInterrupt(), GeneratorExit()],
    ids=lambda exception: type(exception).__name__)
def test_an_exception_of_the_output_function_arrives_with_traceback_and_result(exception):
    with pytest.raises(type(exception)) as caught:
        tighten(P0282, output_function=raising_at(2, exception))
    assert caught.value is exception
    names = [frame.name for frame in traceback.extract_tb(exception.__traceback__)]
    assert names[-1] == "refuse" and "tighten" in names
    result = zero_half.partial_result(exception)
    assert result is exception.result and isinstance(result, zero_half.Result)
    assert result.status == "stopped_by_output_function" and len(result.rounds) == 2
    assert np.array_equal(result.history, tighten(P0282, rounds=2).history)
    assert exception.__notes__ == [
        f"The run ended after 2 rounds with bound {result.bound:.9g}; "
        "zktarn.zero_half.partial_result(exception) returns its result."]


def test_an_exception_in_the_last_call_arrives_with_the_complete_result():
    def refuse(info):
        if info["phase"] == "done":
            raise Refusal("late")

    with pytest.raises(Refusal, match="late") as caught:
        tighten(P0282, rounds=3, output_function=refuse)
    result = zero_half.partial_result(caught.value)
    assert result.status == "rounds_used" and len(result.rounds) == 3


class Closed(Exception):
    """An exception class that already has an attribute `result`."""

    @property
    def result(self):
        return "mine"


def test_an_exception_with_a_result_of_its_own_keeps_it():
    with pytest.raises(Closed) as caught:
        tighten(P0282, output_function=raising_at(1, Closed()))
    assert caught.value.result == "mine"
    assert zero_half.partial_result(caught.value) is None


def test_an_answer_that_is_not_a_number_is_a_type_error():
    for answer in ("1", "stop", {}, object(), [], [[1], [2, 3]]):
        with pytest.raises(TypeError, match="an output function has to return") as caught:
            tighten(P0282, output_function=lambda info: answer)
        assert len(zero_half.partial_result(caught.value).rounds) == 1


def test_the_solver_is_usable_after_an_exception():
    expected = tighten(P0282, rounds=3)
    gc.collect()
    blocks = _host.block_count()
    for exception in (Refusal(), KeyboardInterrupt()):
        with pytest.raises(type(exception)):
            tighten(P0282, output_function=raising_at(1, exception))
        again = tighten(P0282, rounds=3)
        assert np.array_equal(again.history, expected.history) and again.status == "rounds_used"
    assert _host.block_count() == blocks


def test_changing_the_dict_does_not_change_the_run():
    def clear(info):
        info["history"][:] = 7.0
        info.clear()

    expected = tighten(P0282, rounds=3)
    assert np.array_equal(tighten(P0282, rounds=3, output_function=clear).history,
                          expected.history)


# One run at a time


def test_an_output_function_that_calls_tighten_is_refused():
    with pytest.raises(RuntimeError, match="cannot call tighten before its run has ended"):
        tighten(P0282, output_function=lambda info: tighten(P0282))
    assert tighten(P0282, rounds=1).status == "rounds_used"


def test_runs_on_threads_follow_each_other():
    expected = tighten(P0282, rounds=3)
    inside = 0
    most = []
    results = [None] * 4
    begin = threading.Barrier(len(results))

    def count(info):
        nonlocal inside
        if info["round"] == 1:
            inside += 1
            most.append(inside)
            time.sleep(0.05)  # the others would begin meanwhile
        if info["phase"] == "done":
            inside -= 1

    def run(i):
        begin.wait()
        results[i] = tighten(P0282, rounds=3, output_function=count)

    threads = [threading.Thread(target=run, args=(i,)) for i in range(len(results))]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert max(most) == 1 and len(most) == len(results)
    for result in results:
        assert np.array_equal(result.history, expected.history)


def test_other_threads_work_on_during_a_run():
    ticks = 0
    is_over = False

    def tick():
        nonlocal ticks
        while not is_over:
            ticks += 1
            over.wait(0.001)

    over = threading.Event()
    thread = threading.Thread(target=tick)
    marks = []
    thread.start()
    try:
        # Rounds of this problem are linear programs of some hundred milliseconds.
        tighten(**random_graph(400, 2000, 1), rounds=3,
                output_function=lambda info: marks.append(ticks))
    finally:
        is_over = True
        thread.join()
    assert all(later - earlier > 3 for earlier, later in zip(marks, marks[1:-1]))


# Errors of the console and of the host


class BrokenConsole:
    def write(self, text):
        raise OSError("no space left on the console")

    def flush(self):
        pass


def test_an_exception_of_the_console_arrives_with_the_result(monkeypatch):
    monkeypatch.setattr("sys.stdout", BrokenConsole())
    with pytest.raises(OSError, match="no space left on the console") as caught:
        tighten(P0282, display="iter")
    assert zero_half.partial_result(caught.value).status == "interrupted"


def test_a_bit_generator_that_cannot_be_made_is_an_error():
    def refuse(seed):
        raise Refusal(f"no numbers for {seed}")

    _host.set_bit_generator(refuse)
    try:
        with pytest.raises(Refusal, match="no numbers for 9") as caught:
            tighten(P0282, seed=9)
        assert zero_half.partial_result(caught.value) is None
    finally:
        _host.set_bit_generator(None)
    assert tighten(P0282, rounds=1).status == "rounds_used"
