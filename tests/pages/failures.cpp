#include <numbers>
#include <vector>

#include "pages/row.hpp"

namespace {

void search(const std::vector<double>& row, double max_den, double max_scalar) {
    zktarn::docs::print_row(row);
    std::printf(", denominators up to %g, scalar up to %g:  ", max_den, max_scalar);
    const auto [found, scalar] = zktarn::docs::integral_scalar(row, 1e-9, max_den, max_scalar);
    if (found) {
        std::printf("%g\n", scalar);
    } else {
        std::printf("none\n");
    }
}

} // namespace

int main() {
    search({1.0, std::numbers::sqrt2}, 1000.0, 1e6);
    search({0.5, 0.75}, 100.0, 0.9);
    search({1.0 / 7.0, 1.0 / 11.0, 1.0 / 13.0}, 1000.0, 1000.0);
    search({1.0 / 7.0, 1.0 / 11.0, 1.0 / 13.0}, 1000.0, 2000.0);
}
