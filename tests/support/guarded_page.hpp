#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace zktarn::testing {

/// A page of memory between two inaccessible ones: an access to these ends the program.
class guarded_page {
public:
    guarded_page()
        : size_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))),
          pages_(mmap(nullptr, 3 * size_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (pages_ == MAP_FAILED || mprotect(begin(), size_, PROT_READ | PROT_WRITE) != 0) {
            throw std::bad_alloc();
        }
    }
    ~guarded_page() { munmap(pages_, 3 * size_); }
    guarded_page(const guarded_page&) = delete;
    guarded_page& operator=(const guarded_page&) = delete;

    /// A copy of the integers at the beginning of the page.
    std::int32_t* at_begin(const std::vector<std::int32_t>& all) const {
        return copied(all, begin());
    }

    /// A copy of the integers at the end of the page.
    std::int32_t* at_end(const std::vector<std::int32_t>& all) const {
        return copied(all, begin() + size_ - all.size() * sizeof all[0]);
    }

private:
    char* begin() const { return static_cast<char*>(pages_) + size_; }

    static std::int32_t* copied(const std::vector<std::int32_t>& all, char* target) {
        std::memcpy(target, all.data(), all.size() * sizeof all[0]);
        return reinterpret_cast<std::int32_t*>(target);
    }

    std::size_t size_;
    void* pages_;
};

} // namespace zktarn::testing
