#include "checks.hpp"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string_view>

#include <unistd.h>

#include "zktarn_conformance/check_host.hpp"

namespace zktarn::host_conformance {

namespace {

int checks = 0;
int failed = 0;

// The check that is running. A signal handler reads it, so it is not a std::string.
std::array<char, 256> current = {};

/// A duplicate of standard output, if there is one, because a check may redirect standard output.
int output_descriptor = STDOUT_FILENO;

void set_current(const std::string& text) {
    const std::size_t length = text.copy(current.data(), current.size() - 1);
    current[length] = '\0';
}

/// Writes without stdio, which may be in the middle of a call when a signal arrives.
void write_out(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = ::write(output_descriptor, text.data(), text.size());
        if (written <= 0) {
            return;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

void write_out(int number) {
    std::array<char, 12> digits = {};
    std::size_t begin = digits.size();
    do {
        digits[--begin] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number > 0);
    write_out({digits.data() + begin, digits.size() - begin});
}

void write_summary() {
    write_out(checks);
    write_out(" checks, ");
    write_out(failed);
    write_out(" failed\n");
}

void on_signal(int number) {
    write_out("FAIL ");
    write_out(std::string_view(current.data(), std::strlen(current.data())));
    write_out(": the host ended the process by signal ");
    write_out(number);
    write_out("\n");
    ++checks;
    ++failed;
    write_summary();
    ::_exit(1);
}

} // namespace

void check(const std::string& operation, const std::string& obligation,
           const std::function<finding()>& look) {
    const std::string label = operation + ": " + obligation;
    set_current(label);
    const finding wrong = look();
    ++checks;
    if (wrong.empty()) {
        write_out("ok   " + label + "\n");
    } else {
        ++failed;
        write_out("FAIL " + label + ": " + wrong + "\n");
    }
    set_current(operation + ": after the check that it " + obligation);
}

void note(const std::string& operation, const std::string& remark) {
    write_out("note " + operation + ": " + remark + "\n");
}

void report_signals() {
    // A duplicate, because a check may have redirected standard output when the signal arrives.
    if (const int copy = ::dup(STDOUT_FILENO); copy >= 0) {
        output_descriptor = copy;
    }
    for (const int number : {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGSEGV}) {
        std::signal(number, on_signal);
    }
}

bool summary() {
    write_summary();
    return failed == 0;
}

} // namespace zktarn::host_conformance
