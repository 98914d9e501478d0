#pragma once

#include "zktarn/vector/detail/vectors_combine.hpp"

/// One fused multiply-add is an instruction where the machine has it and a slow call where it does
/// not, with the same result. Processors of 64-bit Arm all have it. Those of x86-64 that have it
/// are told apart when the library is loaded, on systems whose loader can do that, so that a build
/// for every x86-64 processor is neither slow nor different.

#if defined(__x86_64__) && defined(__linux__)
#define ZKTARN_COMBINE_DISPATCHES
#endif

namespace zktarn::vector_mod::detail {

/// Whatever this machine runs best.
bool combine(vector& x, const vector& y, const combination& by) noexcept;

/// For any machine.
bool combine_portable(vector& x, const vector& y, const combination& by) noexcept;

#ifdef ZKTARN_COMBINE_DISPATCHES
/// For machines with fused multiply-add and 256-bit integer instructions.
bool combine_fused(vector& x, const vector& y, const combination& by) noexcept;
#endif

} // namespace zktarn::vector_mod::detail
