#pragma once

#include <Python.h>

#include <array>
#include <cstddef>
#include <cstdint>

#include "errors.hpp"

/// The arguments of a Python call, and their conversion to numbers.
///
/// The methods of `Vector` are called once an entry, and pybind11's dispatcher would take most of
/// the time of such a call. So they receive their arguments as a vector of objects
/// (METH_FASTCALL), which these functions match with the parameters.

namespace zktarn::python {

/// The parameters of a procedure: `required` of the names have no default.
template <std::size_t N>
struct parameters {
    const char* procedure;
    std::size_t required;
    std::array<const char*, N> names;
};

/// The arguments in the order of the parameters; null where the caller gave none.
template <std::size_t N>
using argument_list = std::array<PyObject*, N>;

[[noreturn]] void raise_wrong_count(const char* procedure, std::size_t required, std::size_t most,
                                    std::size_t given);

/// Stores the keyword arguments at the places of their names.
void match_keywords(const char* procedure, const char* const* names, std::size_t count,
                    PyObject** values, PyObject* const* keyword_values, PyObject* keywords);

[[noreturn]] void raise_missing(const char* procedure, const char* name);

/// Matches positional arguments and keywords with parameters. TypeError when they do not fit.
template <std::size_t N>
argument_list<N> match(const parameters<N>& wanted, PyObject* const* arguments,
                       Py_ssize_t positional, PyObject* keywords) {
    const auto count = static_cast<std::size_t>(positional);
    if (count > N) [[unlikely]] {
        raise_wrong_count(wanted.procedure, wanted.required, N, count);
    }
    argument_list<N> matched{};
    for (std::size_t i = 0; i < count; ++i) {
        matched[i] = arguments[i];
    }
    if (keywords != nullptr) [[unlikely]] {
        match_keywords(wanted.procedure, wanted.names.data(), N, matched.data(), arguments + count,
                       keywords);
    }
    for (std::size_t i = count; i < wanted.required; ++i) {
        if (matched[i] == nullptr) [[unlikely]] {
            raise_missing(wanted.procedure, wanted.names[i]);
        }
    }
    return matched;
}

/// What an index counts, for messages.
enum class index_kind { element, position };

[[noreturn]] void raise_out_of_range(index_kind kind, PyObject* value, std::int32_t last);

/// Any object with `__index__`, converted with saturation. TypeError for other objects.
long long integer_of_object(PyObject* value, const char* name);

/// An integer, saturated at the ends of long long. TypeError when `value` is not an integer.
inline long long to_integer(PyObject* value, const char* name) {
    if (PyLong_CheckExact(value)) [[likely]] {
        int overflow = 0;
        const long long result = PyLong_AsLongLongAndOverflow(value, &overflow);
        if (overflow == 0) [[likely]] {
            return result;
        }
    }
    return integer_of_object(value, name);
}

/// An index from 1 to `last`. TypeError for another type, IndexError outside of the range.
inline std::int32_t to_index(PyObject* value, std::int32_t last, index_kind kind) {
    const long long index =
        to_integer(value, kind == index_kind::element ? "an element index" : "a list position");
    if (index < 1 || index > last) [[unlikely]] {
        raise_out_of_range(kind, value, last);
    }
    return static_cast<std::int32_t>(index);
}

/// An integer from `least` to `most`. TypeError for another type, ValueError outside of the range.
std::int32_t to_integer_between(PyObject* value, const char* name, std::int32_t least,
                                std::int32_t most);

/// Any object with `__float__` or `__index__`. TypeError for others, ValueError for integers beyond
/// the reals.
double real_of_object(PyObject* value, const char* name);

/// A real number. TypeError when `value` is not one.
inline double to_real(PyObject* value, const char* name) {
    return PyFloat_CheckExact(value) ? PyFloat_AS_DOUBLE(value) : real_of_object(value, name);
}

} // namespace zktarn::python
