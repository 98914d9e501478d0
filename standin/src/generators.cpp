#include "generators.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <random>
#include <set>
#include <utility>

#include "core.hpp"

namespace zktarn::standin {

namespace {

// The same numbers on every platform, and 19937 bits of state that a copy holds.
using engine = std::mt19937_64;

/// Generators or snapshots: both are an engine.
class engines {
public:
    engines(const char* what, operation made_by) : what_(what), made_by_(made_by) {}

    void* add(const engine& start) {
        auto made = std::make_unique<entry>(entry{start, made_ + 1});
        void* const address = made.get();
        past_.erase(address);
        live_.emplace(address, std::move(made));
        ++made_;
        return address;
    }

    engine& at(operation by, void* address) {
        const auto found = live_.find(address);
        if (found == live_.end()) {
            refuse(by, address);
        }
        return found->second->numbers;
    }

    void remove(operation by, void* address) {
        const auto found = live_.find(address);
        if (found == live_.end()) {
            refuse(by, address);
        }
        past_.emplace(address, found->second->number);
        live_.erase(found);
    }

    void list(std::vector<live_object>& all) const {
        std::set<std::int64_t> numbers;
        for (const auto& [address, made] : live_) {
            numbers.insert(made->number);
        }
        for (const std::int64_t number : numbers) {
            all.push_back({made_by_, number, described(number)});
        }
    }

private:
    struct entry {
        engine numbers;
        std::int64_t number;
    };

    std::string described(std::int64_t number) const {
        return std::string(what_) + " " + std::to_string(number) + " (made by " + name(made_by_) +
               ")";
    }

    [[noreturn]] void refuse(operation by, void* address) const {
        const std::string prefix = std::string(name(by)) + ": ";
        if (const auto old = past_.find(address); old != past_.end()) {
            throw fault{fault_kind::use_after_release,
                        {},
                        prefix + described(old->second) + " was used after it was deleted"};
        }
        throw fault{fault_kind::unknown_object, {}, prefix + "the address is that of no " + what_};
    }

    const char* what_;
    operation made_by_;
    std::int64_t made_ = 0;
    std::map<void*, std::unique_ptr<entry>> live_;
    /// Those whose address has not been handed out again, by number.
    std::map<void*, std::int64_t> past_;
};

struct all_engines {
    std::mutex lock;
    engines generators{"generator", operation::instantiateRngOptim};
    engines states{"snapshot", operation::getRngStateOptim};
};

all_engines& all() {
    static auto& both = *new all_engines;
    return both;
}

/// Uniform in [0, 1): as many of the 64 bits as a real has digits.
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
    constexpr operation by = operation::setRngStateOptim;
    engine& numbers = all().generators.at(by, generator);
    numbers = all().states.at(by, state);
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
