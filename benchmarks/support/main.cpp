#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <string>
#include <vector>

#ifdef __APPLE__
#include <sys/sysctl.h>
#endif
#ifdef __linux__
#include <sys/prctl.h>
#endif

#include "support/compare.hpp"

namespace {

std::string compiler() {
#ifdef __clang__
    return __VERSION__;
#else
    return std::string("GCC ") + __VERSION__;
#endif
}

std::string processor() {
#ifdef __APPLE__
    char text[256] = {};
    std::size_t size = sizeof text - 1;
    if (sysctlbyname("machdep.cpu.brand_string", text, &size, nullptr, 0) == 0) {
        return text;
    }
#else
    std::ifstream description("/proc/cpuinfo");
    for (std::string line; std::getline(description, line);) {
        const std::size_t colon = line.find(": ");
        if (line.starts_with("model name") && colon != std::string::npos) {
            return line.substr(colon + 2);
        }
    }
#endif
    return "unknown";
}

/// With ZKTARN_BENCH_PAGES=small no memory of this process is on huge pages.
std::string choose_pages() {
    const char* const wanted = std::getenv("ZKTARN_BENCH_PAGES");
    const std::string pages = wanted == nullptr ? "as the system has them" : wanted;
#ifdef __linux__
    if (pages == "small") {
        prctl(PR_SET_THP_DISABLE, 1, 0, 0, 0);
    }
#endif
    return pages;
}

std::vector<std::string> given_operands;
bool operands_are_used = false;

/// Moves the arguments that are not options out of the list.
void take_operands(std::vector<char*>& arguments) {
    const auto is_option = [](const char* argument) { return argument[0] == '-'; };
    const auto first = std::stable_partition(arguments.begin() + 1, arguments.end(), is_option);
    given_operands.assign(first, arguments.end());
    arguments.erase(first, arguments.end());
}

/// Returns false after a message when an exception or an unused argument prevents the run.
bool is_registered() {
    try {
        zktarn::bench::register_comparisons();
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return false;
    }
    if (!operands_are_used && !given_operands.empty()) {
        std::fprintf(stderr, "this program takes options only, not '%s'\n",
                     given_operands.front().c_str());
        return false;
    }
    return true;
}

} // namespace

const std::vector<std::string>& zktarn::bench::operands() {
    operands_are_used = true;
    return given_operands;
}

int main(int argc, char** argv) {
    // Enough for stable medians. An option of the user comes later and overrides this one.
    char brief[] = "--benchmark_min_time=0.02";
    std::vector<char*> arguments(argv, argv + argc);
    take_operands(arguments);
    arguments.insert(arguments.begin() + std::min(argc, 1), brief);
    arguments.push_back(nullptr);
    argc = static_cast<int>(arguments.size()) - 1;
    argv = arguments.data();

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::AddCustomContext("compiler", compiler());
    benchmark::AddCustomContext("flags", ZKTARN_BENCH_FLAGS);
    benchmark::AddCustomContext("library flags", ZKTARN_BENCH_LIBRARY_FLAGS);
    benchmark::AddCustomContext("processor", processor());
    benchmark::AddCustomContext("pages", choose_pages());

    if (!is_registered()) {
        return 1;
    }
    // Google Benchmark has already reported a filter that matches nothing.
    const bool any = benchmark::RunSpecifiedBenchmarks() > 0;
    benchmark::Shutdown();
    return any ? 0 : 1;
}
