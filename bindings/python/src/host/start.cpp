#define ZKTARN_NUMPY_TABLE_HERE
#include "numpy_api.hpp"

#include "exceptions.hpp"
#include "functions.hpp"
#include "python_host.hpp"

int zktarn_python_start() {
    static bool started = false;
    if (!started) {
        started = _import_array() == 0 && zktarn::python_host::prepare_exceptions() &&
                  zktarn::python_host::prepare_functions();
    }
    return started ? 0 : -1;
}
