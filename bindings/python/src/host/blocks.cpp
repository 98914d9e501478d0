#include <cstdint>
#include <new>
#include <unordered_map>

#include "interpreter.hpp"
#include "python_host.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

/// The memory manager: each block is the data of a NumPy array.

namespace zktarn::python_host {

namespace {

using block_table = std::unordered_map<const void*, PyObject*>;

/// The arrays of the blocks in use, by address, each with one reference. The interpreter's lock
/// protects it. It is never destroyed: a block may be released after this library's destructors.
block_table& blocks() {
    static auto* const table = new block_table;
    return *table;
}

/// Keeps the array until its block is released. Returns null when memory is missing.
void* keep(reference array) noexcept {
    void* const address = PyArray_DATA(reinterpret_cast<PyArrayObject*>(array.get()));
    try {
        blocks().emplace(address, array.get());
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
    static_cast<void>(array.release());
    return address;
}

} // namespace

} // namespace zktarn::python_host

namespace zktarn::host {

using python_host::blocks;
using python_host::interpreter_lock;
using python_host::reference;

extern "C" {

void* qvMallocExOptim(std::int64_t nbytes) noexcept {
    const interpreter_lock lock;
    if (!lock || nbytes < 0) {
        return nullptr;
    }
    const npy_intp extent = nbytes;
    reference array(PyArray_SimpleNew(1, &extent, NPY_UINT8));
    if (!array) {
        lock.fail();
        return nullptr;
    }
    return python_host::keep(std::move(array));
}

void qvFreeExOptim(void* address) noexcept {
    if (address == nullptr) {
        return;
    }
    const interpreter_lock lock;
    if (!lock) {
        return;
    }
    const auto found = blocks().find(address);
    if (found == blocks().end()) {
        PyErr_Format(PyExc_ValueError, "there is no block at address %p to release", address);
        lock.fail();
        return;
    }
    const reference array(found->second);
    blocks().erase(found);
}
}

} // namespace zktarn::host

PyObject* zktarn_python_block(const void* address) {
    const auto& table = zktarn::python_host::blocks();
    const auto found = table.find(address);
    return found == table.end() ? nullptr
                                : zktarn::python_host::reference::share(found->second).release();
}

Py_ssize_t zktarn_python_block_count() {
    return static_cast<Py_ssize_t>(zktarn::python_host::blocks().size());
}
