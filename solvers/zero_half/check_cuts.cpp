// Checks a certificate of zero_half in exact rational arithmetic: check_cuts MODEL.mps CERTIFICATE.
// Uses nothing of the separator; CoinUtils reads the model. output/cut_certificate.hpp describes
// the lines. Exit status: 0 every cut follows, 1 one does not or a file is invalid, 2 wrong usage.
#include <cmath>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include <CoinMpsIO.hpp>
#include <boost/multiprecision/cpp_int.hpp>

namespace {

using boost::multiprecision::cpp_int;
using boost::multiprecision::cpp_rational;

struct row {
    std::map<int, cpp_rational> a;
    cpp_rational rhs;
};

cpp_int floor_of(const cpp_rational& value) {
    const cpp_int quotient = numerator(value) / denominator(value);
    return cpp_rational(quotient) > value ? cpp_int(quotient - 1) : quotient;
}

class checker {
public:
    explicit checker(const char* file) {
        model_.messageHandler()->setLogLevel(0);
        if (model_.readMps(file, "") != 0) {
            throw std::runtime_error(std::string(file) + ": not a valid MPS file");
        }
    }

    int check(const char* file) {
        std::ifstream stream(file);
        int cuts = 0;
        for (std::string line; std::getline(stream, line);) {
            std::istringstream words(line);
            words.exceptions(std::ios::failbit);
            std::string kind;
            words >> kind;
            if (kind == "end") {
                return cuts;
            }
            check_line(words, line);
            cuts += kind == "cut" ? 1 : 0;
        }
        throw std::runtime_error(std::string(file) + ": not a complete certificate");
    }

private:
    static cpp_rational number(std::istringstream& words) {
        double value = 0.0;
        words >> value;
        return cpp_rational(value);
    }

    /// A side or a bound, which must exist. Bounds of integer columns are rounded inwards.
    static cpp_rational limit(double value, bool is_integer, bool is_upper) {
        if (std::fabs(value) >= 1e30) {
            throw std::runtime_error("a bound or a side is used that is not there");
        }
        return cpp_rational(!is_integer ? value : is_upper ? std::floor(value) : std::ceil(value));
    }

    row model_row(int i, bool is_upper) const {
        if (i < 0 || i >= model_.getNumRows()) {
            throw std::runtime_error("the model has no such row");
        }
        row made;
        made.rhs = limit((is_upper ? model_.getRowUpper() : model_.getRowLower())[i], false, false);
        const CoinPackedMatrix& matrix = *model_.getMatrixByRow();
        const int first = matrix.getVectorFirst(i);
        for (int k = first; k < first + matrix.getVectorSize(i); ++k) {
            made.a[matrix.getIndices()[k]] += cpp_rational(matrix.getElements()[k]);
        }
        return made;
    }

    void check_line(std::istringstream& words, const std::string& line) {
        int id = 0;
        int terms = 0;
        int entries = 0;
        words >> id;
        const cpp_rational divisor = number(words);
        row sum;
        for (words >> terms; terms > 0; --terms) {
            std::string kind;
            int other = 0;
            words >> kind >> other;
            const cpp_rational multiplier = number(words);
            if (divisor <= 0 || (kind != "model" && (multiplier < 0 || rows_.count(other) == 0))) {
                throw std::runtime_error("a multiplier, divisor or row is not allowed: " + line);
            }
            const row part = kind == "model" ? model_row(other, multiplier > 0) : rows_.at(other);
            for (const auto& [j, value] : part.a) {
                sum.a[j] += value * multiplier / divisor;
            }
            sum.rhs += part.rhs * multiplier / divisor;
        }
        row claimed;
        for (words >> entries; entries > 0; --entries) {
            int j = 0;
            words >> j;
            const cpp_rational value = number(words);
            if (j < 0 || j >= model_.getNumCols() || !model_.isInteger(j) ||
                denominator(value) != 1) {
                throw std::runtime_error("a fraction or a column that is not integer: " + line);
            }
            claimed.a[j] = value;
            sum.a[j] -= value;
        }
        claimed.rhs = number(words);
        for (const auto& [j, excess] : sum.a) {
            if (excess != 0) {
                const bool is_upper = excess < 0;
                const double* bounds = is_upper ? model_.getColUpper() : model_.getColLower();
                sum.rhs -= excess * limit(bounds[j], model_.isInteger(j), is_upper);
            }
        }
        if (claimed.rhs < cpp_rational(floor_of(sum.rhs))) {
            throw std::runtime_error("the right-hand side is too small: " + line);
        }
        rows_[id] = claimed;
    }

    CoinMpsIO model_;
    std::map<int, row> rows_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: check_cuts MODEL.mps CERTIFICATE\n");
        return 2;
    }
    try {
        std::printf("%d cuts follow from the model\n", checker(argv[1]).check(argv[2]));
        return 0;
    } catch (const std::exception& found) {
        std::fprintf(stderr, "check_cuts: %s\n", found.what());
        return 1;
    }
}
