// Runs every scenario once for each of its requests, which that run refuses. No run may leak.
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <functional>
#include <new>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "zktarn/host/libqv.hpp"
#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"
#include "zktarn_standin/records.hpp"

namespace {

using namespace zktarn;
using standin::operation;

/// Makes the k-th request from now fail; k = 0 cancels that.
struct injector {
    std::string name;
    std::function<void(std::int64_t)> plan;
    /// The number of requests so far.
    std::function<std::int64_t()> requests;
};

std::vector<injector> injectors() {
    std::vector<injector> all = {
        {"record", [](std::int64_t k) { standin::fail_record(k); }, standin::record_requests}};
    for (const operation what :
         {operation::qvMallocExOptim, operation::instantiateRngOptim,
          operation::getRandUniformOptim, operation::getRngStateOptim,
          operation::qvcreatestructarray800_, operation::qvcreatestring800_,
          operation::qvcreatedoublescalar800_, operation::qvcreatedoublematrix800_,
          operation::qvaddfield800_, operation::qvgetpr800_, operation::qvxcallquarn800_,
          operation::qvxprintf800_}) {
        all.push_back({name(what), [what](std::int64_t k) { standin::fail_call(what, k); },
                       [what] { return standin::calls(what); }});
    }
    return all;
}

/// `run` allocates, checks the results and releases. It returns whether it noticed a failure.
struct scenario {
    const char* name;
    bool (*run)();
    /// The number of its requests that can fail.
    std::int64_t requests;
    /// Whether the library handles some failures without reporting them.
    bool hides_failures = false;
};

void PrintTo(const scenario& what, std::ostream* out) {
    *out << what.name;
}

bool vectors_in_every_mode() {
    bool failed = false;
    for (flag form = 0; form < 8; ++form) {
        vector_type::vector stale;
        vector_type::vector* v = &stale;
        const flag made = vector_type::vector_alloc(v, 5, form & 1, form & 2, form & 4);
        EXPECT_EQ(made, v == nullptr ? 0 : 1);
        failed |= made == 0;
        vector_type::vector_free(v);
    }
    return failed;
}

bool rows_of_a_solver() {
    vector_type::vector* row = nullptr;
    vector_type::vector* sum = nullptr;
    const flag has_row = vector_type::vector_alloc(row, 5);
    const flag has_sum = vector_type::vector_alloc(sum, 5);
    const bool failed = has_row == 0 || has_sum == 0;
    if (!failed) {
        vector_mod::vector_add_nz(*row, 2, 3.0);
        vector_mod::vectors_combine(*sum, *row, 1.0, 2.0, 0.0);
        vector_mod::vectors_calc_sym_diff(*sum, *row);
        vector_mod::vector_mod2(*row, 0.0);
        EXPECT_EQ(vector_mod::vector_get_nz(*sum), 0);
        EXPECT_EQ(vector_mod::vector_get_nz(*row), 1);
    }
    vector_type::vector_free(row);
    vector_type::vector_free(sum);
    return failed;
}

template <class Array, class Size>
bool array_failed(flag (*allocate)(Array&, const Size&) noexcept, void (*release)(Array&) noexcept,
                  const Size& size) {
    Array array;
    const flag made = allocate(array, size);
    EXPECT_EQ(made != 0, array.present());
    release(array);
    EXPECT_FALSE(array.present());
    return made == 0;
}

bool arrays_of_every_type() {
    using namespace memory_mod;
    constexpr std::int64_t n = 3;
    bool failed = array_failed(allocmem_l4_1d_array, freemem_l4_1d_array, n);
    failed |= array_failed(allocmem_i8_1d_array, freemem_i8_1d_array, n);
    failed |= array_failed(allocmem_i4_1d_array, freemem_i4_1d_array, n);
    failed |= array_failed(allocmem_i2_1d_array, freemem_i2_1d_array, n);
    failed |= array_failed(allocmem_i1_1d_array, freemem_i1_1d_array, n);
    failed |= array_failed(allocmem_r8_1d_array, freemem_r8_1d_array, n);
    failed |= array_failed(allocmem_i4_2d_array, freemem_i4_2d_array, matrix_shape{2, 3});
    failed |= array_failed(allocmem_r8_2d_array, freemem_r8_2d_array, matrix_shape{2, 3});
    void* const block = mallocate(24);
    if (block != nullptr) {
        mdeallocate(block);
    }
    return failed || block == nullptr;
}

bool random_numbers_and_a_snapshot() {
    constexpr double none = 1.7976931348623157e308;
    random::rng_state rng;
    const flag made = random::instantiaterng(rng, 7);
    EXPECT_EQ(made != 0, rng.generator != nullptr);
    if (made == 0) {
        EXPECT_EQ(random::rand_number(rng), none);
        return true;
    }
    bool failed = random::rand_number(rng) == none;
    random::saved_state state = &rng;
    const flag saved = random::getrngstate(rng, state);
    EXPECT_EQ(saved != 0, state != nullptr);
    random::setrngstate(rng, state);
    failed |= random::rand_number(rng) == none || saved == 0;
    random::deleterngstate(state);
    random::deleterng(rng);
    EXPECT_EQ(rng.generator, nullptr);
    return failed;
}

bool the_record_of_a_solve() {
    callbacks_type_util::cbdata stale;
    callbacks_type_util::cbdata* cb = &stale;
    callbacks_util::cbinit(cb);
    const bool failed = cb == nullptr;
    delete cb;
    return failed;
}

/// Has a copy constructor, so that its type has a copy procedure.
struct named {
    named() = default;
    named(const named& other) noexcept : size(other.size) {}
    std::int64_t size = 5;
};

bool values_in_slots() {
    using namespace callbacks_type_util;
    cbdatalist plain;
    bool failed = !store(plain, std::array<double, 3>{1.0, 2.0, 3.0});
    cbdatalist boxed;
    failed |= !store(boxed, named());
    const cbdatalist copies[] = {plain, boxed};
    failed |= stored<std::array<double, 3>>(copies[0]) == nullptr;
    const named* const copied = stored<named>(copies[1]);
    EXPECT_TRUE(copied == nullptr || copied->size == 5);
    return failed || copied == nullptr;
}

bool slots_with_old_values() {
    using namespace callbacks_type_util;
    using numbers = std::array<double, 3>;
    cbdatalist slot;
    cbdatalist other;
    bool failed = !store(slot, named());
    failed |= !store(slot, numbers{1.0, 2.0, 3.0});
    failed |= !store(other, named());
    other = slot;
    const numbers* const copied = stored<numbers>(other);
    EXPECT_TRUE(copied == nullptr || (*copied)[2] == 3.0);
    return failed || copied == nullptr;
}

/// Four entries: the header of three, and one length parameter.
callbacks_type_util::parameter_block* parameters_of_16_bytes() {
    constexpr std::int64_t entries[] = {1, 4, 16, 16};
    void* const block = ::operator new(sizeof entries, std::nothrow);
    if (block != nullptr) {
        std::memcpy(block, entries, sizeof entries);
    }
    return static_cast<callbacks_type_util::parameter_block*>(block);
}

bool a_value_with_parameters() {
    using namespace callbacks_type_util;
    constexpr value_type text = {.size = 1, .has_parameters = 1};
    cbdatalist original;
    original.slot = {::operator new(16, std::nothrow), &text, parameters_of_16_bytes()};
    if (original.slot.value == nullptr || original.slot.parameters == nullptr) {
        ::operator delete(original.slot.value);
        ::operator delete(original.slot.parameters);
        original.slot = {};
        return true;
    }
    std::memset(original.slot.value, 'x', 16);
    const cbdatalist copy = original;
    EXPECT_EQ(static_cast<char*>(original.slot.value)[15], 'x');
    return copy.slot.value == nullptr;
}

bool a_report_to_the_output_function() {
    using namespace callbacks_util;
    standin::set_function("tarnCallback", [](const standin::array_value&) { return 1.0; });
    const host::array_handle structure = qvinitcbarray("branching");
    const double column[] = {1.0, 2.0};
    addrealscalartoqvstruct(structure, "bound", 2.5);
    addrealvectoqvstruct(structure, "row", column, 2);
    flag stop = -1;
    qvcalloutputfcn(structure, stop, 0, 0);
    EXPECT_TRUE(stop == 0 || stop == 1);
    if (structure != 0) {
        host::qvdestroyarray800_(structure);
    }
    return stop == 0;
}

bool short_and_long_lines() {
    standin::clear_console();
    const std::string expected = "short\n" + std::string(3000, 'x') + '\n';
    callbacks_util::cbprintdisplay(0, 0, 2, "short");
    callbacks_util::cbprintdisplay(0, 0, 2, std::string(3000, 'x'));
    return standin::console_text() != expected;
}

constexpr scenario scenarios[] = {
    {"vectors in every mode", vectors_in_every_mode, 20},
    {"rows of a solver", rows_of_a_solver, 8},
    {"arrays of every type", arrays_of_every_type, 9},
    {"random numbers and a snapshot", random_numbers_and_a_snapshot, 4},
    {"the record of a solve", the_record_of_a_solve, 1},
    {"values in slots", values_in_slots, 6},
    {"slots with old values", slots_with_old_values, 6},
    {"a value with parameters", a_value_with_parameters, 4},
    {"a report to the output function", a_report_to_the_output_function, 9, true},
    {"short and long lines", short_and_long_lines, 3, true},
};

/// Runs one scenario with every failure.
class Campaign : public ::testing::TestWithParam<scenario> {
protected:
    void TearDown() override { standin::reset(); }

    /// Runs the scenario with a planned failure. Returns whether the failure occurred.
    static bool fails(const injector& failing, std::int64_t k) {
        SCOPED_TRACE("failing " + failing.name + " " + std::to_string(k));
        standin::reset();
        standin::set_console(standin::console::capture);
        standin::set_fault_handler(
            [](const standin::fault& found) { ADD_FAILURE() << found.sentence; });
        const std::int64_t before = failing.requests();
        failing.plan(k);
        const bool failed = GetParam().run();
        const bool occurred = failing.requests() - before >= k;
        failing.plan(0);
        if (!occurred || !GetParam().hides_failures) {
            EXPECT_EQ(failed, occurred);
        }
        EXPECT_TRUE(standin::live_blocks().empty()) << standin::report();
        EXPECT_TRUE(standin::live_objects().empty()) << standin::report();
        EXPECT_EQ(standin::live_records(), 0);
        return occurred;
    }
};

TEST_P(Campaign, LeaksNothingAfterAnyFailure) {
    std::int64_t injected = 0;
    for (const injector& failing : injectors()) {
        std::int64_t k = 1;
        while (fails(failing, k)) {
            ASSERT_LT(k, 1000) << failing.name << " fails without end";
            ++k;
        }
        injected += k - 1;
    }
    EXPECT_EQ(injected, GetParam().requests);
    std::printf("%s: %d faults injected\n", GetParam().name, static_cast<int>(injected));
}

INSTANTIATE_TEST_SUITE_P(, Campaign, ::testing::ValuesIn(scenarios));

} // namespace
