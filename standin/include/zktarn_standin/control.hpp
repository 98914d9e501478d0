#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// Control of the stand-in host.
///
/// The stand-in supplies the host's operations on machines where there is no host. A solver links
/// `zktarn::standin` beside `zktarn::util` and runs as it would inside the host; its tests include
/// this header to make the host fail on purpose, to count what was asked of it, and to prove that
/// everything was given back.
///
/// Everything here is process-wide, and callable from any thread. Nothing here counts as an
/// operation of the host. This header has operations, memory, faults and assertions; it includes
/// those for arrays and functions, for the console and for interrupts.

namespace zktarn::standin {

// Operations
// ----------------------------------------------------------------------------------------

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

/// How often an operation has been called since the start or the last `reset`.
[[nodiscard]] std::int64_t calls(operation what) noexcept;

/// Makes the k-th call from now of an operation fail, once: 1 is the next one. Replaces what was
/// planned for that operation before; k < 1 plans no failure.
///
/// An operation fails by answering what its contract has for that: null, a handle of 0, a field
/// number of 0, a status or result of 1; `getRandUniformOptim` leaves its numbers as they are. An
/// operation without such an answer does not fail. After an operation on arrays has failed, for
/// whatever reason, a handle or field number of 0 and a null address are no fault any more until
/// the next `reset`: they are what a caller has got. An array stored through one of them is
/// destroyed, since nobody else has its handle.
void fail_call(operation what, std::int64_t k) noexcept;

/// Puts the control back to its beginnings: counts at 0, no failure planned, no filling, default
/// handlers, report at exit, no functions registered, the console shown, no interrupt pending or
/// planned, SIGINT left alone until the next poll. What is live stays live and keeps its number.
void reset();

// Memory manager
// ------------------------------------------------------------------------------------

/// A block of host memory. Blocks are aligned to 64 bytes.
struct block {
    /// Where it begins.
    const void* address = nullptr;
    /// The size that was asked for, in bytes.
    std::int64_t nbytes = 0;
    /// The number of the request that made it. Requests are counted from 1 for the whole life of
    /// the process, refused ones included; 0 where a fault concerns no known block.
    std::int64_t order = 0;
};

/// The number of requests so far, which is the order number of the last one.
[[nodiscard]] std::int64_t requests() noexcept;

/// Makes the k-th request from now fail, once: 1 is the next one. Replaces what was planned before;
/// k < 1 plans no failure.
void fail_request(std::int64_t k) noexcept;

/// Makes the k-th request from now and all after it fail: a host whose memory has run out. Replaces
/// what was planned before; k < 1 plans no failure.
void fail_requests_from(std::int64_t k) noexcept;

/// Fills every new block with `byte`, so that what is read before it is written shows; -1, the
/// beginning, leaves new blocks as they come.
void fill_new_blocks(int byte) noexcept;

/// Chooses whether new blocks of 4 MiB and more lie on huge pages, where the system has them
/// (Linux: MADV_HUGEPAGE, else MADV_NOHUGEPAGE). Such a block takes up whole pages of 2 MiB either
/// way, and starts 64 bytes behind the start of one. Initially on. Returns the previous setting.
bool huge_pages(bool on) noexcept;

/// The blocks that have not been given back, by order number.
[[nodiscard]] std::vector<block> live_blocks();

/// Looks behind and before every live block for writes outside of it, reports each damaged block
/// once to the fault handler, and returns their number.
std::int64_t check_blocks();

/// The memory report: one line with the number of requests, of refusals and of live blocks, then a
/// line for each live block with its size and order number. Ends in a line feed.
[[nodiscard]] std::string memory_report();

// What is not given back
// --------------------------------------------------------------------------------

/// A thing of the host's that somebody has to give back: a generator, a snapshot of one, or an
/// array that no struct owns.
struct live_object {
    /// The operation that made it.
    operation made_by;
    /// Its handle, for an array; its number among the generators, or among the snapshots.
    std::int64_t number;
    /// What it is, in words.
    std::string description;
};

/// Everything but blocks that has not been given back, by kind and number.
[[nodiscard]] std::vector<live_object> live_objects();

/// The memory report and a line for each live object.
[[nodiscard]] std::string report();

/// Whether the process, at its end, checks all blocks and writes the report to standard error when
/// something is still live. On at the beginning. Returns the previous setting.
bool report_at_exit(bool on) noexcept;

// Faults
// --------------------------------------------------------------------------------------------

/// What a program can do wrong. An operation with a faulty argument does nothing, and answers as a
/// failed one does.
enum class fault_kind {
    /// Arguments that make no sense: a block of fewer than one byte, a negative size, a kind of
    /// array that the stand-in does not have.
    bad_request,
    /// A block given back a second time; ignored. Seen as long as the host has not handed out the
    /// address again.
    double_free,
    /// An address given back that the host never handed out, one inside a block included; ignored.
    foreign_free,
    /// Bytes behind the end of a block have been written. Seen when the block is given back, by
    /// `check_blocks` and at exit.
    write_past_end,
    /// Bytes before the start of a block have been written. Seen as above.
    write_before_start,
    /// A handle that names no array, an address at which no array has its data, a generator or a
    /// snapshot that was never made.
    unknown_object,
    /// An array, a generator or a snapshot used or given back after it had been given back.
    use_after_release,
    /// An array of another kind than the operation is for.
    wrong_kind,
    /// An element, a field number or a stretch of data beyond the end of an array, or a field that
    /// a struct does not have.
    out_of_range,
    /// An array that a struct owns was destroyed or stored in another field, or a struct was stored
    /// in itself.
    bad_ownership,
    /// A host-language function that nobody has registered was called.
    unknown_function,
    /// A host-language function has thrown an exception.
    function_threw,
};

/// A fault, as the handler is told of it.
struct fault {
    fault_kind kind;
    /// The block concerned, for faults with memory. For a foreign address that lies inside a live
    /// block, that block; for any other, the address alone.
    block concerned;
    /// The whole story in one sentence, with sizes, numbers and the operation that made the thing.
    std::string sentence;
};

/// Is told of a fault, on the thread that caused it, with no lock of the stand-in held. Must not
/// throw.
using fault_handler = std::function<void(const fault&)>;

/// Installs the handler of faults and returns the previous one. An empty handler stands for the
/// default, which writes the sentence to standard error and aborts.
fault_handler set_fault_handler(fault_handler handler);

// Assertions
// ----------------------------------------------------------------------------------------

/// Is told of every assertion that failed, on the thread that made it. Must not throw.
using assertion_handler = std::function<void()>;

/// Installs the handler of failed assertions and returns the previous one. An empty handler stands
/// for the default, which writes a sentence to standard error and aborts.
assertion_handler set_assertion_handler(assertion_handler handler);

} // namespace zktarn::standin

#include "zktarn_standin/arrays.hpp"     // IWYU pragma: export
#include "zktarn_standin/console.hpp"    // IWYU pragma: export
#include "zktarn_standin/interrupts.hpp" // IWYU pragma: export
