#include "output/output.hpp"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iomanip>
#include <limits>
#include <set>
#include <vector>

#include "input/error.hpp"

namespace zero_half {

namespace {

/// Makes names that free MPS can represent: without blanks, and each different from the others.
class name_table {
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

/// Collects the entries of the model and of its cuts column by column and writes them.
class mps_writer {
public:
    mps_writer(const solved_model& solved, std::ostream& stream);
    void write();

private:
    void add_model_rows();
    void add_cuts();
    void write_rows();
    void write_columns();
    void write_rhs();
    void write_bounds();

    /// Whether both sides are infinite. MPS has only kind N for such a row, and readers drop it as
    /// a further objective.
    bool is_free(std::size_t i) const { return lower_[i] <= -no_bound && upper_[i] >= no_bound; }
    bool is_above(std::size_t i) const { return upper_[i] >= no_bound; }
    double rhs(std::size_t i) const { return is_above(i) ? lower_[i] : upper_[i]; }

    const model& model_;
    const run_result& run_;
    std::ostream& stream_;
    std::string objective_;
    std::vector<std::string> rows_;
    std::vector<std::string> columns_;
    std::vector<double> lower_;
    std::vector<double> upper_;
    std::vector<std::vector<entry>> entries_;
};

mps_writer::mps_writer(const solved_model& solved, std::ostream& stream)
    : model_(solved.program), run_(solved.run), stream_(stream), lower_(model_.row_lower),
      upper_(model_.row_upper), entries_(model_.lower.size()) {
    name_table column_names;
    for (const std::string& name : model_.column_names) {
        columns_.push_back(column_names.add(name));
    }
    name_table row_names;
    for (const std::string& name : model_.row_names) {
        rows_.push_back(row_names.add(name));
    }
    for (std::size_t i = 1; i <= run_.cuts.size(); ++i) {
        rows_.push_back(row_names.add("ZH" + std::to_string(i)));
    }
    objective_ = row_names.add("cost");
    add_model_rows();
    add_cuts();
}

void mps_writer::add_model_rows() {
    for (int i = 0; i < model_.row_count(); ++i) {
        const int first = model_.rows.getVectorFirst(i);
        for (int k = first; k < first + model_.rows.getVectorSize(i); ++k) {
            const auto j = static_cast<std::size_t>(model_.rows.getIndices()[k]);
            entries_[j].push_back(
                {&rows_[static_cast<std::size_t>(i)], model_.rows.getElements()[k]});
        }
    }
}

void mps_writer::add_cuts() {
    for (const std::size_t row : run_.cuts) {
        const auto columns = run_.pool.columns(row);
        const auto coefficients = run_.pool.coefficients(row);
        for (std::size_t k = 0; k < columns.size(); ++k) {
            const auto j = static_cast<std::size_t>(columns[k]) - 1;
            entries_[j].push_back({&rows_[lower_.size()], coefficients[k]});
        }
        lower_.push_back(-no_bound);
        upper_.push_back(run_.pool.rhs(row));
    }
}

void mps_writer::write() {
    stream_ << std::setprecision(std::numeric_limits<double>::max_digits10);
    stream_ << "NAME " << name_table().add(model_.name.empty() ? "model" : model_.name)
            << " FREE\n";
    stream_ << (model_.is_maximised ? "OBJSENSE\n MAX\n" : "");
    write_rows();
    write_columns();
    write_rhs();
    write_bounds();
    stream_ << "ENDATA\n";
}

void mps_writer::write_rows() {
    stream_ << "ROWS\n N " << objective_ << '\n';
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const char kind = is_free(i) ? 'N' : lower_[i] == upper_[i] ? 'E' : is_above(i) ? 'G' : 'L';
        stream_ << ' ' << kind << ' ' << rows_[i] << '\n';
    }
}

void mps_writer::write_columns() {
    stream_ << "COLUMNS\n";
    bool is_integer = false;
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        if ((model_.is_integer[j] != 0) != is_integer) {
            is_integer = !is_integer;
            stream_ << " MARKER 'MARKER' " << (is_integer ? "'INTORG'" : "'INTEND'") << '\n';
        }
        stream_ << ' ' << columns_[j] << ' ' << objective_ << ' '
                << model_.in_sense_of_file(model_.objective[j]) << '\n';
        for (const entry& coefficient : entries_[j]) {
            stream_ << ' ' << columns_[j] << ' ' << *coefficient.row << ' ' << coefficient.value
                    << '\n';
        }
    }
    stream_ << (is_integer ? " MARKER 'MARKER' 'INTEND'\n" : "");
}

void mps_writer::write_rhs() {
    stream_ << "RHS\n RHS " << objective_ << ' ' << 0.0 - model_.in_sense_of_file(model_.constant)
            << '\n';
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (!is_free(i)) {
            stream_ << " RHS " << rows_[i] << ' ' << rhs(i) << '\n';
        }
    }
    stream_ << "RANGES\n";
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (lower_[i] > -no_bound && upper_[i] < no_bound && lower_[i] != upper_[i]) {
            stream_ << " RANGE " << rows_[i] << ' ' << upper_[i] - lower_[i] << '\n';
        }
    }
}

void mps_writer::write_bounds() {
    stream_ << "BOUNDS\n";
    for (std::size_t j = 0; j < columns_.size(); ++j) {
        // Adding 0.0 turns -0.0 into 0.0.
        const double lower = model_.lower[j] + 0.0;
        const double upper = model_.upper[j] + 0.0;
        if (lower == upper) {
            stream_ << " FX BOUND " << columns_[j] << ' ' << lower << '\n';
            continue;
        }
        if (lower <= -no_bound && upper >= no_bound) {
            stream_ << " FR BOUND " << columns_[j] << '\n';
            continue;
        }
        if (lower <= -no_bound) {
            stream_ << " MI BOUND " << columns_[j] << '\n';
        } else {
            stream_ << " LO BOUND " << columns_[j] << ' ' << lower << '\n';
        }
        if (upper >= no_bound) {
            stream_ << " PL BOUND " << columns_[j] << '\n';
        } else {
            stream_ << " UP BOUND " << columns_[j] << ' ' << upper << '\n';
        }
    }
}

} // namespace

void write_model(const solved_model& solved, const std::string& file) {
    std::ofstream stream(file);
    mps_writer(solved, stream).write();
    if (!stream.flush()) {
        throw error(file + ": cannot be written");
    }
}

} // namespace zero_half
