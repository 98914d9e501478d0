#include "zktarn_standin/leaks.hpp"

#include <atomic>
#include <cstdio>

#include "array_table.hpp"
#include "generators.hpp"
#include "wording.hpp"
#include "zktarn_standin/blocks.hpp"

namespace zktarn::standin {

namespace {

std::atomic<bool> reports_at_exit = true;

/// Runs when the process unloads this library, after every destructor of the program.
[[gnu::destructor]] void report_leaks() {
    if (!report_at_exit(false)) {
        return;
    }
    check_blocks();
    if (!live_blocks().empty() || !live_objects().empty()) {
        std::fputs(report().c_str(), stderr);
    }
}

} // namespace

std::vector<live_object> live_objects() {
    std::vector<live_object> all;
    list_generators(all);
    array_table::instance().list(all);
    return all;
}

std::string report() {
    std::string text = memory_report();
    for (const live_object& each : live_objects()) {
        text += "  " + each.description + "\n" + indented("made by", each.origin);
    }
    return text;
}

bool report_at_exit(bool on) noexcept {
    return reports_at_exit.exchange(on);
}

} // namespace zktarn::standin
