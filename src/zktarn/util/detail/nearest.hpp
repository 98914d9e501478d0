#pragma once

namespace zktarn::util::detail {

/// The integer nearest to a value below 2^51 in magnitude, an even one where two are: behind the
/// largest of such values there are no more digits for a fraction. Takes vectors of reals as well.
template <class Real>
[[gnu::always_inline]] inline Real nearest(Real value) noexcept {
    constexpr double digits_end = 0x1.8p52;
    return (value + digits_end) - digits_end;
}

} // namespace zktarn::util::detail
