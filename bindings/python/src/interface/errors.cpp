#include "errors.hpp"

#include <pybind11/pybind11.h>

namespace zktarn::python {

void set_python_error() noexcept {
    try {
        throw;
    } catch (const python_error&) {
        // The interpreter holds the exception already.
    } catch (pybind11::error_already_set& error) {
        error.restore();
    } catch (const pybind11::builtin_exception& error) {
        error.set_error();
    } catch (const std::bad_alloc&) {
        PyErr_NoMemory();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_RuntimeError, error.what());
    } catch (...) {
        PyErr_SetString(PyExc_SystemError, "an exception of unknown type left zktarn");
    }
}

} // namespace zktarn::python
