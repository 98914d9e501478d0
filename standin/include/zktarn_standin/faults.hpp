#pragma once

#include <functional>
#include <string>

#include "zktarn_standin/blocks.hpp"
#include "zktarn_standin/call_stack.hpp"

/// Faults in the use of the host, and failed assertions.

namespace zktarn::standin {

/// The mistakes that the stand-in detects. An operation with a faulty argument does nothing and
/// returns its failure value.
enum class fault_kind {
    /// Arguments out of range: a block of fewer than one byte, a negative size, a kind of array
    /// that the stand-in does not have.
    bad_request,
    /// A block released a second time; ignored. Detected until its address is used again.
    double_free,
    /// Release of an address that the host never returned, such as one inside a block; ignored.
    foreign_free,
    /// Bytes past the end of a block were written. Detected when the block is released, by
    /// `check_blocks` and at exit.
    write_past_end,
    /// Bytes before the start of a block were written. Detected like `write_past_end`.
    write_before_start,
    /// A handle that names no array, an address at which no array has its data, a generator or a
    /// snapshot that was never made.
    unknown_object,
    /// An array, a generator or a snapshot used or released after its release.
    use_after_release,
    /// An array of another kind than the operation needs.
    wrong_kind,
    /// An element, a field number or a range of data beyond the end of an array, or a field that a
    /// struct does not have.
    out_of_range,
    /// An array that a struct owns was destroyed or stored in another field, or a struct was stored
    /// in itself.
    bad_ownership,
    /// A call of a host-language function that is not registered.
    unknown_function,
    /// A host-language function threw an exception.
    function_threw,
};

/// A fault, as its handler receives it.
struct fault {
    /// The mistake.
    fault_kind kind = fault_kind::bad_request;
    /// The block concerned, for faults with memory. For a foreign address inside a live block, that
    /// block; for any other foreign address, the address alone.
    block concerned = {};
    /// What happened, in one sentence with sizes, numbers and the operation that made the object.
    std::string sentence = {};
    /// The calls that made the block or object concerned; empty unless origins are recorded.
    call_stack origin = {};
    /// The calls that led to the fault.
    call_stack place = {};
};

/// Receives a fault, on the thread that caused it, with no lock of the stand-in held. Must not
/// throw.
using fault_handler = std::function<void(const fault&)>;

/// Installs the handler of faults and returns the previous one. An empty handler restores the
/// default, which writes the sentence and both call stacks to standard error and aborts.
fault_handler set_fault_handler(fault_handler handler);

/// Runs at every failed assertion, on the thread that made it; `call_stack::current()` then shows
/// where. Must not throw.
using assertion_handler = std::function<void()>;

/// Installs the handler of failed assertions and returns the previous one. An empty handler
/// restores the default, which writes a sentence and the call stack to standard error and aborts.
assertion_handler set_assertion_handler(assertion_handler handler);

} // namespace zktarn::standin
