#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "input/error.hpp"
#include "run/run.hpp"
#include "solver/replay.hpp"

namespace zero_half::testing {

namespace {

/// Small models with continuous, general integer and free columns, equations, ranges, decimals and
/// variable bounds.
class mixed_models {
public:
    explicit mixed_models(unsigned seed) : random_(seed) {}

    model next() {
        const int columns = 3 + below(6);
        const int rows = 2 + below(7);
        const bool has_decimals = below(3) == 0;
        model made;
        made.file = "mixed";
        made.rows = CoinPackedMatrix(false, 0, 0);
        made.rows.setDimensions(0, columns);
        for (int j = 0; j < columns; ++j) {
            add_column(made);
        }
        for (int i = 0; i < rows; ++i) {
            add_row(made, has_decimals);
        }
        return made;
    }

private:
    int below(int n) { return static_cast<int>(random_() % static_cast<unsigned>(n)); }

    void add_column(model& made) {
        const bool is_free = below(12) == 0;
        const double lower = below(3) == 0 ? -below(4) : 0.0;
        made.lower.push_back(is_free ? -no_bound : lower);
        made.upper.push_back(is_free || below(6) == 0 ? no_bound : lower + 1 + below(3));
        made.is_integer.push_back(below(3) == 0 ? 0 : 1);
        made.objective.push_back(below(9) - 4);
        made.column_names.push_back("x" + std::to_string(made.lower.size()));
    }

    void add_row(model& made, bool has_decimals) {
        const int columns = made.column_count();
        const int entries = below(4) == 0 ? 2 : 2 + below(columns - 1);
        std::vector<int> indices;
        std::vector<double> values;
        for (int j = 0; j < columns && static_cast<int>(indices.size()) < entries; ++j) {
            if (below(columns) < entries) {
                indices.push_back(j);
                values.push_back((below(13) - 6) / (has_decimals ? 10.0 : 1.0));
                values.back() += values.back() == 0.0 ? 1.0 : 0.0;
            }
        }
        made.rows.appendRow(static_cast<int>(indices.size()), indices.data(), values.data());
        const double side = (below(25) - 4) / (has_decimals ? 4.0 : 1.0);
        const int kind = below(6);
        made.row_lower.push_back(kind == 0 ? side : kind == 1 ? side - 2 : -no_bound);
        made.row_upper.push_back(side);
        made.row_names.push_back("r" + std::to_string(made.row_lower.size()));
    }

    std::mt19937 random_;
};

} // namespace

TEST(MixedModels, HaveOnlyCutsThatFollowExactly) {
    const char* const scale = std::getenv("ZKTARN_TEST_SCALE");
    const int trials = static_cast<int>(5000 * (scale == nullptr ? 1.0 : std::atof(scale)));
    mixed_models models(20261121);
    std::size_t cuts = 0;
    std::size_t substituted = 0;
    for (int trial = 0; trial < trials; ++trial) {
        const model program = models.next();
        run_options options;
        options.show = display::off;
        options.rounds = 8;
        try {
            const run_result run = tighten(program, options);
            const verdict exact = replay(program, run);
            ASSERT_EQ(exact.faults, std::vector<std::string>()) << "trial " << trial;
            cuts += exact.cuts;
            for (std::size_t i = 0; i < run.first_cut; ++i) {
                substituted += run.pool.origin(i).terms.size() > 1 ? 1u : 0u;
            }
        } catch (const error&) {
            // The relaxation is infeasible or unbounded.
        }
    }
    EXPECT_GT(cuts, static_cast<std::size_t>(trials) / 20);
    EXPECT_GT(substituted, static_cast<std::size_t>(trials) / 20);
}

} // namespace zero_half::testing
