#pragma once

#include <span>

#include "binary/identity/digest.hpp"
#include "binary/identity/draws.hpp"

/// What is fed to each procedure whose results have to be the same everywhere.

namespace zktarn::identity {

/// One procedure, as module.procedure, and one call of it: on inputs that are drawn, all results
/// into the digest.
struct procedure {
    const char* name;
    void (*call)(draws& draw, digest& results);
    int calls = 20'000;
};

std::span<const procedure> integrality_procedures();
std::span<const procedure> array_copy_procedures();
std::span<const procedure> rational_procedures();
std::span<const procedure> entry_procedures();
std::span<const procedure> whole_vector_procedures();
std::span<const procedure> sorting_procedures();
std::span<const procedure> random_procedures();

} // namespace zktarn::identity
