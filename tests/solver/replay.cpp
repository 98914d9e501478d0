#include "replay.hpp"

#include <algorithm>
#include <map>
#include <optional>

#include <boost/multiprecision/cpp_int.hpp>

namespace zero_half::testing {

namespace {

using boost::multiprecision::cpp_int;
using boost::multiprecision::cpp_rational;

cpp_int floor_of(const cpp_rational& value) {
    const cpp_int n = numerator(value);
    const cpp_int d = denominator(value);
    const cpp_int quotient = n / d;
    return n < 0 && quotient * d != n ? cpp_int(quotient - 1) : quotient;
}

/// a * x <= right, columns counted from 1.
struct exact_row {
    std::map<int, cpp_rational> a;
    cpp_rational right;
};

exact_row claimed(const integral_row& row) {
    exact_row made;
    for (std::int32_t k = 1; k <= row.coefficients.size(); ++k) {
        const std::int32_t j = row.coefficients.index(k);
        made.a[j] = cpp_rational(row.coefficients.value(j));
    }
    made.right = cpp_rational(row.right);
    return made;
}

class replayer {
public:
    replayer(const model& from, const run_result& run) : from_(from), run_(run) {}

    verdict all() {
        for (std::size_t i = 0; i < run_.pool.size(); ++i) {
            const integral_row& row = run_.pool[i];
            const exact_row says = claimed(row);
            const bool is_cut = row.from.model_row < 0;
            verdict_.cuts += is_cut ? 1 : 0;
            if (is_cut) {
                check_cut(i, row, says);
            } else {
                check_model_row(i, row, says);
            }
        }
        return verdict_;
    }

private:
    void fault(std::size_t i, const std::string& what) {
        verdict_.faults.push_back("row " + std::to_string(i) + " " + what);
    }

    /// What rounding a coefficient adds to the left-hand side at most; none without a bound.
    std::optional<cpp_rational> most_added(int j, const cpp_rational& error) const {
        const auto at = static_cast<std::size_t>(j - 1);
        const double bound = error > 0 ? from_.upper[at] : from_.lower[at];
        if (error != 0 && (bound <= -no_bound || bound >= no_bound)) {
            return std::nullopt;
        }
        return error == 0 ? cpp_rational(0) : cpp_rational(error * cpp_rational(bound));
    }

    void check_model_row(std::size_t i, const integral_row& row, exact_row says) {
        const int r = row.from.model_row;
        const auto at = static_cast<std::size_t>(r);
        const cpp_rational scale(row.from.scale);
        const double bound = scale > 0 ? from_.row_upper[at] : from_.row_lower[at];
        if (bound <= -no_bound || bound >= no_bound) {
            return fault(i, "is made of a bound that is not there");
        }
        cpp_rational right = scale * cpp_rational(bound);
        const int first = from_.rows.getVectorFirst(r);
        for (int k = 0; k < from_.rows.getVectorSize(r); ++k) {
            const int j = from_.rows.getIndices()[first + k] + 1;
            const cpp_rational exact = scale * cpp_rational(from_.rows.getElements()[first + k]);
            const auto added = most_added(j, cpp_rational(says.a[j] - exact));
            if (!added) {
                return fault(i, "has a rounded coefficient without a bound");
            }
            right += *added;
            says.a.erase(j);
        }
        if (!says.a.empty()) {
            fault(i, "has a column that its row has not");
        }
        if (says.right < cpp_rational(floor_of(right))) {
            fault(i, "has too small a right-hand side");
        }
    }

    void check_cut(std::size_t i, const integral_row& row, const exact_row& says) {
        exact_row sum;
        for (const int member : row.from.summed) {
            if (static_cast<std::size_t>(member) >= i) {
                return fault(i, "is made of a later row");
            }
            const exact_row part = claimed(run_.pool[static_cast<std::size_t>(member)]);
            for (const auto& [j, value] : part.a) {
                sum.a[j] += value;
            }
            sum.right += part.right;
        }
        const std::optional<exact_row> derived = halved(sum, row.from.complemented);
        if (!derived) {
            return fault(i, "was rounded where there is no bound or no integer column");
        }
        compare(i, says, *derived);
    }

    /// What is claimed may be what is derived divided by an integer, and rounded down once more.
    void compare(std::size_t i, const exact_row& says, const exact_row& derived) {
        if (says.a.empty() || derived.a.count(says.a.begin()->first) == 0) {
            return fault(i, "has another first column than is derived");
        }
        const cpp_rational factor = derived.a.begin()->second / says.a.begin()->second;
        if (factor <= 0 || denominator(factor) != 1 || says.a.size() != derived.a.size()) {
            return fault(i, "is no divisor of what is derived");
        }
        for (const auto& [j, value] : derived.a) {
            const auto own = says.a.find(j);
            if (own == says.a.end() || own->second * factor != value) {
                return fault(i, "has another coefficient than is derived");
            }
            if (denominator(own->second) != 1) {
                return fault(i, "has a coefficient that is no integer");
            }
        }
        if (says.right < cpp_rational(floor_of(derived.right / factor))) {
            fault(i, "has a smaller right-hand side than is derived");
        }
    }

    /// Nothing where something would be rounded that is no multiple of an integer column's distance
    /// to a bound.
    std::optional<exact_row> halved(const exact_row& sum,
                                    const std::vector<int>& complemented) const {
        exact_row made;
        cpp_rational right = sum.right;
        cpp_rational moved = 0;
        for (const auto& [j, value] : sum.a) {
            const bool is_upper =
                std::find(complemented.begin(), complemented.end(), j) != complemented.end();
            const auto at = static_cast<std::size_t>(j - 1);
            const double bound = is_upper ? from_.upper[at] : from_.lower[at];
            const bool has_bound = bound > -no_bound && bound < no_bound;
            const cpp_rational b(has_bound ? bound : 0.0);
            const cpp_rational own = is_upper ? cpp_rational(-value) : value;
            const cpp_rational half = cpp_rational(floor_of(own / 2));
            if (from_.is_integer[at] == 0 || (!has_bound && half * 2 != own)) {
                return std::nullopt;
            }
            right -= value * b;
            moved += is_upper ? cpp_rational(-half * b) : cpp_rational(half * b);
            if (half != 0) {
                made.a[j] = is_upper ? cpp_rational(-half) : half;
            }
        }
        made.right = cpp_rational(floor_of(right / 2)) + moved;
        return made;
    }

    const model& from_;
    const run_result& run_;
    verdict verdict_;
};

} // namespace

verdict replay(const model& from, const run_result& run) {
    return replayer(from, run).all();
}

} // namespace zero_half::testing
