#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <OsiClpSolverInterface.hpp>

#include "input/model.hpp"

namespace zero_half {

/// The model as Cbc takes it. The objective has no constant, and is minimised.
inline OsiClpSolverInterface loaded(const model& program) {
    OsiClpSolverInterface solver;
    solver.messageHandler()->setLogLevel(0);
    solver.loadProblem(program.rows, program.lower.data(), program.upper.data(),
                       program.objective.data(), program.row_lower.data(),
                       program.row_upper.data());
    for (int j = 0; j < program.column_count(); ++j) {
        if (program.is_integer[static_cast<std::size_t>(j)] != 0) {
            solver.setInteger(j);
        }
    }
    return solver;
}

/// Which zero-half cuts Cbc uses, and where.
struct variant {
    enum class cuts { none, cgl, own };
    cuts generator;
    bool at_every_kth_node;
    const char* name;
};

/// The compared variants.
const std::vector<variant>& variants();

struct comparison_options {
    /// Processor time for each run.
    double seconds = 60.0;
    /// In the tree, zero-half cuts are separated at every k-th node.
    int every = 10;
    std::int32_t seed = 1;
    /// Zero-half cuts are the only ones, without preprocessing and heuristics.
    bool is_plain = false;
};

/// The result of Cbc for one model in one variant.
struct search_result {
    enum class state { optimal, infeasible, unfinished };
    state end = state::unfinished;
    /// In the sense of the file; empty when no integer point was found.
    std::optional<double> value = {};
    /// The bound of the relaxation with all cuts of the root, at most the optimum.
    std::optional<double> root_bound = {};
    int nodes = 0;
    double cpu_seconds = 0.0;
    /// Zero-half cuts generated.
    int cuts = 0;
    double separation_seconds = 0.0;
};

/// Solves the model by Cbc.
search_result solve_by_cbc(const model& program, const variant& chosen,
                           const comparison_options& options);

/// The runs of one model with one seed, in the order of `variants()`.
struct compared_model {
    std::string file;
    std::int32_t seed = 1;
    bool is_maximised = false;
    /// From a table of optima beside the model, where there is one.
    std::optional<double> known_optimum = {};
    std::vector<search_result> results = {};

    /// Whether every variant proved its result within the time limit.
    bool is_finished() const;
    /// How the variants contradict each other or the known optimum, in one sentence; empty if they
    /// agree. An unfinished run agrees if its value is not better than a proven one.
    std::string contradiction() const;
};

/// Lines for the terminal: one for each variant.
std::string table_of(const compared_model& model);
std::string heading_of_table();

/// Geometric means over the models that all variants finished, and the sentences that compare the
/// nodes of zero_half with those of CglZeroHalf.
std::string summary_of(const std::vector<compared_model>& models);

/// Write all runs. Throw `error` when the file cannot be written.
void write_csv(const std::vector<compared_model>& models, const std::string& file);
void write_json(const std::vector<compared_model>& models, const comparison_options& options,
                const std::string& file);

} // namespace zero_half
