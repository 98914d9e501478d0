#include "run/memory.hpp"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <string>

#include <unistd.h>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// Bytes, by Linux' own estimate; elsewhere all memory of the machine.
double available_memory() {
    std::ifstream table("/proc/meminfo");
    for (std::string name; table >> name;) {
        double kilobytes = 0.0;
        if (name == "MemAvailable:" && table >> kilobytes) {
            return 1024.0 * kilobytes;
        }
    }
    return static_cast<double>(::sysconf(_SC_PHYS_PAGES)) *
           static_cast<double>(::sysconf(_SC_PAGESIZE));
}

/// Whether the row gives integral rows is known only later, so this is an upper limit.
double memory_of_rows(const model& program) {
    // A vector has a coefficient, a mark and a place in the list for each column.
    constexpr double bytes_per_column = 2.0 * (sizeof(double) + 2.0 * sizeof(std::int32_t));
    double sides = 0.0;
    for (int i = 0; i < program.row_count(); ++i) {
        const double lower = program.row_lower[static_cast<std::size_t>(i)];
        const double upper = program.row_upper[static_cast<std::size_t>(i)];
        sides += upper < no_bound ? 1.0 : 0.0;
        sides += lower > -no_bound && lower < upper ? 1.0 : 0.0;
    }
    return sides * bytes_per_column * program.column_count();
}

} // namespace

void check_memory(const model& program) {
    constexpr double gigabyte = 1e9;
    const double needed = memory_of_rows(program);
    const double available = available_memory();
    if (needed > available) {
        char sentence[160];
        std::snprintf(sentence, sizeof sentence,
                      ": its %d rows over %d columns need up to %.3g GB of memory, but %.3g GB are "
                      "available",
                      program.row_count(), program.column_count(), needed / gigabyte,
                      available / gigabyte);
        throw error(program.file + sentence);
    }
}

} // namespace zero_half
