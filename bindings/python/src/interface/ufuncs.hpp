#pragma once

#include <Python.h>

#include <array>
#include <cfenv>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "numpy_api.hpp"

/// NumPy's universal functions over procedures of the library: broadcasting, `out=`, `where=`, and a
/// loop in C++ that runs without the interpreter's lock.

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
        run(operands, *count, steps, std::index_sequence_for<Inputs...>(),
            std::index_sequence_for<Outputs...>());
        // NumPy would report comparisons of NaN and overflows as warnings; the procedures report
        // them as results.
        std::feclearexcept(FE_ALL_EXCEPT);
    }

private:
    template <std::size_t... in, std::size_t... out>
    [[gnu::always_inline]] static void run(char** operands, npy_intp count, const npy_intp* steps,
                                           std::index_sequence<in...>,
                                           std::index_sequence<out...>) noexcept {
        constexpr std::size_t nin = sizeof...(in);
        for (npy_intp i = 0; i < count; ++i) {
            f(element<const Inputs>(operands[in], steps[in], i)...,
              element<Outputs>(operands[nin + out], steps[nin + out], i)...);
        }
    }
};

/// A universal function with `types` kinds of operands; `loops` and `type_codes` must stay in
/// memory. Adds it to the module.
struct ufunc_description {
    const char* name;
    const char* documentation;
    int inputs;
    int outputs;
    int types;
    PyUFuncGenericFunction* loops;
    char* type_codes;
};

void add_ufunc(PyObject* module, const ufunc_description& description);

} // namespace zktarn::python
