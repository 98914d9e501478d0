#include "zktarn/host/libzkoptimutil.hpp"

#include "core.hpp"
#include "memory_manager.hpp"

namespace zktarn::host {

using standin::count;
using standin::missing;
using standin::operation;

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    count(operation::qvMallocExOptim);
    return standin::obtain(nbytes);
}

void qvFreeExOptim(void* address) noexcept {
    count(operation::qvFreeExOptim);
    standin::release(address);
}

void assertOptim(bool condition) noexcept {
    count(operation::assertOptim);
    if (!condition) {
        standin::report_failed_assertion();
    }
}

void* instantiateRngOptim(std::int32_t) noexcept {
    missing(operation::instantiateRngOptim);
}

void deleteRngOptim(void*) noexcept {
    missing(operation::deleteRngOptim);
}

void getRandUniformOptim(void*, double*, const std::int64_t*) noexcept {
    missing(operation::getRandUniformOptim);
}

void* getRngStateOptim(void*) noexcept {
    missing(operation::getRngStateOptim);
}

void setRngStateOptim(void*, void*) noexcept {
    missing(operation::setRngStateOptim);
}

void deleteRngStateOptim(void*) noexcept {
    missing(operation::deleteRngStateOptim);
}

void ioFlushOptim() noexcept {
    missing(operation::ioFlushOptim);
}
}

} // namespace zktarn::host
