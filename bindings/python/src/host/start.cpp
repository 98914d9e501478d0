#define ZKTARN_NUMPY_TABLE_HERE
#include "numpy_api.hpp"

#include "python_host.hpp"

int zktarn_python_start() {
    static bool started = false;
    if (!started) {
        started = _import_array() == 0;
    }
    return started ? 0 : -1;
}
