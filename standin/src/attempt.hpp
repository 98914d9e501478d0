#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <type_traits>

#include "calls.hpp"
#include "fault_report.hpp"

/// What all operations of the host have in common: `attempt` counts the call, fails it if that is
/// planned, logs it, lets a script answer it, and reports faults with no lock held.

namespace zktarn::standin {

/// The result type of an operation that returns nothing.
struct nothing {
    bool operator==(const nothing&) const = default;
};

// Conversion of results to and from the form of the log.
// -------------------------------------------------------------------------------------------

template <class Result>
answer answer_with(const Result& result) {
    answer given;
    if constexpr (std::is_pointer_v<Result>) {
        given.address = const_cast<std::remove_const_t<std::remove_pointer_t<Result>>*>(result);
    } else if constexpr (std::is_integral_v<Result>) {
        given.number = result;
    }
    return given;
}

template <class Result>
Result result_of(const answer& given) {
    if constexpr (std::is_pointer_v<Result>) {
        return static_cast<Result>(given.address);
    } else if constexpr (std::is_same_v<Result, bool>) {
        return given.number != 0;
    } else if constexpr (std::is_integral_v<Result>) {
        return static_cast<Result>(given.number);
    } else {
        return {};
    }
}

// What an operation writes to its caller.
// -------------------------------------------------------------------------------------------

struct no_output {
    void read(answer&) const {}
    void write(const answer&) const {}
};

/// `count` numbers or handles that the operation writes; none for a count below 1.
template <class T, std::vector<T> answer::*Part>
class written_output {
public:
    written_output(T* data, std::int64_t count)
        : data_(data), count_(static_cast<std::size_t>(std::max<std::int64_t>(count, 0))) {}

    void read(answer& given) const { (given.*Part).assign(data_, data_ + count_); }
    void write(const answer& given) const {
        std::copy_n((given.*Part).begin(), std::min(count_, (given.*Part).size()), data_);
    }

private:
    T* data_;
    std::size_t count_;
};

using written_reals = written_output<double, &answer::reals>;
using written_handles = written_output<std::int64_t, &answer::handles>;

// The attempt
// -------------------------------------------------------------------------------------------

/// The result of the work. Empty when the work throws a fault, which is reported, when memory is
/// missing, and when a container cannot have that many elements.
template <class Result, class Work>
std::optional<Result> carried_out(Work& work) noexcept {
    try {
        return work();
    } catch (const fault& found) {
        report_fault(found);
    } catch (const std::bad_alloc&) {
        return std::nullopt;
    } catch (const std::length_error&) {
        return std::nullopt;
    }
    return std::nullopt;
}

/// The result of a call that is logged or scripted.
template <class Result, class Arguments, class Output, class Work>
std::optional<Result> observed(const Arguments& arguments, bool fails_now, const Output& output,
                               Work& work) {
    const host_call call = arguments();
    const std::int64_t position = log_call(call);
    std::optional<answer> given = fails_now ? std::nullopt : scripted_answer(call);
    std::optional<Result> result;
    if (given) {
        output.write(*given);
        result = result_of<Result>(*given);
    } else if (!fails_now) {
        result = carried_out<Result>(work);
        if (result) {
            given = answer_with(*result);
            output.read(*given);
        }
    }
    if (given) {
        log_result(position, *given);
    }
    return result;
}

/// Calls an operation of the host.
///
/// @param failed     the failure value of the operation
/// @param arguments  makes the `host_call` of this call; called only if it is logged or scripted
/// @param output     describes what the operation writes to its caller, for the log and for scripts
/// @param work       performs the operation
template <class Result, class Arguments, class Output, class Work>
Result attempt(operation what, Result failed, Arguments arguments, Output output,
               Work work) noexcept {
    const bool fails_now = fails(what);
    const bool observe = is_observed();
    std::optional<Result> result;
    if (observe) {
        auto call = [&] { return observed<Result>(arguments, fails_now, output, work); };
        result = carried_out<std::optional<Result>>(call).value_or(std::nullopt);
    } else if (!fails_now) {
        result = carried_out<Result>(work);
    }
    const Result given = result.value_or(failed);
    // A script may give the failure value as the result.
    if (!result || (observe && given == failed)) {
        note_failure(what);
    }
    return given;
}

/// An operation that writes nothing to its caller.
template <class Result, class Arguments, class Work>
Result attempt(operation what, Result failed, Arguments arguments, Work work) noexcept {
    return attempt(what, failed, arguments, no_output(), work);
}

/// An operation that returns nothing.
template <class Arguments, class Work>
void attempt(operation what, Arguments arguments, Work work) noexcept {
    attempt(what, nothing(), arguments, no_output(), [&] {
        work();
        return nothing();
    });
}

} // namespace zktarn::standin
