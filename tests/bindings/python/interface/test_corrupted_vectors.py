"""Vectors whose arrays a program filled with anything: every call returns or raises, and no list
outgrows its array. Run with an address sanitizer, no call touches memory outside of the arrays."""

import numpy as np
from hypothesis import given, settings, strategies as st

from zktarn import Vector

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


CALLS = [
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
    st.tuples(st.sampled_from(CALLS), INDICES, REALS, REALS, REALS), max_size=8))
@settings(max_examples=300, deadline=None)
def test_no_call_leaves_the_arrays(x, y, calls):
    for call, j, a, b, tol in calls:
        try:
            call(x, y, j, a, b, tol)
        except (IndexError, ValueError, KeyError):
            pass
        assert 0 <= x.nz <= x.n and 0 <= y.nz <= y.n
