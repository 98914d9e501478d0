#pragma once

#include <Python.h>

#include "arguments.hpp"
#include "errors.hpp"
#include "vector_object.hpp"

/// Entries for the table of methods of `Vector`.

namespace zktarn::python {

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
