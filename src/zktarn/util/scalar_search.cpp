#include "zktarn/util/scalar_search.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "zktarn/util/detail/binary_gcd.hpp"
#include "zktarn/util/detail/rational.hpp"
#include "zktarn/util/detail/to_integer.hpp"

namespace zktarn::util {

namespace {

/// An element as its supplier gives it; what the supplier does not write is 0.
struct element {
    double value;
    flag marked;
    flag selected;
};

/// The set of elements, read one by one.
struct elements {
    // Wider than the count, so that a loop over all of 2147483647 elements ends.
    std::int64_t count;
    element_supplier supply;
    double eps;
    bool skip_marked;
    bool selected_only;

    element get(std::int64_t i) const noexcept {
        element each{};
        supply(static_cast<std::int32_t>(i), each.value, each.marked, each.selected);
        return each;
    }

    bool takes_part(const element& each) const noexcept {
        return (!skip_marked || each.marked == 0) && (!selected_only || each.selected != 0) &&
               std::fabs(each.value) > eps;
    }
};

/// The smallest magnitude above eps of all elements, whether they take part or not.
///
/// The bit patterns of magnitudes are ordered as the magnitudes are. Unlike a real, an integer
/// stays in a register while the supplier is called.
double smallest_magnitude(const elements& set) noexcept {
    auto smallest = std::bit_cast<std::int64_t>(std::numeric_limits<double>::max());
    for (std::int64_t i = 1; i <= set.count; ++i) {
        const double magnitude = std::fabs(set.get(i).value);
        if (magnitude > set.eps) {
            smallest = std::min(smallest, std::bit_cast<std::int64_t>(magnitude));
        }
    }
    return std::bit_cast<double>(smallest);
}

enum class verdict { found, too_large, endless, no_fraction };

struct trial {
    verdict outcome;
    double scalar;
};

// Below 2^31 - 1 the guarded floor is the plain floor.
constexpr double plain_below = 2147483647.0;

/// The decision of `epsilon_is_int_scalar` on a product.
///
/// The distance to the nearest integer is exact. The distance to the integer on the other side is
/// at least 1/2, rounded or not, so the nearer one decides.
bool is_integral(double product, double eps) noexcept {
    if (std::fabs(product) < plain_below) [[likely]] {
        return std::fabs(detail::offset_from_nearest(product)) <= eps;
    }
    return detail::decide_integer(product, eps, 0.0).is_integer;
}

// The odd factors that a scalar may grow by. A table lists those worth a test, because testing all
// of them takes most of the time: benchmarks/util_scalar_bench.cpp compares with the plain loop.
constexpr std::array<double, 9> factors = {3, 5, 7, 9, 11, 13, 15, 17, 19};
constexpr std::uint32_t all_factors = (1U << factors.size()) - 1;
constexpr detail::near_multiples multiples_by_factors(factors);

/// The first of some factors, one bit each, that makes value * scalar integral; 2 if none does.
double grown(double scalar, double value, double eps, std::uint32_t candidates) noexcept {
    for (; candidates != 0; candidates &= candidates - 1) {
        const auto first = static_cast<std::size_t>(std::countr_zero(candidates));
        const double next = scalar * factors[first];
        if (is_integral(value * next, eps)) {
            return next;
        }
    }
    return scalar + scalar;
}

/// The limits of the growth of a scalar.
struct limits {
    double eps;
    /// At most the largest real, so that a scalar that becomes infinite exceeds it.
    double largest;
    /// The outcome of a trial whose scalar exceeds `largest`.
    verdict when_exceeded;
    /// For products below this the table lists the factors to test. Such a product times 19 is
    /// below 2^31 - 1. A quarter of the margin covers eps, so that the table lists the factor 3 for
    /// a product that is integral itself; the rest covers rounding errors.
    double tabled_below;

    limits(double tolerance, double max_scalar) noexcept
        : eps(tolerance), largest(std::min(max_scalar, std::numeric_limits<double>::max())),
          when_exceeded(std::isinf(max_scalar) ? verdict::endless : verdict::too_large),
          tabled_below(tolerance <= multiples_by_factors.margin * 0.25 ? plain_below / 22.0 : 0.0) {
    }
};

/// Doubles a scalar until it must be tested: until the table lists a factor, or the scalar or the
/// magnitude of its product with the value exceeds its limit.
///
/// Doubling a real is exact, so the fraction of the product is doubled by a shift.
double doubled(double scalar, double magnitude, detail::fixed_fraction fraction,
               const limits& growth) noexcept {
    do {
        scalar += scalar;
        magnitude += magnitude;
        fraction <<= 1;
    } while (multiples_by_factors(fraction) == 0 && scalar <= growth.largest &&
             magnitude < growth.tabled_below);
    return scalar;
}

/// Grows a scalar until it makes one value integral.
///
/// A product below 1/2 does not count as the integer 0. Each step at least doubles a positive
/// scalar, which therefore exceeds its limit in the end. A scalar of 0, the result of flushing a
/// subnormal to zero, would never grow.
///
/// Not inlined: the caller then keeps no reals in registers, which each call of the supplier would
/// make it save and restore.
[[gnu::noinline]] trial make_integral(double value, double scalar, const limits& growth) noexcept {
    if (!(scalar > 0.0)) {
        return {verdict::endless, 0.0};
    }
    while (scalar <= growth.largest) {
        const double product = value * scalar;
        const double magnitude = std::fabs(product);
        if (magnitude < growth.tabled_below) [[likely]] {
            const double offset = detail::offset_from_nearest(product);
            if (magnitude >= 0.5 && std::fabs(offset) <= growth.eps) {
                return {verdict::found, scalar};
            }
            const detail::fixed_fraction fraction = detail::to_fixed_fraction(offset);
            const std::uint32_t listed = multiples_by_factors(fraction);
            scalar = listed == 0 ? doubled(scalar, magnitude, fraction, growth)
                                 : grown(scalar, value, growth.eps, listed);
        } else {
            if (magnitude >= 0.5 && is_integral(product, growth.eps)) {
                return {verdict::found, scalar};
            }
            scalar = grown(scalar, value, growth.eps, all_factors);
        }
    }
    return {growth.when_exceeded, 0.0};
}

/// Grows a scalar from `start` until it has made each element integral once.
trial scale_to_integral(const elements& set, double start, double max_scalar) noexcept {
    trial last = {verdict::found, std::fabs(start)};
    if (!(last.scalar <= max_scalar)) {
        return {verdict::too_large, 0.0};
    }
    const limits growth(set.eps, max_scalar);
    for (std::int64_t i = 1; i <= set.count; ++i) {
        const element each = set.get(i);
        if (!set.takes_part(each)) {
            continue;
        }
        last = make_integral(each.value, last.scalar, growth);
        if (last.outcome != verdict::found) {
            return last;
        }
    }
    return last;
}

/// The common multiple of the denominators over the common divisor of the numerators.
trial construct(const elements& set, double max_den, double max_scalar) noexcept {
    double multiple = 1.0;
    double divisor = 1.0;
    bool first = true;
    for (std::int64_t i = 1; i <= set.count; ++i) {
        const element each = set.get(i);
        if (!set.takes_part(each)) {
            continue;
        }
        const detail::fraction value = detail::rational_rep(each.value, set.eps, max_den);
        if (!value.found()) {
            return {verdict::no_fraction, 0.0};
        }
        if (first) {
            multiple = value.den;
            divisor = std::fabs(value.num);
        } else {
            divisor = detail::real_gcd(divisor, value.num, set.eps);
            multiple *= value.den / detail::real_gcd(multiple, value.den, set.eps);
        }
        if (multiple / divisor > max_scalar) {
            return {verdict::too_large, 0.0};
        }
        first = false;
    }
    return {verdict::found, multiple / divisor};
}

trial search(const elements& set, double max_den, double max_scalar) noexcept {
    for (const double start : {1.0 / smallest_magnitude(set), 1.0}) {
        const trial quick = scale_to_integral(set, start, max_scalar);
        if (quick.outcome != verdict::too_large) {
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
