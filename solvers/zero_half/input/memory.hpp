#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace zero_half {

/// The bytes that this process may still allocate: the least of what its address space limit
/// (`ulimit -v`), its control groups, and the system leave. Nothing where none of them is known.
/// @param proc     in. Where Linux describes processes.
/// @param cgroups  in. Where Linux describes control groups, of version 1 or 2.
std::optional<std::uint64_t>
available_memory(const std::filesystem::path& proc = "/proc",
                 const std::filesystem::path& cgroups = "/sys/fs/cgroup");

/// The minimum number of bytes that reading an uncompressed file of this size takes.
std::uint64_t memory_to_read(std::uint64_t file_size);

/// The minimum number of bytes that solving the relaxation of a model takes, without the model.
std::uint64_t memory_to_solve(std::uint64_t rows, std::uint64_t columns, std::uint64_t entries);

/// The bytes that a round may take: those of the cuts that it finds, in the pool and in the
/// relaxation, and of the copy of the pool in the result.
std::uint64_t memory_for_round(std::uint64_t model_entries, std::uint64_t pool_entries);

/// Throws `error` when more memory is needed than available, with a sentence about the file.
void check_memory(const std::string& file, std::uint64_t needed,
                  std::optional<std::uint64_t> available);

} // namespace zero_half
