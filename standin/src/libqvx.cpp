#include "zktarn/host/libqvx.hpp"

#include <string>

#include "attempt.hpp"
#include "console.hpp"
#include "functions.hpp"

namespace zktarn::host {

using standin::attempt;
using standin::operation;
using standin::text_of;

extern "C" {

std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                              const std::int32_t& ninputs, const array_handle* inputs,
                              const char* name, std::int64_t name_length) noexcept {
    constexpr operation by = operation::qvxcallquarn800_;
    return attempt(by, std::int32_t{1}, [&] {
        if (noutputs != 1 || ninputs != 1) {
            standin::refuse(standin::fault_kind::bad_request, by,
                            "functions have one input and one output here");
        }
        outputs[0] = standin::call_function(std::string(text_of(by, name, name_length)), inputs[0]);
        return std::int32_t{0};
    });
}

std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept {
    constexpr operation by = operation::qvxprintf800_;
    return attempt(by, std::int32_t{1}, [&] {
        standin::write_to_console(text_of(by, text, text_length));
        return std::int32_t{0};
    });
}
}

} // namespace zktarn::host
