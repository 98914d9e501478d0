#include "input/memory.hpp"

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <sstream>

#include <sys/resource.h>
#include <unistd.h>

#include "input/error.hpp"

namespace zero_half {

namespace {

namespace fs = std::filesystem;

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();

std::uint64_t difference(std::uint64_t a, std::uint64_t b) {
    return a > b ? a - b : 0;
}

/// The number in a file that contains one number; `otherwise` for any other content.
std::uint64_t number_in(const fs::path& file, std::uint64_t otherwise) {
    std::ifstream stream(file);
    std::uint64_t number = 0;
    return stream >> number ? number : otherwise;
}

/// The number after a key, in a file with a key and a number in each line.
std::optional<std::uint64_t> number_behind(const fs::path& file, const std::string& key) {
    std::ifstream stream(file);
    for (std::string line; std::getline(stream, line);) {
        std::istringstream words(line);
        std::string found;
        std::uint64_t number = 0;
        if (words >> found >> number && found == key) {
            return number;
        }
    }
    return std::nullopt;
}

std::uint64_t left_of_address_space(const fs::path& proc) {
    rlimit limit{};
    if (::getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) {
        return unlimited;
    }
    const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    return difference(limit.rlim_cur, page * number_in(proc / "self" / "statm", 0));
}

/// The free memory of the system, including memory that it can free without writing to a disk.
std::uint64_t left_of_system(const fs::path& proc) {
    constexpr std::uint64_t kilobyte = 1024;
    const auto memory = number_behind(proc / "meminfo", "MemAvailable:");
    const auto swap = number_behind(proc / "meminfo", "SwapFree:");
    return memory ? kilobyte * (*memory + swap.value_or(0)) : unlimited;
}

/// The memory that the limit of a control group leaves. Cached files of the group count as free.
std::uint64_t left_of_group(const fs::path& group, const char* limit, const char* usage,
                            const char* droppable) {
    const std::uint64_t most = number_in(group / limit, unlimited);
    const std::uint64_t used = difference(
        number_in(group / usage, 0), number_behind(group / "memory.stat", droppable).value_or(0));
    return most == unlimited ? unlimited : difference(most, used);
}

/// The minimum over the control group of the process and all groups above it.
std::uint64_t left_of_groups(const fs::path& proc, const fs::path& cgroups) {
    std::uint64_t least = unlimited;
    std::ifstream stream(proc / "self" / "cgroup");
    for (std::string line; std::getline(stream, line);) {
        const std::size_t first = line.find(':');
        const std::size_t second = line.find(':', first + 1);
        if (second == std::string::npos) {
            continue;
        }
        const std::string controller = line.substr(first + 1, second - first - 1);
        if (!controller.empty() && controller != "memory") {
            continue;
        }
        const fs::path root = controller.empty() ? cgroups : cgroups / controller;
        // In a container the path may be that of the system around it; then only the root exists.
        fs::path below = fs::path(line.substr(second + 1)).relative_path();
        for (bool is_root = false; !is_root; below = below.parent_path()) {
            is_root = below.empty();
            const fs::path group = root / below;
            least = std::min(
                least, controller.empty()
                           ? left_of_group(group, "memory.max", "memory.current", "inactive_file")
                           : left_of_group(group, "memory.limit_in_bytes", "memory.usage_in_bytes",
                                           "total_inactive_file"));
        }
    }
    return least;
}

} // namespace

std::optional<std::uint64_t> available_memory(const fs::path& proc, const fs::path& cgroups) {
    const std::uint64_t least = std::min(
        {left_of_address_space(proc), left_of_system(proc), left_of_groups(proc, cgroups)});
    return least == unlimited ? std::nullopt : std::optional(least);
}

/// The reader keeps numbers and names, but not the text.
std::uint64_t memory_to_read(std::uint64_t file_size) {
    return file_size;
}

/// Three quarters of the memory measured on models with five entries a row: the simplex method
/// keeps several copies of the entries, and about twenty arrays over rows and columns.
std::uint64_t memory_to_solve(std::uint64_t rows, std::uint64_t columns, std::uint64_t entries) {
    constexpr std::uint64_t bytes_an_entry = 60;
    constexpr std::uint64_t bytes_a_row_or_column = 300;
    return bytes_an_entry * entries + bytes_a_row_or_column * (rows + columns);
}

/// The rows of the sums of a search have at most a multiple of the entries of the model, and a cut
/// has at most the entries of its rows.
std::uint64_t memory_for_round(std::uint64_t model_entries, std::uint64_t pool_entries) {
    constexpr std::uint64_t always_allowed = 50'000;
    constexpr std::uint64_t entries_of_cuts = 5;
    constexpr std::uint64_t bytes_a_new_entry = 60;
    constexpr std::uint64_t bytes_a_pool_entry = 20;
    return bytes_a_new_entry * (always_allowed + entries_of_cuts * model_entries) +
           bytes_a_pool_entry * pool_entries;
}

void check_memory(const std::string& file, std::uint64_t needed,
                  std::optional<std::uint64_t> available) {
    constexpr std::uint64_t megabyte = 1'000'000;
    if (available && needed > *available) {
        throw error(file + ": the model needs at least " + std::to_string(needed / megabyte + 1) +
                    " MB of memory, and " + std::to_string(*available / megabyte) + " MB are left");
    }
}

} // namespace zero_half
