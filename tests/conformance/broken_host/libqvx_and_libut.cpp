#include <cstdio>
#include <numeric>
#include <string>
#include <string_view>

#include "broken_host/broken_host.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"

namespace zktarn::host {

using namespace zktarn::broken_host;

namespace {

/// The number that the tests pass as --answer: the sum of the reals and the number of characters.
double sum_of(const array& input) {
    double sum = 0.0;
    for (const array_handle value : input.values) {
        if (value != 0) {
            const array& held = arrays.at(value);
            sum += std::accumulate(held.reals.begin(), held.reals.end(), 0.0) +
                   static_cast<double>(held.text.size());
        }
    }
    return sum;
}

std::string unflushed;

void put(std::string_view text) {
    if (has_flaw("console_holds_back")) {
        unflushed += text;
    } else {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
}

} // namespace

extern "C" {

std::int32_t qvxcallquarn800_(const std::int32_t&, array_handle* outputs, const std::int32_t&,
                              const array_handle* inputs, const char* name,
                              std::int64_t name_length) noexcept {
    if (std::string_view(name, static_cast<std::size_t>(name_length)) != "tarnCallback") {
        return 1;
    }
    if (has_flaw("returns_input")) {
        *outputs = *inputs;
    } else if (has_flaw("returns_text")) {
        *outputs = add({{}, "text"});
    } else {
        *outputs = add({{sum_of(arrays.at(*inputs))}});
    }
    if (has_flaw("input_used_up")) {
        arrays.at(*inputs) = {};
    }
    return 0;
}

std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept {
    const std::string_view all(text, static_cast<std::size_t>(text_length));
    if (has_flaw("percent_lost")) {
        for (const char c : all) {
            put(c == '%' ? "" : std::string_view(&c, 1));
        }
    } else if (has_flaw("line_feed_added")) {
        put(std::string(all) + "\n");
    } else if (has_flaw("null_is_line_feed")) {
        put(all.empty() ? "\n" : all);
    } else if (has_flaw("long_lines_cut")) {
        put(all.substr(0, 255));
    } else if (!has_flaw("console_silent")) {
        put(all);
    }
    return 0;
}

bool utIsInterruptPending() noexcept {
    return has_flaw("always_interrupted");
}
}

} // namespace zktarn::host
