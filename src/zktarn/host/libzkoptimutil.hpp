#pragma once

#include <cstdint>

/// What the library asks of the host's optimisation support library, `libzkoptimutil`.
///
/// Declarations and obligations only: the host implements them, and where there is no host the
/// stand-in does. All arguments travel by value. Nothing may leave these operations by an
/// exception.

namespace zktarn::host {

extern "C" {

// Memory manager. Callable from every thread that runs a solver.

/// Returns the address of a new block of at least `nbytes` bytes (nbytes >= 1), aligned for any
/// scalar type, with any contents; null when the host cannot provide it. The caller owns the block
/// until it passes the address to `qvFreeExOptim`.
void* qvMallocExOptim(std::int64_t nbytes) noexcept;

/// Takes back a block that `qvMallocExOptim` returned. Null reaches it only from a caller that
/// released a raw block it never had; a host should accept that and do nothing.
void qvFreeExOptim(void* address) noexcept;

// Random number generators. A generator and a saved state are opaque addresses; one generator is
// used by one thread at a time.

/// Returns a new uniform generator started from `seed`, or null when none can be made. The caller
/// owns it until `deleteRngOptim`.
void* instantiateRngOptim(std::int32_t seed) noexcept;

/// Takes back a generator; never null.
void deleteRngOptim(void* generator) noexcept;

/// Draws `*count` uniform numbers into `values`. The library asks for one at a time. A host that
/// cannot draw leaves `values` as it is.
void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept;

/// Returns a snapshot of the whole state of a generator, or null when there is none to be had. The
/// generator may be null, and the answer is then best null. The caller owns the snapshot until
/// `deleteRngStateOptim`.
void* getRngStateOptim(void* generator) noexcept;

/// Puts a generator back into a saved state. Neither is null. The snapshot stays valid and stays
/// the caller's, and can be applied again.
void setRngStateOptim(void* generator, void* state) noexcept;

/// Takes back a snapshot; never null.
void deleteRngStateOptim(void* state) noexcept;

// Assertions and console.

/// Is told the value of every condition that a solver asserts. What a false one leads to is the
/// host's decision: it need not return, but it must not throw.
void assertOptim(bool condition) noexcept;

/// Flushes pending console output of the host.
void ioFlushOptim() noexcept;
}

} // namespace zktarn::host
