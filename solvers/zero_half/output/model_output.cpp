#include <algorithm>
#include <cctype>
#include <fstream>
#include <iomanip>
#include <limits>
#include <set>

#include "output/output.hpp"

namespace zero_half {

namespace {

/// Names as free MPS takes them, without blanks, and each only once.
class names {
public:
    std::string add(std::string name) {
        std::replace_if(
            name.begin(), name.end(), [](unsigned char c) { return std::isspace(c) != 0; }, '_');
        while (!taken_.insert(name).second) {
            name += '_';
        }
        return name;
    }

private:
    std::set<std::string> taken_;
};

struct entry {
    const std::string* row;
    double value;
};

/// A model and its cuts, column by column, on its way into a file.
class writer {
public:
    writer(const solved_model& of, std::ostream& to);
    void write();

private:
    void add_model_rows();
    void add_cuts();
    void write_rows();
    void write_columns();
    void write_right_sides();
    void write_bounds();

    /// Both infinite: a row that says nothing, which readers drop as a further objective.
    bool is_free(std::size_t i) const { return lower_[i] <= -no_bound && upper_[i] >= no_bound; }
    bool is_above(std::size_t i) const { return upper_[i] >= no_bound; }
    double right_side(std::size_t i) const { return is_above(i) ? lower_[i] : upper_[i]; }

    const model& from_;
    const run_result& run_;
    std::ostream& to_;
    std::string objective_;
    std::vector<std::string> rows_;
    std::vector<std::string> columns_;
    std::vector<double> lower_;
    std::vector<double> upper_;
    std::vector<std::vector<entry>> entries_;
};

writer::writer(const solved_model& of, std::ostream& to)
    : from_(of.from), run_(of.run), to_(to), lower_(from_.row_lower), upper_(from_.row_upper),
      entries_(of.from.lower.size()) {
    names taken;
    for (const std::string& each : from_.column_names) {
        columns_.push_back(taken.add(each));
    }
    names row_names;
    for (const std::string& each : from_.row_names) {
        rows_.push_back(row_names.add(each));
    }
    for (std::size_t i = 1; i <= run_.cuts(); ++i) {
        rows_.push_back(row_names.add("ZH" + std::to_string(i)));
    }
    objective_ = row_names.add("cost");
    add_model_rows();
    add_cuts();
}

void writer::add_model_rows() {
    for (int i = 0; i < from_.row_count(); ++i) {
        const int first = from_.rows.getVectorFirst(i);
        for (int k = first; k < first + from_.rows.getVectorSize(i); ++k) {
            const auto j = static_cast<std::size_t>(from_.rows.getIndices()[k]);
            entries_[j].push_back(
                {&rows_[static_cast<std::size_t>(i)], from_.rows.getElements()[k]});
        }
    }
}

void writer::add_cuts() {
    for (std::size_t i = run_.first_cut; i < run_.pool.size(); ++i) {
        const sparse_vector& a = run_.pool[i].coefficients;
        for (std::int32_t k = 1; k <= a.size(); ++k) {
            const auto j = static_cast<std::size_t>(a.index(k)) - 1;
            entries_[j].push_back({&rows_[lower_.size()], a.value(a.index(k))});
        }
        lower_.push_back(-no_bound);
        upper_.push_back(run_.pool[i].right);
    }
}

void writer::write() {
    to_ << std::setprecision(std::numeric_limits<double>::max_digits10);
    to_ << "NAME " << names().add(from_.name.empty() ? "model" : from_.name) << " FREE\n";
    write_rows();
    write_columns();
    write_right_sides();
    write_bounds();
    to_ << "ENDATA\n";
}

void writer::write_rows() {
    to_ << "ROWS\n N " << objective_ << '\n';
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const char kind = is_free(i) ? 'N' : lower_[i] == upper_[i] ? 'E' : is_above(i) ? 'G' : 'L';
        to_ << ' ' << kind << ' ' << rows_[i] << '\n';
    }
}

void writer::write_columns() {
    to_ << "COLUMNS\n";
    bool is_integer = false;
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if ((from_.is_integer[j] != 0) != is_integer) {
            is_integer = !is_integer;
            to_ << " MARKER 'MARKER' " << (is_integer ? "'INTORG'" : "'INTEND'") << '\n';
        }
        to_ << ' ' << columns_[j] << ' ' << objective_ << ' ' << from_.objective[j] << '\n';
        for (const entry& each : entries_[j]) {
            to_ << ' ' << columns_[j] << ' ' << *each.row << ' ' << each.value << '\n';
        }
    }
    to_ << (is_integer ? " MARKER 'MARKER' 'INTEND'\n" : "");
}

void writer::write_right_sides() {
    to_ << "RHS\n RHS " << objective_ << ' ' << 0.0 - from_.constant << '\n';
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!is_free(i)) {
            to_ << " RHS " << rows_[i] << ' ' << right_side(i) << '\n';
        }
    }
    to_ << "RANGES\n";
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (lower_[i] > -no_bound && upper_[i] < no_bound && lower_[i] != upper_[i]) {
            to_ << " RANGE " << rows_[i] << ' ' << upper_[i] - lower_[i] << '\n';
        }
    }
}

void writer::write_bounds() {
    to_ << "BOUNDS\n";
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        // Adding 0 takes the sign off a zero.
        const double low = from_.lower[j] + 0.0;
        const double high = from_.upper[j] + 0.0;
        if (low == high) {
            to_ << " FX BOUND " << columns_[j] << ' ' << low << '\n';
            continue;
        }
        if (low <= -no_bound && high >= no_bound) {
            to_ << " FR BOUND " << columns_[j] << '\n';
            continue;
        }
        if (low <= -no_bound) {
            to_ << " MI BOUND " << columns_[j] << '\n';
        } else {
            to_ << " LO BOUND " << columns_[j] << ' ' << low << '\n';
        }
        if (high >= no_bound) {
            to_ << " PL BOUND " << columns_[j] << '\n';
        } else {
            to_ << " UP BOUND " << columns_[j] << ' ' << high << '\n';
        }
    }
}

} // namespace

void write_model(const solved_model& of, const std::string& file) {
    std::ofstream out(file);
    writer(of, out).write();
    if (!out.flush()) {
        throw trouble(file + ": cannot be written");
    }
}

} // namespace zero_half
