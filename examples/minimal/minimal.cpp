#include <cstdio>

#include "zktarn/zktarn_util.hpp"

int main() {
    using namespace zktarn::vector_mod;
    vector* x = nullptr; // over indices 1 to 9
    if (!zktarn::vector_type::vector_alloc(x, 9)) {
        return 1;
    }
    vector_add_nz(*x, 2, 3.0); // 3 x2 + 4 x5 - x7, modulo 2
    vector_add_nz(*x, 5, 4.0);
    vector_add_nz(*x, 7, -1.0);
    vector_mod2(*x, 1e-9);
    for (int k = 1; k <= vector_get_nz(*x); ++k) {
        std::printf("x%d is odd\n", vector_get_ind(*x, k));
    }
    zktarn::vector_type::vector_free(x);
}
