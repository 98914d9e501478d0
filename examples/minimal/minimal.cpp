#include <cstdio>

#include "zktarn/zktarn_util.hpp"

int main() {
    using namespace zktarn::vector_mod;
    const zktarn::owned_vector x(9); // over indices 1 to 9
    if (!x) {
        return 1;
    }
    vector_add_nz(*x, 2, 3.0); // 3 x2 + 4 x5 - x7, modulo 2
    vector_add_nz(*x, 5, 4.0);
    vector_add_nz(*x, 7, -1.0);
    vector_mod2(*x, 1e-9);
    for (auto [j, a] : entries(x)) {
        std::printf("x%d is odd\n", j);
    }
}
