#include <cstdio>

#include "zktarn/util/util.hpp"

namespace util = zktarn::util;

int main() {
    std::printf("x              eps    integral  nearest  floor  ceiling  fractionality\n");
    struct {
        double x;
        double eps;
    } const cases[] = {{2.9999999999, 1e-9}, {3.0000000001, 1e-9}, {2.99, 1e-9},
                       {2.99, 0.01},         {2.5, 0.5},           {-0.0000000001, 1e-9}};
    for (const auto& [x, eps] : cases) {
        zktarn::flag integral = 0;
        double nearest = 0.0;
        util::epsilon_is_int(x, eps, integral, nearest);
        std::printf("%-13.10f  %-5g  %-8s  ", x, eps, integral != 0 ? "yes" : "no");
        if (integral != 0) {
            std::printf("%-7g", nearest);
        } else {
            std::printf("-      ");
        }
        std::printf("  %-5g  %-7g  %.3g\n", util::epsilon_floor(x, eps) + 0.0,
                    util::epsilon_ceiling(x, eps) + 0.0, util::epsilon_fractionality(x, eps));
    }
}
