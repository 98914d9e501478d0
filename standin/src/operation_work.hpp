#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "array_table.hpp"
#include "zktarn_standin/leaks.hpp"

/// The work of each operation of the host, without the count, the planned failure, the log and the
/// script of the call, which attempt.hpp adds. array_table.hpp has the work of the operations on
/// arrays.

namespace zktarn::standin {

// Blocks: block_table.cpp
// -------------------------------------------------------------------------------------------

/// A new block of `nbytes` bytes, or null.
void* obtain(std::int64_t nbytes);

/// Releases a block; null is accepted.
void release(void* address);

void reset_block_table() noexcept;

// Generators and snapshots: generators.cpp
// -------------------------------------------------------------------------------------------

// Each throws a fault for an address that is not a live generator or snapshot.

void* make_generator(std::int32_t seed);
void draw(void* generator, double* values, std::int64_t count);
void delete_generator(void* generator);
void* save_state(void* generator);
void restore_state(void* generator, void* state);
void delete_state(void* state);

void list_generators(std::vector<live_object>& objects);

// Console: console_output.cpp
// -------------------------------------------------------------------------------------------

void write_to_console(std::string_view text);
void flush_console();

// Functions of the host's language: function_registry.cpp
// -------------------------------------------------------------------------------------------

/// Calls a host-language function and returns the array that it makes.
array_handle call_function(const std::string& name, array_handle input);

void reset_functions();

// Interrupts: interrupt_poll.cpp
// -------------------------------------------------------------------------------------------

/// Returns whether an interrupt is pending, and clears it.
bool take_interrupt() noexcept;

void reset_interrupts() noexcept;

} // namespace zktarn::standin
