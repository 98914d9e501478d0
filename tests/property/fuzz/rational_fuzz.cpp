// Compares fractions, divisors and the scalar search with the reference, on reals with arbitrary
// bits and on typical coefficients. The first byte of each step selects the procedure.
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "property/reference/rational_reference.hpp"
#include "support/recorded_set.hpp"
#include "zktarn/util/util.hpp"

namespace {

using zktarn::flag;
using zktarn::testing::element;
using zktarn::testing::recorded_set;
namespace reference = zktarn::reference;
namespace util = zktarn::util;

/// Numbers made of the input's bytes. At the end of the input every byte is zero.
class bytes {
public:
    bytes(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    bool done() const { return next_ == end_; }

    std::uint8_t byte() { return next_ == end_ ? std::uint8_t{0} : *next_++; }

    std::uint64_t word(int size) {
        std::uint64_t value = 0;
        for (int i = 0; i < size; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }

    std::int32_t integer() {
        const int size = 1 + byte() % 4;
        const auto value = static_cast<std::int32_t>(word(size));
        return byte() % 2 == 0 ? value : -(value & 0x7FFFFFFF);
    }

    double real() {
        switch (byte() % 4) {
        case 0:
            return std::bit_cast<double>(word(8));
        case 1:
            return static_cast<double>(integer()) / (1.0 + byte());
        case 2:
            return static_cast<double>(integer()) / 100.0;
        default:
            return static_cast<double>(integer());
        }
    }

    /// A common tolerance half of the time, else any real.
    double tolerance() {
        static constexpr double usual[] = {1e-9, 1e-6, 1e-12, 1e-4, 0.01, 0.1, 0.0, 0.5};
        const std::uint8_t choice = byte();
        return choice < 128 ? usual[choice % 8] : real();
    }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

bool same_bits(double a, double b) {
    return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (a != a && b != b);
}

void expect(bool holds, const char* procedure, double a, double b, double c) {
    if (!holds) {
        std::fprintf(stderr, "%s(%a, %a, %a) differs from the reference\n", procedure, a, b, c);
        std::abort();
    }
}

void fraction(bytes& draw) {
    const double x = draw.real();
    const double eps = draw.tolerance();
    const double bound = draw.real();
    flag found = -1;
    double num = -1.0;
    double den = -1.0;
    util::get_rational_rep(x, eps, bound, found, num, den);
    const reference::fraction reference_result = reference::get_rational_rep(x, eps, bound);
    expect(found == flag{reference_result.found} && same_bits(num, reference_result.num) &&
               same_bits(den, reference_result.den),
           "get_rational_rep", x, eps, bound);
}

void divisors(bytes& draw) {
    const double a = draw.real();
    const double b = draw.real();
    const double eps = draw.tolerance();
    expect(same_bits(util::xgcd_r8(a, b, eps), reference::xgcd_r8(a, b, eps)), "xgcd_r8", a, b,
           eps);
    const std::int32_t i = draw.integer();
    const std::int32_t j = draw.integer();
    expect(util::xgcd_i4(i, j) == reference::xgcd_i4(i, j), "xgcd_i4", i, j, 0.0);
}

void search(bytes& draw) {
    std::vector<element> elements(draw.byte() % 7);
    for (element& each : elements) {
        each.value = draw.real();
        const std::uint8_t flags = draw.byte();
        each.marked = flags & 3;
        each.selected = flags >> 2 & 3;
    }
    const double eps = draw.tolerance();
    const double max_den = draw.real();
    const double max_scalar = draw.real();
    const std::uint8_t options = draw.byte();
    const flag skip_marked = options & 1;
    const flag selected_only = options & 2;
    flag found = -1;
    double scalar = -1.0;
    recorded_set called{elements};
    util::find_scalar_integral(called.size(), called, eps, max_den, max_scalar, found, scalar,
                               skip_marked, selected_only);
    recorded_set expected{elements};
    const reference::search_result reference_result =
        reference::find_scalar_integral({expected.size(), std::ref(expected), eps, max_den,
                                         max_scalar, skip_marked != 0, selected_only != 0});
    expect(found == flag{reference_result.found} && same_bits(scalar, reference_result.scalar) &&
               called.calls == expected.calls,
           "find_scalar_integral", eps, max_den, max_scalar);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes draw(data, size);
    for (int steps = 0; steps < 8 && !draw.done(); ++steps) {
        switch (draw.byte() % 3) {
        case 0:
            fraction(draw);
            break;
        case 1:
            divisors(draw);
            break;
        default:
            search(draw);
        }
    }
    return 0;
}
