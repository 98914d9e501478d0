#include "zktarn/vector/vector_type.hpp"

#include "arguments.hpp"
#include "records.hpp"

using namespace zktarn;
using c::cpp;

zktarn_flag zktarn_vector_alloc(zktarn_vector** vec, int32_t n, const zktarn_flag* no_coef,
                                const zktarn_flag* no_ind, const zktarn_flag* no_elm) {
    if (c::any_null(vec)) {
        return 0;
    }
    return vector_type::vector_alloc(cpp(vec), n, c::optional(no_coef), c::optional(no_ind),
                                     c::optional(no_elm));
}

void zktarn_vector_free(zktarn_vector** vec) {
    if (!c::any_null(vec)) {
        vector_type::vector_free(cpp(vec));
    }
}

void zktarn_vectorinitialise(zktarn_vector* first, int32_t count) {
    if (c::has_records(first, count)) {
        vector_type::_vectorinitialise(cpp(first), count);
    }
}
