/// One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes,
/// on the stand-in host; and what a solver sees when the host has no memory for it.

#include <cstdint>
#include <cstdio>
#include <string>

#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

namespace {

namespace standin = zktarn::standin;
using zktarn::flag;
using namespace zktarn::vector_mod;
using zktarn::vector_type::vector_alloc;
using zktarn::vector_type::vector_free;

constexpr std::int32_t columns = 8;

struct mode {
    const char* name;
    flag no_ind;
    flag no_elm;
    const char* membership;
};

constexpr mode modes[] = {
    {"marks", 0, 0, "j is marked: elm(j) = 1"},
    {"list", 0, 1, "j is found in the list"},
    {"dense", 1, 1, "every j, a zero included"},
};

/// Writes the row into a new vector.
void fill(vector& row) {
    if (!row.ind.present()) {
        // A dense vector has no list that says which coefficients count, so it needs all of them.
        zktarn::util::xzero_r8(row.coef.data, columns);
    }
    vector_add_nz(row, 2, 3.0);
    vector_add_nz(row, 5, 2.0);
    vector_add_nz(row, 7, -1.0);
}

std::string arrays(const vector& v) {
    return std::string(v.coef.present() ? "coef" : "") + (v.ind.present() ? " ind" : "") +
           (v.elm.present() ? " elm" : "");
}

std::string list(const vector& v) {
    if (!v.ind.present()) {
        return "none";
    }
    std::string text;
    for (std::int32_t k = 1; k <= vector_get_nz(v); ++k) {
        text += (k == 1 ? "" : " ") + std::to_string(vector_get_ind(v, k));
    }
    return text;
}

std::string coefficients(const vector& v) {
    std::string text;
    for (std::int32_t j = 1; j <= columns; ++j) {
        char cell[32];
        std::snprintf(cell, sizeof cell, "%4g", vector_get_coef(v, j));
        text += cell;
    }
    return text;
}

/// Makes, fills, prints and frees the row in one mode. Returns false when there is no memory.
bool show(const mode& m) {
    vector* row = nullptr;
    if (vector_alloc(row, columns, {}, m.no_ind, m.no_elm) == 0) {
        return false;
    }
    fill(*row);
    std::printf("%-5s  %-12s  %-5s  %-24s  %s\n", m.name, arrays(*row).c_str(), list(*row).c_str(),
                m.membership, coefficients(*row).c_str());
    vector_free(row);
    return true;
}

/// Asks for the row while the host refuses the second array.
void show_refusal() {
    standin::fail_request(2);
    vector* row = nullptr;
    const flag made = vector_alloc(row, columns);
    std::printf("When the host refuses the second array, vector_alloc returns %d, the reference is "
                "%s,\nand %d blocks are left behind.\n",
                static_cast<int>(made), row == nullptr ? "null" : "not null",
                static_cast<int>(standin::live_blocks().size()));
    vector_free(row); // harmless: the reference is null
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        std::fprintf(stderr, "vectors: takes no arguments, but was given '%s'\n", argv[1]);
        return 2;
    }
    std::printf("The row 3 x2 + 2 x5 - x7 over %d columns, in each mode of a vector:\n\n", columns);
    std::printf("mode   arrays        list   members                     x1  x2  x3  x4  x5  x6  x7"
                "  x8\n");
    for (const mode& m : modes) {
        if (!show(m)) {
            std::fprintf(stderr, "vectors: the host has no memory for a vector\n");
            return 1;
        }
    }
    std::printf("\n");
    show_refusal();
    std::printf("\n%s", standin::memory_report().c_str());
    return standin::live_blocks().empty() ? 0 : 1;
}
