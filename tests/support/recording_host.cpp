#include "support/recording_host.hpp"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::testing {

namespace {

recording_host* installed = nullptr;

[[noreturn]] void stop(const char* sentence) {
    std::fprintf(stderr, "recording host: %s\n", sentence);
    std::abort();
}

} // namespace

std::ostream& operator<<(std::ostream& out, const call& c) {
    out << c.operation << '(';
    const char* separator = "";
    for (const std::int64_t integer : c.integers) {
        out << separator << integer;
        separator = ", ";
    }
    for (const std::string& text : c.texts) {
        out << separator << '"' << text << '"';
        separator = ", ";
    }
    for (const double real : c.reals) {
        out << separator << real;
        separator = ", ";
    }
    if (c.address != nullptr) {
        out << separator << c.address;
    }
    return out << ')';
}

call malloc_of(std::int64_t nbytes) {
    return {"qvMallocExOptim", {nbytes}};
}

call free_of(const void* address) {
    return {"qvFreeExOptim", {}, {}, {}, address};
}

call assert_of(bool condition) {
    return {"assertOptim", {condition ? 1 : 0}};
}

recording_host::recording_host() {
    if (installed != nullptr) {
        stop("two at a time");
    }
    installed = this;
}

recording_host::~recording_host() {
    for (void* const block : live_) {
        std::free(block);
    }
    installed = nullptr;
}

recording_host& recording_host::current() {
    if (installed == nullptr) {
        stop("called while there is none");
    }
    return *installed;
}

const call& recording_host::record(call c) {
    calls.push_back(std::move(c));
    return calls.back();
}

void* recording_host::obtain(std::int64_t nbytes) {
    const bool refused = static_cast<std::int64_t>(blocks.size()) + 1 == refuse_request;
    // A size that no machine has is recorded and refused.
    constexpr std::int64_t affordable = std::int64_t{1} << 40;
    void* const block =
        refused || nbytes > affordable ? nullptr : std::malloc(static_cast<std::size_t>(nbytes));
    blocks.push_back(block);
    if (block != nullptr) {
        std::memset(block, fill, static_cast<std::size_t>(nbytes));
        live_.push_back(block);
    }
    return block;
}

void recording_host::release(void* address) {
    if (address == nullptr) {
        return;
    }
    const auto entry = std::find(live_.begin(), live_.end(), address);
    if (entry == live_.end()) {
        stop("an address was given back that is not out");
    }
    live_.erase(entry);
    std::free(address);
}

} // namespace zktarn::testing

namespace zktarn::host {

namespace {

using testing::call;
using testing::recording_host;

std::string text_of(const char* text, std::int64_t length) {
    return {text, static_cast<std::size_t>(length)};
}

/// Records a call and returns the scripted answer, or else `plain`.
double answer_to(call c, double plain) {
    recording_host& host = recording_host::current();
    const call& recorded = host.record(std::move(c));
    return host.answer ? host.answer(recorded) : plain;
}

array_handle new_array(call c) {
    return static_cast<array_handle>(
        answer_to(std::move(c), static_cast<double>(recording_host::current().next_handle())));
}

void* opaque(double number) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(number));
}

std::int64_t number_of(const void* handle) {
    return static_cast<std::int64_t>(reinterpret_cast<std::uintptr_t>(handle));
}

// What `qvgetpr800_` points to: the real data of every array of this host.
double real_data[16];

} // namespace

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    recording_host::current().record(testing::malloc_of(nbytes));
    return recording_host::current().obtain(nbytes);
}

void qvFreeExOptim(void* address) noexcept {
    recording_host::current().record(testing::free_of(address));
    recording_host::current().release(address);
}

void* instantiateRngOptim(std::int32_t seed) noexcept {
    return opaque(answer_to({"instantiateRngOptim", {seed}}, 1));
}

void deleteRngOptim(void* generator) noexcept {
    answer_to({"deleteRngOptim", {number_of(generator)}}, 0);
}

void getRandUniformOptim(void* generator, double* values, const std::int64_t* count) noexcept {
    *values =
        answer_to({"getRandUniformOptim", {number_of(generator), *count}, {}, {*values}}, 0.5);
}

void* getRngStateOptim(void* generator) noexcept {
    return opaque(answer_to({"getRngStateOptim", {number_of(generator)}}, 2));
}

void setRngStateOptim(void* generator, void* state) noexcept {
    answer_to({"setRngStateOptim", {number_of(generator), number_of(state)}}, 0);
}

void deleteRngStateOptim(void* state) noexcept {
    answer_to({"deleteRngStateOptim", {number_of(state)}}, 0);
}

void assertOptim(bool condition) noexcept {
    recording_host::current().record(testing::assert_of(condition));
}

void ioFlushOptim() noexcept {
    answer_to({"ioFlushOptim"}, 0);
}

bool utIsInterruptPending() noexcept {
    recording_host& host = recording_host::current();
    host.record({"utIsInterruptPending"});
    if (host.interrupts.empty()) {
        return false;
    }
    const bool pending = host.interrupts.front();
    host.interrupts.pop_front();
    return pending;
}

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t* extents,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    call c{"qvcreatestructarray800_", {ndims, extents[0], extents[1], nfields, slot_width}};
    c.texts = {text_of(field_names, nfields * slot_width)};
    return new_array(std::move(c));
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    return new_array({"qvcreatestring800_", {}, {text_of(text, text_length)}});
}

array_handle qvcreatedoublescalar800_(const double& value) noexcept {
    return new_array({"qvcreatedoublescalar800_", {}, {}, {value}});
}

array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept {
    return new_array({"qvcreatedoublematrix800_", {rows, columns, complexity}});
}

void qvsetfield800_(const array_handle& structure, const std::int64_t& index,
                    const char* field_name, const array_handle& value,
                    std::int64_t field_name_length) noexcept {
    answer_to(
        {"qvsetfield800_", {structure, index, value}, {text_of(field_name, field_name_length)}}, 0);
}

void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t& index,
                            const std::int32_t& number, const array_handle& value) noexcept {
    answer_to({"qvsetfieldbynumber800_", {structure, index, number, value}}, 0);
}

std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept {
    return static_cast<std::int32_t>(answer_to(
        {"qvgetfieldnumber800_", {structure}, {text_of(field_name, field_name_length)}}, 0));
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    return static_cast<std::int32_t>(
        answer_to({"qvaddfield800_", {structure}, {text_of(field_name, field_name_length)}}, 2));
}

data_address qvgetpr800_(const array_handle& array) noexcept {
    real_data[0] = answer_to({"qvgetpr800_", {array}}, 0);
    return real_data;
}

void qvcopyptrtoreal8800_(const data_address& from, double* to,
                          const std::int64_t& count) noexcept {
    answer_to({"qvcopyptrtoreal8800_", {count}, {}, {}, from}, 0);
    std::copy_n(from, count, to);
}

void qvcopyreal8toptr800_(const double* from, const data_address& to,
                          const std::int64_t& count) noexcept {
    answer_to(
        {"qvcopyreal8toptr800_", {count}, {}, {from, from + std::max<std::int64_t>(count, 0)}, to},
        0);
}

void qvdestroyarray800_(const array_handle& array) noexcept {
    answer_to({"qvdestroyarray800_", {array}}, 0);
}

std::int32_t qvxcallquarn800_(const std::int32_t& noutputs, array_handle* outputs,
                              const std::int32_t& ninputs, const array_handle* inputs,
                              const char* name, std::int64_t name_length) noexcept {
    call c{"qvxcallquarn800_", {noutputs, ninputs}};
    for (std::int32_t i = 0; i < ninputs; ++i) {
        c.integers.push_back(inputs[i]);
    }
    c.texts = {text_of(name, name_length)};
    for (std::int32_t i = 0; i < noutputs; ++i) {
        outputs[i] = recording_host::current().next_handle();
    }
    return static_cast<std::int32_t>(answer_to(std::move(c), 0));
}

std::int32_t qvxprintf800_(const char* text, std::int64_t text_length) noexcept {
    return static_cast<std::int32_t>(
        answer_to({"qvxprintf800_", {}, {text_of(text, text_length)}}, 0));
}
}

} // namespace zktarn::host
