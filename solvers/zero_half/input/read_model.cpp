#include "input/read_model.hpp"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <vector>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <CoinFileIO.hpp>

#include "input/error.hpp"
#include "input/memory.hpp"
#include "input/readers.hpp"

namespace zero_half {

namespace {

/// Owns a file descriptor and closes it.
class descriptor {
public:
    explicit descriptor(int number) : number_(number) {}
    ~descriptor() {
        if (number_ > STDERR_FILENO) {
            ::close(number_);
        }
    }
    descriptor(const descriptor&) = delete;
    descriptor& operator=(const descriptor&) = delete;

    int number() const { return number_; }

private:
    int number_;
};

/// Waits until the pipe has data or its end is reached. Returns false when the run has to stop.
bool is_readable(int pipe, reading_poll& poll) {
    constexpr int milliseconds = 50;
    pollfd waiting = {pipe, POLLIN, 0};
    while (!poll.call()) {
        if (::poll(&waiting, 1, milliseconds) > 0) {
            return true;
        }
    }
    return false;
}

/// Owns a temporary file and deletes it.
class temporary_file {
public:
    /// A copy of the pipe's data. Throws `error` when it cannot be read or written.
    temporary_file(int pipe, const std::string& file, reading_poll& poll)
        : copy_(::mkstemp(name_.data())) {
        if (copy_.number() < 0) {
            throw error(file + ": no temporary file can be written for it");
        }
        try {
            fill(pipe, file, poll);
        } catch (...) {
            ::unlink(name_.c_str());
            throw;
        }
    }
    ~temporary_file() { ::unlink(name_.c_str()); }
    temporary_file(const temporary_file&) = delete;
    temporary_file& operator=(const temporary_file&) = delete;

    const std::string& name() const { return name_; }

private:
    void fill(int pipe, const std::string& file, reading_poll& poll) {
        std::vector<char> block(std::size_t{1} << 16);
        while (is_readable(pipe, poll)) {
            const ssize_t size = ::read(pipe, block.data(), block.size());
            if (size < 0 && errno != EINTR && errno != EAGAIN) {
                throw error(file + ": it cannot be read");
            }
            if (size == 0) {
                return;
            }
            if (size > 0 &&
                ::write(copy_.number(), block.data(), static_cast<std::size_t>(size)) != size) {
                throw error(file + ": its temporary copy cannot be written");
            }
        }
    }

    std::string name_ = (std::filesystem::temp_directory_path() / "zero_half_XXXXXX").string();
    descriptor copy_;
};

/// Discards what the readers of CoinUtils print to the standard output.
class silenced_output {
public:
    silenced_output() {
        std::fflush(stdout);
        saved_ = ::dup(STDOUT_FILENO);
        const int sink = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        if (saved_ >= 0 && sink >= 0) {
            ::dup2(sink, STDOUT_FILENO);
        }
        ::close(sink);
    }
    ~silenced_output() {
        std::fflush(stdout);
        if (saved_ >= 0) {
            ::dup2(saved_, STDOUT_FILENO);
            ::close(saved_);
        }
    }
    silenced_output(const silenced_output&) = delete;
    silenced_output& operator=(const silenced_output&) = delete;

private:
    int saved_ = -1;
};

bool ends_with(const std::string& text, const std::string& suffix) {
    return text.size() >= suffix.size() &&
           text.compare(text.size() - suffix.size(), suffix.size(), suffix) == 0;
}

void check_file(const std::string& file) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) {
        throw error(file + ": there is no such file");
    }
    if (!std::filesystem::is_regular_file(file, ignored)) {
        throw error(file + ": this is a folder or a device, not a file");
    }
    std::ifstream stream(file, std::ios::binary);
    if (!stream) {
        throw error(file + ": the file cannot be read");
    }
    if (std::filesystem::file_size(file, ignored) == 0) {
        throw error(file + ": the file is empty");
    }
    std::string start(6, ' ');
    stream.read(start.data(), 6);
    if (start == std::string("\xFD"
                             "7zXZ\0",
                             6)) {
        throw error(file + ": the file is compressed by xz, which is not supported; use gzip");
    }
}

/// The beginning of a file, or all of it, without compression and byte order mark.
std::string text_of(const std::string& source, std::size_t most, reading_poll& poll) {
    constexpr const char* byte_order_mark = "\xEF\xBB\xBF";
    const std::unique_ptr<CoinFileInput> input(CoinFileInput::create(source));
    std::string text;
    std::vector<char> block(std::size_t{1} << 16);
    while (text.size() < most && (text.empty() || !poll.call())) {
        const int size = input->read(block.data(), static_cast<int>(block.size()));
        if (size <= 0) {
            break;
        }
        text.append(block.data(), static_cast<std::size_t>(size));
    }
    return text.starts_with(byte_order_mark) ? text.substr(3) : text;
}

bool is_lp(const std::string& source, const std::string& file) {
    constexpr std::size_t beginning = 1 << 16;
    reading_poll no_poll({});
    return ends_with(file, ".lp") || ends_with(file, ".lp.gz") ||
           begins_as_lp(text_of(source, beginning, no_poll));
}

/// Checks the memory before reading, and before the relaxation is built.
model read_source(const std::string& source, const std::string& file, reading_poll& poll) {
    constexpr auto all = std::numeric_limits<std::size_t>::max();
    std::error_code ignored;
    check_memory(file, memory_to_read(std::filesystem::file_size(source, ignored)),
                 available_memory());
    if (is_lp(source, file)) {
        return read_lp(text_of(source, all, poll), file, poll);
    }
    const silenced_output silence;
    return read_mps(source, file, poll);
}

bool is_stream(const std::string& file) {
    std::error_code ignored;
    return file == "-" || std::filesystem::is_fifo(file, ignored);
}

/// The standard input and pipes are read once, so they are copied first. A named pipe is opened
/// without waiting for its writer.
model read_stream(const std::string& file, reading_poll& poll) {
    const descriptor pipe(file == "-" ? STDIN_FILENO
                                      : ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (pipe.number() < 0) {
        throw error(file + ": it cannot be read");
    }
    const temporary_file copy(pipe.number(), file, poll);
    std::error_code ignored;
    if (!poll.is_stopped() && std::filesystem::file_size(copy.name(), ignored) == 0) {
        throw error(file + ": the input is empty");
    }
    return read_source(copy.name(), file, poll);
}

/// Throws `stopped` after the predicate returned true.
model read_any(const std::string& file, reading_poll& poll) {
    const auto throw_if_stopped = [&] {
        if (poll.is_stopped()) {
            throw stopped(file + ": the run ended before the file was read");
        }
    };
    try {
        model program = is_stream(file) ? read_stream(file, poll) : read_source(file, file, poll);
        throw_if_stopped();
        return program;
    } catch (const error&) {
        // The text ends early because the reading was stopped, not because the file is wrong.
        throw_if_stopped();
        throw;
    }
}

} // namespace

model read_model(const std::string& file, const std::function<bool()>& should_stop) {
    reading_poll poll(should_stop);
    if (!is_stream(file)) {
        check_file(file);
    }
    model program = read_any(file, poll);
    complete(program);
    check_memory(file,
                 memory_to_solve(program.row_lower.size(), program.lower.size(),
                                 static_cast<std::uint64_t>(program.rows.getNumElements())),
                 available_memory());
    return program;
}

std::optional<double> known_optimum(const std::string& model_file) {
    const std::filesystem::path path(model_file);
    std::ifstream table(path.parent_path() / "optima.csv");
    const std::string prefix = path.filename().string() + ",";
    for (std::string line; std::getline(table, line);) {
        if (line.rfind(prefix, 0) != 0) {
            continue;
        }
        double value = 0.0;
        const char* const first = line.data() + prefix.size();
        if (std::from_chars(first, line.data() + line.size(), value).ec == std::errc() &&
            std::isfinite(value)) {
            return value;
        }
    }
    return std::nullopt;
}

} // namespace zero_half
