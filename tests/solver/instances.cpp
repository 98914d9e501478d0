#include "instances.hpp"

#include <algorithm>
#include <filesystem>

namespace zero_half::testing {

std::vector<std::string> instances() {
    std::vector<std::string> all;
    for (const char* folder : {ZERO_HALF_OWN_INSTANCES, ZERO_HALF_MORE_INSTANCES}) {
        std::error_code missing;
        for (const auto& each : std::filesystem::directory_iterator(folder, missing)) {
            if (each.path().extension() == ".mps") {
                all.push_back(each.path().string());
            }
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

} // namespace zero_half::testing
