#pragma once

#include <Python.h>

// All sources share one table of NumPy's functions, which interpreter.cpp fills.
#define NPY_NO_DEPRECATED_API NPY_1_21_API_VERSION
#define PY_ARRAY_UNIQUE_SYMBOL numpy_functions_of_the_host
#ifndef ZKTARN_NUMPY_TABLE_HERE
#define NO_IMPORT_ARRAY
#endif
#include <numpy/arrayobject.h>
