"""sort: the order, the callables, their exceptions."""

import sys

import pytest
from hypothesis import given, strategies as st

import zktarn
from test_whole_arrays import refuses


def exchange_in(data, first):
    def exchange(a, b):
        assert a < b
        i, j = a - first, b - first
        if data[i] <= data[j]:
            return False
        data[i], data[j] = data[j], data[i]
        return True
    return exchange


@given(st.lists(st.integers(0, 50), max_size=200), st.integers(-10, 10))
def test_the_range_is_sorted(data, first):
    expected = sorted(data)
    zktarn.sort(first, first + len(data) - 1, exchange_in(data, first))
    assert data == expected


@given(st.lists(st.integers(0, 50), max_size=100))
def test_compare_and_swap_do_the_same(data):
    parallel = [-each for each in data]

    def swap(a, b):
        for each in (data, parallel):
            each[a], each[b] = each[b], each[a]

    expected = sorted(data, reverse=True)
    zktarn.sort(0, len(data) - 1, compare=lambda a, b: data[b] - data[a], swap=swap)
    assert data == expected and parallel == [-each for each in data]


def test_nothing_is_called_for_an_empty_range():
    for first, last in ((1, 1), (5, 1), (2**31 - 1, -2**31)):
        zktarn.sort(first, last, lambda a, b: 1 / 0)


def test_an_exception_ends_the_sort_where_it_is():
    data = list(range(30, 0, -1))
    swaps = []

    def swap(a, b):
        if len(swaps) == 7:
            raise LookupError("enough")
        swaps.append((a, b))
        data[a], data[b] = data[b], data[a]

    refuses(LookupError, "enough", zktarn.sort, 0, 29, compare=lambda a, b: data[a] - data[b],
            swap=swap)
    assert len(swaps) == 7 and sorted(data) == list(range(1, 31))
    with pytest.raises(ZeroDivisionError) as raised:
        zktarn.sort(0, 1, lambda a, b: 1 / 0)
    assert raised.traceback[-1].name == "<lambda>"

    class Undecided:
        def __bool__(self):
            raise ArithmeticError("undecided")

    refuses(ArithmeticError, "undecided", zktarn.sort, 0, 1, lambda a, b: Undecided())


def test_what_sort_refuses():
    both = "sort() needs either 'exchange', or both 'compare' and 'swap'"
    refuses(TypeError, both, zktarn.sort, 0, 1)
    refuses(TypeError, both, zktarn.sort, 0, 1, compare=max)
    refuses(TypeError, both, zktarn.sort, 0, 1, swap=max)
    refuses(TypeError, both, zktarn.sort, 0, 1, max, compare=max, swap=max)
    refuses(TypeError, both, zktarn.sort, 0, 1, max, swap=max)
    refuses(TypeError, "exchange must be callable, not int", zktarn.sort, 0, 1, 3)
    refuses(TypeError, "swap must be callable, not str", zktarn.sort, 0, 1, compare=max, swap="s")
    refuses(TypeError, "first must be an integer, not float", zktarn.sort, 0.0, 1, max)
    refuses(ValueError, f"last must be an integer of 32 bits, not {2**31}", zktarn.sort, 0, 2**31, max)


def test_a_sort_keeps_no_callable():
    data = [3, 2, 1]
    exchange = exchange_in(data, 0)
    before = sys.getrefcount(exchange)
    zktarn.sort(0, 2, exchange)
    assert sys.getrefcount(exchange) == before
