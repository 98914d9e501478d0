#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn_standin/control.hpp"

namespace zktarn::testing {

using standin::host_call;
using standin::operation;

/// The calls that tests expect most often.
inline host_call malloc_of(std::int64_t nbytes) {
    return {operation::qvMallocExOptim, {nbytes}};
}
inline host_call free_of(const void* address) {
    return {operation::qvFreeExOptim, {}, {}, {}, {address}};
}
inline host_call assert_of(bool condition) {
    return {operation::assertOptim, {condition ? 1 : 0}};
}

/// Resets the stand-in, turns its call log on and fills new blocks. The destructor checks the live
/// blocks for writes past their ends and releases them.
class host_log {
public:
    /// The content of new blocks: a byte of this value was not written.
    static constexpr unsigned char fill = 0xA5;

    host_log() {
        standin::reset();
        standin::fill_new_blocks(fill);
        standin::log_calls(true);
    }
    ~host_log() {
        standin::log_calls(false);
        EXPECT_EQ(standin::check_blocks(), 0);
        for (const standin::block& each : standin::live_blocks()) {
            host::qvFreeExOptim(const_cast<void*>(each.address));
        }
        standin::reset();
    }
    host_log(const host_log&) = delete;
    host_log& operator=(const host_log&) = delete;

    /// All calls since the constructor or `clear`.
    [[nodiscard]] static std::vector<host_call> calls() { return standin::logged_calls(); }

    static void clear() { standin::clear_call_log(); }

    /// The results of the logged requests for memory, null included.
    [[nodiscard]] static std::vector<void*> blocks() {
        std::vector<void*> all;
        for (const host_call& each : standin::logged_calls()) {
            if (each.what == operation::qvMallocExOptim) {
                all.push_back(each.result.address);
            }
        }
        return all;
    }

    /// The number of blocks that are not released.
    [[nodiscard]] static std::size_t live() { return standin::live_blocks().size(); }
};

} // namespace zktarn::testing
