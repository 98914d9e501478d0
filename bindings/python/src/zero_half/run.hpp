#pragma once

#include <pybind11/pybind11.h>

namespace zktarn::python {

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
