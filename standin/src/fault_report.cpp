#include <cstdio>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <utility>

#include "fault_report.hpp"
#include "wording.hpp"

namespace zktarn::standin {

namespace {

struct handlers {
    std::mutex lock;
    std::shared_ptr<fault_handler> on_fault;
    std::shared_ptr<assertion_handler> on_failed_assertion;
};

/// Never destroyed: solver code may still report while the process exits.
handlers& installed() {
    static auto& all = *new handlers;
    return all;
}

template <class Handler>
Handler replace(std::shared_ptr<Handler> handlers::*which, Handler handler) {
    auto next = handler ? std::make_shared<Handler>(std::move(handler)) : nullptr;
    {
        const std::lock_guard guard(installed().lock);
        std::swap(installed().*which, next);
    }
    return next ? *next : Handler();
}

/// The installed handler, not a copy, so that it keeps its state. It is shared, so that it runs
/// with no lock held and may install another one.
template <class Handler>
std::shared_ptr<Handler> current(std::shared_ptr<Handler> handlers::*which) {
    const std::lock_guard guard(installed().lock);
    return installed().*which;
}

/// Ends the process with a sentence, and the call stacks that belong to it, on standard error.
[[noreturn]] void stop(const std::string& sentence, const std::string& stacks) noexcept {
    std::fflush(stdout);
    std::fprintf(stderr, "zktarn stand-in host: %s\n%s", sentence.c_str(), stacks.c_str());
    std::abort();
}

} // namespace

fault fault_without_block(fault_kind kind, std::string sentence, const call_stack& origin) {
    fault found;
    found.kind = kind;
    found.sentence = std::move(sentence);
    found.origin = origin;
    return found;
}

void refuse(fault_kind kind, const char* caller, const std::string& reason,
            const call_stack& origin) {
    throw fault_without_block(kind, std::string(caller) + ": " + reason, origin);
}

void refuse(fault_kind kind, operation caller, const std::string& reason,
            const call_stack& origin) {
    refuse(kind, name(caller), reason, origin);
}

std::string_view text_argument(operation caller, const char* text, std::int64_t length) {
    if (length < 0) {
        refuse(fault_kind::bad_request, caller,
               "the length of a text is " + std::to_string(length));
    }
    if (text == nullptr && length > 0) {
        refuse(fault_kind::bad_request, caller, "the address of a text is null");
    }
    return {text, static_cast<std::size_t>(length)};
}

fault_handler set_fault_handler(fault_handler handler) {
    return replace(&handlers::on_fault, std::move(handler));
}

void report_fault(fault found) noexcept {
    found.place = call_stack::current();
    if (const auto handler = current(&handlers::on_fault)) {
        (*handler)(found);
    } else {
        stop(found.sentence,
             indented("called from", found.place) + indented("made by", found.origin));
    }
}

assertion_handler set_assertion_handler(assertion_handler handler) {
    return replace(&handlers::on_failed_assertion, std::move(handler));
}

void report_failed_assertion() noexcept {
    if (const auto handler = current(&handlers::on_failed_assertion)) {
        (*handler)();
    } else {
        stop("an assertion of the solver failed (number " +
                 std::to_string(calls(operation::assertOptim)) + ")",
             indented("called from", call_stack::current()));
    }
}

} // namespace zktarn::standin
