#include "calls.hpp"

#include <array>
#include <atomic>
#include <cstddef>

#include "zktarn_standin/blocks.hpp"

namespace zktarn::standin {

namespace {

constexpr std::array<const char*, operation_count> names = {
    "qvMallocExOptim",
    "qvFreeExOptim",
    "instantiateRngOptim",
    "deleteRngOptim",
    "getRandUniformOptim",
    "getRngStateOptim",
    "setRngStateOptim",
    "deleteRngStateOptim",
    "assertOptim",
    "ioFlushOptim",
    "utIsInterruptPending",
    "qvcreatestructarray800_",
    "qvcreatestring800_",
    "qvcreatedoublescalar800_",
    "qvcreatedoublematrix800_",
    "qvsetfield800_",
    "qvsetfieldbynumber800_",
    "qvgetfieldnumber800_",
    "qvaddfield800_",
    "qvgetpr800_",
    "qvcopyptrtoreal8800_",
    "qvcopyreal8toptr800_",
    "qvdestroyarray800_",
    "qvxcallquarn800_",
    "qvxprintf800_",
};

std::array<std::atomic<std::int64_t>, operation_count> counts;
std::array<std::atomic<std::int64_t>, operation_count> calls_to_failure;
std::atomic<bool> failed = false;

/// Whether an operation returns a handle, a number or an address that the caller passes on.
bool returns_value_to_pass_on(operation what) noexcept {
    switch (what) {
    case operation::qvcreatestructarray800_:
    case operation::qvcreatestring800_:
    case operation::qvcreatedoublescalar800_:
    case operation::qvcreatedoublematrix800_:
    case operation::qvaddfield800_:
    case operation::qvgetpr800_:
    case operation::qvxcallquarn800_:
        return true;
    default:
        return false;
    }
}

/// Whether an operation has a failure value, or writes no output when it fails.
bool can_fail(operation what) noexcept {
    return returns_value_to_pass_on(what) || what == operation::instantiateRngOptim ||
           what == operation::getRandUniformOptim || what == operation::getRngStateOptim ||
           what == operation::qvxprintf800_;
}

std::size_t position(operation what) noexcept {
    return static_cast<std::size_t>(what);
}

} // namespace

const char* name(operation what) noexcept {
    return names[position(what)];
}

std::int64_t calls(operation what) noexcept {
    return counts[position(what)].load(std::memory_order_relaxed);
}

void fail_call(operation what, std::int64_t k) noexcept {
    if (what == operation::qvMallocExOptim) {
        fail_request(k);
    } else {
        calls_to_failure[position(what)].store(k, std::memory_order_relaxed);
    }
}

bool fails(operation what) noexcept {
    counts[position(what)].fetch_add(1, std::memory_order_relaxed);
    auto& remaining = calls_to_failure[position(what)];
    return remaining.load(std::memory_order_relaxed) >= 1 && can_fail(what) &&
           remaining.fetch_sub(1, std::memory_order_relaxed) == 1;
}

void note_failure(operation what) noexcept {
    if (returns_value_to_pass_on(what)) {
        failed.store(true, std::memory_order_relaxed);
    }
}

bool has_failed() noexcept {
    return failed.load(std::memory_order_relaxed);
}

void reset_call_counts() noexcept {
    for (std::size_t i = 0; i < counts.size(); ++i) {
        counts[i].store(0, std::memory_order_relaxed);
        calls_to_failure[i].store(0, std::memory_order_relaxed);
    }
    failed.store(false, std::memory_order_relaxed);
}

} // namespace zktarn::standin
