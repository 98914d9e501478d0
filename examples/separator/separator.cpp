/// A zero-half cut: half the sum of three rows, rounded down, is valid for every integer point with
/// x >= 0, and here it cuts off the solution of the linear relaxation.

#include <cmath>
#include <cstdint>
#include <cstdio>

#include "zktarn/zktarn_util.hpp"

namespace {

using namespace zktarn::vector_mod;

constexpr std::int32_t columns = 5;
constexpr double eps = 1e-9;

struct constraint {
    double coefficients[columns];
    double rhs;
};

constexpr constraint constraints[] = {
    {{1, 1, 0, 1, 0}, 1},
    {{0, 1, 1, 0, -1}, 1},
    {{1, 0, 1, 2, 0}, 1},
};

constexpr double solution[columns] = {0.5, 0.5, 0.5, 0, 0};

void print(const char* name, const zktarn::owned_vector& row, double rhs) {
    std::printf("%-9s", name);
    for (auto [j, a] : entries(row)) {
        std::printf(" %c %g x%d", a < 0 ? '-' : '+', std::abs(a), j);
    }
    std::printf(" <= %g\n", rhs);
}

} // namespace

int main() {
    const zktarn::owned_vector cut(columns);
    const zktarn::owned_vector row(columns);
    if (!cut || !row) {
        std::fprintf(stderr, "separator: the host has no memory for a vector\n");
        return 1;
    }

    double rhs = 0;
    for (const constraint& c : constraints) {
        vector_clear(*row);
        for (std::int32_t j = 1; j <= columns; ++j) {
            if (c.coefficients[j - 1] != 0) {
                vector_add_nz(*row, j, c.coefficients[j - 1]);
            }
        }
        print("row", row, c.rhs);
        vectors_combine(*cut, *row, 1.0, 0.5, eps); // cut := cut + row / 2
        rhs += c.rhs / 2;
    }
    print("half sum", cut, rhs);

    // x >= 0, so smaller coefficients weaken the row; then the left-hand side is an integer.
    double activity = 0;
    double norm = 0;
    for (auto [j, a] : entries(cut)) {
        const double rounded = zktarn::util::epsilon_floor(a, eps);
        vector_set_coef(*cut, j, rounded);
        activity += rounded * solution[j - 1];
        norm += rounded * rounded;
    }
    vector_rem_zeros(*cut);
    rhs = zktarn::util::epsilon_floor(rhs, eps);
    print("cut", cut, rhs);
    std::printf("\nAt (0.5, 0.5, 0.5, 0, 0) the left-hand side of the cut is %g.\n", activity);
    std::printf("violation %g, efficacy %.3f\n", activity - rhs,
                (activity - rhs) / std::sqrt(norm));
    return activity > rhs + eps ? 0 : 1;
}
