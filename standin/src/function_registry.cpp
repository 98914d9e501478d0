#include "function_registry.hpp"

#include <exception>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "fault_report.hpp"
#include "origin.hpp"
#include "zktarn_standin/functions.hpp"

namespace zktarn::standin {

namespace {

struct registry {
    std::mutex lock;
    std::map<std::string, std::shared_ptr<host_function>> functions;
};

registry& registered() {
    static auto& all = *new registry;
    return all;
}

constexpr operation caller = operation::qvxcallquarn800_;

struct make_array {
    array_handle operator()(double value) const {
        return array_table::instance().add_real(caller, 1, 1, {value}, array_kind::real_scalar);
    }
    array_handle operator()(std::vector<double> column) const {
        const auto rows = static_cast<std::int64_t>(column.size());
        return array_table::instance().add_real(caller, rows, 1, std::move(column),
                                                array_kind::real_matrix);
    }
    array_handle operator()(std::string text) const {
        stored_array made{array_kind::text, caller, 1, static_cast<std::int64_t>(text.size())};
        made.text = std::move(text);
        return array_table::instance().add(std::move(made));
    }
};

/// The registered function, not a copy, so that it keeps its state.
std::shared_ptr<host_function> find(const std::string& name) {
    const std::lock_guard guard(registered().lock);
    const auto entry = registered().functions.find(name);
    return entry == registered().functions.end() ? nullptr : entry->second;
}

reply call(const host_function& function, const std::string& name, const array_value& argument) {
    try {
        return function(argument);
    } catch (const std::exception& thrown) {
        throw fault_without_block(fault_kind::function_threw, "the host-language function '" +
                                                                  name +
                                                                  "' threw: " + thrown.what());
    } catch (...) {
        throw fault_without_block(fault_kind::function_threw,
                                  "the host-language function '" + name + "' threw");
    }
}

} // namespace

host_function set_function(const std::string& name, host_function function) {
    auto next = function ? std::make_shared<host_function>(std::move(function)) : nullptr;
    {
        const std::lock_guard guard(registered().lock);
        std::swap(registered().functions[name], next);
    }
    return next ? *next : host_function();
}

void reset_functions() {
    // Destroyed after the lock is released, because the destructor of a function may call the
    // stand-in.
    std::map<std::string, std::shared_ptr<host_function>> removed;
    const std::lock_guard guard(registered().lock);
    registered().functions.swap(removed);
}

array_handle call_function(const std::string& name, array_handle input) {
    const std::shared_ptr<host_function> function = find(name);
    if (!function) {
        throw fault_without_block(fault_kind::unknown_function,
                                  "the host-language function '" + name +
                                      "' was called, but is not registered");
    }
    const array_value argument = array_table::instance().value_of(standin::name(caller), input);
    return std::visit(make_array{}, call(*function, name, argument).contents());
}

} // namespace zktarn::standin
