#include "zktarn/host/libqvx.hpp"

#include <string>

#include "attempt.hpp"
#include "console_output.hpp"
#include "function_registry.hpp"
#include "wording.hpp"

namespace zktarn::host {

using standin::attempt;
using standin::host_call;
using standin::logged_text;
using standin::operation;
using standin::text_argument;

extern "C" {

std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                              const std::int32_t& ninputs, const array_handle* inputs,
                              const char* name, std::int64_t name_length) noexcept {
    constexpr operation what = operation::qvxcallquarn800_;
    return attempt(
        what, std::int32_t{1},
        [&] {
            host_call call{what, {noutputs, ninputs}, {logged_text(name, name_length)}};
            for (std::int32_t i = 0; i < ninputs; ++i) {
                call.integers.push_back(inputs[i]);
            }
            return call;
        },
        standin::written_handles(outputs, noutputs),
        [&] {
            if (noutputs != 1 || ninputs != 1) {
                standin::refuse(standin::fault_kind::bad_request, what,
                                "functions of the stand-in have one input and one output");
            }
            outputs[0] = standin::call_function(std::string(text_argument(what, name, name_length)),
                                                inputs[0]);
            return std::int32_t{0};
        });
}

std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept {
    constexpr operation what = operation::qvxprintf800_;
    return attempt(
        what, std::int32_t{1},
        [&] {
            return host_call{what, {}, {logged_text(text, text_length)}};
        },
        [&] {
            standin::write_to_console(text_argument(what, text, text_length));
            return std::int32_t{0};
        });
}
}

} // namespace zktarn::host
