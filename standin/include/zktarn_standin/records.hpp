#pragma once

#include <cstdint>

/// Records that the library makes: vectors (`vector_alloc`), the record of a solve (`cbinit`),
/// values and their parameters in copies of a `cbdatalist`, and the buffer of a long line.
///
/// They come from the C++ runtime (`new (std::nothrow)`), not from the host, so control of them is
/// a part of its own: link `zktarn::standin_records` into the test program. It replaces `operator
/// new` and `operator delete` of the whole program, so that the program counts, and can refuse, the
/// nothrow requests of everybody in it.

namespace zktarn::standin {

/// Makes the k-th request for a record from now fail, once: 1 is the next one. Replaces an earlier
/// plan; k < 1 plans no failure. `reset` does not change the plan.
void fail_record(std::int64_t k) noexcept;

/// The number of requests for records so far, refused ones included.
[[nodiscard]] std::int64_t record_requests() noexcept;

/// The number of records that have not been deleted. Deleting one past whose end bytes were written
/// writes a sentence to standard error and aborts.
[[nodiscard]] std::int64_t live_records() noexcept;

} // namespace zktarn::standin
