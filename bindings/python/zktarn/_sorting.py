"""Sorting of data that only the caller's callables read and write."""

from typing import Callable, Optional

from . import _core
from ._numbers import _int32


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
