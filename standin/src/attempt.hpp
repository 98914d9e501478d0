#pragma once

#include <exception>

#include "core.hpp"

namespace zktarn::standin {

/// An operation of the host: counted, failing on demand, its faults reported with no lock held.
///
/// @param failed  the answer when it fails, when the work throws a fault, and when the process has
///                no memory for it.
template <class Result, class Work>
Result attempt(operation what, Result failed, Work work) noexcept {
    if (!fails(what)) {
        try {
            return work();
        } catch (const fault& found) {
            report_fault(found);
        } catch (const std::exception&) {
            // No memory, or no room for that many elements.
        }
    }
    note_failure(what);
    return failed;
}

/// One without an answer.
template <class Work>
void attempt(operation what, Work work) noexcept {
    attempt(what, 0, [&] {
        work();
        return 0;
    });
}

} // namespace zktarn::standin
