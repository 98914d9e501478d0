#include "functions.hpp"

#include <map>
#include <mutex>
#include <utility>

namespace zktarn::standin {

namespace {

struct registry {
    std::mutex lock;
    std::map<std::string, host_function> functions;
};

registry& registered() {
    static auto& all = *new registry;
    return all;
}

constexpr operation by = operation::qvxcallquarn800_;

struct make_array {
    array_handle operator()(double value) const {
        return array_table::instance().add_real(by, 1, 1, {value}, array_kind::real_scalar);
    }
    array_handle operator()(std::vector<double> column) const {
        const auto rows = static_cast<std::int64_t>(column.size());
        return array_table::instance().add_real(by, rows, 1, std::move(column),
                                                array_kind::real_matrix);
    }
    array_handle operator()(std::string text) const {
        stored_array made{array_kind::text, by, 1, static_cast<std::int64_t>(text.size())};
        made.text = std::move(text);
        return array_table::instance().add(std::move(made));
    }
};

} // namespace

host_function set_function(const std::string& name, host_function function) {
    const std::lock_guard guard(registered().lock);
    return std::exchange(registered().functions[name], std::move(function));
}

void reset_functions() {
    const std::lock_guard guard(registered().lock);
    registered().functions.clear();
}

array_handle call_function(const std::string& name, array_handle input) {
    host_function function;
    {
        const std::lock_guard guard(registered().lock);
        const auto entry = registered().functions.find(name);
        if (entry != registered().functions.end()) {
            function = entry->second;
        }
    }
    if (!function) {
        throw fault{fault_kind::unknown_function,
                    {},
                    "the host-language function '" + name +
                        "' was called, but nobody has registered it"};
    }
    const array_value argument = array_table::instance().value_of(by, input);
    return std::visit(make_array{}, function(argument));
}

} // namespace zktarn::standin
