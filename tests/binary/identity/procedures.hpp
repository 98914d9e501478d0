#pragma once

#include <cinttypes>
#include <cstdio>
#include <span>
#include <string>

#include "binary/identity/digest.hpp"
#include "binary/identity/draws.hpp"

/// The procedures whose results must be the same on every platform, with their inputs.

namespace zktarn::identity {

/// A procedure's name, module.procedure, and a function that calls it once on random inputs and
/// adds all results to the digest.
struct procedure {
    const char* name;
    void (*call)(draws& draw, digest& results);
    int calls = 20'000;
};

/// The hash of all results of a procedure, 16 hexadecimal digits.
inline std::string hash_of(const procedure& each) {
    draws draw(each.name);
    digest results;
    for (int i = 0; i < each.calls; ++i) {
        each.call(draw, results);
    }
    char text[17];
    std::snprintf(text, sizeof text, "%016" PRIx64, results.value());
    return text;
}

std::span<const procedure> integrality_procedures();
std::span<const procedure> array_copy_procedures();
std::span<const procedure> rational_procedures();
std::span<const procedure> entry_procedures();
std::span<const procedure> whole_vector_procedures();
std::span<const procedure> sorting_procedures();
std::span<const procedure> random_procedures();

} // namespace zktarn::identity
