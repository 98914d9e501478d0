#include "zktarn/host/libzkoptimutil.hpp"

#include "attempt.hpp"
#include "block_table.hpp"
#include "console_output.hpp"
#include "generators.hpp"

namespace zktarn::host {

using standin::attempt;
using standin::host_call;
using standin::operation;

namespace {

constexpr void* none = nullptr;

/// A call whose arguments are all addresses.
host_call of_addresses(operation what, std::initializer_list<const void*> addresses) {
    return {what, {}, {}, {}, addresses};
}

} // namespace

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    constexpr operation what = operation::qvMallocExOptim;
    return attempt(
        what, none,
        [=] {
            return host_call{what, {nbytes}};
        },
        [=] { return standin::obtain(nbytes); });
}

void qvFreeExOptim(void* address) noexcept {
    constexpr operation what = operation::qvFreeExOptim;
    attempt(
        what, [=] { return of_addresses(what, {address}); }, [=] { standin::release(address); });
}

void* instantiateRngOptim(std::int32_t seed) noexcept {
    constexpr operation what = operation::instantiateRngOptim;
    return attempt(
        what, none,
        [=] {
            return host_call{what, {seed}};
        },
        [=] { return standin::make_generator(seed); });
}

void deleteRngOptim(void* generator) noexcept {
    constexpr operation what = operation::deleteRngOptim;
    attempt(
        what, [=] { return of_addresses(what, {generator}); },
        [=] { standin::delete_generator(generator); });
}

void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept {
    constexpr operation what = operation::getRandUniformOptim;
    attempt(
        what, standin::nothing(),
        [=] {
            return host_call{what, {*count}, {}, {}, {generator}};
        },
        standin::written_reals(values, *count),
        [=] {
            standin::draw(generator, values, *count);
            return standin::nothing();
        });
}

void* getRngStateOptim(void* generator) noexcept {
    constexpr operation what = operation::getRngStateOptim;
    return attempt(
        what, none, [=] { return of_addresses(what, {generator}); },
        [=] { return standin::save_state(generator); });
}

void setRngStateOptim(void* generator, void* state) noexcept {
    constexpr operation what = operation::setRngStateOptim;
    attempt(
        what,
        [=] {
            return of_addresses(what, {generator, state});
        },
        [=] { standin::restore_state(generator, state); });
}

void deleteRngStateOptim(void* state) noexcept {
    constexpr operation what = operation::deleteRngStateOptim;
    attempt(
        what, [=] { return of_addresses(what, {state}); }, [=] { standin::delete_state(state); });
}

void assertOptim(bool condition) noexcept {
    constexpr operation what = operation::assertOptim;
    attempt(
        what,
        [=] {
            return host_call{what, {condition ? 1 : 0}};
        },
        [=] {
            if (!condition) {
                standin::report_failed_assertion();
            }
        });
}

void ioFlushOptim() noexcept {
    constexpr operation what = operation::ioFlushOptim;
    attempt(
        what, [] { return host_call{what}; }, [] { standin::flush_console(); });
}
}

} // namespace zktarn::host
