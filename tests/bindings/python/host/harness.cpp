// What the tests of the host need and Python code cannot do: a request for memory that fails, an
// operation on a thread that Python did not make, a signal that arrives in the middle of a call.
// The tests load this library by ctypes.

#include <array>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <thread>
#include <utility>

#define ZKTARN_NUMPY_TABLE_HERE
#include "host/interpreter.hpp"
#include "host/python_host.hpp"
#include "zktarn/host/libqv.hpp"
#include "zktarn/host/libqvx.hpp"
#include "zktarn/host/libut.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace {

namespace host = zktarn::host;

/// Requests until the one that fails; below 1 none fails.
std::int64_t remaining = 0;
bool has_failed = false;

bool fails_now() {
    if (remaining > 0 && --remaining == 0) {
        has_failed = true;
        return true;
    }
    return false;
}

/// An allocator of Python that is wrapped; `ctx` of the wrapper is the address of the original.
void* request(void* original, std::size_t size) {
    const auto& inner = *static_cast<PyMemAllocatorEx*>(original);
    return fails_now() ? nullptr : inner.malloc(inner.ctx, size);
}
void* request_zeros(void* original, std::size_t count, std::size_t size) {
    const auto& inner = *static_cast<PyMemAllocatorEx*>(original);
    return fails_now() ? nullptr : inner.calloc(inner.ctx, count, size);
}
void* resize(void* original, void* address, std::size_t size) {
    const auto& inner = *static_cast<PyMemAllocatorEx*>(original);
    return fails_now() ? nullptr : inner.realloc(inner.ctx, address, size);
}
void release(void* original, void* address) {
    const auto& inner = *static_cast<PyMemAllocatorEx*>(original);
    inner.free(inner.ctx, address);
}

/// NumPy's allocator for the data of arrays.
void* request_data(void* /*context*/, std::size_t size) {
    return fails_now() ? nullptr : std::malloc(size);
}
void* request_zero_data(void* /*context*/, std::size_t count, std::size_t size) {
    return fails_now() ? nullptr : std::calloc(count, size);
}
void* resize_data(void* /*context*/, void* address, std::size_t size) {
    return fails_now() ? nullptr : std::realloc(address, size);
}
void release_data(void* /*context*/, void* address, std::size_t /*size*/) {
    std::free(address);
}

PyDataMem_Handler data_handler = {
    "harness", 1, {nullptr, request_data, request_zero_data, resize_data, release_data}};

constexpr std::string_view phase = "phase     ";
constexpr std::string_view name = "a_name_that_is_in_no_cache";
constexpr std::int64_t one = 1;

host::array_handle make_struct() {
    constexpr std::int64_t extents[] = {1, 1};
    constexpr std::int32_t nfields = 1;
    return host::qvcreatestructarray800_(one, extents, nfields, phase.data(), phase.size());
}

bool made(host::array_handle handle) {
    host::qvdestroyarray800_(handle);
    return handle != 0;
}

bool makes_block() {
    void* const block = host::qvMallocExOptim(2000);
    host::qvFreeExOptim(block);
    return block != nullptr;
}

bool makes_generator() {
    void* const generator = host::instantiateRngOptim(1);
    if (generator != nullptr) {
        host::deleteRngOptim(generator);
    }
    return generator != nullptr;
}

bool makes_text() {
    return made(host::qvcreatestring800_(name.data(), name.size()));
}

/// Python keeps some floats that are no longer used for the next ones, so this uses them up first.
bool makes_scalar() {
    const std::int64_t wanted = std::exchange(remaining, 0);
    std::array<host::array_handle, 200> others{};
    for (host::array_handle& each : others) {
        each = host::qvcreatedoublescalar800_(1.5);
    }
    remaining = wanted;
    const bool succeeded = made(host::qvcreatedoublescalar800_(2.5));
    remaining = 0;
    for (const host::array_handle each : others) {
        host::qvdestroyarray800_(each);
    }
    return succeeded;
}

bool makes_matrix() {
    constexpr std::int64_t rows = 300;
    constexpr std::int32_t is_real = 0;
    return made(host::qvcreatedoublematrix800_(rows, one, is_real));
}

bool makes_struct_array() {
    constexpr std::int64_t extents[] = {2, 2};
    constexpr std::int64_t ndims = 2;
    constexpr std::int32_t nfields = 1;
    return made(host::qvcreatestructarray800_(ndims, extents, nfields, phase.data(), phase.size()));
}

/// What an operation that fails leaves behind, for operations that need an object that exists.
/// `remaining` counts from the operation on.
template <class Prepare, class Operate>
bool with(Prepare prepare, Operate operate) {
    const std::int64_t wanted = std::exchange(remaining, 0);
    const auto object = prepare();
    remaining = wanted;
    return operate(object);
}

bool adds_field() {
    return with(make_struct, [](host::array_handle structure) {
        const std::int32_t number = host::qvaddfield800_(structure, name.data(), name.size());
        remaining = 0;
        host::qvdestroyarray800_(structure);
        return number != 0;
    });
}

bool finds_field() {
    return with(make_struct, [](host::array_handle structure) {
        const std::int32_t number = host::qvgetfieldnumber800_(structure, phase.data(), 5);
        remaining = 0;
        host::qvdestroyarray800_(structure);
        return number != 0;
    });
}

bool sets_field() {
    return with(make_struct, [](host::array_handle structure) {
        const std::int64_t wanted = std::exchange(remaining, 0);
        const host::array_handle value = host::qvcreatedoublescalar800_(2.5);
        remaining = wanted;
        host::qvsetfield800_(structure, one, phase.data(), value, 5);
        remaining = 0;
        // Borrowed from the struct, which holds the value if it was stored.
        const auto* const fields = reinterpret_cast<PyObject*>(structure);
        const bool stored = PyDict_GetItemString(const_cast<PyObject*>(fields), "phase") != Py_None;
        host::qvdestroyarray800_(structure);
        return stored;
    });
}

bool takes_snapshot() {
    return with([] { return host::instantiateRngOptim(1); },
                [](void* generator) {
                    void* const state = host::getRngStateOptim(generator);
                    remaining = 0;
                    if (state != nullptr) {
                        host::deleteRngStateOptim(state);
                    }
                    host::deleteRngOptim(generator);
                    return state != nullptr;
                });
}

bool prints() {
    return host::qvxprintf800_(name.data(), name.size()) == 0;
}

using operation = bool (*)();
constexpr std::array<operation, 11> operations = {
    makes_block, makes_generator, makes_text,     makes_scalar, makes_matrix, makes_struct_array,
    adds_field,  finds_field,     takes_snapshot, sets_field,   prints};
constexpr const char* names = "makes_block makes_generator makes_text makes_scalar makes_matrix "
                              "makes_struct_array adds_field finds_field takes_snapshot sets_field "
                              "prints";

} // namespace

extern "C" {

/// Lets the requests of Python's and NumPy's allocators go through this library. Returns 0, or -1
/// with an exception set.
int harness_start() {
    static std::array<PyMemAllocatorEx, 2> originals;
    if (_import_array() != 0) {
        return -1;
    }
    for (std::size_t i = 0; i < originals.size(); ++i) {
        const PyMemAllocatorDomain domain = i == 0 ? PYMEM_DOMAIN_MEM : PYMEM_DOMAIN_OBJ;
        PyMem_GetAllocator(domain, &originals[i]);
        PyMemAllocatorEx wrapper{&originals[i], request, request_zeros, resize, release};
        PyMem_SetAllocator(domain, &wrapper);
    }
    PyObject* const capsule = PyCapsule_New(&data_handler, "mem_handler", nullptr);
    PyObject* const previous = capsule == nullptr ? nullptr : PyDataMem_SetHandler(capsule);
    Py_XDECREF(capsule);
    Py_XDECREF(previous);
    return previous == nullptr ? -1 : 0;
}

/// Runs an operation while request `k` of it fails. Returns -1 when it has fewer requests; else
/// whether it succeeded all the same.
int harness_attempt(int which, std::int64_t k) {
    has_failed = false;
    remaining = k;
    const bool succeeded = operations[static_cast<std::size_t>(which)]();
    remaining = 0;
    return !has_failed ? -1 : succeeded ? 1 : 0;
}

/// Runs an operation many times; returns how often it succeeded.
std::int64_t harness_repeat(int which, std::int64_t count) {
    std::int64_t succeeded = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        succeeded += operations[static_cast<std::size_t>(which)]() ? 1 : 0;
    }
    return succeeded;
}

/// The names of the operations, in order, with blanks between them.
const char* harness_names() {
    return names;
}

/// Raises a signal and polls, with no code of Python in between.
int harness_raise_and_poll(int number) {
    std::raise(number);
    return host::utIsInterruptPending() ? 1 : 0;
}

/// Polls until the answer is true; returns the number of polls.
std::int64_t harness_poll_until_true() {
    std::int64_t polls = 1;
    while (!host::utIsInterruptPending()) {
        ++polls;
    }
    return polls;
}

/// Asserts a false condition on a thread that Python did not make. Call it without the
/// interpreter's lock.
void harness_assert_elsewhere() {
    std::thread([] { host::assertOptim(false); }).join();
}

/// Calls the output function on a thread that Python did not make, and returns the first number of
/// its answer; -1 without an answer. Call it without the interpreter's lock.
double harness_call_elsewhere() {
    double answer = -1.0;
    std::thread([&] {
        constexpr std::string_view function = "tarnCallback";
        constexpr std::int32_t count = 1;
        const host::array_handle structure = make_struct();
        host::array_handle output = 0;
        host::qvxcallquarn800_(count, &output, count, &structure, function.data(), function.size());
        host::qvcopyptrtoreal8800_(host::qvgetpr800_(output), &answer, one);
        host::qvdestroyarray800_(output);
        host::qvdestroyarray800_(structure);
    }).join();
    return answer;
}

/// Calls an operation while an exception is set. Returns 1 when the same one is set afterwards.
int harness_keeps_exception() {
    PyErr_SetString(PyExc_KeyError, "set before");
    static_cast<void>(makes_block() && makes_generator() && makes_text());
    host::assertOptim(false);
    const bool kept = PyErr_ExceptionMatches(PyExc_KeyError) != 0;
    PyErr_Clear();
    return kept ? 1 : 0;
}
}
