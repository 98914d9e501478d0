#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <string_view>

#include <unistd.h>

#include "checks.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host_conformance {

namespace {

constexpr const char* prints = "qvxprintf800_";
constexpr const char* flushes = "ioFlushOptim";

/// A text with percent signs, a line feed and blanks, followed by characters beyond its length.
constexpr std::string_view difficult = "100% of %d %s\n  and no more  #?";
constexpr std::size_t difficult_length = difficult.size() - 2;

void print(std::string_view text) {
    host::qvxprintf800_(text.data(), static_cast<std::int64_t>(text.size()));
}

/// Redirects standard output to a file while the object exists.
class caught_output {
public:
    caught_output() : file_(std::tmpfile()), before_(::dup(STDOUT_FILENO)) {
        std::fflush(stdout);
        if (file_ != nullptr && before_ >= 0) {
            ::dup2(::fileno(file_), STDOUT_FILENO);
        }
    }
    ~caught_output() {
        std::fflush(stdout);
        ::dup2(before_, STDOUT_FILENO);
        ::close(before_);
        if (file_ != nullptr) {
            std::fclose(file_);
        }
    }
    caught_output(const caught_output&) = delete;
    caught_output& operator=(const caught_output&) = delete;

    [[nodiscard]] bool is_caught() const { return file_ != nullptr && before_ >= 0; }

    /// The output so far.
    [[nodiscard]] std::string text() const {
        std::string all;
        char piece[4096];
        for (;;) {
            const ssize_t count =
                ::pread(::fileno(file_), piece, sizeof piece, static_cast<off_t>(all.size()));
            if (count <= 0) {
                return all;
            }
            all.append(piece, static_cast<std::size_t>(count));
        }
    }

private:
    std::FILE* file_;
    int before_;
};

/// The first characters of a text, with visible line feeds.
std::string shown(const std::string& text) {
    std::string line;
    for (const char c : text.substr(0, 60)) {
        line += c == '\n' ? std::string("\\n") : std::string(1, c);
    }
    return "'" + line + "'" + (text.size() > 60 ? " and more" : "");
}

/// Compares the console output of a call with a text. The host flushes it; so does this program if
/// `flush_here` is true.
finding comes_out(const std::string& expected, bool flush_here,
                  const std::function<void()>& print_it) {
    const caught_output output;
    if (!output.is_caught()) {
        return "standard output cannot be redirected here";
    }
    print_it();
    host::ioFlushOptim();
    if (flush_here) {
        std::fflush(stdout);
    }
    const std::string text = output.text();
    return text == expected ? finding()
                            : shown(text) + " came to standard output, not " + shown(expected);
}

void check_caught_console() {
    check(prints, "prints a text of that length, percent signs and blanks included", [] {
        const std::string_view text = difficult.substr(0, difficult_length);
        return comes_out(std::string(text), true, [=] { print(text); });
    });
    check(prints, "prints nothing for a length of 0",
          [] { return comes_out("", true, [] { print(difficult.substr(0, 0)); }); });
    check(prints, "prints texts in order, a long one included", [] {
        const std::string line(10000, 'x');
        return comes_out("a" + line + "\n", true, [&] {
            print("a");
            print(line + "\n");
        });
    });
    check(flushes, "makes all printed text visible",
          [] { return comes_out("flushed\n", false, [] { print("flushed\n"); }); });
}

} // namespace

void check_console(const settings& wanted) {
    if (wanted.console_is_standard_output) {
        check_caught_console();
        return;
    }
    check(prints, "prints", [] {
        print("<");
        print(difficult.substr(0, difficult_length));
        print(">\n");
        return finding();
    });
    check(flushes, "flushes", [] {
        host::ioFlushOptim();
        return finding();
    });
    note(prints, "not checked; the console must now show the two lines '<100% of %d %s' and "
                 "'  and no more  >'");
}

} // namespace zktarn::host_conformance
