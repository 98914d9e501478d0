#include <algorithm>

#include "core.hpp"

namespace zktarn::standin {

namespace {

void report(fault_kind kind, const char* sentence) {
    report_fault({kind, {}, sentence});
}

bool is_real(array_kind kind) {
    return kind == array_kind::real_matrix || kind == array_kind::real_scalar;
}

/// What is shown in place of something that is not there.
const array_value& nothing() {
    static const auto& value = *new array_value;
    return value;
}

} // namespace

double array_value::scalar() const {
    if (!is_real(kind) || reals_.size() != 1) {
        report(fault_kind::wrong_kind, "an array was asked for its number, but has not just one");
        return 0.0;
    }
    return reals_.front();
}

const std::vector<double>& array_value::reals() const& {
    if (!is_real(kind)) {
        report(fault_kind::wrong_kind, "an array that is not real was asked for its numbers");
    }
    return reals_;
}

const std::string& array_value::text() const& {
    if (kind != array_kind::text) {
        report(fault_kind::wrong_kind, "an array that is no text was asked for its characters");
    }
    return text_;
}

std::vector<std::string> array_value::field_names() const {
    if (kind != array_kind::structure) {
        report(fault_kind::wrong_kind, "an array that is no struct was asked for its fields");
    }
    std::vector<std::string> names;
    names.reserve(fields_.size());
    for (const auto& [name, value] : fields_) {
        names.push_back(name);
    }
    return names;
}

bool array_value::has_field(const std::string& name) const {
    if (kind != array_kind::structure) {
        report(fault_kind::wrong_kind, "an array that is no struct was asked for its fields");
    }
    return std::any_of(fields_.begin(), fields_.end(),
                       [&](const auto& each) { return each.first == name; });
}

const array_value& array_value::field(const std::string& name) const& {
    for (const auto& [own, value] : fields_) {
        if (own == name) {
            return value;
        }
    }
    report_fault({fault_kind::out_of_range,
                  {},
                  "an array was asked for its field '" + name + "', but has none of that name"});
    return nothing();
}

} // namespace zktarn::standin
