#include <array>
#include <cstddef>
#include <memory>
#include <mutex>
#include <sstream>
#include <utility>

#include "calls.hpp"

namespace zktarn::standin {

std::atomic<int> observers = 0;

namespace {

struct call_log {
    std::mutex lock;
    bool on = false;
    std::vector<host_call> calls;
    // The number of calls that have been removed from the log.
    std::int64_t forgotten = 0;
    std::array<std::shared_ptr<call_script>, operation_count> scripts;
};

/// Never destroyed: operations are called while the process exits.
call_log& all() {
    static auto& log = *new call_log;
    return log;
}

/// Updates the count of observers when one is added or removed: `before` and `now` say whether it
/// was and is present.
void count_observer(bool before, bool now) noexcept {
    observers.fetch_add(static_cast<int>(now) - static_cast<int>(before));
}

/// Writes a list of arguments, each preceded by a separator.
class argument_list {
public:
    explicit argument_list(std::ostream& out) : out_(out) {}
    std::ostream& next() {
        out_ << separator_;
        separator_ = ", ";
        return out_;
    }

private:
    std::ostream& out_;
    const char* separator_ = "";
};

/// A text in quotes, with its line feeds as `\n`.
std::string quoted(const std::string& text) {
    std::string all = "\"";
    for (const char each : text) {
        all += each == '\n' ? std::string("\\n") : std::string(1, each);
    }
    return all + '"';
}

bool is_empty(const answer& given) {
    return given.number == 0 && given.address == nullptr && given.reals.empty() &&
           given.handles.empty();
}

void write(std::ostream& out, const answer& given) {
    argument_list parts(out);
    if (given.number != 0) {
        parts.next() << given.number;
    }
    if (given.address != nullptr) {
        parts.next() << given.address;
    }
    for (const double real : given.reals) {
        parts.next() << real;
    }
    for (const std::int64_t handle : given.handles) {
        parts.next() << handle;
    }
}

} // namespace

bool operator==(const host_call& a, const host_call& b) {
    return a.what == b.what && a.integers == b.integers && a.texts == b.texts &&
           a.reals == b.reals && a.addresses == b.addresses;
}

std::ostream& operator<<(std::ostream& out, const host_call& logged) {
    out << name(logged.what) << '(';
    argument_list arguments(out);
    for (const std::int64_t integer : logged.integers) {
        arguments.next() << integer;
    }
    for (const std::string& text : logged.texts) {
        arguments.next() << quoted(text);
    }
    for (const double real : logged.reals) {
        arguments.next() << real;
    }
    for (const void* const address : logged.addresses) {
        arguments.next() << address;
    }
    out << ')';
    if (!is_empty(logged.result)) {
        write(out << " = ", logged.result);
    }
    return out;
}

std::string text_of(const host_call& logged) {
    std::ostringstream out;
    out << logged;
    return out.str();
}

bool log_calls(bool on) noexcept {
    const std::lock_guard guard(all().lock);
    const bool before = std::exchange(all().on, on);
    count_observer(before, on);
    return before;
}

std::vector<host_call> logged_calls() {
    const std::lock_guard guard(all().lock);
    return all().calls;
}

void clear_call_log() {
    const std::lock_guard guard(all().lock);
    all().forgotten += static_cast<std::int64_t>(all().calls.size());
    all().calls.clear();
}

call_script answer_calls(operation what, call_script script) {
    auto next = script ? std::make_shared<call_script>(std::move(script)) : nullptr;
    {
        const std::lock_guard guard(all().lock);
        auto& own = all().scripts[static_cast<std::size_t>(what)];
        count_observer(own != nullptr, next != nullptr);
        std::swap(own, next);
    }
    return next ? *next : call_script();
}

std::int64_t log_call(const host_call& call) {
    const std::lock_guard guard(all().lock);
    if (!all().on) {
        return -1;
    }
    all().calls.push_back(call);
    return all().forgotten + static_cast<std::int64_t>(all().calls.size()) - 1;
}

void log_result(std::int64_t position, const answer& result) {
    const std::lock_guard guard(all().lock);
    // The log may have been emptied while the call ran.
    if (position >= all().forgotten) {
        all().calls[static_cast<std::size_t>(position - all().forgotten)].result = result;
    }
}

std::optional<answer> scripted_answer(const host_call& call) {
    std::shared_ptr<call_script> script;
    {
        const std::lock_guard guard(all().lock);
        script = all().scripts[static_cast<std::size_t>(call.what)];
    }
    return script ? (*script)(call) : std::nullopt;
}

void reset_call_observers() {
    log_calls(false);
    clear_call_log();
    for (int i = 0; i < operation_count; ++i) {
        answer_calls(static_cast<operation>(i), {});
    }
}

} // namespace zktarn::standin
