#include "solver/model_files.hpp"

namespace zero_half::testing {

namespace {

using boost::multiprecision::cpp_int;

/// The number as a decimal. Precondition: its denominator divides a power of ten.
std::string text_of(const rational& number) {
    cpp_int digits = abs(numerator(number));
    cpp_int divisor = denominator(number);
    std::size_t places = 0;
    while (divisor != 1) {
        const cpp_int common = gcd(cpp_int(10), divisor);
        digits *= 10 / common;
        divisor /= common;
        ++places;
    }
    std::string text = digits.str();
    if (text.size() <= places) {
        text.insert(0, places + 1 - text.size(), '0');
    }
    if (places > 0) {
        text.insert(text.size() - places, ".");
    }
    return (number < 0 ? "-" : "") + text;
}

std::string column_name(int j) {
    return "x" + std::to_string(j);
}

std::string row_name(std::size_t i) {
    return "r" + std::to_string(i);
}

char kind_of(const exact_range& range) {
    return range.lower && range.upper ? (*range.lower == *range.upper ? 'E' : 'L')
           : range.lower              ? 'G'
           : range.upper              ? 'L'
                                      : 'N';
}

std::string mps_column(const exact_model& model, int j) {
    const std::string line = " " + column_name(j) + " ";
    std::string text =
        line + "cost " + text_of(model.objective[static_cast<std::size_t>(j)]) + "\n";
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
        for (const auto& [column, value] : model.rows[i].entries) {
            if (column == j) {
                text += line + row_name(i) + " " + text_of(value) + "\n";
            }
        }
    }
    return text;
}

std::string mps_bounds(const exact_range& range, const std::string& name) {
    const auto line = [&](const char* kind, const rational* bound) {
        return std::string(" ") + kind + " bounds " + name +
               (bound == nullptr ? "" : " " + text_of(*bound)) + "\n";
    };
    if (!range.lower && !range.upper) {
        return line("FR", nullptr);
    }
    if (range.lower && range.upper && *range.lower == *range.upper) {
        return line("FX", &*range.lower);
    }
    return (range.lower ? line("LO", &*range.lower) : line("MI", nullptr)) +
           (range.upper ? line("UP", &*range.upper) : line("PL", nullptr));
}

std::string lp_sum(const std::vector<std::pair<int, rational>>& entries) {
    std::string text;
    for (const auto& [j, value] : entries) {
        text += (value < 0 ? " - " : " + ") + text_of(abs(value)) + " " + column_name(j);
    }
    return text;
}

} // namespace

std::string mps_text(const exact_model& model) {
    std::string rows;
    std::string sides = model.constant == 0 ? "" : " rhs cost " + text_of(-model.constant) + "\n";
    std::string ranges;
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
        const exact_range& range = model.rows[i].range;
        const char kind = kind_of(range);
        rows += std::string(" ") + kind + " " + row_name(i) + "\n";
        if (kind != 'N') {
            sides += " rhs " + row_name(i) + " " +
                     text_of(kind == 'L' ? *range.upper : *range.lower) + "\n";
        }
        if (kind == 'L' && range.lower) {
            ranges += " rng " + row_name(i) + " " + text_of(*range.upper - *range.lower) + "\n";
        }
    }
    std::string columns;
    std::string bounds;
    for (int j = 0; j < model.column_count(); ++j) {
        const bool is_integer = model.is_integer[static_cast<std::size_t>(j)] != 0;
        columns += is_integer
                       ? " m 'MARKER' 'INTORG'\n" + mps_column(model, j) + " m 'MARKER' 'INTEND'\n"
                       : mps_column(model, j);
        bounds += mps_bounds(model.columns[static_cast<std::size_t>(j)], column_name(j));
    }
    return "NAME random\n" + std::string(model.is_maximised ? "OBJSENSE\n MAX\n" : "") +
           "ROWS\n N cost\n" + rows + "COLUMNS\n" + columns + "RHS\n" + sides +
           (ranges.empty() ? "" : "RANGES\n" + ranges) + "BOUNDS\n" + bounds + "ENDATA\n";
}

void make_fit_for_lp(exact_model& model) {
    model.constant = 0;
    std::erase_if(model.rows, [](const exact_model::row& row) { return row.entries.empty(); });
}

std::string lp_text(const exact_model& model) {
    std::vector<std::pair<int, rational>> costs;
    std::string bounds;
    std::string integers;
    for (int j = 0; j < model.column_count(); ++j) {
        const auto at = static_cast<std::size_t>(j);
        const exact_range& range = model.columns[at];
        costs.emplace_back(j, model.objective[at]);
        bounds += " " + (range.lower ? text_of(*range.lower) : "-inf") + " <= " + column_name(j) +
                  " <= " + (range.upper ? text_of(*range.upper) : "inf") + "\n";
        integers += model.is_integer[at] != 0 ? " " + column_name(j) + "\n" : "";
    }
    std::string rows;
    for (std::size_t i = 0; i < model.rows.size(); ++i) {
        const auto& [entries, range] = model.rows[i];
        const char kind = kind_of(range);
        const std::string sum = lp_sum(entries);
        if (range.upper) {
            rows += " " + row_name(i) + ":" + sum + (kind == 'E' ? " = " : " <= ") +
                    text_of(*range.upper) + "\n";
        }
        if (range.lower && kind != 'E') {
            rows += " " + row_name(i) + "_low:" + sum + " >= " + text_of(*range.lower) + "\n";
        }
    }
    return std::string(model.is_maximised ? "Maximize" : "Minimize") + "\n cost:" + lp_sum(costs) +
           "\nSubject To\n" + rows + "Bounds\n" + bounds + "Integers\n" + integers + "End\n";
}

} // namespace zero_half::testing
