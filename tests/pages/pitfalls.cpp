#include <numbers>
#include <vector>

#include "pages/row.hpp"

namespace {

void search(const std::vector<double>& row, double eps) {
    zktarn::docs::print_row(row);
    const auto [found, scalar] = zktarn::docs::integral_scalar(row, eps, 1000.0, 1000.0);
    if (!found) {
        std::printf(" with eps %g has no scalar\n", eps);
        return;
    }
    std::printf(" with eps %g times %g is ", eps, scalar);
    zktarn::docs::print_row(row, scalar);
    std::printf("\n");
}

} // namespace

int main() {
    std::printf("Decimal denominators first:\n");
    zktarn::docs::print_fraction(0.25, 1e-9, 100.0);
    zktarn::docs::print_fraction(0.25, 1e-9, 99.0);
    zktarn::docs::print_fraction(0.25, 1e-9, 19.0);

    std::printf("\nA large eps finds a fraction for any number:\n");
    zktarn::docs::print_fraction(std::numbers::pi, 1e-6, 1000.0);
    zktarn::docs::print_fraction(std::numbers::pi, 1e-2, 1000.0);
    zktarn::docs::print_fraction(std::numbers::pi, 0.5, 1000.0);
    zktarn::docs::print_fraction(0.4, 0.5, 1000.0);

    std::printf("\nA large eps changes a row:\n");
    search({1.0, 0.4}, 1e-9);
    search({1.0, 0.4}, 0.1);
    search({1.0, 0.95}, 1e-9);
    search({1.0, 0.95}, 0.1);
}
