"""Nothing is left after runs: blocks of the host, memory of the process, references."""

import ctypes
import gc
import sys

import pytest
from problems import MODELS, petersen

from zktarn import _host, zero_half

RUNS = 100
BLOCKS = 4


class Refusal(Exception):
    pass


def complete(function=None):
    assert zero_half.tighten(**petersen(), display="off", output_function=function,
                             seed=3).status == "integral"


def from_file():
    zero_half.tighten(MODELS / "p0033.mps", display="off", rounds=2)


def refused():
    try:
        zero_half.tighten(**petersen(), display="off", output_function=refuse)
    except Refusal as error:
        assert error.result is not None


def refuse(_):
    raise Refusal


def infeasible():
    with pytest.raises(zero_half.ModelError):
        zero_half.tighten([1, 1], ([[1, 1]], 5, 9), (0, 1), 1, display="off")


def unreadable():
    with pytest.raises(zero_half.ModelError):
        zero_half.read_model(MODELS.parent / "README.md")


class Allocated(ctypes.Structure):
    """`struct mallinfo2` of the C library."""

    _fields_ = [(name, ctypes.c_size_t) for name in (
        "arena", "ordblks", "smblks", "hblks", "hblkhd", "usmblks", "fsmblks", "uordblks",
        "fordblks", "keepcost")]


def process_bytes():
    """The bytes in use of the C library's heap, which C++ and NumPy allocate from."""
    mallinfo2 = ctypes.CDLL(None).mallinfo2
    mallinfo2.restype = Allocated
    state = mallinfo2()
    return state.uordblks + state.hblkhd


CASES = [complete, from_file, refused, infeasible, unreadable]


def least_growth(case, size):
    """The smallest growth over a block of runs. NumPy's caches grow ever more slowly, a leak does
    not slow down."""
    growths = []
    for _ in range(BLOCKS):
        gc.collect()
        before = size()
        for _ in range(RUNS):
            case()
        gc.collect()
        growths.append(size() - before)
    return min(growths)


@pytest.mark.without_sanitizer
@pytest.mark.skipif(not hasattr(ctypes.CDLL(None), "mallinfo2"),
                    reason="the C library does not count its bytes")
@pytest.mark.parametrize("case", CASES, ids=lambda case: case.__name__)
def test_runs_leave_no_memory_behind(case):
    gc.collect()
    blocks = _host.block_count()
    assert least_growth(case, process_bytes) < 40 * RUNS
    assert _host.block_count() == blocks


@pytest.mark.without_sanitizer
@pytest.mark.parametrize("case", CASES, ids=lambda case: case.__name__)
def test_runs_leave_no_python_object_behind(case):
    for _ in range(RUNS):
        case()
    assert least_growth(case, sys.getallocatedblocks) < RUNS


def test_runs_keep_no_reference_to_their_arguments():
    def function(info):
        return 0

    model = zero_half.Model(**{("c" if name == "model" else name): value
                               for name, value in petersen().items()})
    def counts():
        gc.collect()
        return [sys.getrefcount(each) for each in (function, model.A, model.A.data, model.c, model)]

    before, none_before = counts(), sys.getrefcount(None)
    for _ in range(100):
        zero_half.tighten(model, display="off", output_function=function)
    assert counts() == before
    # Others use None too, but not more with each run.
    assert sys.getrefcount(None) - none_before < 100


def test_a_result_keeps_its_arrays_alive_after_the_run():
    result = zero_half.tighten(**petersen(), display="off")
    cuts, rhs, point = result.cuts.toarray(), result.rhs.copy(), result.point.copy()
    for _ in range(20):
        complete()
    assert (result.cuts.toarray() == cuts).all() and (result.rhs == rhs).all()
    assert (result.point == point).all()
