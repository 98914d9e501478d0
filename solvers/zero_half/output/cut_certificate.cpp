#include "output/cut_certificate.hpp"

#include <fstream>
#include <iomanip>
#include <limits>
#include <vector>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// For each row of the pool, whether a cut is that row or uses it.
std::vector<bool> used_rows(const run_result& run) {
    std::vector<bool> is_used(run.pool.size());
    for (const std::size_t row : run.cuts) {
        is_used[row] = true;
    }
    for (std::size_t row = run.pool.size(); row-- > 0;) {
        for (const row_origin::term& term : run.pool.origin(row).terms) {
            if (is_used[row] && !term.is_model_row) {
                is_used[static_cast<std::size_t>(term.row)] = true;
            }
        }
    }
    return is_used;
}

void write_row(const row_pool& pool, std::size_t row, bool is_cut, std::ostream& stream) {
    const row_origin& origin = pool.origin(row);
    stream << (is_cut ? "cut " : "row ") << row << ' ' << origin.divisor << ' '
           << origin.terms.size();
    for (const row_origin::term& term : origin.terms) {
        stream << (term.is_model_row ? " model " : " row ") << term.row << ' ' << term.multiplier;
    }
    stream << ' ' << pool.columns(row).size();
    for (std::size_t k = 0; k < pool.columns(row).size(); ++k) {
        stream << ' ' << pool.columns(row)[k] - 1 << ' ' << pool.coefficients(row)[k];
    }
    stream << ' ' << pool.rhs(row) << '\n';
}

} // namespace

void write_certificate(const solved_model& solved, const std::string& file) {
    const run_result& run = solved.run;
    std::vector<bool> is_cut(run.pool.size());
    for (const std::size_t row : run.cuts) {
        is_cut[row] = true;
    }
    const std::vector<bool> is_used = used_rows(run);
    std::ofstream stream(file);
    stream << std::setprecision(std::numeric_limits<double>::max_digits10);
    for (std::size_t row = 0; row < run.pool.size(); ++row) {
        if (is_used[row]) {
            write_row(run.pool, row, is_cut[row], stream);
        }
    }
    stream << "end\n";
    if (!stream.flush()) {
        throw error(file + ": cannot be written");
    }
}

} // namespace zero_half
