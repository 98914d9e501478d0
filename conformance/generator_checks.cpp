#include <cmath>
#include <cstdint>
#include <limits>
#include <thread>
#include <vector>

#include "checks.hpp"
#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::host_conformance {

namespace {

using numbers = std::vector<double>;

constexpr double unwritten = std::numeric_limits<double>::quiet_NaN();

/// Draws numbers one at a time, as the library does.
numbers draw(void* generator, std::size_t count) {
    numbers drawn(count, unwritten);
    const std::int64_t one = 1;
    for (double& each : drawn) {
        host::getRandUniformOptim(generator, &each, &one);
    }
    return drawn;
}

/// The first numbers of a seed; none if the host makes no generator.
numbers numbers_of_seed(std::int32_t seed) {
    void* const generator = host::instantiateRngOptim(seed);
    if (generator == nullptr) {
        return {};
    }
    const numbers drawn = draw(generator, 20);
    host::deleteRngOptim(generator);
    return drawn;
}

/// Owns a generator and deletes it.
class generator {
public:
    explicit generator(std::int32_t seed) : address(host::instantiateRngOptim(seed)) {}
    ~generator() {
        if (address != nullptr) {
            host::deleteRngOptim(address);
        }
    }
    generator(const generator&) = delete;
    generator& operator=(const generator&) = delete;

    void* const address;
};

/// Owns a snapshot and deletes it.
class snapshot {
public:
    explicit snapshot(void* source) : address(host::getRngStateOptim(source)) {}
    ~snapshot() {
        if (address != nullptr) {
            host::deleteRngStateOptim(address);
        }
    }
    snapshot(const snapshot&) = delete;
    snapshot& operator=(const snapshot&) = delete;

    void* const address;
};

constexpr const char* no_generator = "there is no generator";

finding takes_any_seed() {
    constexpr std::int32_t seeds[] = {0, 1, -1, std::numeric_limits<std::int32_t>::min(),
                                      std::numeric_limits<std::int32_t>::max()};
    for (const std::int32_t seed : seeds) {
        if (numbers_of_seed(seed).empty()) {
            return "null for " + std::to_string(seed);
        }
    }
    return {};
}

finding draws_numbers() {
    const numbers drawn = numbers_of_seed(1);
    bool differ = false;
    for (const double each : drawn) {
        if (!std::isfinite(each)) {
            return "one is not finite, or was not written";
        }
        differ = differ || each != drawn[0];
    }
    return expect(differ, "they are all the same");
}

finding draws_as_many_as_asked() {
    const generator made(1);
    if (made.address == nullptr) {
        return no_generator;
    }
    constexpr std::int64_t count = 7;
    numbers room(count + 1, unwritten);
    host::getRandUniformOptim(made.address, room.data(), &count);
    for (std::size_t i = 0; i < count; ++i) {
        if (std::isnan(room[i])) {
            return "number " + std::to_string(i + 1) + " was not written";
        }
    }
    return expect(std::isnan(room[count]), "one more was written");
}

finding repeats_by_seed() {
    const numbers first = numbers_of_seed(4711);
    return expect(!first.empty() && first == numbers_of_seed(4711), "other numbers");
}

finding differs_by_seed() {
    const numbers first = numbers_of_seed(1);
    return expect(first != numbers_of_seed(2) || first != numbers_of_seed(3),
                  "seeds 1, 2 and 3 all start the same numbers");
}

finding keeps_generators_apart() {
    const generator a(1);
    const generator b(2);
    if (a.address == nullptr || b.address == nullptr) {
        return no_generator;
    }
    numbers drawn;
    for (int i = 0; i < 20; ++i) {
        drawn.push_back(draw(a.address, 1)[0]);
        draw(b.address, 1);
    }
    return expect(drawn == numbers_of_seed(1), "draws from one change the numbers of the other");
}

finding serves_two_threads() {
    const numbers alone = numbers_of_seed(2);
    bool other = true;
    std::thread second([&] {
        for (int i = 0; i < 100; ++i) {
            other = other && numbers_of_seed(2) == alone;
        }
    });
    bool own = true;
    for (int i = 0; i < 100; ++i) {
        own = own && numbers_of_seed(2) == alone;
    }
    second.join();
    return expect(!alone.empty() && own && other, "other numbers than with one thread");
}

/// Restores a snapshot twice, with draws before and in between, and compares the numbers.
finding repeats_by_snapshot(int restorations) {
    const generator made(1);
    if (made.address == nullptr) {
        return no_generator;
    }
    draw(made.address, 5);
    const snapshot taken(made.address);
    if (taken.address == nullptr) {
        return "there is no snapshot";
    }
    const numbers after = draw(made.address, 20);
    for (int i = 0; i < restorations; ++i) {
        host::setRngStateOptim(made.address, taken.address);
        if (draw(made.address, 20) != after) {
            return "other numbers than those that followed the snapshot";
        }
        draw(made.address, 3);
    }
    return {};
}

finding takes_snapshot_without_change() {
    const generator made(1);
    if (made.address == nullptr) {
        return no_generator;
    }
    const snapshot taken(made.address);
    return expect(draw(made.address, 20) == numbers_of_seed(1),
                  "the generator goes on with other numbers than without a snapshot");
}

finding snapshot_outlives_generator() {
    void* state = nullptr;
    {
        const generator made(1);
        if (made.address == nullptr) {
            return no_generator;
        }
        state = host::getRngStateOptim(made.address);
    }
    if (state == nullptr) {
        return "there is no snapshot";
    }
    host::deleteRngStateOptim(state);
    return {};
}

finding come_and_go() {
    for (int i = 0; i < 1000; ++i) {
        if (numbers_of_seed(i).empty()) {
            return "null after " + std::to_string(i);
        }
    }
    return {};
}

} // namespace

void check_generators() {
    check("instantiateRngOptim", "makes a generator from any seed", takes_any_seed);
    check("instantiateRngOptim", "starts the same numbers from the same seed", repeats_by_seed);
    check("instantiateRngOptim", "starts other numbers from another seed", differs_by_seed);
    check("instantiateRngOptim", "keeps generators apart", keeps_generators_apart);
    check("getRandUniformOptim", "draws finite numbers that vary", draws_numbers);
    check("getRandUniformOptim", "draws the requested count of numbers", draws_as_many_as_asked);
    check("getRandUniformOptim", "serves two threads with a generator each", serves_two_threads);
    check("getRngStateOptim", "leaves the generator as it is", takes_snapshot_without_change);
    check("setRngStateOptim", "restores the numbers that followed the snapshot",
          [] { return repeats_by_snapshot(1); });
    check("setRngStateOptim", "leaves the snapshot valid for another restoration",
          [] { return repeats_by_snapshot(3); });
    check("deleteRngOptim", "releases generators, one after the other", come_and_go);
    check("deleteRngStateOptim", "releases a snapshot after its generator",
          snapshot_outlives_generator);
}

} // namespace zktarn::host_conformance
