#pragma once

#include <deque>
#include <string>

#include "input/model.hpp"
#include "run/tightener.hpp"

/// What a run leaves behind: a table, a model, a record, a picture.

namespace zero_half {

struct solved_model {
    model from;
    run_result run;
};

void print_table(const std::deque<solved_model>& all);

/// Writes the model with the cuts as further rows, as MPS. Every column keeps its name and kind.
/// Throws `trouble` when the file cannot be written, like the other two.
void write_model(const solved_model& of, const std::string& file);

/// Writes one JSON object with an array `models`.
void write_json(const std::deque<solved_model>& all, const std::string& file);

/// Draws bound against round and against time for each model, by gnuplot, as SVG.
void write_plot(const std::deque<solved_model>& all, const std::string& file);

} // namespace zero_half
