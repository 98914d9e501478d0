#pragma once

#include <string>
#include <vector>

#include "cbc/comparison.hpp"

namespace zero_half {

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
