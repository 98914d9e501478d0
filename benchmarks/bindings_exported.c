/* Calls the accessors in the library, as a checked build does. This library itself does not check.
 */
#define ZKTARN_CHECKED
#include "bindings_calls.h"

int64_t c_is_elm_exported(const zktarn_vector* v, const int32_t* indices, int32_t n) {
    int64_t count = 0;
    for (int32_t i = 0; i < n; ++i) {
        count += zktarn_vector_is_elm(v, indices[i]);
    }
    return count;
}
