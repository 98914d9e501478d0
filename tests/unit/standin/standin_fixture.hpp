#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libzkoptimutil.hpp"
#include "zktarn_standin/control.hpp"

/// What the stand-in's tests share: the fixture, matchers of output, and the host's array
/// operations with arguments by value and texts as strings.

namespace zktarn::standin {

// The fixture
// ------------------------------------------------------------------------------------------

/// Resets the stand-in before each test and collects its faults in `faults`. After each test,
/// expects every block, array, generator and snapshot to be released.
class StandinTest : public testing::Test {
protected:
    void SetUp() override {
        reset();
        set_console(console::show);
        objects_before_ = live_objects().size();
        set_fault_handler([this](const fault& found) { faults.push_back(found); });
    }

    void TearDown() override {
        const std::vector<block> left = live_blocks();
        EXPECT_EQ(left.size(), 0u) << "the test has not released all its blocks";
        // The next test must start without live objects.
        set_fault_handler([](const fault&) {});
        for (const block& each : left) {
            host::qvFreeExOptim(const_cast<void*>(each.address));
        }
        EXPECT_EQ(live_objects().size(), objects_before_)
            << "the test has not released all its objects:\n"
            << report();
        for (const live_object& each : live_objects()) {
            if (each.made_by > operation::utIsInterruptPending) {
                host::qvdestroyarray800_(each.number);
            }
        }
        reset();
    }

    /// Expects exactly one fault since the last call, which concerns no block, and clears the list.
    void expect_fault(fault_kind kind, const std::string& sentence) {
        ASSERT_EQ(faults.size(), 1u) << "expected: " << sentence;
        const fault found = std::exchange(faults, {})[0];
        EXPECT_EQ(found.kind, kind);
        EXPECT_EQ(found.sentence, sentence);
        EXPECT_EQ(found.concerned.address, nullptr);
        EXPECT_EQ(found.concerned.nbytes, 0);
        EXPECT_EQ(found.concerned.order, 0);
    }

    std::vector<fault> faults;

private:
    std::size_t objects_before_ = 0;
};

// Output of a process that ends
// ------------------------------------------------------------------------------------------

/// abort() loses coverage counters. In an instrumented build, a SIGABRT handler forks a copy of the
/// process whose regular exit writes them; in any other build this does nothing.
inline void keep_coverage() {
#ifdef __LLVM_INSTR_PROFILE_GENERATE
    signal(SIGABRT, [](int) {
        const pid_t copy = fork();
        if (copy == 0) {
            report_at_exit(false);
            std::exit(0);
        }
        waitpid(copy, nullptr, 0);
    });
#endif
}

/// Matches a sentence followed only by call stacks, whose lines are indented, and by qemu's
/// message.
MATCHER_P(sentence_with_stacks, sentence, "") {
    const std::string text = arg;
    if (text.rfind(sentence, 0) != 0) {
        return false;
    }
    std::istringstream rest(text.substr(std::string(sentence).size()));
    for (std::string line; std::getline(rest, line);) {
        if (line.rfind("    ", 0) != 0 && line.rfind("qemu: ", 0) != 0) {
            return false;
        }
    }
    return true;
}

/// Matches the whole text.
inline auto exactly(std::string text) {
    return testing::Eq(std::move(text));
}

// Host operations on arrays
// ------------------------------------------------------------------------------------------

using host::array_handle;

/// A struct, by default 1-by-1 without fields. `slots` holds the names of the fields, each padded
/// with blanks to `slot_width` characters.
inline array_handle make_struct(const std::vector<std::int64_t>& extents = {1, 1},
                                std::int32_t nfields = 0, const std::string& slots = {},
                                std::int64_t slot_width = 0) {
    const auto ndims = static_cast<std::int64_t>(extents.size());
    return host::qvcreatestructarray800_(ndims, extents.data(), nfields, slots.data(), slot_width);
}

inline array_handle make_text(const std::string& text) {
    return host::qvcreatestring800_(text.data(), static_cast<std::int64_t>(text.size()));
}

inline array_handle make_scalar(double value) {
    return host::qvcreatedoublescalar800_(value);
}

inline array_handle make_matrix(std::int64_t rows, std::int64_t columns,
                                std::int32_t complexity = 0) {
    return host::qvcreatedoublematrix800_(rows, columns, complexity);
}

inline void set_field(array_handle structure, std::int64_t index, const std::string& name,
                      array_handle value) {
    host::qvsetfield800_(structure, index, name.data(), value,
                         static_cast<std::int64_t>(name.size()));
}

inline void set_field_number(array_handle structure, std::int64_t index, std::int32_t number,
                             array_handle value) {
    host::qvsetfieldbynumber800_(structure, index, number, value);
}

inline std::int32_t field_number(array_handle structure, const std::string& name) {
    return host::qvgetfieldnumber800_(structure, name.data(),
                                      static_cast<std::int64_t>(name.size()));
}

inline std::int32_t add_field(array_handle structure, const std::string& name) {
    return host::qvaddfield800_(structure, name.data(), static_cast<std::int64_t>(name.size()));
}

inline double* data_of(array_handle array) {
    return host::qvgetpr800_(array);
}

inline void destroy(array_handle array) {
    host::qvdestroyarray800_(array);
}

inline std::int32_t call_function(const std::string& name, array_handle input,
                                  array_handle& output) {
    return host::qvxcallquarn800_(1, &output, 1, &input, name.data(),
                                  static_cast<std::int64_t>(name.size()));
}

inline std::int32_t print_text(const std::string& text) {
    return host::qvxprintf800_(text.data(), static_cast<std::int64_t>(text.size()));
}

/// The name of an array in the sentence of a fault.
inline std::string described(array_handle array, const std::string& kind, operation made_by) {
    return "array " + std::to_string(array) + " (a " + kind + " made by " + name(made_by) + ")";
}

inline std::string the_struct(array_handle array) {
    return described(array, "struct", operation::qvcreatestructarray800_);
}

inline std::string the_text(array_handle array) {
    return described(array, "text", operation::qvcreatestring800_);
}

inline std::string the_scalar(array_handle array) {
    return described(array, "real scalar", operation::qvcreatedoublescalar800_);
}

inline std::string the_matrix(array_handle array) {
    return described(array, "real matrix", operation::qvcreatedoublematrix800_);
}

} // namespace zktarn::standin

/// Expects `statement` to abort the process with this sentence on standard error, followed only by
/// call stacks and qemu's message.
#define EXPECT_ABORT(statement, sentence)                                                          \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            zktarn::standin::keep_coverage();                                                      \
            statement;                                                                             \
        },                                                                                         \
        testing::KilledBySignal(SIGABRT),                                                          \
        zktarn::standin::sentence_with_stacks("zktarn stand-in host: " + std::string(sentence) +   \
                                              "\n"))
