#pragma once

#include <string>

#include "output/solved_model.hpp"

namespace zero_half {

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
