#include "output/output.hpp"

#include <algorithm>
#include <filesystem>

namespace zero_half {

namespace {

using path = std::filesystem::path;

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

} // namespace zero_half
