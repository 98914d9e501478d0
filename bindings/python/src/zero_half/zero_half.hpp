#pragma once

#include <string>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "input/model.hpp"

namespace zktarn::python {

/// A model as a dict of arrays and numbers, which `_zero_half.pyi` lists as `ModelArrays`: rows as
/// compressed sparse rows, the objective as the file counts it.
pybind11::dict arrays_of(const zero_half::model& model);

/// The model of such a dict. It is neither checked nor completed. Throws pybind11::cast_error for a
/// dict that the package's Python code does not make.
zero_half::model model_of(const pybind11::dict& arrays);

/// A text of any bytes: those that are not UTF-8 become lone surrogates, as Python decodes file
/// names.
pybind11::str decoded(const std::string& text);

/// The reverse of `decoded`.
std::string encoded(const pybind11::handle& text);

/// A new NumPy array with a copy of the values.
template <class Range>
auto copied_array(const Range& values) {
    using element = typename Range::value_type;
    return pybind11::array_t<element>(static_cast<pybind11::ssize_t>(values.size()), values.data());
}

/// Reads a model. Throws zero_half::error; MemoryError when there is not enough memory.
///
/// Holds the interpreter's lock, because reading redirects the standard output of the process.
pybind11::dict read_model(const pybind11::bytes& file);

/// Tightens the relaxation of a model. The dicts are `ModelArrays` and `Options` of
/// `_zero_half.pyi`, and `Outcome` is returned, with the exception that the run stored in the host,
/// or None. The outcome is None when the exception prevents one.
///
/// Releases the interpreter's lock during the run; each operation of the host takes it. One run at
/// a time: the library's interrupt flag serves one solve. Throws zero_half::error; MemoryError when
/// there is not enough memory.
pybind11::tuple tighten(const pybind11::dict& model, const pybind11::dict& options,
                        const pybind11::object& output_function);

/// Writes a model with further rows `cuts` * x <= `rhs`, a dict of compressed sparse rows, as free
/// MPS. Throws zero_half::error when the file cannot be written.
void write_mps(const pybind11::dict& model, const pybind11::dict& cuts,
               const pybind11::bytes& file);

} // namespace zktarn::python
