#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <ostream>
#include <string>
#include <vector>

/// A host that does next to nothing and writes everything down.
///
/// A test program that links `zktarn_recording_host` and the static library has this host in place
/// of any other: every operation is recorded, in order, with its arguments, and answers what the
/// test has scripted or else something plain. Memory is real; handles are 101, 102, and so on.

namespace zktarn::testing {

/// One call of a host operation: its integers (handles and the like included), its texts and its
/// reals, each in the order of the arguments, and the address of host memory that it was given.
struct call {
    std::string operation;
    std::vector<std::int64_t> integers = {};
    std::vector<std::string> texts = {};
    std::vector<double> reals = {};
    const void* address = nullptr;

    bool operator==(const call&) const = default;
};

std::ostream& operator<<(std::ostream& out, const call& c);

/// The calls that tests name most often.
call malloc_of(std::int64_t nbytes);
call free_of(const void* address);
call assert_of(bool condition);

/// The host while it exists; one at a time.
class recording_host {
public:
    recording_host();
    ~recording_host();
    recording_host(const recording_host&) = delete;
    recording_host& operator=(const recording_host&) = delete;

    /// Everything called so far.
    std::vector<call> calls;

    /// The addresses that requests for memory were answered with, null included.
    std::vector<void*> blocks;

    /// Requests, counted from 1, that are refused: the k-th alone, or none for 0.
    std::int64_t refuse_request = 0;

    /// The byte that new memory is filled with, so that whatever was not written shows.
    unsigned char fill = 0xA5;

    /// Answers of the interrupt poll, first come first served; false when used up.
    std::deque<bool> interrupts;

    /// Answers of the other operations that have one, by name; a plain one where there is none.
    std::function<double(const call&)> answer;

    /// Records a call and returns it.
    const call& record(call c);

    /// Memory, as the host's operations give and take it.
    void* obtain(std::int64_t nbytes);
    void release(void* address);

    /// A new handle.
    std::int64_t next_handle() { return ++last_handle_; }

    /// Blocks not given back.
    std::size_t live() const { return live_.size(); }

    /// The host that records now; the process ends with a sentence when there is none.
    static recording_host& current();

private:
    std::vector<void*> live_;
    std::int64_t last_handle_ = 100;
};

} // namespace zktarn::testing
