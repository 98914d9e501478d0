"""The universal functions: values against exact arithmetic, shapes, outputs, what they refuse."""

import math
from fractions import Fraction

import numpy as np
import pytest
from hypothesis import given, settings, strategies as st

import zktarn

EPS = 1e-6
REALS = st.floats(-2.0**31 + 2.0, 2.0**31 - 2.0)
TOLERANCES = st.floats(0.0, 0.4)
ONE = [zktarn.fractional, zktarn.is_even_int]
TWO = [zktarn.is_int, zktarn.nearest, zktarn.fractionality, zktarn.floor, zktarn.ceil,
       zktarn.is_even]
THREE = [zktarn.is_int_scalar, zktarn.nearest_scalar]


def exact(*numbers):
    return [Fraction(number) for number in numbers]


# Values: sums are rounded once, as in `x + eps`, and everything after is exact.

@given(REALS, TOLERANCES)
def test_floor_and_ceil_are_those_of_the_rounded_sums(x, eps):
    assert zktarn.floor(x, eps) == math.floor(Fraction(x + eps))
    assert zktarn.ceil(x, eps) == math.ceil(Fraction(x - eps))
    assert zktarn.fractionality(x, eps) == x - math.floor(x + eps)


@given(REALS)
def test_fractional_is_the_distance_to_the_nearest_integer(x):
    value, = exact(x)
    below = value - math.floor(value)
    assert abs(Fraction(float(zktarn.fractional(x))) - min(below, 1 - below)) <= Fraction(2, 2**53)
    assert 0.0 <= zktarn.fractional(x) <= 0.5


@given(st.integers(-2**31 + 2, 2**31 - 2), st.floats(-0.45, 0.45), TOLERANCES)
def test_a_number_is_integral_when_it_is_within_the_tolerance(integer, offset, eps):
    x = integer + offset
    distance = abs(Fraction(x) - integer)
    tolerance, = exact(eps)
    slack = Fraction(2**-20)  # of the rounded differences, at magnitudes below 2^31
    if distance <= tolerance - slack or distance == 0:
        assert zktarn.is_int(x, eps) and zktarn.nearest(x, eps) == integer
        assert zktarn.is_even(x, eps) == (integer % 2 == 0 and abs(integer) < 2**31 - 1)
    elif distance >= tolerance + slack and 1 - distance >= tolerance + slack:
        assert not zktarn.is_int(x, eps) and math.isnan(zktarn.nearest(x, eps))
        assert not zktarn.is_even(x, eps)


@given(st.integers(1, 1000), st.integers(1, 1000))
def test_the_denominator_makes_a_fraction_integral(num, den):
    assert zktarn.is_int_scalar(num / den, den, EPS)
    assert zktarn.nearest_scalar(num / den, den, EPS) == num


def test_numbers_without_an_integer():
    strange = np.array([math.nan, math.inf, -math.inf])
    assert not zktarn.is_int(strange, EPS).any()
    assert np.isnan(zktarn.nearest(strange, EPS)).all()
    assert np.isnan(zktarn.fractional(strange)).all()
    assert not zktarn.is_int(1.0, [-1.0, math.nan]).any()


@pytest.mark.filterwarnings("error")
def test_no_value_makes_a_warning():
    strange = np.array([math.nan, math.inf, -math.inf, 1.7e308, -1.7e308, 5e-324] * 400)
    for f in TWO:
        f(strange, EPS)
        f(strange, strange)
    for f in THREE:
        f(strange, strange, EPS)
    zktarn.fractional(strange)
    zktarn.rational(strange, EPS, 1e6)
    zktarn.gcd(strange, strange[::-1], EPS)
    with np.errstate(all="raise"):
        zktarn.floor(strange, EPS)


def scalar_results(f, *columns):
    return np.array([f(*row) for row in np.broadcast(*columns)])


# Runs of ordinary numbers of every length, with an exceptional one at some positions.
COLUMN = np.random.default_rng(7)


def column(size):
    values = COLUMN.choice([1.0, 4.0, 0.5, 2.9999999, -3.0000001, 1e9, -0.0, 1 / 3], size)
    values = values + COLUMN.choice([0.0, 1e-7, -1e-7], size)
    if size and COLUMN.random() < 0.5:
        values[COLUMN.integers(size)] = COLUMN.choice(
            [math.nan, math.inf, -math.inf, 2.0**31 - 1, 2.0**31, -2.0**31, 1e300, 2.0**52 + 1,
             -5e9 - 0.5])
    return values


@pytest.mark.parametrize("size", [0, 1, 2, 7, 8, 9, 255, 256, 257, 511, 512, 513, 1000, 4096, 5000])
@pytest.mark.parametrize("f", TWO, ids=lambda f: f.__name__)
def test_an_array_has_the_bits_of_its_elements(f, size):
    x, eps = column(size), 1e-6
    columns = [(x, eps), (x, np.full(size, eps)), (x, column(size)), (x[::-1], eps),
               (np.repeat(x, 2)[::2], eps), (x, math.nan), (x, 2.5), (x, -0.5), (x, 1e12)]
    for each in columns:
        expected = scalar_results(f, *each)
        assert np.array_equal(f(*each).view(np.uint8), expected.astype(f(*each).dtype).view(np.uint8))
        if f(*each).dtype == x.dtype:
            in_place = np.array(each[0])
            f(in_place, each[1], out=in_place)
            assert np.array_equal(in_place.view(np.uint8), f(*each).view(np.uint8))


# Shapes and outputs

@pytest.mark.parametrize("f", TWO, ids=lambda f: f.__name__)
def test_arguments_broadcast(f):
    x = np.linspace(-3.0, 3.0, 12).reshape(4, 3)
    eps = np.array([[0.0], [0.1], [0.25], [0.4]])
    result = f(x, eps)
    assert result.shape == (4, 3)
    for i in range(4):
        for j in range(3):
            assert np.array_equal(result[i, j], f(x[i, j], eps[i, 0]), equal_nan=True)
    assert f(x.astype(np.float32), 0.1).dtype == result.dtype
    assert f(np.arange(4), 0.1).shape == (4,)
    assert f([1, 2], 0.1).shape == (2,)
    assert f(np.empty((0, 3)), 0.1).shape == (0, 3)


@pytest.mark.parametrize("f, dtype", [
    (zktarn.floor, np.float64), (zktarn.ceil, np.float64), (zktarn.nearest, np.float64),
    (zktarn.fractionality, np.float64), (zktarn.is_int, np.bool_), (zktarn.is_even, np.bool_)])
def test_out_receives_the_result(f, dtype):
    x = np.linspace(-3.0, 3.0, 1000)
    out = np.empty(1000, dtype)
    assert f(x, EPS, out=out) is out
    assert np.array_equal(out, f(x, EPS), equal_nan=True)
    assert f(x, EPS).dtype == dtype
    strided = np.zeros(2000, dtype)
    f(x, EPS, out=strided[::2])
    assert np.array_equal(strided[::2], out, equal_nan=True) and not strided[1::2].any()
    half = np.zeros(1000, dtype)
    f(x, EPS, out=half, where=x > 0)
    assert not half[x <= 0].any() and np.array_equal(half[x > 0], out[x > 0], equal_nan=True)
    with pytest.raises(ValueError):
        f(x, EPS, out=np.empty(999, dtype))
    with pytest.raises(TypeError):
        f(x, EPS, out=np.empty(1000, "M8[s]"))


@pytest.mark.parametrize("dtype", "bBhHiIlLqQ")
def test_the_parity_of_integers_of_every_width(dtype):
    limits = np.iinfo(dtype)
    n = np.array([limits.min, limits.min + 1, 0, 1, 2, limits.max - 1, limits.max], dtype)
    assert zktarn.is_even_int(n).tolist() == [int(each) % 2 == 0 for each in n]
    assert zktarn.is_even_int(4) and not zktarn.is_even_int(-3)


@pytest.mark.parametrize("f", ONE + TWO + THREE, ids=lambda f: f.__name__)
def test_other_types_are_refused(f):
    rest = [0.1] * (f.nin - 1)
    for value in ("a", 1j, [1j], np.array(["a"]), None, {}, object()):
        with pytest.raises(TypeError):
            f(value, *rest)
    if f is zktarn.is_even_int:
        with pytest.raises(TypeError):
            f(1.0)
    with pytest.raises(TypeError):
        f(*rest)
    if f.nin > 1:
        with pytest.raises(ValueError):
            f(np.ones(3), *[np.ones(2)] * (f.nin - 1))


@pytest.mark.parametrize("f", ONE + TWO + THREE, ids=lambda f: f.__name__)
def test_each_is_documented(f):
    assert isinstance(f, np.ufunc)
    assert "C++: util::" in f.__doc__ and "Returns " in f.__doc__


# Fractions

@given(st.integers(-10**6, 10**6), st.integers(1, 1000))
def test_a_fraction_is_found_again(num, den):
    found = zktarn.rational(num / den, 1e-9, 1000)
    assert isinstance(found, Fraction)
    assert found == Fraction(num, den)


def convergents(x):
    """The convergents of the continued fraction of a rational number."""
    p, q, p_before, q_before = math.floor(x), 1, 1, 0
    yield p, q
    while x != math.floor(x):
        x = 1 / (x - math.floor(x))
        p, p_before = math.floor(x) * p + p_before, p
        q, q_before = math.floor(x) * q + q_before, q
        yield p, q


@given(st.floats(-100.0, 100.0), st.floats(1e-8, 1e-2), st.integers(1, 10**4))
def test_a_fraction_is_within_its_bounds(x, eps, max_den):
    exact_x, tolerance = exact(x, eps)
    found = zktarn.rational(x, eps, max_den)
    if found is not None:
        assert found.denominator <= max_den
        assert abs(found - exact_x) <= tolerance + abs(exact_x) * Fraction(2, 2**52)
    elif any(q <= max_den and abs(Fraction(p, q) - exact_x) <= tolerance / 2
             for p, q in convergents(exact_x)):
        pytest.fail("a convergent fits and was not found")


def test_fractions_of_arrays():
    x = np.array([[0.5, 1 / 3], [math.nan, 2**0.5]])
    fractions = zktarn.rational(x, 1e-9, 100)
    assert isinstance(fractions, zktarn.Rationals)
    num, den, found = fractions
    assert num.shape == den.shape == found.shape == (2, 2)
    assert (num.dtype, den.dtype, found.dtype) == (np.float64, np.float64, np.bool_)
    assert found.tolist() == [[True, True], [False, False]]
    assert (num[0] / den[0]).tolist() == [0.5, 1 / 3]
    assert num[1].tolist() == den[1].tolist() == [0.0, 0.0]
    assert zktarn.rational(0.5, [1e-9, 1e-3], 100).num.shape == (2,)
    assert zktarn.rational(np.zeros((0, 2)), 1e-9, 100).found.shape == (0, 2)
    assert zktarn.rational(np.float64(0.5), 1e-9, 100) == Fraction(1, 2)
    assert zktarn.rational(3, 0, 1) == 3
    assert zktarn.rational(1e300, 1e-9, 100) == Fraction(1e300)
    for x in (math.nan, math.inf, -math.inf):
        assert zktarn.rational(x, 1e-9, 100) is None
    assert zktarn.rational([math.inf], 1e-9, 100) == ([math.inf], [1.0], [True])
    assert zktarn.rational(0.5, math.nan, 100) is None


def refuses(error, sentence, call, *args, **kwargs):
    with pytest.raises(error) as raised:
        call(*args, **kwargs)
    assert str(raised.value) == sentence


def test_what_rational_refuses():
    refuses(TypeError, "x must be real numbers, not str", zktarn.rational, "1", 1e-9, 100)
    refuses(TypeError, "x must be real numbers, not complex", zktarn.rational, 1j, 1e-9, 100)
    refuses(TypeError, "eps must be real numbers, not NoneType", zktarn.rational, 1.0, None, 100)
    refuses(TypeError, "max_den must be real numbers, not complex128",
            zktarn.rational, 1.0, 1e-9, np.array([1j]))
    with pytest.raises(ValueError):
        zktarn.rational([1.0, 2.0], [1.0, 2.0, 3.0], 100)


# Divisors

@given(st.integers(-2147483646, 2147483646), st.integers(-2147483646, 2147483646))
def test_the_divisor_of_integers(a, b):
    assert zktarn.gcd(a, b) == math.gcd(a, b)
    assert zktarn.gcd(np.array([a, b]), [b, a]).tolist() == [math.gcd(a, b)] * 2


@given(st.integers(1, 10**6), st.integers(1, 10**6), st.integers(-20, 20))
def test_the_divisor_of_reals_that_are_multiples_of_a_power_of_two(a, b, exponent):
    unit = 2.0**exponent
    assert zktarn.gcd(a * unit, b * unit, 0.0) == math.gcd(a, b) * unit


def test_divisors_in_detail():
    assert type(zktarn.gcd(12, 18)) is int and type(zktarn.gcd(12, 18, 0.0)) is float
    assert zktarn.gcd([12, 10], 4).dtype == np.int32
    assert zktarn.gcd([12, 10], 4, 0.0).dtype == np.float64
    assert zktarn.gcd([[12], [10]], [4, 5]).tolist() == [[4, 1], [2, 5]]
    assert zktarn.gcd(12, 18, [0.0, 7.0]).tolist() == [6.0, 12.0]
    assert zktarn.gcd(2**31 - 1, 1) == 0 and zktarn.gcd(-2**31, 1) == 0
    assert zktarn.gcd(np.uint64(12), np.int8(18)) == 6
    assert zktarn.gcd([], []).shape == (0,)
    out = np.empty(2, np.int32)
    assert zktarn.gcd([12, 10], 4, out=out) is out and out.tolist() == [4, 2]
    out = np.empty(2)
    assert zktarn.gcd([12, 10], 4, 0.0, out=out) is out and out.tolist() == [4.0, 2.0]
    refuses(ValueError, "a must be integers of 32 bits", zktarn.gcd, 2**31, 1)
    refuses(ValueError, "b must be integers of 32 bits", zktarn.gcd, 1, [-2**31 - 1])
    refuses(ValueError, "a must be integers of 32 bits", zktarn.gcd, 10**30, 1)
    refuses(TypeError, "a must be integers, not float; reals need the tolerance eps",
            zktarn.gcd, 1.0, 1)
    refuses(TypeError, "b must be integers, not str; reals need the tolerance eps",
            zktarn.gcd, 1, "1")
    refuses(TypeError, "eps must be real numbers, not str", zktarn.gcd, 1.0, 1.0, "1")


# Scalars

@given(st.lists(st.integers(1, 50), min_size=1, max_size=6), st.integers(1, 12))
@settings(deadline=None)
def test_a_scalar_makes_fractions_integral(numerators, den):
    values = [num / den for num in numerators]
    scalar = zktarn.scalar_integral(values, 1e-9, 1000, 1e6)
    assert scalar is not None and 0 < scalar <= 1e6
    assert all(zktarn.is_int(value * scalar, 1e-6) for value in values)


def test_the_mask_selects_the_values_that_take_part():
    values = [0.5, 2**0.5]
    assert zktarn.scalar_integral(values, 1e-9, 1000, 1000) is None
    assert zktarn.scalar_integral(values, 1e-9, 1000, 1000, mask=[True, False]) == 2.0
    same = zktarn.find_scalar_integral(
        2, lambda j: (values[j - 1], False, j == 1), 1e-9, 1000, 1000, selected_only=True)
    assert same == 2.0
    same = zktarn.find_scalar_integral(
        2, lambda j: (values[j - 1], j == 2, True), 1e-9, 1000, 1000, skip_marked=True)
    assert same == 2.0
    assert zktarn.find_scalar_integral(
        2, lambda j: (values[j - 1], j == 2, j == 1), 1e-9, 1000, 1000) is None
    assert zktarn.scalar_integral([], 1e-9, 1000, 1000) == 5.562684646268003e-309
    assert zktarn.scalar_integral(np.array([9.0, 0.5, 9.0, 0.75])[1::2], 1e-9, 1000, 1000) == 4.0


def test_what_scalar_integral_refuses():
    call = zktarn.scalar_integral
    refuses(ValueError, "values must have one dimension, not the shape (1, 1)",
            call, [[1.0]], 1e-9, 1000, 1000)
    refuses(TypeError, "values must be real numbers, not list", call, ["a"], 1e-9, 1000, 1000)
    refuses(TypeError, "mask must be bool, not list", call, [1.0], 1e-9, 1000, 1000, mask=[1])
    refuses(ValueError, "mask must have the shape of values, (2,), not (1,)",
            call, [1.0, 2.0], 1e-9, 1000, 1000, mask=[True])
    refuses(ValueError, "eps must be one number, not an array of shape (2,)",
            call, [1.0], [1.0, 2.0], 1000, 1000)
    refuses(TypeError, "max_scalar must be real numbers, not str", call, [1.0], 1e-9, 1000, "1")


def test_an_exception_of_a_supplier_arrives_in_the_caller():
    calls = []

    def supply(j):
        calls.append(j)
        if j == 3:
            raise KeyError("no third element")
        return 0.5, False, True

    call = zktarn.find_scalar_integral
    refuses(KeyError, "'no third element'", call, 5, supply, 1e-9, 1000, 1000)
    assert calls == [1, 2, 3]
    refuses(TypeError, "get_element must return a tuple (value, marked, selected)",
            call, 5, lambda j: 0.5, 1e-9, 1000, 1000)
    refuses(TypeError, "the value of an element must be real numbers, not str",
            call, 5, lambda j: ("a", False, False), 1e-9, 1000, 1000)
    refuses(TypeError, "get_element must be callable, not int", call, 5, 5, 1e-9, 1000, 1000)
    refuses(TypeError, "n must be an integer, not float", call, 5.0, supply, 1e-9, 1000, 1000)
    refuses(ValueError, f"n must be an integer of 32 bits, not {2**31}",
            call, 2**31, supply, 1e-9, 1000, 1000)
    assert call(-1, supply, 1e-9, 1000, 1000) == 5.562684646268003e-309


def test_fractions_of_arrays_are_in_lowest_terms():
    values = np.array([[0.25, -1.6], [math.nan, math.inf], [2.0**70, 0.0]])
    made = zktarn.rational(values, 1e-9, 1000).fractions()
    assert made.shape == values.shape and made.dtype == object
    assert made.tolist() == [[Fraction(1, 4), Fraction(-8, 5)], [None, None],
                             [Fraction(2**70), Fraction(0)]]


def test_fractions_of_no_array_and_of_one_number():
    assert zktarn.rational([], 1e-9, 10).fractions().shape == (0,)
    one = zktarn.rational(0.5, 1e-9, 10, out=(np.empty(()), np.empty(()), np.empty((), np.bool_)))
    assert one.fractions().shape == () and one.fractions()[()] == Fraction(1, 2)
    none = zktarn.rational(math.pi, 1e-9, 10,
                           out=(np.empty(()), np.empty(()), np.empty((), np.bool_)))
    assert none.fractions()[()] is None
