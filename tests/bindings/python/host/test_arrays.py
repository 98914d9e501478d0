"""Struct arrays are dicts, columns NumPy arrays, scalars floats, texts str."""

import math
import weakref

import numpy
import pytest

import host


@pytest.fixture
def structure():
    """A 1-by-1 struct with the fields phase and value."""
    made = host.make_struct(["phase", "value"])
    yield made
    host.destroy(made)


def test_a_struct_is_a_dict_of_empty_fields(structure):
    assert type(host.object_of(structure)) is dict
    assert host.object_of(structure) == {"phase": None, "value": None}


@pytest.mark.parametrize("extents", [(1,), (1, 1), (1, 1, 1)])
def test_one_element_in_any_dimensions_is_a_dict(extents):
    made = host.make_struct(["ten_letter", " x", ""], extents)
    assert host.object_of(made) == {"ten_letter": None, " x": None, "": None}
    host.destroy(made)


def test_more_elements_are_an_array_of_dicts():
    made = host.make_struct(["phase"], (2, 3))
    array = host.object_of(made)
    assert array.shape == (2, 3) and array.dtype == object
    host.set_field(made, "phase", host.make_text("fourth, by columns"), index=4)
    assert array[1, 1] == {"phase": "fourth, by columns"} and array[0, 0] == {"phase": None}
    assert host.add_field(made, "more") == 2
    assert all("more" in each for each in array.flat)
    host.set_field(made, 2, host.make_scalar(0.5), index=6)
    assert array[1, 2]["more"] == 0.5
    assert host.field_number(made, "more") == 2
    host.destroy(made)


@pytest.mark.parametrize("extents", [(0,), (2, 0)])
def test_a_struct_array_may_have_no_elements(extents):
    made = host.make_struct(["phase"], extents)
    assert host.object_of(made).shape == extents
    host.set_field(made, "phase", host.make_scalar(1.0))
    with pytest.raises(IndexError, match="0 elements has no element 1"):
        host.raise_stored()
    host.destroy(made)


@pytest.mark.parametrize("extents", [(-1,), (1, -1), (), (1,) * 100])
def test_wrong_extents_are_handle_0(extents):
    assert host.make_struct(["phase"], extents) == 0
    with pytest.raises(ValueError, match="extents"):
        host.raise_stored()


def test_too_many_elements_are_handle_0():
    assert host.make_struct(["phase"], (1 << 40, 1 << 20)) == 0
    host.raise_stored()


def test_fields_are_numbered_from_1_in_order(structure):
    assert [host.field_number(structure, name) for name in ("phase", "value")] == [1, 2]
    assert [host.field_number(structure, name) for name in ("phas", "phase ", "", "valuex")] == [0] * 4
    for number in range(3, 30):
        assert host.add_field(structure, f"field{number}") == number
        assert host.field_number(structure, f"field{number}") == number
    assert list(host.object_of(structure))[:3] == ["phase", "value", "field3"]


def test_values_are_float_str_and_array(structure):
    host.set_field(structure, "phase", host.make_text("root  "))
    host.set_field(structure, 2, host.make_scalar(2.5))
    column = host.make_matrix(3)
    numpy.ctypeslib.as_array((host.REAL * 3).from_address(host.address(column)))[:] = [1, 2, 3]
    host.add_field(structure, "column")
    host.set_field(structure, "column", column)
    fields = host.object_of(structure)
    assert fields["phase"] == "root  " and type(fields["phase"]) is str
    assert fields["value"] == 2.5 and type(fields["value"]) is float
    assert type(fields["column"]) is numpy.ndarray and fields["column"].dtype == numpy.float64
    assert fields["column"].tolist() == [1.0, 2.0, 3.0]
    assert fields["column"].ctypes.data == host.address(column)


def test_a_matrix_is_stored_by_columns():
    made = host.make_matrix(2, 3)
    array = host.object_of(made)
    assert array.shape == (2, 3) and array.flags.f_contiguous
    host.held.qvcopyreal8toptr800_((host.REAL * 6)(1, 2, 3, 4, 5, 6),
                                   host.POINTER(host.address(made)), host.I64(6))
    assert array.tolist() == [[1, 3, 5], [2, 4, 6]]
    assert host.reals(made, 4) == [1, 2, 3, 4]
    host.destroy(made)


@pytest.mark.parametrize("rows, columns, shape", [(0, 1, (0,)), (0, 0, (0, 0)), (2, 0, (2, 0))])
def test_a_matrix_may_be_empty(rows, columns, shape):
    made = host.make_matrix(rows, columns)
    assert host.object_of(made).shape == shape
    host.destroy(made)


@pytest.mark.parametrize("rows, columns", [
    (-1, 1), (1, -1), (1 << 40, 1 << 40), (1 << 61, 1), (1 << 60, 1), ((1 << 63) - 1, 1)])
def test_a_refused_matrix_is_handle_0_and_nothing_else(rows, columns):
    assert host.make_matrix(rows, columns) == 0
    host.raise_stored()


def test_complex_matrices_are_refused():
    assert host.make_matrix(1, 1, complexity=1) == 0
    with pytest.raises(ValueError, match="real matrices only"):
        host.raise_stored()


@pytest.mark.parametrize("value", [0.0, -0.0, 1e308, -math.inf, math.nan, 5e-324])
def test_a_scalar_holds_its_value(value):
    made = host.make_scalar(value)
    assert numpy.float64(host.object_of(made)).tobytes() == numpy.float64(value).tobytes()
    assert numpy.float64(host.reals(made, 1)[0]).tobytes() == numpy.float64(value).tobytes()
    host.destroy(made)


@pytest.mark.parametrize("text", ["", "root  ", "größer ≤", "a\0b", "x" * 100_000])
def test_a_text_is_a_str_of_all_its_characters(text):
    made = host.make_text(text)
    assert host.object_of(made) == text
    host.destroy(made)


def test_bytes_that_are_not_characters_become_escapes():
    made = host.make_text(b"gr\xf6\xdfer")
    assert host.object_of(made) == "gr\\xf6\\xdfer"
    host.destroy(made)


def test_only_real_arrays_have_data(structure):
    text = host.make_text("1.0")
    assert host.address(text) is None and host.address(structure) is None
    host.destroy(text)
    integers = numpy.arange(3)
    assert host.address(id(integers)) is None
    host.raise_stored()


def test_null_addresses_are_copied_neither_way():
    room = (host.REAL * 1)(7.0)
    host.held.qvcopyptrtoreal8800_(host.POINTER(None), room, host.I64(1))
    host.held.qvcopyreal8toptr800_(room, host.POINTER(None), host.I64(1))
    host.held.qvcopyreal8toptr800_(None, host.POINTER(None), host.I64(0))
    assert room[0] == 7.0


def test_failure_values_are_accepted_and_the_value_is_released(structure):
    assert host.add_field(0, "x") == 0 and host.field_number(0, "x") == 0
    assert host.address(0) is None
    host.destroy(0)
    for target, name in ((0, "value"), (0, 2), (structure, 0)):
        column = host.make_matrix(3)
        gone = weakref.ref(host.object_of(column))
        host.set_field(target, name, column)
        assert gone() is None
        host.set_field(target, name, 0)
    assert host.object_of(structure) == {"phase": None, "value": None}
    host.raise_stored()


@pytest.mark.parametrize("name, index, error", [
    ("value", 2, "1 elements has no element 2"), ("value", 0, "no element 0"), (3, 1, "no field 3"),
    (-1, 1, "no field -1"), (1, 2, "no element 2")])
def test_what_is_not_there_is_reported_and_the_value_released(structure, name, index, error):
    column = host.make_matrix(3)
    gone = weakref.ref(host.object_of(column))
    host.set_field(structure, name, column, index)
    assert gone() is None
    with pytest.raises(IndexError, match=error):
        host.raise_stored()


def test_an_array_that_is_not_a_struct_is_reported():
    column = host.make_matrix(3)
    for operation in (lambda: host.add_field(column, "x"), lambda: host.field_number(column, "x"),
                      lambda: host.set_field(column, "x", host.make_scalar(1.0)),
                      lambda: host.set_field(column, 1, host.make_scalar(1.0))):
        operation()
        with pytest.raises(TypeError, match="struct array is expected here, not 'numpy.ndarray'"):
            host.raise_stored()
    host.destroy(column)


def test_a_value_is_released_when_it_is_replaced(structure):
    column = host.make_matrix(3)
    gone = weakref.ref(host.object_of(column))
    host.set_field(structure, "value", column)
    assert gone() is not None
    host.set_field(structure, "value", host.make_text("instead"))
    assert gone() is None and host.object_of(structure)["value"] == "instead"


def test_arrays_that_python_keeps_outlive_their_struct():
    structure = host.make_struct(["column"])
    host.set_field(structure, "column", host.make_matrix(1000))
    kept = host.object_of(structure)["column"]
    kept[:] = 0.5
    host.destroy(structure)
    assert kept.sum() == 500.0


@pytest.mark.without_sanitizer
def test_calls_leave_nothing(structure):
    def once():
        made = host.make_struct(["phase"])
        host.set_field(made, "phase", host.make_text("root and more"))
        host.add_field(made, "column")
        host.set_field(made, 2, host.make_matrix(10))
        host.set_field(made, "phase", host.make_scalar(1.5))
        host.set_field(made, 7, host.make_scalar(1.5))
        with pytest.raises(IndexError):
            host.raise_stored()
        host.destroy(made)

    assert host.bytes_left_by(once) < 1
    fields = host.object_of(structure)
    assert host.references_left_by(
        lambda: host.set_field(structure, 2, host.make_scalar(1.0)), fields, "value") == [0, 0]
