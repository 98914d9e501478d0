/// One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes,
/// on the stand-in host.

#include <cstdint>
#include <cstdio>
#include <string>

#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using zktarn::flag;
using zktarn::vector_mod::vector;

constexpr std::int32_t columns = 8;

struct mode {
    const char* name;
    flag no_ind;
    flag no_elm;
    const char* membership;
};

constexpr mode modes[] = {
    {"marks", 0, 0, "by its mark"},
    {"list", 0, 1, "by a search of the list"},
    {"dense", 1, 1, "always"},
};

std::string coefficients(const vector& v) {
    std::string text;
    for (std::int32_t j = 1; j <= columns; ++j) {
        char cell[32];
        std::snprintf(cell, sizeof cell, "%4g", zktarn::vector_mod::vector_get_coef(v, j));
        text += cell;
    }
    return text;
}

std::string list(const vector& v) {
    if (!v.ind.present()) {
        return "none";
    }
    std::string text;
    for (std::int32_t k = 1; k <= zktarn::vector_mod::vector_get_nz(v); ++k) {
        text += (k == 1 ? "" : " ") + std::to_string(zktarn::vector_mod::vector_get_ind(v, k));
    }
    return text;
}

/// Makes, fills, prints and frees the row in one mode. Returns false when there is no memory.
bool show(const mode& m) {
    vector* row = nullptr;
    if (zktarn::vector_type::vector_alloc(row, columns, {}, m.no_ind, m.no_elm) == 0) {
        return false;
    }
    if (m.no_ind != 0) {
        // Every index of a dense vector is present, so the ones that are not meant are zero.
        zktarn::util::xzero_r8(row->coef.data, columns);
    }
    zktarn::vector_mod::vector_add_nz(*row, 2, 3.0);
    zktarn::vector_mod::vector_add_nz(*row, 5, 2.0);
    zktarn::vector_mod::vector_add_nz(*row, 7, -1.0);
    std::printf("%-6s  %-6s  %s  a member is known %s\n", m.name, list(*row).c_str(),
                coefficients(*row).c_str(), m.membership);
    zktarn::vector_type::vector_free(row);
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        std::fprintf(stderr, "vectors: takes no arguments, but was given '%s'\n", argv[1]);
        return 2;
    }
    std::printf("The row 3 x2 + 2 x5 - x7 of %d columns\n\n", columns);
    std::printf("mode    list    coefficients x1 to x%d\n", columns);
    for (const mode& m : modes) {
        if (!show(m)) {
            std::fprintf(stderr, "vectors: the host has no memory for a vector\n");
            return 1;
        }
    }

    std::printf("\nA host that refuses the second array: ");
    zktarn::standin::fail_request(2);
    vector* row = nullptr;
    const flag made = zktarn::vector_type::vector_alloc(row, columns);
    std::printf("vector_alloc returns %d, the reference is %s\n", static_cast<int>(made),
                row == nullptr ? "null" : "not null");

    std::printf("\n%s", zktarn::standin::memory_report().c_str());
    return zktarn::standin::live_blocks().empty() ? 0 : 1;
}
