// The attributes of `Vector`: its arrays as views, its counts, its mode.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "arguments.hpp"
#include "host/python_host.hpp"
#include "methods.hpp"
#include "vector_object.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::python {

namespace {

namespace py = pybind11;
using record = vector_type::vector;

/// A view of an array that keeps the memory behind it alive; an empty array for n = 0, where the
/// vector has no memory.
template <class T>
PyObject* view_of(const array_1d<T>& array) {
    if (!array.present()) {
        return py::array_t<T>(0).release().ptr();
    }
    PyObject* const block = zktarn_python_block(array.data);
    if (block == nullptr) {
        raise(PyExc_SystemError, "the host does not know an array of the vector");
    }
    const auto base = py::reinterpret_steal<py::object>(block);
    return py::array_t<T>(array.extent[0], array.data, base).release().ptr();
}

/// The view of one array; None for an array that the vector was created without.
template <auto array, auto exists>
PyObject* get_array(PyObject* self, void*) noexcept {
    return protect<PyObject*>(nullptr, [&] {
        const vector_object& v = as_vector(self);
        return v.form.*exists ? view_of(v.record->*array) : none();
    });
}

PyObject* get_n(PyObject* self, void*) noexcept {
    return PyLong_FromLong(as_vector(self).n);
}

PyObject* get_nz(PyObject* self, void*) noexcept {
    return PyLong_FromLong(vector_mod::vector_get_nz(*as_vector(self).record));
}

int set_nz(PyObject* self, PyObject* value, void*) noexcept {
    return protect(-1, [&] {
        const vector_object& v = as_vector(self);
        if (value == nullptr) {
            raise(PyExc_AttributeError, "nz cannot be deleted");
        }
        const std::int32_t nz = to_integer_between(value, "nz", 0, v.n);
        if (!v.form.ind) {
            raise(PyExc_ValueError, "nz cannot be set: the vector was created with ind=False");
        }
        vector_mod::vector_set_nz(*v.record, nz);
        return 0;
    });
}

PyObject* get_mode(PyObject* self, void*) noexcept {
    const vector_form form = as_vector(self).form;
    return PyUnicode_FromString(form.elm ? "marks" : form.ind ? "list" : "dense");
}

} // namespace

PyGetSetDef vector_properties[] = {
    {"n", get_n, nullptr, "The capacity: element indices and list positions run from 1 to n. int.",
     nullptr},
    {"nz", get_nz, set_nz, R"(The number of listed entries, 0 to n. int.

Writable if the vector has a list: the entries are then those at the positions 1 to nz, which the
caller has set, and marks stay as they are.
C++: vector_mod::vector_get_nz, vector_mod::vector_set_nz.)",
     nullptr},
    {"mode", get_mode, nullptr, "How membership is stated: 'marks', 'list' or 'dense'. str.",
     nullptr},
    {"coef", get_array<&record::coef, &vector_form::coef>, nullptr,
     R"(The coefficients: a view, float64, shape (n,), or None.

coef[j - 1] belongs to element j. The coefficient of an element that is no member is stale: it may
hold any number. Writes change the vector. The view stays valid after the vector is deleted.)",
     nullptr},
    {"ind", get_array<&record::ind, &vector_form::ind>, nullptr,
     R"(The list of element indices: a view, int32, shape (n,), or None.

ind[:nz] are the listed elements, counted from 1 and in no particular order; the rest is scratch.
Writes change the vector; whoever writes keeps list, marks and nz consistent (see `check`). The view
stays valid after the vector is deleted.)",
     nullptr},
    {"elm", get_array<&record::elm, &vector_form::elm>, nullptr,
     R"(The marks: a view, int32, shape (n,), or None.

elm[j - 1] is 1 if element j is a member, else 0. Writes change the vector; whoever writes keeps
list and marks consistent (see `check`). The view stays valid after the vector is deleted.)",
     nullptr},
    {},
};

} // namespace zktarn::python
