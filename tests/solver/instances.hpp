#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace zero_half::testing {

/// The models that the tests and the benchmark solve: the graph problems of `instances.py`, the
/// models of the solver, and the uncompressed MPS files of the optional folder ZKTARN_INSTANCES. If
/// several folders have a file of the same name, the first one counts.
inline std::vector<std::string> instances() {
    std::map<std::string, std::string> by_name;
    for (const char* folder :
         {ZERO_HALF_GRAPH_INSTANCES, ZERO_HALF_MODELS, ZERO_HALF_MORE_INSTANCES}) {
        std::error_code missing;
        for (const auto& file : std::filesystem::directory_iterator(folder, missing)) {
            const std::string name = file.path().filename().string();
            const bool is_compressed =
                name.ends_with(".mps.gz") && folder == std::string(ZERO_HALF_MODELS);
            if (name.ends_with(".mps") || is_compressed) {
                by_name.emplace(name, file.path().string());
            }
        }
    }
    std::vector<std::string> files;
    for (const auto& [name, file] : by_name) {
        files.push_back(file);
    }
    return files;
}

/// The file name up to the first dot.
inline std::string stem_of(const std::string& file) {
    const std::string name = std::filesystem::path(file).filename().string();
    return name.substr(0, name.find('.'));
}

} // namespace zero_half::testing
