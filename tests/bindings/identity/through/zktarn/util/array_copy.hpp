#pragma once

#include <cstdint>

#include "via.h"

namespace zktarn::util {

inline void xcopy_i1(const std::int8_t* source, std::int8_t* destination, const std::int32_t& n) {
    via_xcopy_i1(source, destination, n);
}
inline void xcopy_i4(const std::int32_t* source, std::int32_t* destination, const std::int32_t& n) {
    via_xcopy_i4(source, destination, n);
}
inline void xcopy_r8(const double* source, double* destination, const std::int32_t& n) {
    via_xcopy_r8(source, destination, n);
}
inline void xzero_i4(std::int32_t* array, const std::int32_t& n) {
    via_xzero_i4(array, n);
}
inline void xzero_r8(double* array, const std::int32_t& n) {
    via_xzero_r8(array, n);
}

} // namespace zktarn::util
