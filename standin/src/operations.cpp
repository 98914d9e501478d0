#include <array>
#include <atomic>
#include <cstddef>

#include "core.hpp"

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

std::size_t at(operation what) noexcept {
    return static_cast<std::size_t>(what);
}

} // namespace

const char* name(operation what) noexcept {
    return names[at(what)];
}

std::int64_t calls(operation what) noexcept {
    return counts[at(what)].load(std::memory_order_relaxed);
}

void count(operation what) noexcept {
    counts[at(what)].fetch_add(1, std::memory_order_relaxed);
}

void reset_operations() noexcept {
    for (auto& each : counts) {
        each.store(0, std::memory_order_relaxed);
    }
}

void missing(operation what) noexcept {
    stop(std::string(name(what)) + " is missing: this stand-in does not implement it");
}

void reset() {
    reset_operations();
    reset_memory_manager();
    set_fault_handler({});
    set_assertion_handler({});
}

} // namespace zktarn::standin
