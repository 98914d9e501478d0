#include "zktarn/util/scalar_search.hpp"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

#include "zktarn/util/detail/binary_gcd.hpp"
#include "zktarn/util/detail/guarded_floor.hpp"
#include "zktarn/util/detail/nearest.hpp"
#include "zktarn/util/detail/rational.hpp"

namespace zktarn::util {

namespace {

/// What a supplier says of an element; 0 is what it leaves alone.
struct element {
    double value;
    flag marked;
    flag selected;
};

/// The elements as the search sees them: supplied one by one, and filtered.
struct elements {
    std::int32_t count;
    element_supplier supply;
    double eps;
    bool skip_marked;
    bool selected_only;

    /// The supplier gets an index of its own.
    element get(std::int32_t i) const noexcept {
        element each{};
        supply(i, each.value, each.marked, each.selected);
        return each;
    }

    bool takes_part(const element& each) const noexcept {
        return (!skip_marked || each.marked == 0) && (!selected_only || each.selected != 0) &&
               std::fabs(each.value) > eps;
    }

    /// The smallest magnitude above eps of all elements, whether they take part or not.
    ///
    /// Bits of magnitudes are ordered as the magnitudes are; and unlike reals, integers stay in a
    /// register while the supplier is called.
    double smallest_magnitude() const noexcept {
        auto smallest = std::bit_cast<std::int64_t>(std::numeric_limits<double>::max());
        for (std::int32_t i = 1; i <= count; ++i) {
            const double magnitude = std::fabs(get(i).value);
            if (magnitude > eps) {
                smallest = std::min(smallest, std::bit_cast<std::int64_t>(magnitude));
            }
        }
        return std::bit_cast<double>(smallest);
    }
};

enum class verdict { found, failed, endless };

struct trial {
    verdict outcome;
    double scalar;
};

constexpr trial failed = {verdict::failed, 0.0};

bool is_integral_by_rule(double value, double eps) noexcept {
    return detail::decide_integer(value, eps, 0.0).is_integer;
}

// Below 2^31 - 1 the guarded floor is a plain one, and a value is integral when the nearer of floor
// and ceiling is near enough: the distance to it, at most one half, is a real and not rounded, and
// rounding takes the distance to the other one to nothing below one half.
constexpr double plain_below = 2147483647.0;

bool is_integral(double value, double eps) noexcept {
    if (std::fabs(value) < plain_below) [[likely]] {
        return std::fabs(value - detail::nearest(value)) <= eps;
    }
    return is_integral_by_rule(value, eps);
}

/// The first of 3, 5, ..., 19 by which value * (scalar * factor) is integral; 0 when none is.
double first_factor_by_rule(double value, double scalar, double eps) noexcept {
    for (double factor = 3.0; factor <= 19.0; factor += 2.0) {
        if (is_integral_by_rule(value * (scalar * factor), eps)) {
            return factor;
        }
    }
    return 0.0;
}

/// The same, two factors at a time, for products that all stay below the limit.
double first_factor(double value, double scalar, double eps) noexcept {
    using pair = double __attribute__((vector_size(16)));
    using pair_of_masks = std::int64_t __attribute__((vector_size(16)));
    constexpr double beyond = 21.0; // completes the last pair, and is left out of the answer
    pair factors = {3.0, 5.0};
    pair_of_masks bits = {1, 2};
    pair_of_masks integral = {0, 0};
    for (; factors[0] < beyond; factors += 4.0, bits <<= 2) {
        const pair product = value * (scalar * factors);
        const pair above = product - detail::nearest(product);
        integral |= (above <= eps) & (-above <= eps) & bits;
    }
    const auto found = static_cast<std::uint32_t>((integral[0] | integral[1]) & 0x1FF);
    return found == 0 ? 0.0 : 3.0 + 2.0 * std::countr_zero(found);
}

/// The next scalar to try on a value that `scalar` does not make integral.
double next_scalar(double value, double scalar, double eps) noexcept {
    // Larger than all products, rounding included.
    const bool plain = std::fabs(value * scalar) * 22.0 < plain_below;
    const double factor =
        plain ? first_factor(value, scalar, eps) : first_factor_by_rule(value, scalar, eps);
    return factor != 0.0 ? scalar * factor : scalar + scalar;
}

/// Grows a scalar from `start` until it has made each element integral once.
///
/// It grows at least by a factor of 2 at each step, so it passes any finite bound; one that has
/// become infinite below an infinite bound would stay so for ever.
trial scale_to_integral(const elements& set, double start, double max_scalar) noexcept {
    double scalar = std::fabs(start);
    if (!(scalar <= max_scalar)) {
        return failed;
    }
    for (std::int32_t i = 1; i <= set.count; ++i) {
        const element each = set.get(i);
        if (!set.takes_part(each)) {
            continue;
        }
        const double value = each.value;
        // A product below one half would pass as an integral zero.
        while (!(std::fabs(value) * scalar >= 0.5 && is_integral(value * scalar, set.eps))) {
            if (std::isinf(scalar)) {
                return {verdict::endless, 0.0};
            }
            scalar = next_scalar(value, scalar, set.eps);
            if (scalar > max_scalar) {
                return failed;
            }
        }
    }
    return {verdict::found, scalar};
}

/// The common multiple of the denominators over the common divisor of the numerators.
trial construct(const elements& set, double max_den, double max_scalar) noexcept {
    double divisor = 1.0;
    double multiple = 1.0;
    bool first = true;
    for (std::int32_t i = 1; i <= set.count; ++i) {
        const element each = set.get(i);
        if (!set.takes_part(each)) {
            continue;
        }
        const detail::fraction represented = detail::rational_rep(each.value, set.eps, max_den);
        if (!represented.found) {
            return failed;
        }
        if (first) {
            divisor = std::fabs(represented.num);
            multiple = represented.den;
        } else {
            divisor = detail::real_gcd(divisor, represented.num, set.eps);
            const double common = detail::real_gcd(multiple, represented.den, set.eps);
            multiple *= represented.den / common;
        }
        if (multiple / divisor > max_scalar) {
            return failed;
        }
        first = false;
    }
    return {verdict::found, multiple / divisor};
}

trial search(const elements& set, double max_den, double max_scalar) noexcept {
    for (const double start : {1.0 / set.smallest_magnitude(), 1.0}) {
        const trial quick = scale_to_integral(set, start, max_scalar);
        if (quick.outcome != verdict::failed) {
            return quick;
        }
    }
    return construct(set, max_den, max_scalar);
}

} // namespace

void find_scalar_integral(const std::int32_t& n, element_supplier get_element, const double& eps,
                          const double& max_den, const double& max_scalar, flag& found,
                          double& scalar, optional_ref<const flag> skip_marked,
                          optional_ref<const flag> selected_only) noexcept {
    const elements set{n, get_element, eps, skip_marked.value_or(0) != 0,
                       selected_only.value_or(0) != 0};
    const trial result = search(set, max_den, max_scalar);
    found = result.outcome == verdict::found ? 1 : 0;
    scalar = result.scalar;
}

} // namespace zktarn::util
