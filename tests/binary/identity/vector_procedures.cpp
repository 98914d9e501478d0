#include "binary/identity/procedures.hpp"
#include "binary/identity/sparse.hpp"
#include "property/reports_pass.hpp"

namespace zktarn::identity {

namespace {

using namespace vector_mod;

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
    const entry at = drawn_entry(draw, with_marks);
    results.integer(vector_get_nz(at.v.record));
}

void call_set_nz(draws& draw, digest& results) {
    entry at = drawn_entry(draw, with_marks);
    vector_set_nz(at.v.record, at.j);
    at.v.add_to(results);
}

void call_get_ind(draws& draw, digest& results) {
    const entry at = drawn_position(draw);
    results.integer(vector_get_ind(at.v.record, at.j));
}

void call_set_ind(draws& draw, digest& results) {
    entry at = drawn_position(draw);
    const std::int32_t index = draw.between(1, 1000);
    vector_set_ind(at.v.record, at.j, index);
    at.v.add_to(results);
}

void call_set_coef(draws& draw, digest& results) {
    entry at = drawn_entry(draw, with_marks);
    const double value = draw.real();
    vector_set_coef(at.v.record, at.j, value);
    results.copied(at.v.record.coef(at.j));
    at.v.add_to(results);
}

void call_get_coef(draws& draw, digest& results) {
    static constexpr form forms[] = {with_marks, with_list, {true, false, false}};
    const form arrays = draw.one_of(forms);
    const entry at = drawn_entry(draw, arrays);
    results.copied(vector_get_coef(at.v.record, at.j));
}

void call_is_elm(draws& draw, digest& results) {
    const entry at = drawn_entry(draw, with_marks);
    results.integer(vector_is_elm(at.v.record, at.j));
}

template <auto operation>
void call_on_element(draws& draw, digest& results) {
    entry at = drawn_entry(draw, with_marks);
    operation(at.v.record, at.j);
    at.v.add_to(results);
}

void call_add_nz(draws& draw, digest& results) {
    const form arrays = drawn_form(draw);
    entry at = drawn_entry(draw, arrays);
    const double value = draw.real();
    if (arrays.coef && !draw.chance(3)) {
        vector_add_nz(at.v.record, at.j, value);
        results.copied(at.v.record.coef(at.j));
    } else {
        vector_add_nz(at.v.record, at.j);
    }
    at.v.add_to(results);
}

void call_rem_nz(draws& draw, digest& results) {
    entry at = drawn_position(draw);
    vector_rem_nz(at.v.record, at.j);
    at.v.add_to(results);
}

template <auto operation>
void call_on_all(draws& draw, digest& results) {
    entry at = drawn_entry(draw, with_marks);
    operation(at.v.record);
    at.v.add_to(results);
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

/// Usually a copy with one coefficient changed a little, because two random vectors rarely match.
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

// How often each procedure is called: those on one entry, and those on whole vectors.
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
