/// One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes,
/// on the stand-in host, and the response of a program when the host refuses the memory.

#include <cstdint>
#include <cstdio>

#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

namespace {

namespace standin = zktarn::standin;
using namespace zktarn::vector_mod;

constexpr std::int32_t columns = 8;

struct mode {
    const char* name;
    zktarn::flag no_ind;
    zktarn::flag no_elm;
    const char* membership;
};

constexpr mode modes[] = {
    {"marks", 0, 0, "j is marked: elm(j) = 1"},
    {"list", 0, 1, "j is found in the list"},
    {"dense", 1, 1, "every j, a zero included"},
};

/// Creates, fills, prints and releases the row in one mode. Returns false if memory is missing.
bool show(const mode& m) {
    const zktarn::owned_vector row(columns, {}, m.no_ind, m.no_elm);
    if (!row) {
        return false;
    }
    if (!row->ind.present()) {
        zktarn::util::xzero_r8(row->coef.data, columns); // without a list every coefficient counts
    }
    vector_add_nz(*row, 2, 3.0);
    vector_add_nz(*row, 5, 2.0);
    vector_add_nz(*row, 7, -1.0);

    std::printf("%-5s  coef %-3s %-3s  %-24s ", m.name, row->ind.present() ? "ind" : "",
                row->elm.present() ? "elm" : "", m.membership);
    for (std::int32_t j = 1; j <= columns; ++j) {
        std::printf("%3g", vector_get_coef(*row, j));
    }
    std::printf("  ");
    for (auto [j, a] : entries(row)) {
        std::printf(" %d:%g", j, a);
    }
    std::printf("\n");
    return true;
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1) {
        std::fprintf(stderr, "vectors: takes no arguments, but was given '%s'\n", argv[1]);
        return 2;
    }
    std::printf("The row 3 x2 + 2 x5 - x7 over %d columns, in each mode of a vector:\n\n", columns);
    std::printf(
        "mode   arrays        members                   x1 x2 x3 x4 x5 x6 x7 x8   entries\n");
    for (const mode& m : modes) {
        if (!show(m)) {
            std::fprintf(stderr, "vectors: the host has no memory for a vector\n");
            return 1;
        }
    }
    standin::fail_request(2);
    const zktarn::owned_vector refused(columns);
    std::printf("\nThe host refuses the second array: the owner is %s, %d blocks are left.\n",
                refused ? "true" : "false", static_cast<int>(standin::live_blocks().size()));
    std::printf("\n%s", standin::memory_report().c_str());
    return standin::live_blocks().empty() ? 0 : 1;
}
