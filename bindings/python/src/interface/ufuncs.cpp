#include "ufuncs.hpp"

#include "errors.hpp"

namespace zktarn::python {

void add_ufunc(PyObject* module, const ufunc_description& description) {
    PyObject* const made = require(PyUFunc_FromFuncAndData(
        description.loops, nullptr, description.type_codes, description.types, description.inputs,
        description.outputs, PyUFunc_None, description.name, description.documentation, 0));
    const int added = PyModule_AddObjectRef(module, description.name, made);
    Py_DECREF(made);
    if (added < 0) {
        throw python_error{};
    }
}

} // namespace zktarn::python
