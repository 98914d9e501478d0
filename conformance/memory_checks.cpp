#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <thread>
#include <vector>

#include "checks.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host_conformance {

namespace {

struct block {
    unsigned char* address;
    std::size_t nbytes;
    unsigned char pattern;
};

using blocks = std::vector<block>;

constexpr std::size_t sizes[] = {1, 2, 3, 7, 8, 9, 16, 24, 100, 1000, 4096, 65537, 1 << 20};

/// A block filled with its own pattern; null if the request was refused.
block obtain(std::size_t nbytes, unsigned char pattern) {
    void* const address = host::qvMallocExOptim(static_cast<std::int64_t>(nbytes));
    auto* const first = static_cast<unsigned char*>(address);
    if (first != nullptr) {
        std::fill_n(first, nbytes, pattern);
    }
    return {first, nbytes, pattern};
}

bool is_intact(const block& b) {
    return std::all_of(b.address, b.address + b.nbytes,
                       [&](unsigned char c) { return c == b.pattern; });
}

finding obtain_all(blocks& all) {
    unsigned char pattern = 1;
    for (const std::size_t nbytes : sizes) {
        const block made = obtain(nbytes, pattern++);
        if (made.address == nullptr) {
            return "null for " + std::to_string(nbytes) + " bytes";
        }
        all.push_back(made);
    }
    return {};
}

finding are_aligned(const blocks& all) {
    for (const block& b : all) {
        if (reinterpret_cast<std::uintptr_t>(b.address) % alignof(std::max_align_t) != 0) {
            return "a block of " + std::to_string(b.nbytes) + " bytes is not on a multiple of " +
                   std::to_string(alignof(std::max_align_t));
        }
    }
    return {};
}

finding are_apart(blocks all) {
    std::sort(all.begin(), all.end(),
              [](const block& a, const block& b) { return std::less<>{}(a.address, b.address); });
    for (std::size_t i = 1; i < all.size(); ++i) {
        if (std::less<>{}(all[i].address, all[i - 1].address + all[i - 1].nbytes)) {
            return "blocks of " + std::to_string(all[i - 1].nbytes) + " and " +
                   std::to_string(all[i].nbytes) + " bytes overlap";
        }
    }
    return {};
}

finding are_intact(const blocks& all) {
    for (const block& b : all) {
        if (!is_intact(b)) {
            return "a block of " + std::to_string(b.nbytes) + " bytes has changed";
        }
    }
    return {};
}

/// Releases every second block and requests as many new ones.
finding exchange_half(blocks& all) {
    blocks kept;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (i % 2 == 0) {
            host::qvFreeExOptim(all[i].address);
        } else {
            kept.push_back(all[i]);
        }
    }
    all = kept;
    finding wrong = are_intact(all);
    return wrong.empty() ? obtain_all(all) + are_intact(all) : wrong;
}

void release_all(blocks& all) {
    for (; !all.empty(); all.pop_back()) {
        host::qvFreeExOptim(all.back().address);
    }
}

/// The work of one thread: requests blocks, checks their contents and releases them.
bool serves_this_thread(unsigned char pattern) {
    bool served = true;
    for (int round = 0; served && round < 200; ++round) {
        blocks all;
        for (std::size_t nbytes = 1; nbytes <= 1000; nbytes *= 10) {
            all.push_back(obtain(nbytes, pattern));
            served = served && all.back().address != nullptr;
        }
        served = served && are_intact(all).empty();
        release_all(all);
    }
    return served;
}

finding serves_two_threads() {
    bool other = false;
    std::thread second([&] { other = serves_this_thread(2); });
    const bool own = serves_this_thread(1);
    second.join();
    return expect(own && other, "null, or a block that was changed by the other thread");
}

} // namespace

void check_memory() {
    const char* const obtains = "qvMallocExOptim";
    const char* const releases = "qvFreeExOptim";
    blocks all;
    check(obtains, "provides blocks of 1 byte to 1 MiB, all of whose bytes can be written",
          [&] { return obtain_all(all); });
    check(obtains, "aligns every block for any scalar type", [&] { return are_aligned(all); });
    check(obtains, "keeps blocks apart", [&] { return are_apart(all); });
    check(obtains, "lets every byte be read back", [&] { return are_intact(all); });
    check(releases, "releases some blocks and leaves the others unchanged",
          [&] { return exchange_half(all); });
    check(releases, "releases all blocks", [&] {
        release_all(all);
        return finding();
    });
    check(obtains, "returns null for a size that exceeds any memory", [] {
        return expect(host::qvMallocExOptim(std::numeric_limits<std::int64_t>::max()) == nullptr,
                      "it returned an address");
    });
    check(obtains, "serves two threads at once", serves_two_threads);
}

} // namespace zktarn::host_conformance
