#include <utility>
#include <vector>

#include "binary/identity/procedures.hpp"

namespace zktarn::identity {

namespace {

/// Sorts random numbers, which contain duplicates and NaN, by the exported or by the inline form of
/// `sort`. Adds the compared positions and the sorted numbers to the digest.
void call_sort(draws& draw, digest& results) {
    const std::int32_t n = draw.between(0, 200);
    const std::int32_t before = draw.between(-5, 5);
    std::vector<double> numbers(static_cast<std::size_t>(n));
    for (double& each : numbers) {
        each = draw.coefficient();
    }
    const auto exchange = [&](std::int32_t a, std::int32_t b) -> flag {
        results.integer(a);
        results.integer(b);
        double& lower = numbers[static_cast<std::size_t>(a - before - 1)];
        double& upper = numbers[static_cast<std::size_t>(b - before - 1)];
        if (!(upper < lower)) {
            return 0;
        }
        std::swap(lower, upper);
        return 1;
    };
    if (draw.chance(2)) {
        sorting_mod::sort(before + 1, before + n, sorting_mod::exchange_procedure(exchange));
    } else {
        sorting_mod::sort(before + 1, before + n, exchange);
    }
    for (const double each : numbers) {
        results.copied(each);
    }
}

constexpr procedure procedures[] = {{"sorting_mod.sort", call_sort, 300}};

} // namespace

std::span<const procedure> sorting_procedures() {
    return procedures;
}

} // namespace zktarn::identity
