"""Fractions, divisors, scalars and sorting: the functions that check their arguments in Python."""

from fractions import Fraction
from operator import index
from typing import Callable, NamedTuple, Optional, Tuple, Union, overload

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import _core

_LARGEST_INT32 = 2**31 - 1


class Rationals(NamedTuple):
    """Fractions near the elements of an array: three arrays of the shape of the arguments.

    Where `found` is False, numerator and denominator are 0.0. They are integral reals, because a
    denominator may exceed 64 bits. A fraction need not be in lowest terms.
    """

    num: NDArray[np.float64]
    den: NDArray[np.float64]
    found: NDArray[np.bool_]

    def fractions(self) -> NDArray[np.object_]:
        """The same as `fractions.Fraction`, in lowest terms; None where there is no fraction.

        Returns a new array of objects, of the shape of `num`. It takes a Python object for each
        element; calculations with many elements use `num` and `den` themselves.

            >>> rational([0.5, 1 / 3, float("nan")], 1e-9, 100).fractions()
            array([Fraction(1, 2), Fraction(1, 3), None], dtype=object)
        """
        made = np.full(np.shape(self.num), None, dtype=np.object_)
        usable = np.asarray(self.found) & np.isfinite(self.num)
        pairs = zip(np.asarray(self.num)[usable].tolist(), np.asarray(self.den)[usable].tolist())
        made[usable] = [Fraction(int(num), int(den)) for num, den in pairs]
        return made


def _reals(value: ArrayLike, name: str) -> NDArray[np.float64]:
    """The value as an array of float64; TypeError for another kind than reals and integers."""
    array = np.asarray(value)
    if array.dtype.kind not in "biuf" and array.size > 0:
        raise TypeError(f"{name} must be real numbers, not {_kind_of(value, array)}")
    return np.asarray(array, dtype=np.float64)


def _kind_of(value: object, array: NDArray[np.generic]) -> str:
    return array.dtype.name if isinstance(value, np.ndarray) else type(value).__name__


def _real(value: ArrayLike, name: str) -> float:
    """The value as one real number."""
    array = _reals(value, name)
    if array.ndim != 0:
        raise ValueError(f"{name} must be one number, not an array of shape {array.shape}")
    return float(array)


def _int32(value: object, name: str) -> int:
    """The value as an integer of 32 bits."""
    try:
        number = index(value)  # type: ignore[arg-type]
    except TypeError:
        raise TypeError(f"{name} must be an integer, not {type(value).__name__}") from None
    if not -_LARGEST_INT32 - 1 <= number <= _LARGEST_INT32:
        raise ValueError(f"{name} must be an integer of 32 bits, not {number}")
    return number


@overload
def rational(x: float, eps: float, max_den: float) -> Optional[Fraction]: ...
@overload
def rational(
    x: ArrayLike, eps: ArrayLike, max_den: ArrayLike, *, out: Optional[Rationals] = None
) -> Union[None, Fraction, Rationals]: ...


def rational(
    x: ArrayLike, eps: ArrayLike, max_den: ArrayLike, *, out: Optional[Rationals] = None
) -> Union[None, Fraction, Rationals]:
    """Finds fractions within eps of x whose denominators are at most a bound.

    x          real, or array of reals.
    eps        real or array: the tolerance, inclusive.
    max_den    real or array: the bound is max(abs(max_den), 1), and 1 if it is NaN.
    out        Rationals, or three arrays: receives the result, which is then arrays in any case.

    Three numbers give a `fractions.Fraction`, or None if no fraction was found. Any array gives
    `Rationals(num, den, found)`: three arrays of the common shape of the arguments, float64,
    float64 and bool; its method `fractions` makes Fractions of them.

    First tries denominators that are common in decimal data, then the convergents of the continued
    fraction of x; the C++ header states which fraction is found. NaN has none.
    An infinite number has none either; in an array its numerator is infinite and its denominator 1.

        >>> rational(0.333333, 1e-5, 1000)
        Fraction(1, 3)
        >>> rational(3.14159265, 1e-9, 100) is None
        True
        >>> rational([0.5, 0.25], 1e-9, 100).den
        array([ 10., 100.])

    TypeError: an argument is not a real number. ValueError: the shapes do not broadcast.
    C++: util::get_rational_rep.
    """
    arrays = _reals(x, "x"), _reals(eps, "eps"), _reals(max_den, "max_den")
    num, den, found = _core.rational_parts(*arrays, out=tuple(out or (None, None, None)))
    if out is None and all(array.ndim == 0 for array in arrays):
        return Fraction(int(num), int(den)) if found and np.isfinite(num) else None
    return Rationals(num, den, found)


def gcd(
    a: ArrayLike, b: ArrayLike, eps: Optional[ArrayLike] = None, *,
    out: Optional[NDArray[np.generic]] = None,
) -> Union[int, float, NDArray[np.int32], NDArray[np.float64]]:
    """The greatest common divisors of two numbers, or of the elements of two arrays.

    a, b    integers of 32 bits if eps is None, else reals; or arrays of them.
    eps     real or array: the largest remainder that counts as zero in Euclid's algorithm.
    out     array that receives the result: int32 without eps, else float64.

    Numbers give an int or a float; arrays give an array of their common shape, int32 or float64.

    Integers: never negative; gcd(a, 0) = abs(a); 0 if a or b is outside of -2147483646 to
    2147483646.
    Reals: the last divisor of Euclid's algorithm; 0.0 if a or b is NaN, infinite or the
    largest real, or if eps < 0; max(abs(a), abs(b)) if the smaller magnitude is at most eps.

        >>> gcd(12, 18)
        6
        >>> gcd(0.5, 0.75, 1e-9)
        0.25

    TypeError: an argument is not a real number, or not an integer where eps is None. ValueError: an
    integer needs more than 32 bits, or the shapes do not broadcast.
    C++: util::xgcd_i4, util::xgcd_r8.
    """
    if eps is None:
        divisors = _core.gcd_int(_int32s(a, "a"), _int32s(b, "b"), out=out)
        return int(divisors) if isinstance(divisors, np.generic) else divisors
    real_divisors = _core.gcd_real(_reals(a, "a"), _reals(b, "b"), _reals(eps, "eps"), out=out)
    return float(real_divisors) if isinstance(real_divisors, np.generic) else real_divisors


def _int32s(value: ArrayLike, name: str) -> NDArray[np.int32]:
    """The value as an array of int32, every element unchanged."""
    array = np.asarray(value)
    if array.dtype.kind == "O" and all(isinstance(each, int) for each in array.flat):
        raise ValueError(f"{name} must be integers of 32 bits")
    if array.dtype.kind not in "biu" and array.size > 0:
        raise TypeError(
            f"{name} must be integers, not {_kind_of(value, array)}; reals need the tolerance eps")
    if array.size > 0 and not (
        array.min() >= -_LARGEST_INT32 - 1 and array.max() <= _LARGEST_INT32):
        raise ValueError(f"{name} must be integers of 32 bits")
    return array.astype(np.int32)


def scalar_integral(
    values: ArrayLike, eps: float, max_den: float, max_scalar: float, *,
    mask: Optional[ArrayLike] = None,
) -> Optional[float]:
    """Finds a positive scalar, at most a bound, that makes every value integral within eps.

    values        array of reals, shape (m,).
    eps           real: tolerance of integrality. A value of at most this magnitude takes no part.
    max_den       real: bound of the denominators, as in `rational`.
    max_scalar    real: the largest scalar allowed.
    mask          array of bool, shape (m,): the values that take part; None for all. The others
                  only contribute to the first trial, 1 over the smallest magnitude above eps.

    Returns the scalar, or None if none was found. The C++ header states which scalar is found, and
    what happens when no value takes part.

        >>> scalar_integral([0.5, 0.75], 1e-9, 1000, 1000)
        4.0

    TypeError: an argument has another type. ValueError: another shape.
    C++: util::find_scalar_integral; `find_scalar_integral` takes the values from a callable.
    """
    array = np.ascontiguousarray(_reals(values, "values"))
    if array.ndim != 1 or array.size > _LARGEST_INT32:
        raise ValueError(f"values must have one dimension, not the shape {np.shape(values)}")
    if mask is None:
        selection = np.ones(array.size, dtype=np.bool_)
    else:
        selection = np.asarray(mask)
        if selection.dtype.kind != "b" and selection.size > 0:
            raise TypeError(f"mask must be bool, not {_kind_of(mask, selection)}")
        if selection.shape != array.shape:
            raise ValueError(f"mask must have the shape of values, {array.shape}, "
                             f"not {selection.shape}")
        selection = np.ascontiguousarray(selection, dtype=np.bool_)
    return _core.scalar_of_array(
        array, selection, _real(eps, "eps"), _real(max_den, "max_den"),
        _real(max_scalar, "max_scalar"))


def find_scalar_integral(
    n: int, get_element: Callable[[int], Tuple[float, bool, bool]], eps: float, max_den: float,
    max_scalar: float, *, skip_marked: bool = False, selected_only: bool = False,
) -> Optional[float]:
    """`scalar_integral` for values that a callable supplies.

    n                int: the number of elements; below 1 there are none.
    get_element      callable: takes an index from 1 to n, returns (value, marked, selected). It is
                     called in up to four passes, and must return the same in each.
    eps, max_den,
    max_scalar       reals, as in `scalar_integral`.
    skip_marked      bool: marked elements take no part.
    selected_only    bool: elements that are not selected take no part.

    Returns the scalar, or None if none was found.

    An exception of `get_element` ends the calls and is raised here. TypeError: an argument, or what
    the callable returns, has another type. ValueError: an argument has another shape.
    C++: util::find_scalar_integral.
    """
    if not callable(get_element):
        raise TypeError(f"get_element must be callable, not {type(get_element).__name__}")

    def element(position: int) -> Tuple[float, bool, bool]:
        supplied = get_element(position)
        if not isinstance(supplied, tuple) or len(supplied) != 3:
            raise TypeError("get_element must return a tuple (value, marked, selected)")
        value, marked, selected = supplied
        return _real(value, "the value of an element"), bool(marked), bool(selected)

    return _core.scalar_of_callable(
        _int32(n, "n"), element, _real(eps, "eps"), _real(max_den, "max_den"),
        _real(max_scalar, "max_scalar"), bool(skip_marked), bool(selected_only))


def sort(
    first: int, last: int, exchange: Optional[Callable[[int, int], bool]] = None, *,
    compare: Optional[Callable[[int, int], float]] = None,
    swap: Optional[Callable[[int, int], object]] = None,
) -> None:
    """Sorts the positions first..last, both inclusive, of data that only the callables access.

    first, last    integers of 32 bits, in the caller's numbering. If last <= first, nothing is
                   called.
    exchange       callable: takes positions a < b. If the elements there are out of order, it
                   exchanges them and returns True; else it returns False.
    compare, swap  instead of `exchange`: compare(a, b) returns a positive number if the elements
                   are out of order, and then swap(a, b) exchanges them.

    Returns None. Not stable: equal elements may change places. An exception of a callable ends the
    sort and is raised here; the data keep the order that they have then.

        >>> names = ["c", "a", "b"]
        >>> def swap(a, b):
        ...     names[a], names[b] = names[b], names[a]
        >>> sort(0, 2, compare=lambda a, b: names[a] > names[b], swap=swap)
        >>> names
        ['a', 'b', 'c']

    Shell sort, O(n^1.5) calls. For an array, `numpy.argsort` is faster.
    TypeError: a position is not an integer, or neither `exchange` nor both `compare` and `swap` are
    given. ValueError: a position needs more than 32 bits. C++: sorting_mod::sort.
    """
    if (exchange is None) == (compare is None) or (compare is None) != (swap is None):
        raise TypeError("sort() needs either 'exchange', or both 'compare' and 'swap'")
    for name, given in (("exchange", exchange), ("compare", compare), ("swap", swap)):
        if given is not None and not callable(given):
            raise TypeError(f"{name} must be callable, not {type(given).__name__}")
    _core.sort(_int32(first, "first"), _int32(last, "last"),
               exchange or _exchange_by(compare, swap))


def _exchange_by(
    compare: Optional[Callable[[int, int], float]], swap: Optional[Callable[[int, int], object]]
) -> Callable[[int, int], bool]:
    assert compare is not None and swap is not None
    comparison, exchange = compare, swap

    def exchange_if_out_of_order(a: int, b: int) -> bool:
        if not comparison(a, b) > 0:
            return False
        exchange(a, b)
        return True

    return exchange_if_out_of_order
