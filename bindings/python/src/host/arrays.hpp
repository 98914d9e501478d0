#pragma once

#include <cstdint>

#include "interpreter.hpp"
#include "zktarn/host/libqv.hpp"

/// Arrays of the host are objects of Python; a handle is the address of one, with a reference:
///
///     struct, 1-by-1          dict, name to value; an empty field is None
///     struct, other extents   numpy.ndarray of such dicts
///     column, n-by-1          numpy.ndarray of float64, one dimension
///     other real matrix       numpy.ndarray of float64, two dimensions, column by column
///     real scalar             float
///     text                    str

namespace zktarn::python_host {

/// The object behind a handle; null for handle 0.
inline PyObject* object_of(host::array_handle handle) noexcept {
    return reinterpret_cast<PyObject*>(handle);
}

/// The handle of an object, which owns the reference from now on; 0 for null.
inline host::array_handle handle_of(reference object) noexcept {
    return reinterpret_cast<host::array_handle>(object.release());
}

} // namespace zktarn::python_host
