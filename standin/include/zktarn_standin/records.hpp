#pragma once

#include <cstdint>

/// Records that the library makes: vectors (`vector_alloc`), the record of a solve (`cbinit`),
/// values and their parameters in copies of a `cbdatalist`, and the buffer of a long line.
///
/// They come from the C++ runtime (`new (std::nothrow)`), not from the host, so they are controlled
/// separately: link `zktarn::standin_records` into the test program. It replaces `operator new` and
/// `operator delete` of the whole program; it counts, and can refuse, every nothrow request in it.

namespace zktarn::standin {

/// Makes the k-th request for a record from now fail, once: 1 is the next one. Replaces an earlier
/// plan; k < 1 plans no failure. `reset` does not change the plan.
void fail_record(std::int64_t k) noexcept;

/// The number of requests for records so far, refused ones included.
[[nodiscard]] std::int64_t record_requests() noexcept;

/// The number of records that have not been deleted. When a record that was written past its end is
/// deleted, the stand-in writes a sentence to standard error and aborts.
[[nodiscard]] std::int64_t live_records() noexcept;

} // namespace zktarn::standin
