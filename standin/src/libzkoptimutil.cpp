#include "zktarn/host/libzkoptimutil.hpp"

#include "attempt.hpp"
#include "console.hpp"
#include "generators.hpp"
#include "memory_manager.hpp"

namespace zktarn::host {

using standin::attempt;
using standin::operation;

namespace {

constexpr void* none = nullptr;

} // namespace

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    return attempt(operation::qvMallocExOptim, none, [=] { return standin::obtain(nbytes); });
}

void qvFreeExOptim(void* address) noexcept {
    attempt(operation::qvFreeExOptim, [=] { standin::release(address); });
}

void* instantiateRngOptim(std::int32_t seed) noexcept {
    return attempt(operation::instantiateRngOptim, none,
                   [=] { return standin::make_generator(seed); });
}

void deleteRngOptim(void* generator) noexcept {
    attempt(operation::deleteRngOptim, [=] { standin::delete_generator(generator); });
}

void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept {
    attempt(operation::getRandUniformOptim, [=] { standin::draw(generator, values, *count); });
}

void* getRngStateOptim(void* generator) noexcept {
    return attempt(operation::getRngStateOptim, none,
                   [=] { return standin::save_state(generator); });
}

void setRngStateOptim(void* generator, void* state) noexcept {
    attempt(operation::setRngStateOptim, [=] { standin::restore_state(generator, state); });
}

void deleteRngStateOptim(void* state) noexcept {
    attempt(operation::deleteRngStateOptim, [=] { standin::delete_state(state); });
}

void assertOptim(bool condition) noexcept {
    attempt(operation::assertOptim, [=] {
        if (!condition) {
            standin::report_failed_assertion();
        }
    });
}

void ioFlushOptim() noexcept {
    attempt(operation::ioFlushOptim, [] { standin::flush_console(); });
}
}

} // namespace zktarn::host
