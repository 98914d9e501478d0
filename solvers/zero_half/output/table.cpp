#include "output/output.hpp"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <vector>

#include <sys/ioctl.h>
#include <unistd.h>

namespace zero_half {

namespace {

using path = std::filesystem::path;
using line = std::vector<std::string>;

/// The last `count` components, counted from the end.
std::string tail_of(const path& file, std::size_t count) {
    const std::vector<path> parts(file.begin(), file.end());
    path tail;
    for (std::size_t i = parts.size() - std::min(count, parts.size()); i < parts.size(); ++i) {
        tail /= parts[i];
    }
    return tail.string();
}

path without_suffixes(path file) {
    for (const char* suffix : {".gz", ".bz2", ".mps", ".lp"}) {
        if (file.extension() == suffix && !file.stem().empty()) {
            file.replace_extension();
        }
    }
    return file;
}

/// How a table is made narrower.
struct layout {
    int digits = 9;
    std::size_t label = std::string::npos;
    bool has_size = true;
};

std::string with_digits(const std::optional<double>& value, int digits) {
    char text[64] = "-";
    if (value) {
        std::snprintf(text, sizeof text, "%.*g", digits, *value);
    }
    return text;
}

std::string with_two_decimals(const std::optional<double>& value) {
    char text[64] = "-";
    if (value) {
        std::snprintf(text, sizeof text, "%.2f", *value);
    }
    return text;
}

/// The label with ".." in the middle when it is too long.
std::string shortened(const std::string& label, std::size_t width) {
    if (label.size() <= width) {
        return label;
    }
    const std::size_t tail = (width - 2) / 2;
    return label.substr(0, width - 2 - tail) + ".." + label.substr(label.size() - tail);
}

std::vector<line> lines_of(const std::deque<solved_model>& models, const layout& shape) {
    std::vector<line> lines = {{"model", "rows", "cols", "LP bound", "bound", "optimum", "closed %",
                                "cuts", "seconds", "end"}};
    const std::vector<std::string> labels = labels_of(models);
    for (std::size_t i = 0; i < models.size(); ++i) {
        const model& program = models[i].program;
        const run_result& run = models[i].run;
        lines.push_back(
            {shortened(labels[i], shape.label), std::to_string(program.row_count()),
             std::to_string(program.column_count()), with_digits(run.first_bound, shape.digits),
             with_digits(run.bound, shape.digits), with_digits(run.optimum, shape.digits),
             with_two_decimals(run.gap_closed(run.bound)), std::to_string(run.cuts.size()),
             with_two_decimals(run.seconds), text_of(run.reason).word});
    }
    if (!shape.has_size) {
        for (line& each : lines) {
            each.erase(each.begin() + 1, each.begin() + 3);
        }
    }
    return lines;
}

/// Pads all columns to equal width, two blanks apart. The first and the last are aligned left.
std::string aligned(const std::vector<line>& lines) {
    std::vector<std::size_t> widths(lines.front().size(), 0);
    for (const line& each : lines) {
        for (std::size_t c = 0; c < each.size(); ++c) {
            widths[c] = std::max(widths[c], each[c].size());
        }
    }
    std::string text;
    for (const line& each : lines) {
        for (std::size_t c = 0; c < each.size(); ++c) {
            const std::string padding(widths[c] - each[c].size(), ' ');
            const bool is_last = c + 1 == each.size();
            text += c == 0 ? "" : c == 1 || is_last ? "  " : " ";
            text += c == 0 ? each[c] + padding : is_last ? each[c] : padding + each[c];
        }
        text += '\n';
    }
    return text;
}

/// The length of the longest line.
std::size_t width_of(const std::string& text) {
    std::size_t widest = 0;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\n', start);
        widest = std::max(widest, end - start);
        start = end + 1;
    }
    return widest;
}

std::size_t longest_label(const std::deque<solved_model>& models) {
    std::size_t longest = 0;
    for (const std::string& label : labels_of(models)) {
        longest = std::max(longest, label.size());
    }
    return longest;
}

} // namespace

std::vector<std::string> labels_of(const std::deque<solved_model>& models) {
    std::vector<path> files;
    for (const solved_model& solved : models) {
        files.push_back(path(solved.program.file).lexically_normal());
    }
    std::vector<std::string> labels;
    for (const path& file : files) {
        const auto length = static_cast<std::size_t>(std::distance(file.begin(), file.end()));
        std::size_t count = 1;
        const auto is_shared = [&](const path& other) {
            return other != file && tail_of(without_suffixes(other), count) ==
                                        tail_of(without_suffixes(file), count);
        };
        while (count < length && std::any_of(files.begin(), files.end(), is_shared)) {
            ++count;
        }
        labels.push_back(tail_of(without_suffixes(file), count));
    }
    return labels;
}

std::string table_of(const std::deque<solved_model>& models, std::size_t width) {
    constexpr int precise_digits = 8;
    constexpr int least_digits = 6;
    constexpr std::size_t shortest_label = 12;
    layout shape;
    const auto fits = [&] { return width_of(aligned(lines_of(models, shape))) <= width; };
    while (!fits() && shape.digits > precise_digits) {
        --shape.digits;
    }
    shape.has_size = fits();
    while (!fits() && shape.digits > least_digits) {
        --shape.digits;
    }
    for (shape.label = longest_label(models); !fits() && shape.label > shortest_label;) {
        --shape.label;
    }
    return aligned(lines_of(models, shape));
}

std::size_t output_width() {
    constexpr std::size_t usual_width = 80;
    winsize size{};
    const bool is_known = ::isatty(STDOUT_FILENO) != 0 &&
                          ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return is_known ? size.ws_col : usual_width;
}

} // namespace zero_half
