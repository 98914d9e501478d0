#include "zktarn/host/libqv.hpp"

#include "core.hpp"

namespace zktarn::host {

using standin::missing;
using standin::operation;

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t&, const std::int64_t*, const std::int32_t&,
                                     const char*, std::int64_t) noexcept {
    missing(operation::qvcreatestructarray800_);
}

array_handle qvcreatestring800_(const char*, std::int64_t) noexcept {
    missing(operation::qvcreatestring800_);
}

array_handle qvcreatedoublescalar800_(const double&) noexcept {
    missing(operation::qvcreatedoublescalar800_);
}

array_handle qvcreatedoublematrix800_(const std::int64_t&, const std::int64_t&,
                                      const std::int32_t&) noexcept {
    missing(operation::qvcreatedoublematrix800_);
}

void qvsetfield800_(const array_handle&, const std::int64_t&, const char*, const array_handle&,
                    std::int64_t) noexcept {
    missing(operation::qvsetfield800_);
}

void qvsetfieldbynumber800_(const array_handle&, const std::int64_t&, const std::int32_t&,
                            const array_handle&) noexcept {
    missing(operation::qvsetfieldbynumber800_);
}

std::int32_t qvgetfieldnumber800_(const array_handle&, const char*, std::int64_t) noexcept {
    missing(operation::qvgetfieldnumber800_);
}

std::int32_t qvaddfield800_(const array_handle&, const char*, std::int64_t) noexcept {
    missing(operation::qvaddfield800_);
}

data_address qvgetpr800_(const array_handle&) noexcept {
    missing(operation::qvgetpr800_);
}

void qvcopyptrtoreal8800_(const data_address&, double*, const std::int64_t&) noexcept {
    missing(operation::qvcopyptrtoreal8800_);
}

void qvcopyreal8toptr800_(const double*, const data_address&, const std::int64_t&) noexcept {
    missing(operation::qvcopyreal8toptr800_);
}

void qvdestroyarray800_(const array_handle&) noexcept {
    missing(operation::qvdestroyarray800_);
}
}

} // namespace zktarn::host
