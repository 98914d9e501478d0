#include "zktarn_standin/records.hpp"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <new>

// Nothing here may use a container: its storage would come from the operators below.

namespace {

/// Precedes a record in memory. The guard follows the record directly.
struct alignas(__STDCPP_DEFAULT_NEW_ALIGNMENT__) record_header {
    record_header* next;
    std::size_t size;
};

constexpr std::array<unsigned char, 16> guard = {
    0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD, 0xFD,
};

std::mutex lock;
// The live records, in a hash table: one list for each hash of an address.
std::array<record_header*, 1024> lists = {};
// Read without the lock, so that deleting other objects stays cheap while there is no record.
std::atomic<std::int64_t> live = 0;
std::int64_t requests = 0;
std::int64_t failing_request = 0;

record_header*& list_of(const void* record) {
    const auto address = reinterpret_cast<std::uintptr_t>(record);
    return lists[address / alignof(record_header) % lists.size()];
}

unsigned char* guard_of(record_header* header) {
    return reinterpret_cast<unsigned char*>(header + 1) + header->size;
}

void* make_record(std::size_t size) noexcept {
    const std::lock_guard locked(lock);
    if (++requests == failing_request) {
        return nullptr;
    }
    auto* const header =
        static_cast<record_header*>(std::malloc(sizeof(record_header) + size + guard.size()));
    if (header == nullptr) {
        return nullptr;
    }
    header->size = size;
    std::memcpy(guard_of(header), guard.data(), guard.size());
    record_header*& list = list_of(header + 1);
    header->next = list;
    list = header;
    ++live;
    return header + 1;
}

/// Removes a record from its list. Returns null for an object that is not a record.
record_header* remove_record(const void* object) noexcept {
    const std::lock_guard locked(lock);
    for (record_header** link = &list_of(object); *link != nullptr; link = &(*link)->next) {
        record_header* const header = *link;
        if (header + 1 == object) {
            *link = header->next;
            --live;
            return header;
        }
    }
    return nullptr;
}

void release(void* object) noexcept {
    record_header* const header = live == 0 ? nullptr : remove_record(object);
    if (header == nullptr) {
        std::free(object);
        return;
    }
    if (std::memcmp(guard_of(header), guard.data(), guard.size()) != 0) {
        std::fprintf(stderr,
                     "zktarn stand-in host: a record of %zu bytes was written past its end\n",
                     header->size);
        std::abort();
    }
    std::free(header);
}

} // namespace

namespace zktarn::standin {

void fail_record(std::int64_t k) noexcept {
    const std::lock_guard locked(lock);
    failing_request = k < 1 ? 0 : requests + k;
}

std::int64_t record_requests() noexcept {
    const std::lock_guard locked(lock);
    return requests;
}

std::int64_t live_records() noexcept {
    return live;
}

} // namespace zktarn::standin

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return make_record(size);
}

void* operator new(std::size_t size) {
    if (void* const object = std::malloc(size == 0 ? 1 : size)) {
        return object;
    }
    throw std::bad_alloc();
}

void operator delete(void* object) noexcept {
    release(object);
}

void operator delete(void* object, std::size_t) noexcept {
    release(object);
}

void operator delete(void* object, const std::nothrow_t&) noexcept {
    release(object);
}
