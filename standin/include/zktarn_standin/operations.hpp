#pragma once

#include <cstdint>

/// The operations of the host: their names, how often each was called, and planned failures.

namespace zktarn::standin {

/// Every operation of the host, in the order of its libraries.
enum class operation : int {
    // libzkoptimutil
    qvMallocExOptim,
    qvFreeExOptim,
    instantiateRngOptim,
    deleteRngOptim,
    getRandUniformOptim,
    getRngStateOptim,
    setRngStateOptim,
    deleteRngStateOptim,
    assertOptim,
    ioFlushOptim,
    // libut
    utIsInterruptPending,
    // libqv
    qvcreatestructarray800_,
    qvcreatestring800_,
    qvcreatedoublescalar800_,
    qvcreatedoublematrix800_,
    qvsetfield800_,
    qvsetfieldbynumber800_,
    qvgetfieldnumber800_,
    qvaddfield800_,
    qvgetpr800_,
    qvcopyptrtoreal8800_,
    qvcopyreal8toptr800_,
    qvdestroyarray800_,
    // libqvx
    qvxcallquarn800_,
    qvxprintf800_,
};

/// The number of operations.
inline constexpr int operation_count = static_cast<int>(operation::qvxprintf800_) + 1;

/// The name under which the host exports an operation.
[[nodiscard]] const char* name(operation what) noexcept;

/// Number of calls of an operation since the process started or the last `reset`.
[[nodiscard]] std::int64_t calls(operation what) noexcept;

/// Makes the k-th call from now of an operation fail, once: 1 is the next one. Replaces an earlier
/// plan for that operation; k < 1 plans no failure.
///
/// A failed operation returns the failure value of its contract: null, handle 0, field number 0, a
/// status or result of 1; `getRandUniformOptim` writes no numbers. An operation without a failure
/// value does not fail.
///
/// Once an array operation has failed, whatever the reason, handle 0, field number 0 and null
/// addresses are accepted until `reset`, because the failed call returned them. An array that is
/// stored through one of them is destroyed, because its handle is lost.
void fail_call(operation what, std::int64_t k) noexcept;

/// Restores the initial settings before the next test:
///
///   - all counts are 0, no failure and no interrupt is planned or pending, nothing is scripted;
///   - the log is off and empty, new blocks are not filled, large blocks lie on huge pages;
///   - the default handlers are installed, no function is registered, the report at exit is on;
///   - origins are recorded as when the process started;
///   - captured console text is discarded, but the destination set with `set_console` stays;
///   - SIGINT has its previous handler until the next poll.
///
/// Blocks, arrays, generators and snapshots stay, and keep their numbers.
void reset();

} // namespace zktarn::standin

/// The version of the stand-in host, as "0.1.0".
///
/// The name is that of a C function so that a program which may run on any host can look for it in
/// its own process: `dlsym(RTLD_DEFAULT, "zktarn_standin_version")` is null on every other host.
extern "C" const char* zktarn_standin_version() noexcept;
