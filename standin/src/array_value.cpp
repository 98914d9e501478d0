#include <algorithm>

#include "fault_report.hpp"
#include "zktarn_standin/arrays.hpp"

namespace zktarn::standin {

namespace {

void report(fault_kind kind, const std::string& sentence) {
    report_fault(fault_without_block(kind, sentence));
}

bool is_real(array_kind kind) {
    return kind == array_kind::real_matrix || kind == array_kind::real_scalar;
}

/// The value of a field that does not exist.
const array_value& nothing() {
    static const auto& value = *new array_value;
    return value;
}

} // namespace

double array_value::scalar() const {
    if (!is_real(kind) || reals_.size() != 1) {
        report(fault_kind::wrong_kind, "scalar() was called for an array that is not one number");
        return 0.0;
    }
    return reals_.front();
}

const std::vector<double>& array_value::reals() const& {
    if (!is_real(kind)) {
        report(fault_kind::wrong_kind, "reals() was called for an array that is not real");
    }
    return reals_;
}

const std::string& array_value::text() const& {
    if (kind != array_kind::text) {
        report(fault_kind::wrong_kind, "text() was called for an array that is not a text");
    }
    return text_;
}

std::vector<std::string> array_value::field_names() const {
    if (kind != array_kind::structure) {
        report(fault_kind::wrong_kind,
               "field_names() was called for an array that is not a struct");
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
        report(fault_kind::wrong_kind, "has_field() was called for an array that is not a struct");
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
    report(fault_kind::out_of_range,
           "field() was called for the field '" + name + "', which the array does not have");
    return nothing();
}

} // namespace zktarn::standin
