#include "console.hpp"

#include <cstdio>
#include <mutex>
#include <utility>

#include "core.hpp"

namespace zktarn::standin {

namespace {

struct kept_console {
    std::mutex lock;
    console where = console::show;
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
    if (k.where != console::capture) {
        std::fwrite(text.data(), 1, text.size(), stdout);
    }
    if (k.where != console::show) {
        k.text += text;
    }
}

void flush_console() {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    std::fflush(stdout);
    k.flushed = k.text.size();
}

console set_console(console where) {
    kept_console& k = kept();
    const std::lock_guard guard(k.lock);
    return std::exchange(k.where, where);
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

void reset_console() {
    set_console(console::show);
    clear_console();
}

} // namespace zktarn::standin
