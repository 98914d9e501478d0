#pragma once

#include <cstdint>

/// Replaces the global `operator new(nothrow)` and `operator delete` of a test program, so that the
/// allocation of a record can be counted and made to fail. A program that writes behind what it has
/// asked for by `new (std::nothrow)` ends when it deletes that.

namespace zktarn::testing {

/// Requests from now on that are refused: the k-th alone, or none for 0.
void refuse_new(std::int64_t k);

/// Whether the request to be refused is still to come.
bool refusal_is_due();

/// Objects that were created by `new (std::nothrow)` and not deleted.
std::int64_t live_objects();

} // namespace zktarn::testing
