#include "generators.hpp"

#include <cstdint>
#include <map>
#include <mutex>
#include <random>
#include <string>

#include "fault_report.hpp"
#include "origin.hpp"

namespace zktarn::standin {

namespace {

// Draws the same numbers on every platform.
using engine = std::mt19937_64;

/// Generators or snapshots; each is an engine. Its handle is its number in the form of an address,
/// and is never reused.
class engines {
public:
    /// @param tag  distinguishes the handles of two kinds; less than `spacing`.
    engines(const char* what, operation made_by, std::uintptr_t tag)
        : what_(what), made_by_(made_by), tag_(tag) {}

    void* add(const engine& start) {
        live_.emplace(made_ + 1, live_engine{start, origin_now()});
        ++made_;
        return reinterpret_cast<void*>(static_cast<std::uintptr_t>(made_) * spacing + tag_);
    }

    engine& at(operation caller, const void* handle) {
        const auto found = live_.find(number_of(handle));
        if (found == live_.end()) {
            refuse(caller, handle);
        }
        return found->second.numbers;
    }

    void remove(operation caller, const void* handle) {
        if (live_.erase(number_of(handle)) == 0) {
            refuse(caller, handle);
        }
    }

    void list(std::vector<live_object>& all) const {
        for (const auto& [number, each] : live_) {
            all.push_back({made_by_, number, described(number), each.origin});
        }
    }

private:
    struct live_engine {
        engine numbers;
        call_stack origin;
    };

    // Handles have the alignment of an engine, like real addresses.
    static constexpr std::uintptr_t spacing = 64;

    /// 0 for an address that is not a handle.
    std::int64_t number_of(const void* handle) const {
        const auto bits = reinterpret_cast<std::uintptr_t>(handle);
        return bits % spacing == tag_ ? static_cast<std::int64_t>(bits / spacing) : 0;
    }

    std::string described(std::int64_t number) const {
        return std::string(what_) + " " + std::to_string(number) + " (made by " + name(made_by_) +
               ")";
    }

    [[noreturn]] void refuse(operation caller, const void* handle) const {
        const std::int64_t number = number_of(handle);
        if (number >= 1 && number <= made_) {
            standin::refuse(fault_kind::use_after_release, caller,
                            described(number) + " was used after it was deleted");
        }
        standin::refuse(fault_kind::unknown_object, caller,
                        std::string("the address is not that of a ") + what_);
    }

    const char* what_;
    operation made_by_;
    std::uintptr_t tag_;
    std::int64_t made_ = 0;
    std::map<std::int64_t, live_engine> live_;
};

struct all_engines {
    std::mutex lock;
    engines generators{"generator", operation::instantiateRngOptim, 0};
    engines states{"snapshot", operation::getRngStateOptim, 32};
};

all_engines& all() {
    static auto& both = *new all_engines;
    return both;
}

/// Uniform in [0, 1): the upper 53 of the 64 bits, as many as a double has digits.
double uniform(engine& numbers) {
    return static_cast<double>(numbers() >> 11) * 0x1p-53;
}

} // namespace

void* make_generator(std::int32_t seed) {
    const std::lock_guard guard(all().lock);
    return all().generators.add(engine(static_cast<std::uint32_t>(seed)));
}

void draw(void* generator, double* values, std::int64_t count) {
    const std::lock_guard guard(all().lock);
    engine& numbers = all().generators.at(operation::getRandUniformOptim, generator);
    if (count < 0) {
        refuse(fault_kind::bad_request, operation::getRandUniformOptim,
               std::to_string(count) + " numbers are to be drawn");
    }
    for (std::int64_t i = 0; i < count; ++i) {
        values[i] = uniform(numbers);
    }
}

void delete_generator(void* generator) {
    const std::lock_guard guard(all().lock);
    all().generators.remove(operation::deleteRngOptim, generator);
}

void* save_state(void* generator) {
    if (generator == nullptr) {
        return nullptr;
    }
    const std::lock_guard guard(all().lock);
    return all().states.add(all().generators.at(operation::getRngStateOptim, generator));
}

void restore_state(void* generator, void* state) {
    const std::lock_guard guard(all().lock);
    constexpr operation caller = operation::setRngStateOptim;
    engine& numbers = all().generators.at(caller, generator);
    numbers = all().states.at(caller, state);
}

void delete_state(void* state) {
    const std::lock_guard guard(all().lock);
    all().states.remove(operation::deleteRngStateOptim, state);
}

void list_generators(std::vector<live_object>& objects) {
    const std::lock_guard guard(all().lock);
    all().generators.list(objects);
    all().states.list(objects);
}

} // namespace zktarn::standin
