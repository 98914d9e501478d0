#pragma once

#include <Python.h>

#include <cstdint>

#include "arguments.hpp"
#include "zktarn/vector/vector_type.hpp"

/// The Python type `Vector`, which owns a vector of the library: its instances, its members, and
/// the entries of its tables of methods.
///
/// It is a type of the interpreter's C interface instead of a pybind11 class: see arguments.hpp.

namespace zktarn::python {

/// Which arrays a vector has.
struct vector_form {
    bool coef = true;
    bool ind = true;
    bool elm = true;
};

/// An instance of `Vector`. The record keeps the arrays of `form`, unless n is 0: then it has none.
struct vector_object {
    PyObject_HEAD vector_type::vector* record;
    std::int32_t n;
    vector_form form;
    PyObject* weak_references;

    /// Whether membership is stated by marks together with a list.
    [[nodiscard]] bool has_marks_mode() const noexcept { return form.elm && form.ind; }
};

/// The type; null before `add_vector_type`.
extern PyTypeObject* vector_class;

/// The vector behind `self` of a method, whose type the interpreter has checked.
[[gnu::always_inline]] inline vector_object& as_vector(PyObject* self) noexcept {
    return *reinterpret_cast<vector_object*>(self);
}

/// The vector behind an argument. TypeError when it is not a Vector.
vector_object& to_vector(PyObject* value, const char* name);

/// A new vector of type `type`, with its coefficients set to 0.0 in dense mode. MemoryError when
/// the host refuses the memory.
PyObject* new_vector(PyTypeObject* type, std::int32_t n, vector_form form);

// The members of the type, by subject.
extern PyMethodDef component_methods[];  // vector_components.cpp
extern PyMethodDef operation_methods[];  // vector_operations.cpp
extern PyMethodDef conversion_methods[]; // vector_conversions.cpp

PyObject* iterate(PyObject* self) noexcept;  // vector_iteration.cpp
void add_iterator_type();                    // vector_iteration.cpp
Py_ssize_t length(PyObject* self) noexcept;  // vector_iteration.cpp
PyObject* describe(PyObject* self) noexcept; // vector_iteration.cpp

// `x[j]`, `x[j] = value`, `del x[j]`, `j in x`: vector_components.cpp
PyObject* get_item(PyObject* self, PyObject* index) noexcept;
int set_item(PyObject* self, PyObject* index, PyObject* value) noexcept;
int contains(PyObject* self, PyObject* index) noexcept;

// Entries for the tables of methods

/// The interpreter's view of `body(vector_object&, argument_list<N>)`, which returns a new
/// reference or throws.
template <const auto& wanted, auto body>
PyObject* call_method(PyObject* self, PyObject* const* arguments, Py_ssize_t positional,
                      PyObject* keywords) noexcept {
    return protect<PyObject*>(nullptr, [&] {
        return body(as_vector(self), match(wanted, arguments, positional, keywords));
    });
}

/// A method without arguments.
template <auto body>
PyObject* call_plain_method(PyObject* self, PyObject*) noexcept {
    return protect<PyObject*>(nullptr, [&] { return body(as_vector(self)); });
}

/// An entry of the table. `documentation` begins with the signature, as the interpreter expects.
template <const auto& wanted, auto body>
PyMethodDef method(const char* documentation) {
    // The interpreter calls the function by its flags, whatever type the table has.
    const auto function = reinterpret_cast<void (*)()>(&call_method<wanted, body>);
    return {wanted.procedure, reinterpret_cast<PyCFunction>(function),
            METH_FASTCALL | METH_KEYWORDS, documentation};
}

template <auto body>
PyMethodDef plain_method(const char* name, const char* documentation) {
    return {name, &call_plain_method<body>, METH_NOARGS, documentation};
}

/// None, as a new reference.
inline PyObject* none() noexcept {
    Py_RETURN_NONE;
}

} // namespace zktarn::python
