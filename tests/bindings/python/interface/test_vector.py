"""Vector: each operation in each mode, and what each refuses."""

import copy
import inspect
import pickle
import subprocess
import sys
import weakref

import numpy as np
import pytest

from zktarn import Vector

ENTRIES = {2: 3.0, 5: 2.0, 7: -1.0}


def marks(n=8):
    return Vector.from_dict(n, ENTRIES)


def listed(n=8):
    return Vector.from_entries(n, list(ENTRIES), list(ENTRIES.values()), elm=False)


def dense(n=8):
    return Vector.from_entries(n, list(ENTRIES), list(ENTRIES.values()), ind=False, elm=False)


def support(n=8):
    return Vector.from_entries(n, list(ENTRIES))


def refuses(error, sentence, call, *args, **kwargs):
    """The call raises an exception of exactly this type, whose text is this one sentence."""
    with pytest.raises(error) as raised:
        call(*args, **kwargs)
    assert type(raised.value) is error
    assert str(raised.value) == sentence


# Creation

def test_a_new_vector_is_empty():
    x = Vector(8)
    assert (x.n, x.nz, x.mode, len(x), list(x)) == (8, 0, "marks", 0, [])
    assert x.elm.tolist() == [0] * 8


@pytest.mark.parametrize("arrays, mode, exist", [
    ({}, "marks", (True, True, True)),
    ({"coef": False}, "marks", (False, True, True)),
    ({"ind": False}, "marks", (True, False, True)),
    ({"elm": False}, "list", (True, True, False)),
    ({"ind": False, "elm": False}, "dense", (True, False, False)),
    ({"coef": False, "ind": False, "elm": False}, "dense", (False, False, False)),
])
def test_the_arrays_decide_the_mode(arrays, mode, exist):
    for n in (0, 5):
        x = Vector(n, **arrays)
        assert x.mode == mode
        assert tuple(a is not None for a in (x.coef, x.ind, x.elm)) == exist
        assert all(a.shape == (n,) for a in (x.coef, x.ind, x.elm) if a is not None)


def test_the_coefficients_of_a_new_dense_vector_are_zero():
    assert Vector(1000, ind=False, elm=False).to_numpy().tolist() == [0.0] * 1000


def test_the_capacity_is_an_integer_of_32_bits():
    refuses(TypeError, "n must be an integer, not str", Vector, "8")
    refuses(TypeError, "n must be an integer, not float", Vector, 8.0)
    refuses(ValueError, "n must be from 0 to 2147483647, not -1", Vector, -1)
    refuses(ValueError, "n must be from 0 to 2147483647, not 2147483648", Vector, 2**31)
    refuses(ValueError, f"n must be from 0 to 2147483647, not {10**30}", Vector, 10**30)
    with pytest.raises(TypeError):
        Vector()
    with pytest.raises(TypeError):
        Vector(8, True)
    assert Vector(np.int64(3)).n == 3


# Arguments

def test_arguments_are_matched_by_name():
    x = Vector(8)
    x.add_nz(value=4.0, j=3)
    assert x.get_coef(j=3) == 4.0
    x.combine(beta=1.0, y=x, tol=0.0, alpha=1.0)
    assert x[3] == 8.0


def test_wrong_arguments_are_named():
    x = Vector(8)
    refuses(TypeError, "get_coef() takes 1 argument, not 2", x.get_coef, 1, 2)
    refuses(TypeError, "add_nz() takes 1 to 2 arguments, not 3", x.add_nz, 1, 2, 3)
    refuses(TypeError, "get_coef() needs the argument 'j'", x.get_coef)
    refuses(TypeError, "combine() needs the argument 'tol'", x.combine, x, 1.0, beta=2.0)
    refuses(TypeError, "get_coef() has no argument 'k'", x.get_coef, k=1)
    refuses(TypeError, "get_coef() got the argument 'j' twice", x.get_coef, 1, j=1)
    with pytest.raises(TypeError):
        x.clear(1)


ON_ELEMENTS = [
    ("get_coef", ()), ("set_coef", (1.0,)), ("is_elm", ()), ("set_elm", ()), ("rem_elm", ()),
    ("add_nz", ()), ("add_nz", (1.0,))]


@pytest.mark.parametrize("method, rest", ON_ELEMENTS)
def test_an_element_index_runs_from_1_to_n(method, rest):
    x = marks()
    call = getattr(x, method)
    for j in (0, -1, 9, 2**31, -2**70, 2**70, np.int64(9)):
        refuses(IndexError, f"element index {j} is out of range: the first is 1, the last 8",
                call, j, *rest)
    refuses(TypeError, "an element index must be an integer, not float", call, 2.0, *rest)
    refuses(TypeError, "an element index must be an integer, not str", call, "2", *rest)
    refuses(TypeError, "an element index must be an integer, not NoneType", call, None, *rest)
    assert x.to_dict() == ENTRIES
    for j in (1, 8, np.int32(2), np.uint8(3)):
        call(j, *rest)
    refuses(IndexError, "element index 1 is out of range: there is none",
            getattr(Vector(0), method), 1, *rest)


@pytest.mark.parametrize("method, rest", [("get_ind", ()), ("set_ind", (1,))])
def test_a_list_position_runs_from_1_to_n(method, rest):
    call = getattr(marks(), method)
    for k in (0, 9):
        refuses(IndexError, f"list position {k} is out of range: the first is 1, the last 8",
                call, k, *rest)
    refuses(TypeError, "a list position must be an integer, not float", call, 1.5, *rest)
    call(8, *rest)


def test_an_index_whose_conversion_fails_raises_that_failure():
    class Broken:
        def __index__(self):
            raise ZeroDivisionError("no index")

        def __float__(self):
            raise ZeroDivisionError("no real")

    refuses(ZeroDivisionError, "no index", marks().get_coef, Broken())
    refuses(ZeroDivisionError, "no real", marks().set_coef, 1, Broken())


@pytest.mark.parametrize("call, name", [
    (lambda v: Vector(4).set_coef(1, v), "value"),
    (lambda v: Vector(4).add_nz(1, v), "value"),
    (lambda v: Vector(4).__setitem__(1, v), "value"),
    (lambda v: Vector(4).combine(Vector(4), v, 1.0, 0.0), "alpha"),
    (lambda v: Vector(4).combine(Vector(4), 1.0, v, 0.0), "beta"),
    (lambda v: Vector(4).combine(Vector(4), 1.0, 1.0, v), "tol"),
    (lambda v: Vector(4).mod2(v), "tol"),
    (lambda v: Vector(4).is_identical(Vector(4), v), "tol"),
])
def test_numbers_are_real(call, name):
    refuses(TypeError, f"{name} must be a real number, not str", call, "1")
    refuses(TypeError, f"{name} must be a real number, not complex", call, 1j)
    refuses(ValueError, f"{name} is an integer beyond the range of reals", call, 10**400)
    for value in (1, True, np.float32(0.5), np.int64(3), float("nan")):
        call(value)


@pytest.mark.parametrize("call, name", [
    (lambda v: Vector(4).combine(v, 1.0, 1.0, 0.0), "y"),
    (lambda v: Vector(4).sym_diff(v), "y"),
    (lambda v: Vector(4).is_identical(v, 0.0), "other"),
])
def test_vectors_are_vectors(call, name):
    refuses(TypeError, f"{name} must be a Vector, not dict", call, ENTRIES)
    refuses(TypeError, f"{name} must be a Vector, not NoneType", call, None)


# Components

def test_components_of_marks():
    x = marks()
    assert [x.get_ind(k) for k in (1, 2, 3)] == [2, 5, 7]
    assert [x.is_elm(j) for j in range(1, 9)] == [False, True, False, False, True, False, True, False]
    x.set_coef(5, 9.0)
    assert x[5] == 9.0
    x.rem_elm(5)
    assert (x[5], 5 in x, x.nz, list(x)) == (0.0, False, 3, [(2, 3.0), (7, -1.0)])
    x.set_elm(5)
    assert x[5] == 9.0
    x.set_ind(1, 3)
    assert x.ind[:3].tolist() == [3, 5, 7]


def test_the_count_is_writable_where_there_is_a_list():
    x = marks()
    x.nz = 2
    assert list(x) == [(2, 3.0), (5, 2.0)]
    refuses(ValueError, "nz must be from 0 to 8, not 9", setattr, x, "nz", 9)
    refuses(ValueError, "nz must be from 0 to 8, not -1", setattr, x, "nz", -1)
    refuses(TypeError, "nz must be an integer, not float", setattr, x, "nz", 1.0)
    refuses(AttributeError, "nz cannot be deleted", delattr, x, "nz")
    refuses(ValueError, "nz cannot be set: the vector was created with ind=False",
            setattr, dense(), "nz", 1)
    assert x.nz == 2


def test_other_attributes_are_read_only():
    x = marks()
    for name in ("n", "mode", "coef", "ind", "elm"):
        with pytest.raises(AttributeError):
            setattr(x, name, 1)
    with pytest.raises(AttributeError):
        x.colour = 1


@pytest.mark.parametrize("method, args, absent, make", [
    ("set_coef", (2, 1.0), "coef", support),
    ("get_coef", (2,), "coef", support),
    ("add_nz", (3, 1.0), "coef", support),
    ("get_ind", (1,), "ind", dense),
    ("set_ind", (1, 1), "ind", dense),
    ("is_elm", (1,), "elm", listed),
    ("set_elm", (1,), "elm", listed),
    ("rem_elm", (1,), "elm", listed),
    ("rem_nz", (1,), "elm", listed),
    ("rem_nz", (1,), "ind", dense),
    ("clean_index", (), "elm", listed),
    ("clear", (), "elm", listed),
    ("rem_zeros", (), "coef", support),
    ("mod2", (0.0,), "coef", support),
    ("sym_diff", (marks(),), "elm", listed),
    ("sym_diff", (marks(),), "ind", dense),
    ("is_identical", (support(), 0.0), "coef", marks),
    ("is_identical", (marks(), 0.0), "coef", support),
    ("is_identical", (listed(), 0.0), "elm", marks),
])
def test_a_missing_array_is_named(method, args, absent, make):
    x = make()
    before = list(x), x.nz
    refuses(ValueError, f"{method}() needs '{absent}', and the vector was created with "
            f"{absent}=False", getattr(x, method), *args)
    assert (list(x), x.nz) == before


def test_an_empty_vector_needs_no_arrays():
    for arrays in ({"coef": False}, {"ind": False}, {"elm": False}, {"ind": False, "elm": False}):
        x = Vector(4, **arrays)
        x.clean_index()
        x.clear()
        x.rem_zeros()
        x.mod2(0.0)
        x.sym_diff(Vector(4))
        assert x.is_identical(Vector(4), 0.0)


# Entries

@pytest.mark.parametrize("make", [marks, listed, dense])
def test_a_coefficient_is_that_of_a_member(make):
    x = make()
    assert [x.get_coef(j) for j in range(1, 9)] == [0.0, 3.0, 0.0, 0.0, 2.0, 0.0, -1.0, 0.0]
    assert [x[j] for j in range(1, 9)] == [x.get_coef(j) for j in range(1, 9)]


@pytest.mark.parametrize("make, members", [
    (marks, {2, 5, 7}), (listed, {2, 5, 7}), (support, {2, 5, 7}), (dense, set(range(1, 9)))])
def test_membership(make, members):
    x = make()
    assert {j for j in range(1, 9) if j in x} == members
    for j in (0, 9, -1, 2**40, 2**80):
        assert j not in x
    refuses(TypeError, "an element index must be an integer, not str", lambda: "2" in x)


@pytest.mark.parametrize("make", [marks, listed])
def test_adding_an_element(make):
    x = make()
    x.add_nz(3, 4.0)
    x[2] = 0.0
    x.add_nz(5)
    x.add_nz(7, None)
    assert list(x) == [(2, 0.0), (5, 2.0), (7, -1.0), (3, 4.0)]
    refuses(TypeError, "value must be a real number, not NoneType", x.__setitem__, 3, None)
    assert x[3] == 4.0


def test_adding_to_a_dense_vector_stores_the_coefficient():
    x = dense()
    x.add_nz(3, 4.0)
    assert (x[3], x.nz, len(x)) == (4.0, 0, 8)


def test_adding_to_an_index_set():
    x = support()
    x.add_nz(3)
    assert list(x) == [(2, 1.0), (5, 1.0), (7, 1.0), (3, 1.0)]
    assert x.get_coef(4) == 0.0


@pytest.mark.parametrize("make", [lambda: Vector.from_entries(3, [1, 2], [1.0, 2.0]),
                                  lambda: Vector.from_entries(3, [1, 2], [1.0, 2.0], elm=False)])
def test_a_full_list_takes_no_other_element(make):
    x = make()
    x.set_ind(3, 2)  # A list that repeats an element is full with one element missing.
    x.nz = 3
    refuses(ValueError, "add_nz() needs room for element 3, and the list is full", x.add_nz, 3, 1.0)
    x.add_nz(2, 5.0)
    assert x[2] == 5.0 and x.nz == 3


def test_marks_without_a_list_take_only_members():
    x = Vector.from_entries(4, [2], [1.0], ind=False)
    x.add_nz(2, 3.0)
    assert list(x) == [(2, 3.0)]
    refuses(ValueError, "add_nz() needs 'ind', and the vector was created with ind=False",
            x.add_nz, 1, 1.0)


def test_removing_a_position_moves_the_last_entry_there():
    x = marks()
    x.rem_nz(1)
    assert list(x) == [(7, -1.0), (5, 2.0)]
    refuses(IndexError, "list position 3 is out of range: the first is 1, the last 2", x.rem_nz, 3)
    x.rem_nz(2)
    x.rem_nz(1)
    assert x.elm.tolist() == [0] * 8
    refuses(IndexError, "list position 1 is out of range: there is none", x.rem_nz, 1)


def test_removing_an_element():
    x = marks()
    del x[5]
    assert list(x) == [(2, 3.0), (7, -1.0)]
    refuses(KeyError, "'element 5 is not listed'", x.__delitem__, 5)
    refuses(IndexError, "element index 9 is out of range: the first is 1, the last 8",
            x.__delitem__, 9)
    refuses(ValueError, "del() needs 'elm', and the vector was created with elm=False",
            listed().__delitem__, 2)


# Whole vectors

def test_clearing_marks_and_entries():
    x = marks()
    x.clean_index()
    assert (x.nz, x.elm.tolist(), len(x)) == (3, [0] * 8, 0)
    x = marks()
    x.clear()
    assert (x.nz, x.elm.tolist(), len(x)) == (0, [0] * 8, 0)


@pytest.mark.parametrize("make", [marks, listed])
def test_zeros_are_dropped(make):
    x = make()
    x[2] = -0.0
    x[3] = float("nan")
    x.rem_zeros()
    assert [j for j, _ in x] == [3, 5, 7]


@pytest.mark.parametrize("make", [marks, listed])
def test_combination(make):
    x = make()
    y = Vector.from_dict(8, {7: 1.0, 1: 10.0, 5: 0.5})
    x.combine(y, 2.0, 2.0, 1e-9)
    assert list(x) == [(2, 6.0), (5, 5.0), (1, 20.0)]


def test_combination_with_itself():
    x = marks()
    x.combine(x, 1.0, -1.0, 1e-9)
    assert (list(x), x.nz) == ([], 0)


def test_combination_needs_common_elements_and_room():
    x = Vector.from_dict(4, {1: 1.0})
    y = Vector.from_dict(8, {2: 1.0, 5: 1.0})
    refuses(IndexError, "combine() needs element indices from 1 to 4, and list position 2 holds 5",
            x.combine, y, 1.0, 1.0, 0.0)
    refuses(IndexError, "sym_diff() needs element indices from 1 to 4, and list position 2 holds 5",
            x.sym_diff, y)
    assert list(x) == [(1, 1.0)]
    full = Vector.from_entries(3, [1, 2], [1.0, 1.0])
    full.set_ind(3, 2)
    full.nz = 3
    third = Vector.from_dict(3, {3: 1.0})
    refuses(ValueError, "combine() needs room for 1 new entries, and the list has room for 0",
            full.combine, third, 1.0, 1.0, 0.0)
    refuses(ValueError, "sym_diff() needs room for 1 new entries, and the list has room for 0",
            full.sym_diff, third)
    full.combine(third, 2.0, 0.0, 0.0)  # nothing of y is added
    assert full[1] == 2.0
    unlisted = Vector.from_entries(3, [1], [1.0], ind=False)
    refuses(ValueError, "combine() needs 'ind', and the vector was created with ind=False",
            unlisted.combine, third, 1.0, 1.0, 0.0)
    twice = Vector.from_entries(3, [3, 1], [1.0, 1.0])
    twice.set_ind(2, 3)
    refuses(ValueError, "combine() needs distinct indices, and element 3 is listed twice",
            Vector.from_entries(3, [1, 2], [1.0, 1.0]).combine, twice, 1.0, 1.0, 0.0)


def test_a_full_vector_takes_its_own_elements():
    x = Vector.from_numpy([1.0, 2.0, 3.0])
    x.combine(Vector.from_numpy([1.0, 1.0, 1.0]), 1.0, 1.0, 0.0)
    assert x.to_numpy().tolist() == [2.0, 3.0, 4.0]
    x = Vector.from_entries(3, [1, 2, 3], [1.0, 2.0, 3.0], elm=False)
    x.combine(Vector.from_numpy([1.0, 1.0, 1.0]), 1.0, 1.0, 0.0)
    assert x.to_numpy().tolist() == [2.0, 3.0, 4.0]


def test_symmetric_difference():
    x = support()
    x.sym_diff(Vector.from_entries(8, [5, 1, 2], elm=False))
    assert sorted(j for j, _ in x) == [1, 7]
    x.sym_diff(x)
    assert len(x) == 0


def test_reduction_modulo_2():
    x = Vector.from_dict(8, {1: 3.0, 2: 4.0, 3: 2.5, 4: 1e-12})
    x.mod2(1e-9)
    assert x.to_dict() == {1: 1.0, 3: 1.0}


def test_comparison():
    x = marks()
    y = Vector.from_dict(8, {7: -1.0, 5: 2.0, 2: 3.0})
    assert x.is_identical(y, 0.0) is True
    y[2] = 3.5
    assert x.is_identical(y, 0.25) is False
    assert x.is_identical(y, 0.5) is True
    del y[2]
    assert x.is_identical(y, 0.5) is False
    y = Vector.from_dict(8, {1: -1.0, 5: 2.0, 2: 3.0})
    assert x.is_identical(y, 9.0) is False
    assert x != marks() and x == x


def test_a_corrupted_list_is_refused():
    for call in ("clean_index", "clear", "rem_zeros", "check"):
        x = marks()
        x.ind[1] = 9
        refuses(IndexError, f"{call}() needs element indices from 1 to 8, and list position 2 holds 9",
                getattr(x, call))
    for value in (0, 9, 2**31 - 1, -2**31):
        x = marks()
        x.ind[1] = value
        sentence = f"needs element indices from 1 to 8, and list position 2 holds {value}"
        refuses(IndexError, "mod2() " + sentence, x.mod2, 0.0)
        refuses(IndexError, "combine() " + sentence, x.combine, marks(), 1.0, 1.0, 0.0)
        refuses(IndexError, "combine() " + sentence, marks().combine, x, 1.0, 1.0, 0.0)
        refuses(IndexError, "sym_diff() " + sentence, x.sym_diff, marks())
        refuses(IndexError, "sym_diff() " + sentence, marks().sym_diff, x)
        refuses(IndexError, "is_identical() " + sentence, x.is_identical, marks(), 0.0)
        refuses(IndexError, "rem_nz() " + sentence, x.rem_nz, 2)
        refuses(IndexError, "iteration() " + sentence, list, x)
        refuses(IndexError, "iteration() " + sentence, repr, x)
        refuses(IndexError, "iteration() " + sentence, len, x)
        refuses(IndexError, "iteration() " + sentence, x.to_numpy)


def test_check_names_the_first_violation():
    marks().check()
    listed().check()
    dense().check()
    support().check()
    x = marks()
    x.set_ind(1, 5)
    refuses(ValueError, "element 5 is listed twice", x.check)
    x = marks()
    x.rem_elm(5)
    refuses(ValueError, "element 5 is listed and not marked", x.check)
    x = marks()
    x.set_elm(3)
    refuses(ValueError, "element 3 is marked and not listed", x.check)
    x = marks()
    x.elm[4] = 2
    refuses(ValueError, "the mark of element 5 is 2, neither 0 nor 1", x.check)


# Protocols

@pytest.mark.parametrize("make, entries", [
    (marks, [(2, 3.0), (5, 2.0), (7, -1.0)]), (listed, [(2, 3.0), (5, 2.0), (7, -1.0)]),
    (support, [(2, 1.0), (5, 1.0), (7, 1.0)]),
    (lambda: Vector.from_entries(8, [7, 2], [1.0, 2.0], ind=False), [(2, 2.0), (7, 1.0)]),
    (lambda: Vector.from_entries(3, [2], [5.0], ind=False, elm=False), [(1, 0.0), (2, 5.0), (3, 0.0)]),
    (lambda: Vector(0), []),
])
def test_iteration_and_length(make, entries):
    x = make()
    assert list(x) == entries
    assert len(x) == len(entries)
    assert x.to_dict() == dict(entries)
    assert all(type(j) is int and type(a) is float for j, a in x)
    indices, values = x.to_entries()
    assert (indices.dtype, values.dtype) == (np.int32, np.float64)
    assert list(zip(indices.tolist(), values.tolist())) == entries
    assert bool(x) == bool(entries)


def test_an_iteration_outlives_the_variable_and_notices_changes():
    entries = iter(marks())
    assert next(entries) == (2, 3.0)
    assert list(entries) == [(5, 2.0), (7, -1.0)]
    with pytest.raises(StopIteration):
        next(entries)
    x = marks()
    with pytest.raises(RuntimeError, match="^entries were added or removed during the iteration$"):
        for j, _ in x:
            del x[j]
    for j, _ in x:
        x[j] = 0.0
    assert x.to_numpy().tolist() == [0.0] * 8


def test_text():
    assert repr(marks()) == "<Vector n=8 marks {2: 3.0, 5: 2.0, 7: -1.0}>"
    assert repr(support()) == "<Vector n=8 marks {2, 5, 7}>"
    assert repr(listed()) == "<Vector n=8 list {2: 3.0, 5: 2.0, 7: -1.0}>"
    assert repr(Vector(3)) == "<Vector n=3 marks {}>"
    assert repr(Vector.from_numpy([0.1, float("nan"), float("-inf")])) == \
        "<Vector n=3 marks {1: 0.1, 2: nan, 3: -inf}>"
    assert repr(Vector.from_entries(99, range(1, 21))) == \
        "<Vector n=99 marks {1, 2, 3, 4, 5, 6, 7, 8, ... and 12 more}>"


@pytest.mark.parametrize("duplicate", [
    lambda x: x.copy(), copy.copy, copy.deepcopy, lambda x: pickle.loads(pickle.dumps(x))])
@pytest.mark.parametrize("make", [
    marks, listed, dense, support, lambda: Vector(0), lambda: Vector(0, elm=False),
    lambda: Vector.from_entries(8, [7, 2], [1.0, 2.0], ind=False)])
def test_a_copy_is_independent(make, duplicate):
    x = make()
    y = duplicate(x)
    assert (y.n, y.nz, y.mode, list(y)) == (x.n, x.nz, x.mode, list(x))
    assert [a is None for a in (y.coef, y.ind, y.elm)] == [a is None for a in (x.coef, x.ind, x.elm)]
    if x.n > 0 and x.coef is not None:
        y.set_coef(2, 99.0)
        assert x[2] != 99.0


def test_a_copy_keeps_the_list_order_and_entries_without_marks():
    x = marks()
    x.rem_elm(5)
    y = x.copy()
    assert y.nz == 3 and y.ind[:3].tolist() == [2, 5, 7] and y.elm.tolist() == x.elm.tolist()


def test_subclasses_and_weak_references():
    class Row(Vector):
        def norm(self):
            return sum(abs(a) for _, a in self)

    row = Row.from_dict(8, ENTRIES)
    assert type(row) is Row and type(row.copy()) is Row and row.norm() == 6.0
    row.combine(marks(), 1.0, 1.0, 0.0)
    assert row.norm() == 12.0
    reference = weakref.ref(row)
    del row
    assert reference() is None


# Conversions

def test_from_entries():
    x = Vector.from_entries(8, np.array([7, 2], dtype=np.int16), np.array([1, 2], dtype=np.int8))
    assert list(x) == [(7, 1.0), (2, 2.0)]
    assert list(Vector.from_entries(8, [], [])) == []
    assert list(Vector.from_entries(8, np.array([9, 1, 9, 2])[1::2], [1.0, 2.0])) == [(1, 1.0), (2, 2.0)]
    make = Vector.from_entries
    refuses(IndexError, "element index 0 is out of range: the first is 1, the last 8", make, 8, [0])
    refuses(IndexError, "element index 9 is out of range: the first is 1, the last 8", make, 8, [1, 9])
    refuses(ValueError, "element 3 occurs twice", make, 8, [3, 1, 3])
    refuses(TypeError, "indices must be an array of integers", make, 8, [1.0])
    refuses(TypeError, "indices must be an array of integers", make, 8, ["a"])
    refuses(TypeError, "indices must be an array of integers", make, 8, [True])
    refuses(ValueError, "indices must have one dimension, not 2", make, 8, [[1]])
    refuses(TypeError, "values must be an array of real numbers", make, 8, [1], [1j])
    refuses(ValueError, "values must be as many as indices: 2, not 1", make, 8, [1, 2], [1.0])
    refuses(TypeError, "indices must be an array of integers", make, 8, object())


def test_from_and_to_dict():
    x = Vector.from_dict(8, {7: 1, 2: 2.5})
    assert x.to_dict() == {7: 1.0, 2: 2.5} and list(x.to_dict()) == [7, 2]
    refuses(TypeError, "entries must be a dict, not list", Vector.from_dict, 8, [(1, 2.0)])
    refuses(IndexError, "element index 9 is out of range: the first is 1, the last 8",
            Vector.from_dict, 8, {9: 1.0})
    refuses(TypeError, "value must be a real number, not str", Vector.from_dict, 8, {1: "a"})
    refuses(TypeError, "value must be a real number, not NoneType", Vector.from_dict, 8, {1: None})


def test_from_and_to_numpy():
    array = np.array([0.0, 3.0, -0.0, np.nan, 0.0, -1.0])
    x = Vector.from_numpy(array)
    assert x.n == 6 and [j for j, _ in x] == [2, 4, 6]
    assert np.array_equal(x.to_numpy(), array, equal_nan=True)
    x.check()
    assert list(Vector.from_numpy(np.arange(6)[::2])) == [(2, 2.0), (3, 4.0)]
    assert Vector.from_numpy([]).n == 0
    refuses(TypeError, "array must be an array of real numbers", Vector.from_numpy, ["a"])
    refuses(ValueError, "array must have one dimension, not 2", Vector.from_numpy, [[1.0]])
    refuses(ValueError, "array must have one dimension, not 0", Vector.from_numpy, 1.0)


@pytest.mark.parametrize("kind", ["csr", "csc", "coo", "lil", "dok"])
@pytest.mark.parametrize("container", ["matrix", "array"])
def test_from_and_to_sparse_rows(kind, container):
    sparse = pytest.importorskip("scipy.sparse")
    make = getattr(sparse, f"{kind}_{container}")
    row = make(np.array([[0.0, 3.0, 0.0, 2.0]]))
    x = Vector.from_sparse(row)
    assert x.n == 4 and dict(x) == {2: 3.0, 4: 2.0}
    back = x.to_sparse()
    assert back.shape == (1, 4) and back.toarray().tolist() == [[0.0, 3.0, 0.0, 2.0]]


def test_sparse_rows_in_detail():
    sparse = pytest.importorskip("scipy.sparse")
    twice = sparse.coo_matrix(([1.0, 2.0, 0.0], ([0, 0, 0], [1, 1, 2])), shape=(1, 4))
    assert dict(Vector.from_sparse(twice)) == {2: 3.0, 3: 0.0}
    rows = sparse.csr_matrix(np.array([[1.0, 0.0], [0.0, 2.0]]))
    assert dict(Vector.from_sparse(rows[1])) == {2: 2.0}
    assert dict(Vector.from_sparse(sparse.csr_matrix(np.array([[0, 7]])))) == {2: 7.0}
    refuses(ValueError, "row must have the shape (1, n), not (2, 2)", Vector.from_sparse, rows)
    refuses(ValueError, "row must have the shape (1, n), not (2, 1)", Vector.from_sparse, rows[:, 0])
    refuses(TypeError, "row must be a sparse matrix of SciPy, not list", Vector.from_sparse, [1.0])
    refuses(TypeError, "row must be an array of real numbers",
            Vector.from_sparse, sparse.csr_matrix(np.array([[1j]])))
    assert support().to_sparse().toarray().tolist() == [[0, 1, 0, 0, 1, 0, 1, 0]]
    unsorted = Vector.from_entries(4, [4, 1], [1.0, 2.0]).to_sparse()
    assert unsorted.toarray().tolist() == [[2.0, 0.0, 0.0, 1.0]]


# Views

def test_views_are_the_memory_of_the_vector():
    x = marks()
    x.coef[4] = 7.5
    assert x[5] == 7.5
    x.set_coef(5, 8.5)
    coef = x.coef
    assert coef[4] == 8.5 and not coef.flags.owndata and coef.flags.c_contiguous
    assert np.shares_memory(coef, x.coef)
    assert (x.ind.dtype, x.elm.dtype, x.coef.dtype) == (np.int32, np.int32, np.float64)


def test_views_stay_valid_after_the_vector_is_deleted():
    x = marks(1000)
    coef, ind, elm = x.coef, x.ind, x.elm
    del x
    others = [marks(1000) for _ in range(50)]
    assert coef[[1, 4, 6]].tolist() == [3.0, 2.0, -1.0]
    assert ind[:3].tolist() == [2, 5, 7]
    assert np.flatnonzero(elm).tolist() == [1, 4, 6]
    coef[:] = 0.0
    assert all(other[2] == 3.0 for other in others)


# Documentation

def test_each_member_is_documented_and_names_its_procedure():
    assert inspect.signature(Vector.add_nz).parameters.keys() == {"self", "j", "value"}
    for name, member in vars(Vector).items():
        if not name.startswith("_"):
            assert inspect.getdoc(member), name
    for name in ("get_coef", "add_nz", "combine", "mod2"):
        assert "C++: vector_mod::vector" in inspect.getdoc(getattr(Vector, name))


# Memory

REFUSED = """
import resource
from zktarn import Vector, _host
size = int(open("/proc/self/statm").read().split()[0]) * resource.getpagesize()
resource.setrlimit(resource.RLIMIT_AS, (size + 2**28,) * 2)
keep = Vector.from_dict(8, {2: 3.0})
for make in (lambda: Vector(2**31 - 1), lambda: Vector.from_entries(2**31 - 1, [1], [1.0]),
             lambda: Vector(2**31 - 1, coef=False, ind=False)):
    try:
        make()
    except MemoryError as error:
        print(error)
print(_host.block_count(), keep)
"""


def test_a_refused_allocation_is_a_memory_error():
    child = subprocess.run([sys.executable, "-c", REFUSED], capture_output=True, text=True, check=False)
    assert (child.returncode, child.stderr) == (0, "")
    assert child.stdout == (3 * "no memory for a vector of 2147483647 elements\n"
                            + "3 <Vector n=8 marks {2: 3.0}>\n")
