// The type `Vector`: creation, release, and the table of its members.

#include <Python.h>
#include <structmember.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <vector>

#include "arguments.hpp"
#include "host/python_host.hpp"
#include "vector_object.hpp"

namespace zktarn::python {

PyTypeObject* vector_class = nullptr;

namespace {

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

PyMemberDef members[] = {
    {"__weaklistoffset__", T_PYSSIZET, offsetof(vector_object, weak_references), READONLY, nullptr},
    {},
};

/// All methods in one table, which the interpreter requires.
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
        {Py_tp_getset, vector_properties},
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
