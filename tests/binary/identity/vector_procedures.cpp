#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "binary/identity/procedures.hpp"
#include "property/reports_pass.hpp"

namespace zktarn::identity {

namespace {

using namespace vector_mod;

// Random vectors
// ------------------------------------------------------------------------------------------

/// Which arrays a vector has.
struct form {
    bool coef;
    bool ind;
    bool elm;
};

constexpr form with_marks{true, true, true};
constexpr form with_list{true, true, false};
constexpr form support_only{false, true, true};

/// A vector that uses the indices 1 to n. Its capacity is 3 n, so that every operation has room to
/// append.
class sparse {
public:
    /// Random contents. Coefficients of unlisted indices are not zero. A third of the vectors break
    /// the invariants of marks mode: they list indices without a mark, and have marks other than 0
    /// and 1.
    sparse(draws& draw, std::int32_t n, form arrays);

    sparse(const sparse& other);
    sparse& operator=(const sparse&) = delete;

    /// Adds count, list, coefficients and marks.
    void add_to(digest& results) const;

    vector_type::vector record;

private:
    void attach(form arrays);

    std::vector<double> coef_;
    std::vector<std::int32_t> ind_;
    std::vector<std::int32_t> elm_;
};

/// A random permutation of 1 to n.
std::vector<std::int32_t> shuffled(draws& draw, std::int32_t n) {
    std::vector<std::int32_t> numbers(static_cast<std::size_t>(n));
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        numbers[i] = static_cast<std::int32_t>(i + 1);
    }
    for (std::size_t left = numbers.size(); left > 1; --left) {
        std::swap(numbers[left - 1], numbers[draw.below(left)]);
    }
    return numbers;
}

template <class T>
array_1d<T> array_over(std::vector<T>& elements, bool present) {
    if (!present) {
        return {};
    }
    return {elements.data(), {static_cast<std::int64_t>(elements.size())}, {1}};
}

void sparse::attach(form arrays) {
    record.coef = array_over(coef_, arrays.coef);
    record.ind = array_over(ind_, arrays.ind);
    record.elm = array_over(elm_, arrays.elm);
}

sparse::sparse(draws& draw, std::int32_t n, form arrays)
    : coef_(static_cast<std::size_t>(3 * n)), ind_(coef_.size()), elm_(coef_.size()) {
    attach(arrays);
    for (double& each : coef_) {
        each = draw.coefficient();
    }
    if (!arrays.ind) {
        return;
    }
    const bool inconsistent = draw.chance(3);
    for (std::int32_t& mark : elm_) {
        mark = inconsistent && draw.chance(20) ? draw.between(-3, 0) : 0;
    }
    const std::vector<std::int32_t> indices = shuffled(draw, n);
    record.nz = draw.between(0, n);
    for (std::int32_t k = 1; k <= record.nz; ++k) {
        const std::int32_t j = indices[static_cast<std::size_t>(k - 1)];
        record.ind(k) = j;
        elm_[static_cast<std::size_t>(j - 1)] =
            inconsistent && draw.chance(10) ? draw.between(-2, 3) : 1;
    }
}

sparse::sparse(const sparse& other) : coef_(other.coef_), ind_(other.ind_), elm_(other.elm_) {
    const vector_type::vector& theirs = other.record;
    attach({theirs.coef.present(), theirs.ind.present(), theirs.elm.present()});
    record.nz = theirs.nz;
}

void sparse::add_to(digest& results) const {
    results.integer(record.nz);
    for (std::int32_t k = 1; record.ind.present() && k <= record.nz; ++k) {
        results.integer(record.ind(k));
    }
    for (std::int64_t j = 1; record.coef.present() && j <= record.coef.extent[0]; ++j) {
        results.computed(record.coef(j));
    }
    for (std::int64_t j = 1; record.elm.present() && j <= record.elm.extent[0]; ++j) {
        results.integer(record.elm(j));
    }
}

/// A random n: small, or large enough for several blocks of a list.
std::int32_t drawn_size(draws& draw) {
    return draw.chance(4) ? draw.between(100, 300) : draw.between(1, 20);
}

/// A random mode: marks, list or dense, with or without coefficients.
form drawn_form(draws& draw) {
    static constexpr form forms[] = {
        with_marks,           with_marks,           with_list, support_only, {false, true, false},
        {true, false, false}, {false, false, false}};
    return draw.one_of(forms);
}

// One random call of each procedure
// ------------------------------------------------------------------------------------------

/// A vector and one of its indices.
struct entry {
    sparse v;
    std::int32_t j;
};

entry drawn_entry(draws& draw, form arrays) {
    const std::int32_t n = drawn_size(draw);
    const sparse v(draw, n, arrays);
    return {v, draw.between(1, n)};
}

/// A nonempty vector and a position of its list.
entry drawn_position(draws& draw) {
    entry drawn = drawn_entry(draw, with_marks);
    if (drawn.v.record.nz == 0) {
        vector_add_nz(drawn.v.record, drawn.j);
    }
    drawn.j = draw.between(1, drawn.v.record.nz);
    return drawn;
}

void call_get_nz(draws& draw, digest& results) {
    const entry drawn = drawn_entry(draw, with_marks);
    results.integer(vector_get_nz(drawn.v.record));
}

void call_set_nz(draws& draw, digest& results) {
    entry drawn = drawn_entry(draw, with_marks);
    vector_set_nz(drawn.v.record, drawn.j);
    drawn.v.add_to(results);
}

void call_get_ind(draws& draw, digest& results) {
    const entry drawn = drawn_position(draw);
    results.integer(vector_get_ind(drawn.v.record, drawn.j));
}

void call_set_ind(draws& draw, digest& results) {
    entry drawn = drawn_position(draw);
    const std::int32_t index = draw.between(1, 1000);
    vector_set_ind(drawn.v.record, drawn.j, index);
    drawn.v.add_to(results);
}

void call_set_coef(draws& draw, digest& results) {
    entry drawn = drawn_entry(draw, with_marks);
    const double value = draw.real();
    vector_set_coef(drawn.v.record, drawn.j, value);
    results.copied(drawn.v.record.coef(drawn.j));
    drawn.v.add_to(results);
}

void call_get_coef(draws& draw, digest& results) {
    static constexpr form forms[] = {with_marks, with_list, {true, false, false}};
    const form arrays = draw.one_of(forms);
    const entry drawn = drawn_entry(draw, arrays);
    results.copied(vector_get_coef(drawn.v.record, drawn.j));
}

void call_is_elm(draws& draw, digest& results) {
    const entry drawn = drawn_entry(draw, with_marks);
    results.integer(vector_is_elm(drawn.v.record, drawn.j));
}

template <auto operation>
void call_on_element(draws& draw, digest& results) {
    entry drawn = drawn_entry(draw, with_marks);
    operation(drawn.v.record, drawn.j);
    drawn.v.add_to(results);
}

void call_add_nz(draws& draw, digest& results) {
    const form arrays = drawn_form(draw);
    entry drawn = drawn_entry(draw, arrays);
    const double value = draw.real();
    if (arrays.coef && !draw.chance(3)) {
        vector_add_nz(drawn.v.record, drawn.j, value);
        results.copied(drawn.v.record.coef(drawn.j));
    } else {
        vector_add_nz(drawn.v.record, drawn.j);
    }
    drawn.v.add_to(results);
}

void call_rem_nz(draws& draw, digest& results) {
    entry drawn = drawn_position(draw);
    vector_rem_nz(drawn.v.record, drawn.j);
    drawn.v.add_to(results);
}

template <auto operation>
void call_on_all(draws& draw, digest& results) {
    entry drawn = drawn_entry(draw, with_marks);
    operation(drawn.v.record);
    drawn.v.add_to(results);
}

void call_rem_zeros(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse v(draw, n, draw.chance(3) ? with_list : with_marks);
    vector_rem_zeros(v.record);
    v.add_to(results);
}

void call_combine(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    const form x_form = drawn_form(draw);
    sparse x(draw, n, x_form);
    const form y_form = drawn_form(draw);
    const sparse y(draw, n, y_form);
    const double alpha = draw.factor();
    const double beta = draw.factor();
    const double tol = draw.tolerance();
    const bool with_itself = draw.chance(6);
    vectors_combine(x.record, with_itself ? x.record : y.record, alpha, beta, tol);
    x.add_to(results);
}

void call_sym_diff(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse x(draw, n, draw.chance(2) ? with_marks : support_only);
    const sparse y(draw, n, draw.chance(2) ? with_list : support_only);
    const bool with_itself = draw.chance(10);
    vectors_calc_sym_diff(x.record, with_itself ? x.record : y.record);
    x.add_to(results);
}

void call_mod2(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    sparse v(draw, n, draw.chance(3) ? with_list : with_marks);
    const double tol = draw.tolerance();
    vector_mod2(v.record, tol);
    v.add_to(results);
}

/// Compares a vector with a copy in which usually one coefficient is changed a little. Two
/// independent random vectors would rarely match.
void call_are_identical(draws& draw, digest& results) {
    const std::int32_t n = drawn_size(draw);
    const sparse a(draw, n, with_marks);
    sparse b(a);
    const std::int32_t j = draw.between(1, n);
    const double change = draw.tolerance();
    if (!draw.chance(3)) {
        vector_set_coef(b.record, j, b.record.coef(j) + change);
    }
    if (draw.chance(8)) {
        vector_rem_elm(b.record, j);
    }
    const double tol = draw.tolerance();
    results.integer(vectors_are_identical(a.record, b.record, tol));
}

// The number of calls of each procedure on one entry, and of each on a whole vector.
constexpr int on_entry = 1000;
constexpr int on_vector = 4000;

constexpr procedure procedures[] = {
    {"vector_mod.vector_get_nz", call_get_nz, on_entry},
    {"vector_mod.vector_set_nz", call_set_nz, on_entry},
    {"vector_mod.vector_get_ind", call_get_ind, on_entry},
    {"vector_mod.vector_set_ind", call_set_ind, on_entry},
    {"vector_mod.vector_set_coef", call_set_coef, on_entry},
    {"vector_mod.vector_get_coef", call_get_coef, on_entry},
    {"vector_mod.vector_is_elm", call_is_elm, on_entry},
    {"vector_mod.vector_set_elm", call_on_element<vector_set_elm>, on_entry},
    {"vector_mod.vector_rem_elm", call_on_element<vector_rem_elm>, on_entry},
    {"vector_mod.vector_add_nz", call_add_nz, on_entry},
    {"vector_mod.vector_rem_nz", call_rem_nz, on_entry},
    {"vector_mod.vector_clear", call_on_all<vector_clear>, on_entry},
    {"vector_mod.vector_clean_index", call_on_all<vector_clean_index>, on_entry},
    {"vector_mod.vector_rem_zeros", call_rem_zeros, on_vector},
    {"vector_mod.vectors_combine", call_combine, 2 * on_vector},
    {"vector_mod.vectors_calc_sym_diff", call_sym_diff, on_vector},
    {"vector_mod.vector_mod2", call_mod2, on_vector},
    {"vector_mod.vectors_are_identical", call_are_identical, on_vector},
};

} // namespace

std::span<const procedure> vector_procedures() {
    return procedures;
}

} // namespace zktarn::identity
