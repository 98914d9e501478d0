#pragma once

#include <cstdint>

/// The host's optimisation support library, `libzkoptimutil`, as far as the library calls it:
/// memory, random numbers, assertions, flushing the console.
///
/// Declarations and obligations only; the host implements them. All arguments travel by value. No
/// exception may leave an operation.

namespace zktarn::host {

extern "C" {

// Memory manager
// --------------------------------------------------------------------------------------------
//
// Called by `memory_mod`. Any thread that runs a solver may call them at any time, several threads
// at once. A block may be released on another thread than it was requested on.

/// Returns the address of a new block of at least `nbytes` bytes. The library passes nbytes >= 1.
///
/// The block is aligned for any scalar type (16 bytes on x86-64 and arm64), overlaps no other, and
/// may have any contents. The library owns it until `qvFreeExOptim`.
///
/// Failure: null. Any size may fail, and a later request of the same size may succeed.
void* qvMallocExOptim(std::int64_t nbytes) noexcept;

/// Releases a block that `qvMallocExOptim` returned. Other blocks stay as they are.
///
/// The host must accept null and do nothing: a solver may pass it to `mdeallocate`. Any other
/// address is that of a block not yet released, unless a solver passes a wrong one to
/// `mdeallocate`.
void qvFreeExOptim(void* address) noexcept;

// Random number generators
// --------------------------------------------------------------------------------------------
//
// Called by `random`. Generators and snapshots are opaque addresses. Different generators may be
// used on different threads at once; one generator is used by one thread at a time.

/// Returns a new uniform generator. Equal seeds start equal sequences; the host decides which
/// sequence a seed selects. Any seed is valid. The library owns the generator until
/// `deleteRngOptim`.
///
/// Failure: null; nothing is to be released then.
void* instantiateRngOptim(std::int32_t seed) noexcept;

/// Releases a generator. Never null. Snapshots of it stay valid.
void deleteRngOptim(void* generator) noexcept;

/// Writes the next `*count` numbers of a generator, never null, to `values`. The library passes 1.
/// The interval is the host's choice.
///
/// Failure: writes nothing, and `values` stays as it is.
void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept;

/// Returns a snapshot of the whole state of a generator, which stays as it is. The library owns the
/// snapshot until `deleteRngStateOptim`.
///
/// Failure: null. The host must accept a null generator; null is the best result then.
void* getRngStateOptim(void* generator) noexcept;

/// Restores a generator from a snapshot: the generator then draws the numbers that followed the
/// snapshot. Neither address is null. The snapshot stays valid, and the library still owns it.
void setRngStateOptim(void* generator, void* state) noexcept;

/// Releases a snapshot, possibly after its generator. Never null.
void deleteRngStateOptim(void* state) noexcept;

// Assertions and console
// --------------------------------------------------------------------------------------------

/// Receives every condition that a solver asserts, true or false, on the asserting thread. Called
/// by `assert_mod`. The host decides what follows a false condition; it need not return then.
void assertOptim(bool condition) noexcept;

/// Makes all text that `qvxprintf800_` printed visible. Called by `callbacks_util` after each line,
/// on the solver's thread.
void ioFlushOptim() noexcept;
}

} // namespace zktarn::host
