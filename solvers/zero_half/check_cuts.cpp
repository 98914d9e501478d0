// Checks a certificate of zero_half in exact rational arithmetic: check_cuts MODEL.mps CERTIFICATE.
// Uses nothing of the separator; CoinUtils reads the model. output/output.hpp describes
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
using boost::multiprecision::cpp_rational;

struct row {
    std::map<int, cpp_rational> a;
    cpp_rational rhs;
};

void require(bool condition, const char* sentence) {
    if (!condition) {
        throw std::runtime_error(sentence);
    }
}

template <class T>
T next(std::istream& words) {
    T value;
    require(static_cast<bool>(words >> value), "a word is missing or not a number");
    return value;
}

class checker {
public:
    explicit checker(const char* file) {
        model_.messageHandler()->setLogLevel(0);
        require(model_.readMps(file, "") == 0, "the model is not a valid MPS file");
    }

    int check(std::istream& stream) {
        int cuts = 0;
        for (std::string line; std::getline(stream, line);) {
            std::istringstream words(line);
            const auto kind = next<std::string>(words);
            if (kind == "end") {
                require(next<int>(words) == cuts, "the number of cuts is another one");
                return cuts;
            }
            require(kind == "cut" || kind == "row", "a line begins with another word");
            try {
                check_row(words);
            } catch (const std::exception& found) {
                throw std::runtime_error(found.what() + (": " + line));
            }
            cuts += kind == "cut" ? 1 : 0;
        }
        throw std::runtime_error("the certificate is missing or not complete");
    }

private:
    /// A side or a bound, which must exist.
    static cpp_rational limit(double value) {
        require(std::fabs(value) < 1e30, "a bound or a side is used that the model does not have");
        return cpp_rational(value);
    }

    row model_row(int i, bool is_upper) const {
        require(i >= 0 && i < model_.getNumRows(), "the model has no such row");
        row made{{}, limit((is_upper ? model_.getRowUpper() : model_.getRowLower())[i])};
        const CoinPackedMatrix& matrix = *model_.getMatrixByRow();
        const int first = matrix.getVectorFirst(i);
        for (int k = first; k < first + matrix.getVectorSize(i); ++k) {
            made.a[matrix.getIndices()[k]] += cpp_rational(matrix.getElements()[k]);
        }
        return made;
    }

    void add_term(std::istream& words, const cpp_rational& divisor, row& sum) const {
        const bool is_model_row = next<std::string>(words) == "model";
        const int id = next<int>(words);
        const cpp_rational multiplier(next<double>(words));
        require(is_model_row || (multiplier > 0 && rows_.count(id) > 0), "a term is not allowed");
        const row part = is_model_row ? model_row(id, multiplier > 0) : rows_.at(id);
        for (const auto& [j, value] : part.a) {
            sum.a[j] += value * multiplier / divisor;
        }
        sum.rhs += part.rhs * multiplier / divisor;
    }

    /// Bounds of integer columns are rounded inwards.
    void use_bound(std::istream& words, row& sum) const {
        const bool is_upper = next<std::string>(words) == "upper";
        const int j = next<int>(words);
        const cpp_rational value(next<double>(words));
        const cpp_rational excess = sum.a.count(j) > 0 ? sum.a[j] : cpp_rational(0);
        require(is_upper ? excess < 0 : excess > 0, "a bound is not needed");
        double bound = (is_upper ? model_.getColUpper() : model_.getColLower())[j];
        bound = !model_.isInteger(j) ? bound : is_upper ? std::floor(bound) : std::ceil(bound);
        require(value == limit(bound), "a bound has another value");
        sum.rhs -= excess * value;
        sum.a[j] = 0;
    }

    void check_row(std::istream& words) {
        const int id = next<int>(words);
        const cpp_rational divisor(next<double>(words));
        require(divisor > 0 && rows_.count(id) == 0, "a divisor or an identifier is not allowed");
        row sum;
        row claimed;
        for (int count = next<int>(words); count > 0; --count) {
            add_term(words, divisor, sum);
        }
        for (int count = next<int>(words); count > 0; --count) {
            const int j = next<int>(words);
            const cpp_rational value(next<double>(words));
            require(j >= 0 && j < model_.getNumCols() && model_.isInteger(j), "no integer column");
            require(denominator(value) == 1 && claimed.a.emplace(j, value).second, "no integer");
            sum.a[j] -= value;
        }
        for (int count = next<int>(words); count > 0; --count) {
            use_bound(words, sum);
        }
        for (const auto& each : sum.a) {
            require(each.second == 0, "a coefficient differs without a bound for it");
        }
        claimed.rhs = cpp_rational(next<double>(words));
        require(words.peek() == std::char_traits<char>::eof(), "the line is too long");
        // An integer is at least the sum rounded down.
        require(denominator(claimed.rhs) == 1 && claimed.rhs > sum.rhs - 1,
                "the right-hand side is too small");
        rows_[id] = claimed;
    }

    CoinMpsIO model_;
    std::map<int, row> rows_;
};
} // namespace

int main(int argc, char** argv) try {
    require(argc == 3, "usage: check_cuts MODEL.mps CERTIFICATE");
    std::ifstream certificate(argv[2]);
    std::printf("%d cuts follow from the model\n", checker(argv[1]).check(certificate));
    return 0;
} catch (const std::exception& found) {
    std::fprintf(stderr, "check_cuts: %s\n", found.what());
    return argc == 3 ? 1 : 2;
}
