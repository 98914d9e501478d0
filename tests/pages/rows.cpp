#include <vector>

#include "pages/row.hpp"

int main() {
    const std::vector<double> rows[] = {
        {0.25, -1.5, 3.0}, {1.0 / 3.0, 0.5, 1.0}, {12.25, 7.4, -3.05, 100.0}};
    constexpr double eps = 1e-9;
    constexpr double max_den = 1000.0;
    constexpr double max_scalar = 1e6;
    for (const auto& row : rows) {
        zktarn::docs::print_row(row);
        const auto [found, scalar] = zktarn::docs::integral_scalar(row, eps, max_den, max_scalar);
        if (!found) {
            std::printf("\n    has no scalar\n");
            return 1;
        }
        std::printf("\n    times %g is  ", scalar);
        zktarn::docs::print_row(row, scalar);
        std::printf("\n");
    }
}
