"""Memory: calls leave no object and no block behind, and touch nothing outside of the arrays of a vector."""

import gc
import sys
import tracemalloc

import numpy as np
import pytest
from hypothesis import given, settings, strategies as st

import zktarn
from zktarn import Vector, _host

# Calls leave nothing

CALLS = 120_000
ENTRIES = {2: 3.0, 5: 2.0}
X = Vector.from_dict(8, ENTRIES)
Y = Vector.from_dict(8, {5: 1.0})
EMPTY = Vector(8)
# An index that the interpreter keeps no object for.
LARGE, INDEX = Vector(10**6), np.int64(10**6 - 1)
ARRAY = np.array([0.5, 1.0, 2.0])
SOLVE = zktarn.Solve(lambda report: 0, display="off")
RNG = zktarn.Generator(1)
STATE = RNG.state()


def refused(call, *args):
    try:
        call(*args)
    except (TypeError, ValueError, IndexError, ZeroDivisionError):
        return
    raise AssertionError("the call succeeded")


# Name, number of calls, call.
CASES = {
    "create": (CALLS, lambda: Vector(8)),
    "refuse to create": (CALLS, lambda: refused(Vector, -1)),
    "get": (CALLS, lambda: X[2]),
    "set": (CALLS, lambda: X.set_coef(2, 3.0)),
    "add": (CALLS, lambda: LARGE.add_nz(j=INDEX, value=3)),
    "remove": (CALLS, lambda: (X.add_nz(1, 1.0), X.rem_nz(3))),
    "out of range": (CALLS, lambda: refused(X.get_coef, 9)),
    "not an index": (CALLS, lambda: refused(X.get_coef, "2")),
    "wrong count": (CALLS, lambda: refused(X.get_coef, 1, 2)),
    "not a vector": (CALLS, lambda: refused(X.combine, 1, 1.0, 1.0, 0.0)),
    "combine": (CALLS, lambda: X.combine(Y, 1.0, 0.0, 0.0)),
    "identical": (CALLS, lambda: X.is_identical(Y, 0.0)),
    "views": (CALLS, lambda: (X.coef, X.ind, X.elm)),
    "iterate": (CALLS, lambda: list(X)),
    "text": (CALLS, lambda: repr(X)),
    "copy": (CALLS, lambda: X.copy()),
    "from entries": (CALLS, lambda: Vector.from_entries(8, ARRAY.astype(int) + [1, 2, 3], ARRAY)),
    "refuse entries": (CALLS, lambda: refused(Vector.from_entries, 8, [1, 1])),
    "from dict": (CALLS, lambda: Vector.from_dict(8, ENTRIES)),
    "refuse dict": (CALLS, lambda: refused(Vector.from_dict, 8, {9: 1.0})),
    "from numpy": (CALLS, lambda: Vector.from_numpy(ARRAY)),
    "to others": (CALLS, lambda: (X.to_dict(), X.to_numpy(), X.to_entries())),
    "pickle": (CALLS // 10, lambda: X.__reduce__()),
    "floor": (CALLS, lambda: zktarn.floor(ARRAY, 1e-6)),
    "rational": (CALLS, lambda: zktarn.rational(0.5, 1e-6, 10)),
    "fractions": (CALLS, lambda: zktarn.rational(ARRAY, 1e-6, 10)),
    "gcd": (CALLS, lambda: zktarn.gcd(12, 18)),
    "scalar": (CALLS, lambda: zktarn.scalar_integral(ARRAY, 1e-6, 10, 10)),
    "supplier": (CALLS // 10, lambda: zktarn.find_scalar_integral(
        1, lambda j: (0.5, False, True), 1e-6, 10, 10)),
    "broken supplier": (CALLS // 10, lambda: refused(
        zktarn.find_scalar_integral, 1, lambda j: 1 / 0, 1e-6, 10, 10)),
    "sort": (CALLS // 10, lambda: zktarn.sort(1, 4, lambda a, b: False)),
    "broken sort": (CALLS // 10, lambda: refused(zktarn.sort, 1, 4, lambda a, b: 1 / 0)),
    "generator": (CALLS // 10, lambda: zktarn.Generator(1).number()),
    "numbers": (CALLS // 10, lambda: (RNG.numbers(3), RNG.state(), RNG.restore(STATE))),
    "report": (CALLS // 10, lambda: SOLVE.report("phase", value=1.0, column=ARRAY)),
    "broken report": (CALLS // 10, lambda: refused(
        zktarn.Solve(lambda report: 1 / 0).report, "phase")),
    "print": (CALLS // 10, lambda: SOLVE.print("line")),
    "solve": (CALLS // 10, lambda: zktarn.Solve().data),
}
SHARED = [None, True, False, X, Y, EMPTY, LARGE, INDEX, ARRAY, Vector, ENTRIES,
          np.dtype(np.float64), zktarn.Rationals]


def counts():
    return [sys.getrefcount(each) for each in SHARED] + [_host.block_count()]


def growth(call, calls):
    """The memory that the calls leave, in bytes."""
    start = tracemalloc.get_traced_memory()[0]
    for _ in range(calls):
        call()
    gc.collect()
    return tracemalloc.get_traced_memory()[0] - start


@pytest.mark.without_sanitizer
@pytest.mark.parametrize("name", CASES)
def test_calls_leave_nothing(name):
    calls, call = CASES[name]
    # Before caches fill, because what replaces an object that was not traced would count as growth.
    tracemalloc.start()
    try:
        for _ in range(300):
            call()
        gc.collect()
        before = counts()
        growths = [growth(call, calls // 3) for _ in range(3)]
    finally:
        tracemalloc.stop()
    # A table may grow once. What each call leaves grows in every part: an object takes 16 bytes.
    assert min(growths) < calls / 3, f"{growths} bytes after {calls // 3} calls each"
    assert all(after - b < calls / 2 for b, after in zip(before, counts()))
    assert counts()[-1] == before[-1]


# Calls on vectors with any contents

MOST = 12
INDICES = st.one_of(st.integers(1, MOST), st.sampled_from([0, -1, MOST + 1, 2**31 - 1, -2**31]))
MARKS = st.sampled_from([0, 0, 1, 1, 1, -1, 2, -2**31])
REALS = st.sampled_from([0.0, -0.0, 1.0, 2.0, -3.0, 0.5, float("nan"), float("inf")])


@st.composite
def vectors(draw):
    n = draw(st.integers(0, MOST))
    x = Vector(n, coef=draw(st.integers(0, 3)) > 0, ind=draw(st.integers(0, 3)) > 0,
               elm=draw(st.booleans()))
    for view, elements in ((x.coef, REALS), (x.ind, INDICES), (x.elm, MARKS)):
        if view is not None:
            view[:] = draw(st.lists(elements, min_size=n, max_size=n))
    if x.ind is not None:
        if draw(st.booleans()):
            x.ind[:] = np.minimum(np.maximum(x.ind, 1), max(n, 1))
        x.nz = draw(st.integers(0, n))
    return x


METHODS = [
    lambda x, y, j, a, b, tol: x.combine(y, a, b, tol),
    lambda x, y, j, a, b, tol: x.combine(x, a, b, tol),
    lambda x, y, j, a, b, tol: x.sym_diff(y),
    lambda x, y, j, a, b, tol: x.sym_diff(x),
    lambda x, y, j, a, b, tol: x.is_identical(y, tol),
    lambda x, y, j, a, b, tol: x.mod2(tol),
    lambda x, y, j, a, b, tol: x.rem_zeros(),
    lambda x, y, j, a, b, tol: x.clean_index(),
    lambda x, y, j, a, b, tol: x.clear(),
    lambda x, y, j, a, b, tol: x.rem_nz(j),
    lambda x, y, j, a, b, tol: x.add_nz(j, a),
    lambda x, y, j, a, b, tol: x.add_nz(j),
    lambda x, y, j, a, b, tol: x.get_coef(j),
    lambda x, y, j, a, b, tol: x.__delitem__(j),
    lambda x, y, j, a, b, tol: (list(x), repr(x), len(x), x.to_dict(), x.to_numpy()),
    lambda x, y, j, a, b, tol: (x.copy(), x.check()),
]


@given(vectors(), vectors(), st.lists(
    st.tuples(st.sampled_from(METHODS), INDICES, REALS, REALS, REALS), max_size=8))
@settings(max_examples=300, deadline=None)
def test_no_call_leaves_the_arrays(x, y, calls):
    """Vectors whose arrays a program filled with anything: every call returns or raises, and no list
    outgrows its array. With an address sanitizer, no call touches memory outside of the arrays."""
    for call, j, a, b, tol in calls:
        try:
            call(x, y, j, a, b, tol)
        except (IndexError, ValueError, KeyError):
            pass
        assert 0 <= x.nz <= x.n and 0 <= y.nz <= y.n
