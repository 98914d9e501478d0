#include "console_output.hpp"

#include <cstdio>
#include <mutex>
#include <utility>

#include "zktarn_standin/console.hpp"

namespace zktarn::standin {

namespace {

struct kept_console {
    std::mutex lock;
    console destination = console::show;
    std::string text;
    std::size_t flushed = 0;
};

kept_console& kept() {
    static auto& all = *new kept_console;
    return all;
}

} // namespace

void write_to_console(std::string_view text) {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    if (k.destination != console::capture) {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    if (k.destination != console::show) {
        k.text += text;
    }
}

void flush_console() {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    std::fflush(stdout);
    k.flushed = k.text.size();
}

console set_console(console destination) {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    return std::exchange(k.destination, destination);
}

std::string console_text() {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    return k.text;
}

std::string flushed_console_text() {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    return k.text.substr(0, k.flushed);
}

void clear_console() {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    k.text.clear();
    k.flushed = 0;
}

} // namespace zktarn::standin
