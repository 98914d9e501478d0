#include "cbc/cut_generator.hpp"

#include <algorithm>
#include <cmath>
#include <new>

#include <OsiCuts.hpp>
#include <OsiRowCut.hpp>
#include <OsiSolverInterface.hpp>

namespace zero_half {

namespace {

/// Clamps to +-no_bound, whatever the solver uses for infinity.
std::vector<double> bounds_of(const double* values, int n) {
    std::vector<double> bounds(values, values + n);
    for (double& bound : bounds) {
        bound = std::clamp(bound, -no_bound, no_bound);
    }
    return bounds;
}

/// Rounds the bounds of integer columns, which solvers keep as integers up to a tolerance.
void round_bounds(std::vector<double>& lower, std::vector<double>& upper,
                  const std::vector<char>& is_integer) {
    constexpr double tolerance = 1e-6;
    for (std::size_t j = 0; j < lower.size(); ++j) {
        if (is_integer[j] != 0) {
            lower[j] = lower[j] <= -no_bound ? -no_bound : std::ceil(lower[j] - tolerance);
            upper[j] = upper[j] >= no_bound ? no_bound : std::floor(upper[j] + tolerance);
        }
    }
}

OsiRowCut as_osi_cut(const row_pool& pool, std::size_t row, double violation, bool is_global) {
    const auto columns = pool.columns(row);
    std::vector<int> indices;
    for (const std::int32_t j : columns) {
        indices.push_back(j - 1);
    }
    OsiRowCut made;
    made.setRow(static_cast<int>(indices.size()), indices.data(), pool.coefficients(row).data());
    made.setLb(-COIN_DBL_MAX);
    made.setUb(pool.rhs(row));
    made.setEffectiveness(violation);
    made.setGloballyValid(is_global);
    return made;
}

} // namespace

cut_generator::cut_generator(const settings& chosen) : settings_(chosen), random_(chosen.seed) {
    if (!random_) {
        throw std::bad_alloc();
    }
}

cut_generator::cut_generator(const cut_generator& other)
    : CglCutGenerator(other), settings_(other.settings_), model_(other.model_),
      random_(other.settings_.seed) {
    if (!random_) {
        throw std::bad_alloc();
    }
}

void cut_generator::refreshSolver(OsiSolverInterface* solver) {
    read(*solver, solver->getNumRows(), true);
}

/// Reads the first rows of the solver. The rows after them are cuts of a node.
void cut_generator::read(const OsiSolverInterface& solver, int rows, bool is_global) {
    const int n = solver.getNumCols();
    separator_.reset();
    model_ = snapshot();
    model_.is_global = is_global;
    model_.rows = CoinPackedMatrix(false, 0.0, 0.0);
    model_.rows.setDimensions(0, n);
    const CoinPackedMatrix& matrix = *solver.getMatrixByRow();
    for (int i = 0; i < rows; ++i) {
        const CoinBigIndex first = matrix.getVectorFirst(i);
        model_.rows.appendRow(matrix.getVectorSize(i), matrix.getIndices() + first,
                              matrix.getElements() + first);
    }
    model_.row_lower = bounds_of(solver.getRowLower(), rows);
    model_.row_upper = bounds_of(solver.getRowUpper(), rows);
    model_.lower = bounds_of(solver.getColLower(), n);
    model_.upper = bounds_of(solver.getColUpper(), n);
    for (int j = 0; j < n; ++j) {
        model_.is_integer.push_back(solver.isInteger(j) ? 1 : 0);
    }
    round_bounds(model_.lower, model_.upper, model_.is_integer);
}

/// Whether the bounds that were read contain those of the solver.
bool cut_generator::is_read_for(const OsiSolverInterface& solver) const {
    constexpr double tolerance = 1e-6;
    if (model_.lower.size() != static_cast<std::size_t>(solver.getNumCols())) {
        return false;
    }
    for (std::size_t j = 0; j < model_.lower.size(); ++j) {
        if (solver.getColLower()[j] < model_.lower[j] - tolerance ||
            solver.getColUpper()[j] > model_.upper[j] + tolerance) {
            return false;
        }
    }
    return true;
}

void cut_generator::make_separator() {
    const auto entries = static_cast<std::size_t>(model_.rows.getNumElements());
    const mixed_integer_rows rows = {{model_.rows.getVectorStarts(), model_.row_lower.size() + 1},
                                     {model_.rows.getIndices(), entries},
                                     {model_.rows.getElements(), entries},
                                     model_.row_lower,
                                     model_.row_upper,
                                     model_.lower,
                                     model_.upper,
                                     model_.is_integer};
    separator_ = std::make_unique<separator>(
        rows, *random_, [] { return false; }, settings_.separation);
}

/// Below the root, selects the cuts with the greatest efficacy.
std::vector<std::size_t> cut_generator::rows_to_add(const double* point, bool in_tree) {
    const row_pool& pool = separator_->pool();
    if (in_tree && pool.size() > (1 + settings_.most_known) * separator_->model_rows()) {
        separator_->truncate(separator_->model_rows());
    }
    std::vector<std::size_t> rows = separator_->find(point);
    if (in_tree && rows.size() > settings_.most_in_tree) {
        const auto efficacy = [&](std::size_t row) {
            double square = 0.0;
            for (const double each : pool.coefficients(row)) {
                square += each * each;
            }
            return -pool.slack(row, point) / std::sqrt(square);
        };
        std::sort(rows.begin(), rows.end(),
                  [&](std::size_t a, std::size_t b) { return efficacy(a) > efficacy(b); });
        rows.resize(settings_.most_in_tree);
    }
    return rows;
}

void cut_generator::generateCuts(const OsiSolverInterface& solver, OsiCuts& cuts,
                                 const CglTreeInfo info) {
    if (!is_read_for(solver)) {
        const int rows = info.formulation_rows > 0
                             ? std::min(info.formulation_rows, solver.getNumRows())
                             : solver.getNumRows();
        read(solver, rows, !info.inTree);
    }
    if (!separator_) {
        make_separator();
    }
    const double* const point = solver.getColSolution();
    for (const std::size_t row : rows_to_add(point, info.inTree)) {
        const double violation = -separator_->pool().slack(row, point);
        if (violation > 0.0) {
            cuts.insert(as_osi_cut(separator_->pool(), row, violation, model_.is_global));
        }
    }
}

} // namespace zero_half
