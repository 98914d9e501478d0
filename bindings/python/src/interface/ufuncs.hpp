#pragma once

#include <Python.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cstddef>
#include <iterator>
#include <utility>

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

/// NumPy's universal functions over procedures of the library: broadcasting, `out=`, `where=`, and
/// a loop in C++ that runs without the interpreter's lock.

namespace zktarn::python {

/// The element of an operand at position i.
template <class T>
[[gnu::always_inline]] inline T& element(char* operand, npy_intp step, npy_intp i) noexcept {
    return *reinterpret_cast<T*>(operand + i * step);
}

/// One call for each element: f(inputs..., outputs...), outputs by reference.
template <auto f, class Inputs, class Outputs>
struct elementwise;

template <auto f, class... Inputs, class... Outputs>
struct elementwise<f, void(Inputs...), void(Outputs...)> {
    static void loop(char** operands, const npy_intp* count, const npy_intp* steps,
                     void*) noexcept {
        constexpr npy_intp contiguous[] = {sizeof(Inputs)..., sizeof(Outputs)...};
        constexpr auto in = std::index_sequence_for<Inputs...>();
        constexpr auto out = std::index_sequence_for<Outputs...>();
        // Constant steps let the compiler use vector instructions.
        if (std::equal(std::begin(contiguous), std::end(contiguous), steps)) {
            run(operands, *count, contiguous, in, out);
        } else {
            run(operands, *count, steps, in, out);
        }
        // NumPy would report comparisons of NaN and overflows as warnings; the procedures report
        // them as results.
        std::feclearexcept(FE_ALL_EXCEPT);
    }

private:
    /// Addresses and steps are copied: results may be characters, and for all that the compiler
    /// knows, storing one could change what it reads through a pointer.
    template <std::size_t... in, std::size_t... out>
    [[gnu::always_inline]] static void run(char** operands, npy_intp count, const npy_intp* steps,
                                           std::index_sequence<in...>,
                                           std::index_sequence<out...>) noexcept {
        constexpr std::size_t nin = sizeof...(in);
        const std::array<char*, nin + sizeof...(out)> at{operands[in]..., operands[nin + out]...};
        const std::array<npy_intp, nin + sizeof...(out)> step{steps[in]..., steps[nin + out]...};
        for (npy_intp i = 0; i < count; ++i) {
            f(element<const Inputs>(at[in], step[in], i)...,
              element<Outputs>(at[nin + out], step[nin + out], i)...);
        }
    }
};

/// The loop over procedure(x, scalars..., result) on reals.
template <auto procedure, class Result, std::size_t scalars>
struct elementwise_reals;
template <auto procedure, class Result>
struct elementwise_reals<procedure, Result, 0>
    : elementwise<procedure, void(double), void(Result)> {};
template <auto procedure, class Result>
struct elementwise_reals<procedure, Result, 1>
    : elementwise<procedure, void(double, double), void(Result)> {};
template <auto procedure, class Result>
struct elementwise_reals<procedure, Result, 2>
    : elementwise<procedure, void(double, double, double), void(Result)> {};

/// A universal function with `types` kinds of operands; `loops` and `type_codes` must stay in
/// memory.
struct ufunc_description {
    const char* name;
    const char* documentation;
    int inputs;
    int outputs;
    int types;
    PyUFuncGenericFunction* loops;
    char* type_codes;
};

} // namespace zktarn::python
