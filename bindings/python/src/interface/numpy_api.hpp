#pragma once

#include <Python.h>

// The sources share NumPy's two tables of functions, which module.cpp fills.
#define NPY_NO_DEPRECATED_API NPY_1_21_API_VERSION
#define PY_ARRAY_UNIQUE_SYMBOL numpy_functions_of_the_interface
#define PY_UFUNC_UNIQUE_SYMBOL numpy_ufunc_functions_of_the_interface
#ifndef ZKTARN_PYTHON_IMPORTS_NUMPY
#define NO_IMPORT_ARRAY
#define NO_IMPORT_UFUNC
#endif
#include <numpy/arrayobject.h>
#include <numpy/ufuncobject.h>
