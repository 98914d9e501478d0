#include "model.hpp"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <filesystem>
#include <memory>

#include <CoinFileIO.hpp>
#include <CoinMessageHandler.hpp>
#include <CoinMpsIO.hpp>

#include "zktarn/zktarn_util.hpp"

namespace zero_half {

namespace {

/// Keeps what the reader complains about first, and prints nothing.
class listener : public CoinMessageHandler {
public:
    int print() override {
        constexpr int first_complaint = 3000;
        if (first_.empty() && currentMessage().externalNumber() >= first_complaint) {
            first_ = messageBuffer();
            std::replace_if(
                first_.begin(), first_.end(), [](unsigned char c) { return std::isprint(c) == 0; },
                '?');
        }
        return 0;
    }
    const std::string& first() const { return first_; }

private:
    std::string first_;
};

/// The reader takes a file for a fixed one unless it says FREE; this one takes every file for free.
class free_reader : public CoinMpsIO {
public:
    int read(const std::string& file) {
        CoinFileInput* input = nullptr;
        if (dealWithFileName(file.c_str(), "", input) < 0) {
            return -1;
        }
        cardReader_ = new CoinMpsCardReader(input, this); // the base class deletes it
        cardReader_->setFreeFormat(true);
        int count = 0;
        CoinSet** sets = nullptr;
        const int errors = readMps(count, sets);
        for (int i = 0; i < count; ++i) {
            delete sets[i];
        }
        delete[] sets;
        return errors;
    }
};

template <class T>
std::vector<T> copied(const T* from, int n) {
    return std::vector<T>(from, from + n);
}

void look_at_file(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::is_regular_file(file, ignored)) {
        throw trouble(file + ": there is no such file");
    }
    if (std::filesystem::file_size(file, ignored) == 0) {
        throw trouble(file + ": the file is empty");
    }
}

/// The reader takes every program for a minimisation, whatever a section OBJSENSE says.
void refuse_maximisation(const std::string& file) {
    const std::unique_ptr<CoinFileInput> input(CoinFileInput::create(file));
    std::array<char, 1024> line = {};
    bool is_in_section = false;
    while (input->gets(line.data(), static_cast<int>(line.size())) != nullptr) {
        const std::string text(line.data());
        const bool is_section = std::isspace(static_cast<unsigned char>(line[0])) == 0;
        if (is_section && text.rfind("COLUMNS", 0) == 0) {
            return;
        }
        is_in_section = is_section ? text.rfind("OBJSENSE", 0) == 0 : is_in_section;
        if (is_in_section && text.find("MAX") != std::string::npos) {
            throw trouble(file +
                          ": this maximises, and only minimisation is read; turn the signs of "
                          "the objective around");
        }
    }
}

bool is_finite(const double* values, std::size_t n) {
    return std::all_of(values, values + n, [](double each) { return std::isfinite(each); });
}

/// The bounds of an integer column, rounded to what an integer can be.
void round_bounds(model& of) {
    for (std::size_t j = 0; j < of.lower.size(); ++j) {
        if (of.is_integer[j] == 0) {
            continue;
        }
        if (of.lower[j] > -no_bound) {
            of.lower[j] = zktarn::util::epsilon_ceiling(of.lower[j], 0.0);
        }
        if (of.upper[j] < no_bound) {
            of.upper[j] = zktarn::util::epsilon_floor(of.upper[j], 0.0);
        }
    }
}

model taken_from(const CoinMpsIO& reader, const std::string& file) {
    const int m = reader.getNumRows();
    const int n = reader.getNumCols();
    model made;
    made.file = file;
    made.name = reader.getProblemName();
    made.rows = *reader.getMatrixByRow();
    made.row_lower = copied(reader.getRowLower(), m);
    made.row_upper = copied(reader.getRowUpper(), m);
    made.lower = copied(reader.getColLower(), n);
    made.upper = copied(reader.getColUpper(), n);
    made.objective = copied(reader.getObjCoefficients(), n);
    made.constant = -reader.objectiveOffset();
    for (int j = 0; j < n; ++j) {
        made.is_integer.push_back(reader.isInteger(j) ? 1 : 0);
        made.column_names.emplace_back(reader.columnName(j));
    }
    for (int i = 0; i < m; ++i) {
        made.row_names.emplace_back(reader.rowName(i));
    }
    round_bounds(made);
    return made;
}

bool is_read(const CoinMpsIO& reader, int errors) {
    return errors == 0 && reader.getNumCols() > 0;
}

model checked(model read) {
    const auto elements = static_cast<std::size_t>(read.rows.getNumElements());
    if (!is_finite(read.rows.getElements(), elements) ||
        !is_finite(read.objective.data(), read.objective.size())) {
        throw trouble(read.file + ": a coefficient is not a finite number");
    }
    if (std::count(read.is_integer.begin(), read.is_integer.end(), 1) == 0) {
        throw trouble(read.file + ": no column is integer, so there is nothing to tighten");
    }
    return read;
}

} // namespace

model read_model(const std::string& file) {
    look_at_file(file);
    refuse_maximisation(file);
    listener heard;
    CoinMpsIO reader;
    reader.passInMessageHandler(&heard);
    reader.setInfinity(no_bound);
    if (is_read(reader, reader.readMps(file.c_str(), ""))) {
        return checked(taken_from(reader, file));
    }
    listener unheard;
    free_reader second;
    second.passInMessageHandler(&unheard);
    second.setInfinity(no_bound);
    if (is_read(second, second.read(file))) {
        return checked(taken_from(second, file));
    }
    throw trouble(file + ": this is no MPS file" +
                  (heard.first().empty() ? "" : "; the reader says: " + heard.first()));
}

} // namespace zero_half
