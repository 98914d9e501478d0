// numerics NAME: prints the output of that name in docs/numerics.md.

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <numbers>
#include <span>
#include <vector>

#include "zktarn/util/util.hpp"

namespace {

namespace util = zktarn::util;

struct scaling {
    bool found;
    double scalar;
};

/// Scales a row to integers.
scaling integral_scalar(std::span<const double> row, double eps, double max_den,
                        double max_scalar) {
    zktarn::flag found = 0;
    double scalar = 0.0;
    const auto supply = [row](const std::int32_t& index, double& value, zktarn::flag& marked,
                              zktarn::flag& selected) {
        value = row[static_cast<std::size_t>(index - 1)];
        marked = 0;
        selected = 1;
    };
    util::find_scalar_integral(static_cast<std::int32_t>(row.size()), supply, eps, max_den,
                               max_scalar, found, scalar);
    return {found != 0, scalar};
}

void print_row(std::span<const double> row, double factor = 1.0) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const double value = row[i] * factor;
        std::printf("%s%.6g x%d",
                    i == 0        ? ""
                    : value < 0.0 ? " - "
                                  : " + ",
                    i == 0 || value >= 0.0 ? value : -value, static_cast<int>(i) + 1);
    }
}

/// Prints the fraction that represents x, or `none`.
void print_fraction(double x, double eps, double max_den) {
    zktarn::flag found = 0;
    double num = 0.0;
    double den = 0.0;
    util::get_rational_rep(x, eps, max_den, found, num, den);
    std::printf("%-9.6g  eps %-6g  denominator at most %-8g  ", x, eps, max_den);
    if (found != 0) {
        std::printf("%g/%g\n", num, den);
    } else {
        std::printf("none\n");
    }
}

void tolerances() {
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

void rows() {
    const std::vector<double> rows[] = {
        {0.25, -1.5, 3.0}, {1.0 / 3.0, 0.5, 1.0}, {12.25, 7.4, -3.05, 100.0}};
    constexpr double eps = 1e-9;
    constexpr double max_den = 1000.0;
    constexpr double max_scalar = 1e6;
    for (const auto& row : rows) {
        print_row(row);
        const auto [found, scalar] = integral_scalar(row, eps, max_den, max_scalar);
        if (!found) {
            std::printf("\n    has no scalar\n");
            continue;
        }
        std::printf("\n    times %g is  ", scalar);
        print_row(row, scalar);
        std::printf("\n");
    }
}

void search_within(const std::vector<double>& row, double max_den, double max_scalar) {
    print_row(row);
    std::printf(", denominators up to %g, scalar up to %g:  ", max_den, max_scalar);
    const auto [found, scalar] = integral_scalar(row, 1e-9, max_den, max_scalar);
    if (found) {
        std::printf("%g\n", scalar);
    } else {
        std::printf("none\n");
    }
}

void failures() {
    search_within({1.0, std::numbers::sqrt2}, 1000.0, 1e6);
    search_within({0.5, 0.75}, 100.0, 0.9);
    search_within({1.0 / 7.0, 1.0 / 11.0, 1.0 / 13.0}, 1000.0, 1000.0);
    search_within({1.0 / 7.0, 1.0 / 11.0, 1.0 / 13.0}, 1000.0, 2000.0);
}

void search(const std::vector<double>& row, double eps) {
    print_row(row);
    const auto [found, scalar] = integral_scalar(row, eps, 1000.0, 1000.0);
    if (!found) {
        std::printf(" with eps %g has no scalar\n", eps);
        return;
    }
    std::printf(" with eps %g times %g is ", eps, scalar);
    print_row(row, scalar);
    std::printf("\n");
}

void pitfalls() {
    std::printf("Decimal denominators first:\n");
    print_fraction(0.25, 1e-9, 100.0);
    print_fraction(0.25, 1e-9, 99.0);
    print_fraction(0.25, 1e-9, 19.0);

    std::printf("\nA large eps finds a fraction for any number:\n");
    print_fraction(std::numbers::pi, 1e-6, 1000.0);
    print_fraction(std::numbers::pi, 1e-2, 1000.0);
    print_fraction(std::numbers::pi, 0.5, 1000.0);
    print_fraction(0.4, 0.5, 1000.0);

    std::printf("\nA large eps changes a row:\n");
    search({1.0, 0.4}, 1e-9);
    search({1.0, 0.4}, 0.1);
    search({1.0, 0.95}, 1e-9);
    search({1.0, 0.95}, 0.1);
}

struct {
    const char* name;
    void (*print)();
} const outputs[] = {
    {"tolerances", tolerances}, {"rows", rows}, {"failures", failures}, {"pitfalls", pitfalls}};

} // namespace

int main(int count, char** arguments) {
    for (const auto& [name, print] : outputs) {
        if (count == 2 && std::strcmp(arguments[1], name) == 0) {
            print();
            return 0;
        }
    }
    std::fprintf(stderr, "numerics: name one output: tolerances, rows, failures or pitfalls\n");
    return 2;
}
