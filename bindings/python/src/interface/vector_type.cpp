// The type `Vector`: creation, release, attributes, and the tables of its members.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <structmember.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "host/python_host.hpp"
#include "vector_object.hpp"
#include "zktarn/vector/vector_mod.hpp"

namespace zktarn::python {

PyTypeObject* vector_class = nullptr;

namespace {

namespace py = pybind11;
using record = vector_type::vector;

constexpr const char* documentation = R"(Vector(n, *, coef=True, ind=True, elm=True)
--

A sparse vector of capacity n. Elements are counted from 1.

n       int, 0 to 2147483647. Element indices j and list positions k run from 1 to n.
coef    bool. False: no coefficients, an index set.
ind     bool. False: no list.
elm     bool. False: no marks.

The arrays decide the mode, which states what the members are:

    mode     arrays         j is a member when     operations
    marks    elm, ind       elm[j - 1] is 1        all, in constant time an element
    list     ind            j is in ind[:nz]       those on one element search the list
    dense    coef           always                 only those on one element change anything

A new vector has no members; in dense mode all coefficients are 0.0, otherwise those of non-members
are not initialised. MemoryError: NumPy has no memory for the arrays.

    >>> x = Vector(8)
    >>> x[2] = 3.0
    >>> x.add_nz(5, 2.0)
    >>> x[2], x[3], 5 in x, len(x)
    (3.0, 0.0, True, 2)
    >>> list(x)
    [(2, 3.0), (5, 2.0)]

x[j]            the coefficient of element j, as `get_coef` returns it
x[j] = value    makes j a member, as `add_nz` does
del x[j]        removes a listed element (marks mode, takes time proportional to nz), KeyError when
                it is not listed
j in x          whether j is a member; False for an integer out of range
len(x)          the number of entries that the iteration yields
iter(x)         the entries (j, coefficient): listed members in the order of the list; without a
                list marked elements, or all, in increasing order. Coefficients may change during
                the iteration; RuntimeError when nz does.

Every method checks its arguments before it changes anything: TypeError for another type, IndexError
for an index out of range, ValueError for anything else. A vector must not be used by two threads at
once; the interpreter's lock is held throughout. Vectors compare by identity: see `is_identical`.

C++: vector_type::vector, vector_type::vector_alloc; vector_type::vector_free runs with the last
reference.)";

PyObject* create(PyTypeObject* type, PyObject* positional, PyObject* keywords) noexcept {
    static const std::array<const char*, 5> names = {"n", "coef", "ind", "elm", nullptr};
    PyObject* n = nullptr;
    int coef = 1;
    int ind = 1;
    int elm = 1;
    if (PyArg_ParseTupleAndKeywords(positional, keywords, "O|$ppp:Vector",
                                    const_cast<char**>(names.data()), &n, &coef, &ind, &elm) == 0) {
        return nullptr;
    }
    return protect<PyObject*>(nullptr, [&] {
        return new_vector(type, to_integer_between(n, "n", 0, 2147483647),
                          {coef != 0, ind != 0, elm != 0});
    });
}

void release(PyObject* self) noexcept {
    PyTypeObject* const type = Py_TYPE(self);
    vector_object& v = as_vector(self);
    if (v.weak_references != nullptr) {
        PyObject_ClearWeakRefs(self);
    }
    vector_type::vector_free(v.record);
    type->tp_free(self);
    Py_DECREF(type);
}

// Attributes

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

PyGetSetDef attributes[] = {
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

coef[j - 1] belongs to element j. The coefficient of an element that is not a member is stale: it may
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

PyMemberDef members[] = {
    {"__weaklistoffset__", T_PYSSIZET, offsetof(vector_object, weak_references), READONLY, nullptr},
    {},
};

/// All methods in one table, as the interpreter requires.
std::vector<PyMethodDef> methods() {
    std::vector<PyMethodDef> all;
    for (const PyMethodDef* each : {component_methods, operation_methods, conversion_methods}) {
        for (; each->ml_name != nullptr; ++each) {
            all.push_back(*each);
        }
    }
    all.push_back({});
    return all;
}

} // namespace

PyObject* new_vector(PyTypeObject* type, std::int32_t n, vector_form form) {
    PyObject* const made = require(type->tp_alloc(type, 0));
    vector_object& v = as_vector(made);
    v.n = n;
    v.form = form;
    const flag no_coef = form.coef ? 0 : 1;
    const flag no_ind = form.ind ? 0 : 1;
    const flag no_elm = form.elm ? 0 : 1;
    if (vector_type::vector_alloc(v.record, n, no_coef, no_ind, no_elm) == 0) {
        Py_DECREF(made);
        raise(PyExc_MemoryError, "no memory for a vector of %d elements", n);
    }
    if (form.coef && !form.ind && !form.elm) {
        std::fill_n(v.record->coef.data, n, 0.0);
    }
    return made;
}

vector_object& to_vector(PyObject* value, const char* name) {
    if (!PyObject_TypeCheck(value, vector_class)) {
        raise(PyExc_TypeError, "%s must be a Vector, not %s", name, Py_TYPE(value)->tp_name);
    }
    return as_vector(value);
}

void add_vector_type(PyObject* module) {
    static std::vector<PyMethodDef> table = methods();
    static PyType_Slot slots[] = {
        {Py_tp_doc, const_cast<char*>(documentation)},
        {Py_tp_new, reinterpret_cast<void*>(create)},
        {Py_tp_dealloc, reinterpret_cast<void*>(release)},
        {Py_tp_repr, reinterpret_cast<void*>(describe)},
        {Py_tp_iter, reinterpret_cast<void*>(iterate)},
        {Py_tp_methods, table.data()},
        {Py_tp_getset, attributes},
        {Py_tp_members, members},
        {Py_mp_length, reinterpret_cast<void*>(length)},
        {Py_mp_subscript, reinterpret_cast<void*>(get_item)},
        {Py_mp_ass_subscript, reinterpret_cast<void*>(set_item)},
        {Py_sq_contains, reinterpret_cast<void*>(contains)},
        {0, nullptr},
    };
    static PyType_Spec spec = {"zktarn.Vector", sizeof(vector_object), 0,
                               Py_TPFLAGS_DEFAULT | Py_TPFLAGS_BASETYPE, slots};
    add_iterator_type();
    vector_class = reinterpret_cast<PyTypeObject*>(require(PyType_FromSpec(&spec)));
    if (PyModule_AddObjectRef(module, "Vector", reinterpret_cast<PyObject*>(vector_class)) < 0) {
        throw python_error{};
    }
}

} // namespace zktarn::python
