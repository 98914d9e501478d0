#pragma once

#include <Python.h>

/// What each source adds to the extension module. Each raises when it fails.

namespace zktarn::python {

void add_vector_type(PyObject* module);
void add_integrality(PyObject* module);
void add_rational(PyObject* module);
void add_scalar_search(PyObject* module);
void add_sort(PyObject* module);
void add_random(PyObject* module);
void add_callbacks(PyObject* module);

} // namespace zktarn::python
