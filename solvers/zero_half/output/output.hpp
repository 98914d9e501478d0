#pragma once

#include <deque>
#include <string>
#include <vector>

#include "input/model.hpp"
#include "run/run.hpp"

/// What a run can write: the table, the JSON report, the model with its cuts, the plot, the
/// certificate.

namespace zero_half {

struct solved_model {
    model program;
    run_result run;
};

/// A label for each model: its file name without the suffix of its format and of a compressed file.
/// Where files in different folders have the same name, it begins with as many parent folders as
/// make the labels different.
std::vector<std::string> labels_of(const std::deque<solved_model>& models);

/// A heading and one line for each model, at most `width` characters wide where that is possible.
/// A table that is too wide is made narrower in this order: bounds have eight significant digits
/// instead of nine, the counts of rows and columns are left out, bounds have down to six digits,
/// labels lose characters in the middle.
std::string table_of(const std::deque<solved_model>& models, std::size_t width);

/// The width of the terminal on standard output; 80 when it is not a terminal.
std::size_t output_width();

/// Writes one JSON object: the version, the options of all runs, and an array `models`. Throws
/// `error` when the file cannot be written.
void write_json(const std::deque<solved_model>& models, const run_options& options,
                const std::string& file);

/// Writes the model with its cuts as additional rows, as free MPS. Every column keeps its kind and
/// its name, in which blanks become underscores. Throws `error` when the file cannot be written.
void write_model(const solved_model& solved, const std::string& file);

/// Draws the bound of each model against the round and against time, by gnuplot: as PNG when the
/// name of the file ends in `.png`, as SVG otherwise. Throws `error` when there is no bound to
/// draw, gnuplot is missing or the file cannot be written.
void write_plot(const std::deque<solved_model>& models, const std::string& file);

/// Writes how each cut of the last relaxation follows from the rows of the model, for check_cuts.
///
/// One line for each derived row, after the rows that it uses, and a last line:
///
///     cut|row ID DIVISOR TERMS (model|row ID MULTIPLIER)... ENTRIES (COLUMN COEFFICIENT)...
///         BOUNDS (lower|upper COLUMN VALUE)... RHS
///     end CUTS
///
/// `cut` is a cut of the last relaxation, `row` another row that cuts use; CUTS counts the cuts.
/// TERMS, ENTRIES and BOUNDS count what follows them. The terms are added up and divided; each
/// coefficient is moved to the one of the entries, at the cost of the column's lower bound when it
/// falls and of its upper bound when it rises; the bounds list exactly these; the right-hand side
/// is rounded down. A negative multiplier takes the lower side of a row of the model. Rows and
/// columns of the model are counted from 0. Throws `error` when the file cannot be written.
void write_certificate(const solved_model& solved, const std::string& file);

} // namespace zero_half
