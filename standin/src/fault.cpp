#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <utility>

#include "core.hpp"

namespace zktarn::standin {

namespace {

struct handlers {
    std::mutex lock;
    fault_handler on_fault;
    assertion_handler on_failed_assertion;
};

/// Never destroyed: solver code may still report while the process winds down.
handlers& installed() {
    static auto& all = *new handlers;
    return all;
}

template <class Handler>
Handler replace(Handler handlers::*which, Handler handler) {
    const std::lock_guard guard(installed().lock);
    return std::exchange(installed().*which, std::move(handler));
}

/// A copy, so that a handler runs with no lock held and may install another one.
template <class Handler>
Handler current(Handler handlers::*which) {
    const std::lock_guard guard(installed().lock);
    return installed().*which;
}

} // namespace

void stop(const std::string& sentence) noexcept {
    std::fflush(stdout);
    std::fprintf(stderr, "zktarn stand-in host: %s\n", sentence.c_str());
    std::abort();
}

fault_handler set_fault_handler(fault_handler handler) {
    return replace(&handlers::on_fault, std::move(handler));
}

void report_fault(const fault& found) {
    if (const auto handler = current(&handlers::on_fault)) {
        handler(found);
    } else {
        stop(found.sentence);
    }
}

assertion_handler set_assertion_handler(assertion_handler handler) {
    return replace(&handlers::on_failed_assertion, std::move(handler));
}

void report_failed_assertion() {
    if (const auto handler = current(&handlers::on_failed_assertion)) {
        handler();
    } else {
        stop("an assertion of the solver failed (number " +
             std::to_string(calls(operation::assertOptim)) + ")");
    }
}

} // namespace zktarn::standin
