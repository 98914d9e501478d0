// The C headers compile as C++ without a warning, together with the C++ headers.
#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

#include "zktarn_standin.h"
#include "zktarn_util.h"

int main() {
    zktarn_vector* v = nullptr;
    if (zktarn_vector_alloc(&v, 3, nullptr, nullptr, nullptr) == 0) {
        return 1;
    }
    const double value = 2.0;
    zktarn_vector_add_nz(v, 2, &value);
    const bool same =
        zktarn_vector_get_coef(v, 2) == value && zktarn_vector_get_nz(v) == 1 &&
        zktarn_standin_live_blocks(nullptr, 0) == zktarn::standin::live_blocks().size();
    zktarn_vector_free(&v);
    return same ? 0 : 1;
}
