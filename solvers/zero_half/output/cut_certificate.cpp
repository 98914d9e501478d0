#include "output/output.hpp"

#include <fstream>
#include <iomanip>
#include <limits>
#include <map>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>

#include "input/error.hpp"

namespace zero_half {

namespace {

using boost::multiprecision::cpp_rational;

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

/// For each column the exact sum of its coefficients in the terms, divided, minus its coefficient
/// in the row. Columns are counted from 0.
std::map<int, cpp_rational> excess_of(const model& program, const row_pool& pool, std::size_t row) {
    const row_origin& origin = pool.origin(row);
    std::map<int, cpp_rational> excess;
    for (const row_origin::term& term : origin.terms) {
        const cpp_rational factor = cpp_rational(term.multiplier) / cpp_rational(origin.divisor);
        if (term.is_model_row) {
            const int first = program.rows.getVectorFirst(term.row);
            for (int k = first; k < first + program.rows.getVectorSize(term.row); ++k) {
                excess[program.rows.getIndices()[k]] +=
                    factor * cpp_rational(program.rows.getElements()[k]);
            }
        } else {
            const auto other = static_cast<std::size_t>(term.row);
            for (std::size_t k = 0; k < pool.columns(other).size(); ++k) {
                excess[pool.columns(other)[k] - 1] +=
                    factor * cpp_rational(pool.coefficients(other)[k]);
            }
        }
    }
    for (std::size_t k = 0; k < pool.columns(row).size(); ++k) {
        excess[pool.columns(row)[k] - 1] -= cpp_rational(pool.coefficients(row)[k]);
    }
    std::erase_if(excess, [](const auto& each) { return each.second == 0; });
    return excess;
}

void write_bounds(const model& program, const std::map<int, cpp_rational>& excess,
                  std::ostream& stream) {
    stream << ' ' << excess.size();
    for (const auto& [column, value] : excess) {
        const auto j = static_cast<std::size_t>(column);
        stream << (value > 0 ? " lower " : " upper ") << column << ' '
               << (value > 0 ? program.lower[j] : program.upper[j]);
    }
}

void write_row(const model& program, const row_pool& pool, std::size_t row, bool is_cut,
               std::ostream& stream) {
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
    write_bounds(program, excess_of(program, pool, row), stream);
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
            write_row(solved.program, run.pool, row, is_cut[row], stream);
        }
    }
    stream << "end " << run.cuts.size() << '\n';
    if (!stream.flush()) {
        throw error(file + ": cannot be written");
    }
}

} // namespace zero_half
