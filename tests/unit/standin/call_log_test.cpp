#include <cstdint>
#include <limits>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/standin/standin_fixture.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::standin {

namespace {

using host::array_handle;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class CallLog : public StandinTest {
protected:
    void SetUp() override {
        StandinTest::SetUp();
        log_calls(true);
    }

    /// Expects exactly one logged call, returns it and clears the log.
    static host_call only_call() {
        const std::vector<host_call> all = logged_calls();
        EXPECT_EQ(all.size(), 1u);
        clear_call_log();
        return all.empty() ? host_call{operation::qvMallocExOptim} : all.back();
    }
};

TEST_F(CallLog, IsInitiallyOffAndEmpty) {
    reset();
    host::qvFreeExOptim(nullptr);
    EXPECT_THAT(logged_calls(), IsEmpty());
    EXPECT_FALSE(log_calls(true));
    EXPECT_TRUE(log_calls(false));
}

TEST_F(CallLog, ShowsArgumentsAndResultsOfMemoryCalls) {
    void* const block = host::qvMallocExOptim(40);
    host::qvFreeExOptim(block);
    const std::vector<host_call> all = logged_calls();
    EXPECT_THAT(all, ElementsAre(host_call{operation::qvMallocExOptim, {40}},
                                 host_call{operation::qvFreeExOptim, {}, {}, {}, {block}}));
    EXPECT_EQ(all[0].result.address, block);
}

TEST_F(CallLog, ShowsArgumentsAndResultsOfGeneratorCalls) {
    void* const generator = host::instantiateRngOptim(-7);
    host_call made = only_call();
    EXPECT_EQ(made, (host_call{operation::instantiateRngOptim, {-7}}));
    EXPECT_EQ(made.result.address, generator);

    double drawn[2] = {};
    const std::int64_t two = 2;
    host::getRandUniformOptim(generator, drawn, &two);
    made = only_call();
    EXPECT_EQ(made, (host_call{operation::getRandUniformOptim, {2}, {}, {}, {generator}}));
    EXPECT_THAT(made.result.reals, ElementsAre(drawn[0], drawn[1]));

    void* const state = host::getRngStateOptim(generator);
    made = only_call();
    EXPECT_EQ(made, (host_call{operation::getRngStateOptim, {}, {}, {}, {generator}}));
    EXPECT_EQ(made.result.address, state);
    host::setRngStateOptim(generator, state);
    EXPECT_EQ(only_call(),
              (host_call{operation::setRngStateOptim, {}, {}, {}, {generator, state}}));
    host::deleteRngStateOptim(state);
    EXPECT_EQ(only_call(), (host_call{operation::deleteRngStateOptim, {}, {}, {}, {state}}));
    host::deleteRngOptim(generator);
    EXPECT_EQ(only_call(), (host_call{operation::deleteRngOptim, {}, {}, {}, {generator}}));
}

TEST_F(CallLog, ShowsAssertionsFlushesAndPolls) {
    set_assertion_handler([] {});
    host::assertOptim(true);
    EXPECT_EQ(only_call(), (host_call{operation::assertOptim, {1}}));
    host::assertOptim(false);
    EXPECT_EQ(only_call(), (host_call{operation::assertOptim, {0}}));
    host::ioFlushOptim();
    EXPECT_EQ(only_call(), (host_call{operation::ioFlushOptim}));
    raise_interrupt();
    EXPECT_TRUE(host::utIsInterruptPending());
    const host_call poll = only_call();
    EXPECT_EQ(poll, (host_call{operation::utIsInterruptPending}));
    EXPECT_EQ(poll.result.number, 1);
}

TEST_F(CallLog, OmitsTextsWithAFaultyAddressOrLength) {
    const array_handle structure = make_struct();
    only_call();
    host::qvgetfieldnumber800_(structure, nullptr, 2);
    EXPECT_EQ(only_call(), (host_call{operation::qvgetfieldnumber800_, {structure}, {""}}));
    host::qvgetfieldnumber800_(structure, "x", -1);
    EXPECT_EQ(only_call(), (host_call{operation::qvgetfieldnumber800_, {structure}, {""}}));
    EXPECT_EQ(faults.size(), 2u);
    destroy(structure);
}

TEST_F(CallLog, ShowsArgumentsAndResultsOfStructCalls) {
    const std::int64_t extents[] = {1, 1};
    const array_handle structure =
        host::qvcreatestructarray800_(std::int64_t{2}, extents, 2, "ab  cd  ", 4);
    host_call made = only_call();
    EXPECT_EQ(made, (host_call{operation::qvcreatestructarray800_, {2, 1, 1, 2, 4}, {"ab  cd  "}}));
    EXPECT_EQ(made.result.number, structure);
    const std::int64_t one = 1;
    EXPECT_EQ(host::qvgetfieldnumber800_(structure, "cd", 2), 2);
    made = only_call();
    EXPECT_EQ(made, (host_call{operation::qvgetfieldnumber800_, {structure}, {"cd"}}));
    EXPECT_EQ(made.result.number, 2);
    EXPECT_EQ(host::qvaddfield800_(structure, "ef ", 3), 3);
    EXPECT_EQ(only_call(), (host_call{operation::qvaddfield800_, {structure}, {"ef "}}));
    const array_handle text = host::qvcreatestring800_("x ", 2);
    EXPECT_EQ(only_call(), (host_call{operation::qvcreatestring800_, {}, {"x "}}));
    host::qvsetfield800_(structure, one, "ab", text, 2);
    EXPECT_EQ(only_call(), (host_call{operation::qvsetfield800_, {structure, 1, text}, {"ab"}}));
    const array_handle scalar = host::qvcreatedoublescalar800_(2.5);
    EXPECT_EQ(only_call(), (host_call{operation::qvcreatedoublescalar800_, {}, {}, {2.5}}));
    host::qvsetfieldbynumber800_(structure, one, 2, scalar);
    EXPECT_EQ(only_call(),
              (host_call{operation::qvsetfieldbynumber800_, {structure, 1, 2, scalar}}));
    host::qvdestroyarray800_(structure);
    EXPECT_EQ(only_call(), (host_call{operation::qvdestroyarray800_, {structure}}));
}

TEST_F(CallLog, ShowsCopiedNumbers) {
    const std::int64_t rows = 2;
    const std::int64_t columns = 1;
    const array_handle matrix = host::qvcreatedoublematrix800_(rows, columns, 0);
    EXPECT_EQ(only_call(), (host_call{operation::qvcreatedoublematrix800_, {2, 1, 0}}));
    double* const data = host::qvgetpr800_(matrix);
    host_call made = only_call();
    EXPECT_EQ(made, (host_call{operation::qvgetpr800_, {matrix}}));
    EXPECT_EQ(made.result.address, data);
    const double numbers[] = {1.5, -2.0};
    host::qvcopyreal8toptr800_(numbers, data, rows);
    EXPECT_EQ(only_call(),
              (host_call{operation::qvcopyreal8toptr800_, {2}, {}, {1.5, -2.0}, {data}}));
    double copies[2] = {};
    host::qvcopyptrtoreal8800_(data, copies, rows);
    made = only_call();
    EXPECT_EQ(made, (host_call{operation::qvcopyptrtoreal8800_, {2}, {}, {}, {data}}));
    EXPECT_THAT(made.result.reals, ElementsAre(1.5, -2.0));
    host::qvdestroyarray800_(matrix);
}

TEST_F(CallLog, ShowsACallBeforeTheCallsThatItMakes) {
    set_function("f", [](const array_value&) {
        host::ioFlushOptim();
        return 3.0;
    });
    const array_handle input = host::qvcreatedoublescalar800_(1.0);
    clear_call_log();
    array_handle output = 0;
    EXPECT_EQ(host::qvxcallquarn800_(1, &output, 1, &input, "f", 1), 0);
    const std::vector<host_call> all = logged_calls();
    EXPECT_THAT(all, ElementsAre(host_call{operation::qvxcallquarn800_, {1, 1, input}, {"f"}},
                                 host_call{operation::ioFlushOptim}));
    EXPECT_THAT(all[0].result.handles, ElementsAre(output));
    host::qvdestroyarray800_(input);
    host::qvdestroyarray800_(output);
}

TEST_F(CallLog, ShowsPrintedText) {
    set_console(console::capture);
    host::qvxprintf800_("100%\n", 5);
    EXPECT_EQ(only_call(), (host_call{operation::qvxprintf800_, {}, {"100%\n"}}));
    set_console(console::show);
}

TEST_F(CallLog, ShowsFailedAndFaultyCalls) {
    fail_request(1);
    EXPECT_EQ(host::qvMallocExOptim(8), nullptr);
    host_call made = only_call();
    EXPECT_EQ(made, (host_call{operation::qvMallocExOptim, {8}}));
    EXPECT_EQ(made.result.address, nullptr);
    EXPECT_EQ(host::qvcreatestring800_("abc", -3), 0);
    EXPECT_EQ(only_call(), (host_call{operation::qvcreatestring800_, {}, {""}}));
    EXPECT_EQ(faults.size(), 1u);
    fail_call(operation::instantiateRngOptim, 1);
    EXPECT_EQ(host::instantiateRngOptim(1), nullptr);
    EXPECT_EQ(only_call().result.address, nullptr);
}

TEST_F(CallLog, IsKeptWhenSwitchedOffAndClearedByReset) {
    host::ioFlushOptim();
    log_calls(false);
    host::ioFlushOptim();
    EXPECT_EQ(logged_calls().size(), 1u);
    reset();
    EXPECT_THAT(logged_calls(), IsEmpty());
    host::ioFlushOptim();
    EXPECT_THAT(logged_calls(), IsEmpty());
}

TEST_F(CallLog, MayBeClearedDuringALoggedCall) {
    set_function("f", [](const array_value&) {
        clear_call_log();
        host::ioFlushOptim();
        return 3.0;
    });
    const array_handle input = host::qvcreatedoublescalar800_(1.0);
    array_handle output = 0;
    host::qvxcallquarn800_(1, &output, 1, &input, "f", 1);
    const std::vector<host_call> all = logged_calls();
    EXPECT_THAT(all, ElementsAre(host_call{operation::ioFlushOptim}));
    EXPECT_THAT(all[0].result.handles, IsEmpty());
    host::qvdestroyarray800_(input);
    host::qvdestroyarray800_(output);
}

TEST_F(CallLog, IsCompleteWithTwoThreads) {
    const auto flush = [] {
        for (int i = 0; i < 500; ++i) {
            host::qvFreeExOptim(host::qvMallocExOptim(i + 1));
        }
    };
    std::thread other(flush);
    flush();
    other.join();
    const std::vector<host_call> all = logged_calls();
    EXPECT_EQ(all.size(), 2000u);
    for (const host_call& each : all) {
        if (each.what == operation::qvMallocExOptim) {
            EXPECT_NE(each.result.address, nullptr);
        }
    }
}

TEST_F(CallLog, PrintsEachEntryAsACall) {
    const auto written = [](const host_call& call) {
        std::ostringstream out;
        out << call;
        EXPECT_EQ(out.str(), text_of(call));
        return out.str();
    };
    EXPECT_EQ(written({operation::ioFlushOptim}), "ioFlushOptim()");
    EXPECT_EQ(written({operation::qvxprintf800_, {}, {"a\nb\n"}}), "qvxprintf800_(\"a\\nb\\n\")");
    EXPECT_EQ(written({operation::qvsetfield800_, {7, 1, 9}, {"gap"}}),
              "qvsetfield800_(7, 1, 9, \"gap\")");
    host_call drawn{operation::getRandUniformOptim, {2}, {}, {}, {reinterpret_cast<void*>(64)}};
    drawn.result.reals = {0.5, 0.25};
    EXPECT_EQ(written(drawn), "getRandUniformOptim(2, 0x40) = 0.5, 0.25");
    host_call function{operation::qvxcallquarn800_, {1, 1, 7}, {"f"}};
    function.result = {.number = 3, .handles = {8}};
    EXPECT_EQ(written(function), "qvxcallquarn800_(1, 1, 7, \"f\") = 3, 8");
    host_call copied{operation::qvcopyreal8toptr800_, {1}, {}, {2.5}, {}};
    copied.result.address = reinterpret_cast<void*>(64);
    EXPECT_EQ(written(copied), "qvcopyreal8toptr800_(1, 2.5) = 0x40");
}

TEST_F(CallLog, EntriesAreEqualIfOperationAndArgumentsAreWhateverTheResult) {
    const host_call call{operation::qvFreeExOptim, {1}, {"a"}, {2.0}, {nullptr}};
    host_call other = call;
    EXPECT_TRUE(call == other);
    other.result.number = 5;
    EXPECT_TRUE(call == other);
    other.what = operation::qvMallocExOptim;
    EXPECT_FALSE(call == other);
    other = call;
    other.integers[0] = 2;
    EXPECT_FALSE(call == other);
    other = call;
    other.texts[0] = "b";
    EXPECT_FALSE(call == other);
    other = call;
    other.reals[0] = 3.0;
    EXPECT_FALSE(call == other);
    other = call;
    other.addresses[0] = &call;
    EXPECT_FALSE(call == other);
}

class Scripts : public StandinTest {};

TEST_F(Scripts, ReplaceTheResultOfTheStandIn) {
    std::vector<host_call> seen;
    answer_calls(operation::qvMallocExOptim, [&](const host_call& call) {
        seen.push_back(call);
        return answer{.address = reinterpret_cast<void*>(64)};
    });
    const std::int64_t before = requests();
    EXPECT_EQ(host::qvMallocExOptim(8), reinterpret_cast<void*>(64));
    EXPECT_THAT(seen, ElementsAre(host_call{operation::qvMallocExOptim, {8}}));
    EXPECT_EQ(requests(), before);
    EXPECT_EQ(calls(operation::qvMallocExOptim), 1);
    EXPECT_TRUE(live_blocks().empty());
}

TEST_F(Scripts, AnEmptyResultLeavesTheCallToTheStandIn) {
    answer_calls(operation::utIsInterruptPending,
                 [n = 0](const host_call&) mutable -> std::optional<answer> {
                     return ++n == 1 ? std::optional<answer>(answer{.number = 1}) : std::nullopt;
                 });
    EXPECT_TRUE(host::utIsInterruptPending());
    EXPECT_FALSE(host::utIsInterruptPending());
}

TEST_F(Scripts, WriteTheOutputArguments) {
    answer_calls(operation::getRandUniformOptim, [](const host_call&) {
        return answer{.reals = {0.25, 0.5, 0.75}};
    });
    double drawn[3] = {9.0, 9.0, 9.0};
    const std::int64_t two = 2;
    host::getRandUniformOptim(nullptr, drawn, &two);
    EXPECT_THAT(drawn, ElementsAre(0.25, 0.5, 9.0));

    answer_calls(operation::qvcopyptrtoreal8800_,
                 [](const host_call&) { return answer{.reals = {4.0}}; });
    host::qvcopyptrtoreal8800_(nullptr, drawn, two);
    EXPECT_THAT(drawn, ElementsAre(4.0, 0.5, 9.0));

    answer_calls(operation::qvxcallquarn800_,
                 [](const host_call&) { return answer{.number = 5, .handles = {42}}; });
    array_handle output = 0;
    EXPECT_EQ(host::qvxcallquarn800_(1, &output, 1, &output, "f", 1), 5);
    EXPECT_EQ(output, 42);
}

TEST_F(Scripts, PlannedFailuresTakePrecedence) {
    answer_calls(operation::instantiateRngOptim,
                 [](const host_call&) { return answer{.address = reinterpret_cast<void*>(64)}; });
    fail_call(operation::instantiateRngOptim, 1);
    EXPECT_EQ(host::instantiateRngOptim(1), nullptr);
    EXPECT_EQ(host::instantiateRngOptim(1), reinterpret_cast<void*>(64));
}

TEST_F(Scripts, MayReturnTheFailureValue) {
    answer_calls(operation::qvcreatestring800_, [](const host_call&) { return answer{}; });
    EXPECT_EQ(host::qvcreatestring800_("x", 1), 0);
    // After a failed call, handle 0 is accepted.
    host::qvdestroyarray800_(0);
    EXPECT_TRUE(faults.empty());
}

TEST_F(Scripts, AreReplacedAndRemoved) {
    const auto answering = [](std::int64_t number) {
        return [=](const host_call&) { return answer{.number = number}; };
    };
    EXPECT_FALSE(answer_calls(operation::qvgetfieldnumber800_, answering(3)));
    EXPECT_EQ(host::qvgetfieldnumber800_(1, "x", 1), 3);
    const call_script first = answer_calls(operation::qvgetfieldnumber800_, answering(4));
    EXPECT_EQ(first(host_call{operation::qvgetfieldnumber800_})->number, 3);
    EXPECT_EQ(host::qvgetfieldnumber800_(1, "x", 1), 4);
    EXPECT_TRUE(answer_calls(operation::qvgetfieldnumber800_, {}));
    const array_handle structure = make_struct();
    EXPECT_EQ(host::qvgetfieldnumber800_(structure, "x", 1), 0);
    destroy(structure);
    answer_calls(operation::qvgetfieldnumber800_, answering(5));
    reset();
    EXPECT_FALSE(answer_calls(operation::qvgetfieldnumber800_, {}));
}

TEST_F(Scripts, MayCallTheHostAndReplaceThemselves) {
    answer_calls(operation::ioFlushOptim, [](const host_call&) {
        answer_calls(operation::ioFlushOptim, {});
        host::ioFlushOptim();
        return answer{};
    });
    host::ioFlushOptim();
    EXPECT_EQ(calls(operation::ioFlushOptim), 2);
}

} // namespace

} // namespace zktarn::standin
