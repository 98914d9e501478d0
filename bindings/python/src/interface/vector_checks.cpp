#include "vector_checks.hpp"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "errors.hpp"

namespace zktarn::python {

namespace {

[[noreturn]] void raise_absent(const char* procedure, const char* array) {
    raise(PyExc_ValueError, "%s() needs '%s', and the vector was created with %s=False", procedure,
          array, array);
}

/// Whether the first nz positions of the list hold indices from 1 to `last`.
bool lists_only(const vector_object& v, std::int32_t last) noexcept {
    const std::int32_t* const list = v.record->ind.data;
    std::int32_t least = 1;
    std::int32_t greatest = 1;
    for (std::int64_t k = 0, count = v.record->nz; k < count; ++k) {
        least = std::min(least, list[k]);
        greatest = std::max(greatest, list[k]);
    }
    return v.record->nz < 1 || (least >= 1 && greatest <= last);
}

[[noreturn]] void raise_foreign(const vector_object& v, std::int32_t last, const char* procedure) {
    const std::int32_t* const list = v.record->ind.data;
    std::int64_t k = 0;
    while (list[k] >= 1 && list[k] <= last) {
        ++k;
    }
    raise(PyExc_IndexError,
          "%s() needs element indices from 1 to %d, and list position %lld holds %d", procedure,
          last, static_cast<long long>(k + 1), list[k]);
}

/// The number of indices that only y lists. ValueError when y lists an index twice.
std::int64_t count_new(const vector_object& x, const vector_object& y, const char* procedure) {
    std::vector<bool> known(static_cast<std::size_t>(x.n));
    std::vector<bool> seen(static_cast<std::size_t>(x.n));
    if (x.form.elm) {
        for (std::int32_t j = 1; j <= x.n; ++j) {
            known[static_cast<std::size_t>(j - 1)] = x.record->elm(j) >= 1;
        }
    } else {
        for (std::int32_t k = 1; k <= x.record->nz; ++k) {
            known[static_cast<std::size_t>(x.record->ind(k) - 1)] = true;
        }
    }
    std::int64_t count = 0;
    for (std::int32_t k = 1; k <= y.record->nz; ++k) {
        const auto place = static_cast<std::size_t>(y.record->ind(k) - 1);
        if (seen[place]) {
            raise(PyExc_ValueError, "%s() needs distinct indices, and element %zu is listed twice",
                  procedure, place + 1);
        }
        seen[place] = true;
        count += known[place] ? 0 : 1;
    }
    return count;
}

} // namespace

void needs_coef(const vector_object& v, const char* procedure) {
    if (!v.form.coef) [[unlikely]] {
        raise_absent(procedure, "coef");
    }
}

void needs_ind(const vector_object& v, const char* procedure) {
    if (!v.form.ind) [[unlikely]] {
        raise_absent(procedure, "ind");
    }
}

void needs_elm(const vector_object& v, const char* procedure) {
    if (!v.form.elm) [[unlikely]] {
        raise_absent(procedure, "elm");
    }
}

void needs_marks_mode(const vector_object& v, const char* procedure) {
    needs_ind(v, procedure);
    needs_elm(v, procedure);
}

void needs_elements(const vector_object& v, const char* procedure) {
    if (!lists_only(v, v.n)) [[unlikely]] {
        raise_foreign(v, v.n, procedure);
    }
}

void needs_common_elements(const vector_object& x, const vector_object& y, const char* procedure) {
    const std::int32_t last = std::min(x.n, y.n);
    if (!lists_only(y, last)) [[unlikely]] {
        raise_foreign(y, last, procedure);
    }
}

void needs_room(const vector_object& x, const vector_object& y, const char* procedure) {
    const std::int64_t most = std::int64_t{x.record->nz} + y.record->nz;
    if (y.record->nz < 1 || (!x.form.ind && !x.form.elm)) {
        return;
    }
    needs_ind(x, procedure);
    if (most <= x.n) [[likely]] {
        return;
    }
    const std::int64_t added = count_new(x, y, procedure);
    if (x.record->nz + added > x.n) {
        raise(PyExc_ValueError,
              "%s() needs room for %lld new entries, and the list has room for %d", procedure,
              static_cast<long long>(added), x.n - x.record->nz);
    }
}

void needs_room_for(const vector_object& v, std::int32_t j, const char* procedure) {
    if (v.form.elm && !v.form.ind) {
        if (!is_member(v, j)) {
            raise_absent(procedure, "ind");
        }
    } else if (v.form.ind && v.record->nz >= v.n && !is_member(v, j)) {
        raise(PyExc_ValueError, "%s() needs room for element %d, and the list is full", procedure,
              j);
    }
}

bool is_member(const vector_object& v, std::int32_t j) noexcept {
    if (v.form.elm) {
        return v.record->elm(j) >= 1;
    }
    const std::int32_t* const list = v.record->ind.data;
    return !v.form.ind || std::find(list, list + v.record->nz, j) != list + v.record->nz;
}

} // namespace zktarn::python
