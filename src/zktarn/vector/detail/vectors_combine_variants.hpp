#pragma once

#include "zktarn/vector/detail/combine_marked.hpp"

/// A fused multiply-add is one instruction on processors that have it and a slow call on others,
/// with the same result. Every 64-bit Arm processor has it. For x86-64 Linux the library has two
/// variants of the combination, and a resolver picks one when the library is loaded.

#if defined(__x86_64__) && defined(__linux__)
#define ZKTARN_COMBINE_DISPATCHES
#endif

namespace zktarn::vector_mod::detail {

/// x := alpha * x + beta * y for vectors with coefficients, by the best variant for this machine.
void combine(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept;

/// For any machine.
void combine_portable(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept;

#ifdef ZKTARN_COMBINE_DISPATCHES
/// For machines with fused multiply-add and 256-bit integer instructions.
void combine_fused(vector& x, const vector& y, double alpha, double beta, bool scales) noexcept;
#endif

} // namespace zktarn::vector_mod::detail
