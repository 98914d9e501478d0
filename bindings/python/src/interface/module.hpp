#pragma once

#include <pybind11/pybind11.h>

#include <utility>

#include "errors.hpp"

/// What each source adds to the extension module, and how it adds functions that pybind11 wraps.
/// Package zktarn calls these with arguments that it has checked.

namespace zktarn::python {

// Each raises when it fails.
void add_vector_type(PyObject* module);
void add_ufuncs(PyObject* module);
void add_random(PyObject* module);
void add_callbacks(PyObject* module);

/// Defines `name` in a module or a class. A `python_error` becomes pybind11's own exception.
template <class Scope, class... Args, class Result, class... Extra>
void define(Scope& scope, const char* name, Result (*function)(Args...), const Extra&... extra) {
    scope.def(
        name,
        [function](Args... args) -> Result {
            try {
                return function(std::forward<Args>(args)...);
            } catch (const python_error&) {
                throw pybind11::error_already_set();
            }
        },
        extra...);
}

} // namespace zktarn::python
