#include "arguments.hpp"

#include <limits>

namespace zktarn::python {

void raise_wrong_count(const char* procedure, std::size_t required, std::size_t most,
                       std::size_t given) {
    if (required == most) {
        raise(PyExc_TypeError, "%s() takes %zu argument%s, not %zu", procedure, most,
              most == 1 ? "" : "s", given);
    }
    raise(PyExc_TypeError, "%s() takes %zu to %zu arguments, not %zu", procedure, required, most,
          given);
}

void raise_missing(const char* procedure, const char* name) {
    raise(PyExc_TypeError, "%s() needs the argument '%s'", procedure, name);
}

void match_keywords(const char* procedure, const char* const* names, std::size_t count,
                    PyObject** values, PyObject* const* keyword_values, PyObject* keywords) {
    for (Py_ssize_t given = 0; given < PyTuple_GET_SIZE(keywords); ++given) {
        PyObject* const keyword = PyTuple_GET_ITEM(keywords, given);
        std::size_t place = 0;
        while (place < count && PyUnicode_CompareWithASCIIString(keyword, names[place]) != 0) {
            ++place;
        }
        if (place == count) {
            raise(PyExc_TypeError, "%s() has no argument '%U'", procedure, keyword);
        }
        if (values[place] != nullptr) {
            raise(PyExc_TypeError, "%s() got the argument '%U' twice", procedure, keyword);
        }
        values[place] = keyword_values[given];
    }
}

void raise_out_of_range(index_kind kind, PyObject* value, std::int32_t last) {
    const char* const what = kind == index_kind::element ? "element index" : "list position";
    if (last < 1) {
        raise(PyExc_IndexError, "%s %S is out of range: there is none", what, value);
    }
    raise(PyExc_IndexError, "%s %S is out of range: the first is 1, the last %d", what, value,
          last);
}

long long integer_of_object(PyObject* value, const char* name) {
    PyObject* const integer = PyNumber_Index(value);
    if (integer == nullptr) {
        if (PyErr_ExceptionMatches(PyExc_TypeError)) {
            PyErr_Clear();
            raise(PyExc_TypeError, "%s must be an integer, not %s", name, Py_TYPE(value)->tp_name);
        }
        throw python_error{};
    }
    int overflow = 0;
    const long long result = PyLong_AsLongLongAndOverflow(integer, &overflow);
    Py_DECREF(integer);
    return overflow == 0  ? result
           : overflow < 0 ? std::numeric_limits<long long>::min()
                          : std::numeric_limits<long long>::max();
}

std::int32_t to_integer_between(PyObject* value, const char* name, std::int32_t least,
                                std::int32_t most) {
    const long long integer = to_integer(value, name);
    if (integer < least || integer > most) {
        raise(PyExc_ValueError, "%s must be from %d to %d, not %S", name, least, most, value);
    }
    return static_cast<std::int32_t>(integer);
}

double real_of_object(PyObject* value, const char* name) {
    const double real = PyFloat_AsDouble(value);
    if (real == -1.0 && PyErr_Occurred() != nullptr) {
        if (PyErr_ExceptionMatches(PyExc_TypeError)) {
            PyErr_Clear();
            raise(PyExc_TypeError, "%s must be a real number, not %s", name,
                  Py_TYPE(value)->tp_name);
        }
        if (PyErr_ExceptionMatches(PyExc_OverflowError)) {
            PyErr_Clear();
            raise(PyExc_ValueError, "%s is an integer beyond the range of reals", name);
        }
        throw python_error{};
    }
    return real;
}

} // namespace zktarn::python
