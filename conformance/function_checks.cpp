#include <cmath>
#include <cstdint>
#include <string>

#include "checks.hpp"
#include "sample_struct.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"

namespace zktarn::host_conformance {

namespace {

using host::array_handle;

constexpr const char* calls = "qvxcallquarn800_";

/// The handle that the function returned, or 0.
array_handle call(const std::string& function, const array_handle& input) {
    const std::int32_t noutputs[] = {1, -1};
    const std::int32_t ninputs[] = {1, -1};
    array_handle output = 0;
    host::qvxcallquarn800_(noutputs[0], &output, ninputs[0], &input, (function + "#?").data(),
                           static_cast<std::int64_t>(function.size()));
    return output;
}

finding is_as_wanted(double answer, const settings& wanted) {
    if (std::isnan(answer)) {
        return "it is not a number";
    }
    if (wanted.answer && answer != *wanted.answer) {
        return "it is " + std::to_string(answer) + ", not " + std::to_string(*wanted.answer);
    }
    return {};
}

finding reads_answer(const array_handle& output, const settings& wanted) {
    host::data_address data = host::qvgetpr800_(output);
    if (data == nullptr) {
        return "it has no real data";
    }
    double answer = std::nan("");
    const std::int64_t one = 1;
    host::qvcopyptrtoreal8800_(data, &answer, one);
    return is_as_wanted(answer, wanted);
}

/// Calls the function twice with the same struct, which the first call must not change.
finding answers(const settings& wanted) {
    const array_handle input = make_sample_struct();
    if (input == 0) {
        return "there is no struct to call it with";
    }
    finding wrong;
    for (int i = 0; i < 2 && wrong.empty(); ++i) {
        const array_handle output = call(wanted.function, input);
        if (output == 0 || output == input) {
            wrong = output == 0 ? "there is none" : "it is the input";
        } else {
            wrong = reads_answer(output, wanted);
            host::qvdestroyarray800_(output);
        }
    }
    if (wrong.empty() && field_number(input, "column") != 3) {
        wrong = "the input is not what it was";
    }
    host::qvdestroyarray800_(input);
    return wrong;
}

} // namespace

void check_function(const settings& wanted) {
    if (wanted.function.empty()) {
        note(calls, "not called, because --function names no function");
        return;
    }
    check(calls, "calls '" + wanted.function + "' twice and leaves the input unchanged",
          [&] { return answers(wanted); });
}

} // namespace zktarn::host_conformance
