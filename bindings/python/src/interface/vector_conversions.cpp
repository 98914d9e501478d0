// Conversions from and to a `Vector`: arrays, dicts, sparse rows, copies.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

#include "vector_checks.hpp"

namespace zktarn::python {

namespace {

namespace py = pybind11;

using reals = py::array_t<double, py::array::c_style>;
using indices = py::array_t<std::int64_t, py::array::c_style>;

// Reading arguments
// --------------------------------------------------------------------------------------------

/// `value` as an array of one dimension. TypeError for elements of another kind than `kinds`
/// ("b" bool, "i" and "u" integers, "f" reals), ValueError for another shape. An empty array may
/// have any type: NumPy makes one of reals from [].
py::array to_array(PyObject* value, const char* name, const char* kinds, const char* wanted) {
    const py::array array = py::array::ensure(py::reinterpret_borrow<py::object>(value));
    if (!array || (array.size() > 0 && std::strchr(kinds, array.dtype().kind()) == nullptr)) {
        PyErr_Clear();
        raise(PyExc_TypeError, "%s must be an array of %s", name, wanted);
    }
    if (array.ndim() != 1) {
        raise(PyExc_ValueError, "%s must have one dimension, not %zd", name, array.ndim());
    }
    return array;
}

reals to_reals(PyObject* value, const char* name) {
    return py::reinterpret_steal<reals>(
        py::array_t<double, py::array::c_style | py::array::forcecast>(
            to_array(value, name, "biuf", "real numbers"))
            .release());
}

indices to_indices(PyObject* value, const char* name) {
    return py::reinterpret_steal<indices>(
        py::array_t<std::int64_t, py::array::c_style | py::array::forcecast>(
            to_array(value, name, "iu", "integers"))
            .release());
}

bool to_flag(PyObject* value, bool absent) {
    if (value == nullptr) {
        return absent;
    }
    const int truth = PyObject_IsTrue(value);
    if (truth < 0) {
        throw python_error{};
    }
    return truth != 0;
}

// Filling a new vector
// --------------------------------------------------------------------------------------------

/// Lists and marks the elements of a new vector and stores their coefficients. IndexError for an
/// index out of range, ValueError for one that occurs twice.
void fill(vector_object& v, const indices& elements, const double* values) {
    std::vector<bool> seen(static_cast<std::size_t>(v.n));
    const std::int64_t* const data = elements.data();
    for (py::ssize_t k = 0; k < elements.size(); ++k) {
        const std::int64_t j = data[k];
        if (j < 1 || j > v.n) {
            const py::int_ index(j);
            raise_out_of_range(index_kind::element, index.ptr(), v.n);
        }
        const auto place = static_cast<std::size_t>(j - 1);
        if (seen[place]) {
            raise(PyExc_ValueError, "element %lld occurs twice", static_cast<long long>(j));
        }
        seen[place] = true;
        if (v.form.ind) {
            v.record->ind.data[k] = static_cast<std::int32_t>(j);
        }
        if (v.form.elm) {
            v.record->elm.data[place] = 1;
        }
        if (v.form.coef && values != nullptr) {
            v.record->coef.data[place] = values[k];
        }
    }
    v.record->nz = v.form.ind ? static_cast<std::int32_t>(elements.size()) : 0;
}

py::object filled(PyTypeObject* type, std::int32_t n, vector_form form, const indices& elements,
                  const double* values) {
    auto made = py::reinterpret_steal<py::object>(new_vector(type, n, form));
    fill(as_vector(made.ptr()), elements, values);
    return made;
}

constexpr parameters<5> from_entries_parameters{
    "from_entries", 2, {"n", "indices", "values", "ind", "elm"}};
PyObject* from_entries(PyTypeObject* type, argument_list<5> given) {
    const std::int32_t n = to_integer_between(given[0], "n", 0, 2147483647);
    const indices elements = to_indices(given[1], "indices");
    const bool has_values = given[2] != nullptr && given[2] != Py_None;
    const vector_form form{has_values, to_flag(given[3], true), to_flag(given[4], true)};
    if (!has_values) {
        return filled(type, n, form, elements, nullptr).release().ptr();
    }
    const reals values = to_reals(given[2], "values");
    if (values.size() != elements.size()) {
        raise(PyExc_ValueError, "values must be as many as indices: %zd, not %zd", elements.size(),
              values.size());
    }
    return filled(type, n, form, elements, values.data()).release().ptr();
}

constexpr parameters<2> from_dict_parameters{"from_dict", 2, {"n", "entries"}};
PyObject* from_dict(PyTypeObject* type, argument_list<2> given) {
    const std::int32_t n = to_integer_between(given[0], "n", 0, 2147483647);
    if (!PyDict_Check(given[1])) {
        raise(PyExc_TypeError, "entries must be a dict, not %s", Py_TYPE(given[1])->tp_name);
    }
    auto made = py::reinterpret_steal<py::object>(new_vector(type, n, {}));
    Py_ssize_t place = 0;
    PyObject* index = nullptr;
    PyObject* value = nullptr;
    while (PyDict_Next(given[1], &place, &index, &value) != 0) {
        if (set_item(made.ptr(), index, value) < 0) {
            throw python_error{};
        }
    }
    return made.release().ptr();
}

constexpr parameters<1> from_numpy_parameters{"from_numpy", 1, {"array"}};
PyObject* from_numpy(PyTypeObject* type, argument_list<1> given) {
    const reals array = to_reals(given[0], "array");
    if (array.size() > 2147483647) {
        raise(PyExc_ValueError, "array must have at most 2147483647 elements, not %zd",
              array.size());
    }
    const auto n = static_cast<std::int32_t>(array.size());
    auto made = py::reinterpret_steal<py::object>(new_vector(type, n, {}));
    vector_type::vector& record = *as_vector(made.ptr()).record;
    for (std::int32_t j = 1; j <= n; ++j) {
        const double value = array.data()[j - 1];
        if (value != 0.0) {
            record.ind.data[record.nz++] = j;
            record.elm.data[j - 1] = 1;
            record.coef.data[j - 1] = value;
        }
    }
    return made.release().ptr();
}

constexpr parameters<1> from_sparse_parameters{"from_sparse", 1, {"row"}};
PyObject* from_sparse(PyTypeObject* type, argument_list<1> given) {
    const auto row = py::reinterpret_borrow<py::object>(given[0]);
    if (!py::hasattr(row, "tocsr") || !py::hasattr(row, "shape")) {
        raise(PyExc_TypeError, "row must be a sparse matrix of SciPy, not %s",
              Py_TYPE(given[0])->tp_name);
    }
    const py::tuple shape = row.attr("shape");
    if (shape.size() != 2 || shape[0].cast<std::int64_t>() != 1) {
        raise(PyExc_ValueError, "row must have the shape (1, n), not %R", shape.ptr());
    }
    const std::int32_t n =
        to_integer_between(shape[1].ptr(), "the number of columns", 0, 2147483647);
    const py::object csr = row.attr("tocsr")(py::arg("copy") = true);
    csr.attr("sum_duplicates")();
    const indices columns = to_indices(csr.attr("indices").ptr(), "indices");
    const reals values = to_reals(csr.attr("data").ptr(), "row");
    indices elements(columns.size());
    std::transform(columns.data(), columns.data() + columns.size(), elements.mutable_data(),
                   [](std::int64_t column) { return column + 1; });
    return filled(type, n, {}, elements, values.data()).release().ptr();
}

// Turning a vector into something else
// --------------------------------------------------------------------------------------------

/// The elements and coefficients of all entries, in the order of the iteration.
struct entry_arrays {
    py::array_t<std::int32_t> elements;
    py::array_t<double> values;
};

entry_arrays arrays_of(const vector_object& v) {
    std::vector<std::int32_t> elements;
    std::vector<double> values;
    entry_cursor cursor(v);
    vector_entry entry{};
    while (cursor.next(entry)) {
        elements.push_back(entry.index);
        values.push_back(entry.value);
    }
    return {py::array_t<std::int32_t>(static_cast<py::ssize_t>(elements.size()), elements.data()),
            py::array_t<double>(static_cast<py::ssize_t>(values.size()), values.data())};
}

PyObject* to_entries(vector_object& v) {
    const entry_arrays arrays = arrays_of(v);
    return py::make_tuple(arrays.elements, arrays.values).release().ptr();
}

PyObject* to_dict(vector_object& v) {
    py::dict entries;
    entry_cursor cursor(v);
    vector_entry entry{};
    while (cursor.next(entry)) {
        entries[py::int_(entry.index)] = py::float_(entry.value);
    }
    return entries.release().ptr();
}

PyObject* to_numpy(vector_object& v) {
    py::array_t<double> array(v.n);
    double* const data = array.mutable_data();
    std::fill_n(data, v.n, 0.0);
    entry_cursor cursor(v);
    vector_entry entry{};
    while (cursor.next(entry)) {
        data[entry.index - 1] = entry.value;
    }
    return array.release().ptr();
}

PyObject* to_sparse(vector_object& v) {
    const py::object csr = py::module_::import("scipy.sparse").attr("csr_matrix");
    entry_arrays arrays = arrays_of(v);
    std::int32_t* const columns = arrays.elements.mutable_data();
    std::for_each(columns, columns + arrays.elements.size(), [](std::int32_t& j) { --j; });
    const py::tuple rows = py::make_tuple(0, arrays.elements.size());
    return csr(py::make_tuple(arrays.values, arrays.elements, rows),
               py::arg("shape") = py::make_tuple(1, v.n))
        .release()
        .ptr();
}

// Copies
// --------------------------------------------------------------------------------------------

template <class T>
void copy_array(const array_1d<T>& source, const array_1d<T>& destination) noexcept {
    if (source.present()) {
        std::copy_n(source.data, source.extent[0], destination.data);
    }
}

PyObject* copy(vector_object& v) {
    PyObject* const made = new_vector(Py_TYPE(&v), v.n, v.form);
    vector_type::vector& record = *as_vector(made).record;
    copy_array(v.record->coef, record.coef);
    copy_array(v.record->ind, record.ind);
    copy_array(v.record->elm, record.elm);
    record.nz = v.record->nz;
    return made;
}

constexpr parameters<1> deepcopy_parameters{"__deepcopy__", 1, {"memo"}};
PyObject* deepcopy(vector_object& v, argument_list<1>) {
    return copy(v);
}

/// Pickles the entries, not the arrays, whose stale and scratch elements mean nothing.
PyObject* reduce(vector_object& v) {
    const auto self = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject*>(&v));
    const entry_arrays arrays = arrays_of(v);
    const py::object values = v.form.coef ? py::object(arrays.values) : py::object(py::none());
    return py::make_tuple(py::type::of(self).attr("from_entries"),
                          py::make_tuple(v.n, arrays.elements, values, v.form.ind, v.form.elm))
        .release()
        .ptr();
}

// Invariants
// --------------------------------------------------------------------------------------------

PyObject* check(vector_object& v) {
    const vector_type::vector& record = *v.record;
    needs_elements(v, "check");
    std::vector<bool> listed(static_cast<std::size_t>(v.n));
    for (std::int32_t k = 1; v.form.ind && k <= record.nz; ++k) {
        const std::int32_t j = record.ind(k);
        if (listed[static_cast<std::size_t>(j - 1)]) {
            raise(PyExc_ValueError, "element %d is listed twice", j);
        }
        listed[static_cast<std::size_t>(j - 1)] = true;
    }
    for (std::int32_t j = 1; v.form.elm && j <= v.n; ++j) {
        const std::int32_t mark = record.elm(j);
        if (mark != 0 && mark != 1) {
            raise(PyExc_ValueError, "the mark of element %d is %d, neither 0 nor 1", j, mark);
        }
        if (v.form.ind && listed[static_cast<std::size_t>(j - 1)] != (mark == 1)) {
            raise(PyExc_ValueError, "element %d is %s", j,
                  mark == 1 ? "marked and not listed" : "listed and not marked");
        }
    }
    return none();
}

/// A method of the class: `body(PyTypeObject*, argument_list<N>)`.
template <const auto& wanted, auto body>
PyObject* call_class_method(PyObject* type, PyObject* const* arguments, Py_ssize_t positional,
                            PyObject* keywords) noexcept {
    return protect<PyObject*>(nullptr, [&] {
        return body(reinterpret_cast<PyTypeObject*>(type),
                    match(wanted, arguments, positional, keywords));
    });
}

template <const auto& wanted, auto body>
PyMethodDef class_method(const char* documentation) {
    const auto function = reinterpret_cast<void (*)()>(&call_class_method<wanted, body>);
    return {wanted.procedure, reinterpret_cast<PyCFunction>(function),
            METH_FASTCALL | METH_KEYWORDS | METH_CLASS, documentation};
}

} // namespace

PyMethodDef conversion_methods[] = {
    class_method<from_entries_parameters, from_entries>(
        R"(from_entries($type, n, indices, values=None, ind=True, elm=True)
--

A new vector with the given entries, listed in their order.

n           int, 0 to 2147483647, the capacity.
indices     array of integers, shape (m,): distinct element indices from 1 to n.
values      array of reals, shape (m,): their coefficients. None makes a vector without
            coefficients.
ind, elm    bool, whether the vector has a list and marks, as in `Vector`.

Returns a Vector.

TypeError: an array has another type. IndexError: an index is out of range. ValueError: an index
occurs twice, or the lengths differ. MemoryError: no memory. Takes time proportional to n.)"),
    class_method<from_dict_parameters, from_dict>(R"(from_dict($type, n, entries)
--

A new vector in marks mode with the entries of a dict {index: coefficient}, in the dict's order.

n          int, 0 to 2147483647, the capacity.
entries    dict of int, 1 to n, to float.

Returns a Vector. `to_dict` is the inverse.

TypeError: not a dict, or an index or coefficient has another type. IndexError: an index is out of
range.)"),
    class_method<from_numpy_parameters, from_numpy>(R"(from_numpy($type, array)
--

A new vector in marks mode with the nonzero elements of an array.

array    array of reals, shape (n,). Element j of the vector is array[j - 1]. NaN counts as nonzero.

Returns a Vector whose list is in increasing order. `to_numpy` is the inverse.

TypeError: the array has another type. ValueError: it has not one dimension.)"),
    class_method<from_sparse_parameters, from_sparse>(R"(from_sparse($type, row)
--

A new vector in marks mode with the stored elements of a row of SciPy.

row    sparse matrix or array of SciPy in any format, shape (1, n). Stored zeros become entries;
       elements stored several times are added up. Column c becomes element c + 1.

Returns a Vector. `to_sparse` is the inverse.

TypeError: not a sparse matrix of real numbers. ValueError: not one row.)"),
    plain_method<to_entries>("to_entries", R"(to_entries($self)
--

The entries as two new arrays: element indices, int32, shape (m,), and coefficients, float64, shape
(m,), both in the order of the iteration. A vector without coefficients gives 1.0 for each.)"),
    plain_method<to_dict>("to_dict", R"(to_dict($self)
--

The entries as a new dict {index: coefficient}, in the order of the iteration. A vector without
coefficients gives 1.0 for each.)"),
    plain_method<to_numpy>("to_numpy", R"(to_numpy($self)
--

The vector as a new array, float64, shape (n,): the coefficients of the members, and 0.0 elsewhere.
A vector without coefficients gives 1.0 for its members.)"),
    plain_method<to_sparse>("to_sparse", R"(to_sparse($self)
--

The vector as a new `scipy.sparse.csr_matrix`, shape (1, n), with an element for each entry, zeros
included. Element j becomes column j - 1. ImportError: SciPy is not installed.)"),
    plain_method<copy>("copy", R"(copy($self)
--

A new vector with copies of all arrays, in the same mode. MemoryError: no memory. `copy.copy` and
`copy.deepcopy` do the same.)"),
    plain_method<copy>("__copy__", "__copy__($self)\n--\n\nThe same as `copy`."),
    method<deepcopy_parameters, deepcopy>("__deepcopy__($self, memo)\n--\n\nThe same as `copy`."),
    plain_method<reduce>("__reduce__",
                         "__reduce__($self)\n--\n\nFor pickles, which hold the entries."),
    plain_method<check>("check", R"(check($self)
--

Tests the invariants that the operations expect: each listed index is an element and listed once,
each mark is 0 or 1, and exactly the listed elements are marked.

Returns None. IndexError or ValueError: names the first violation. Operations never violate them,
but writes to `ind`, `elm` and `nz` can, and so can `set_ind`, `set_elm`, `rem_elm` and
`clean_index`. Takes time proportional to n.)"),
    {},
};

} // namespace zktarn::python
