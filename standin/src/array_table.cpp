#include "array_table.hpp"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <iterator>
#include <utility>

#include "calls.hpp"
#include "fault_report.hpp"
#include "origin.hpp"
#include "wording.hpp"

namespace zktarn::standin {

namespace {

const char* name_of(array_kind kind) {
    static constexpr const char* names[] = {"struct", "real matrix", "real scalar", "text"};
    return names[static_cast<std::size_t>(kind)];
}

std::string described(array_handle handle, array_kind kind, operation made_by) {
    return "array " + std::to_string(handle) + " (a " + name_of(kind) + " made by " +
           name(made_by) + ")";
}

/// Whether a handle or a field number of 0 is the failure value of an earlier operation.
bool is_failure_value(std::int64_t number) {
    return number == 0 && has_failed();
}

bool is_failure_value(const double* address) {
    return address == nullptr && has_failed();
}

/// Trailing blanks of a field's name are padding.
std::string field_name(const std::string& name) {
    return name.substr(0, name.find_last_not_of(' ') + 1);
}

} // namespace

void stored_array::append_field(const std::string& name, std::size_t count) {
    std::vector<array_handle> elements(count, 0);
    std::string trimmed = field_name(name);
    names.reserve(names.size() + 1);
    values.reserve(values.size() + 1);
    names.push_back(std::move(trimmed));
    values.push_back(std::move(elements));
}

/// Never destroyed, so that arrays can be destroyed while the process exits.
array_table& array_table::instance() {
    static array_table& all = *new array_table;
    return all;
}

stored_array& array_table::find(const char* caller, array_handle handle, wanted what) {
    if (handle < 1 || handle > static_cast<array_handle>(made_.size())) {
        refuse(fault_kind::unknown_object, caller,
               "the handle " + std::to_string(handle) + " names no array");
    }
    const auto entry = live_.find(handle);
    if (entry == live_.end()) {
        const past_array& past = made_[static_cast<std::size_t>(handle - 1)];
        refuse(fault_kind::use_after_release, caller,
               described(handle, past.kind, past.made_by) + " was used after it was destroyed",
               past.origin);
    }
    stored_array& found = entry->second;
    const bool fits =
        what == wanted::any || (what == wanted::structure) == (found.kind == array_kind::structure);
    if (!fits || (what == wanted::real && found.kind == array_kind::text)) {
        refuse(fault_kind::wrong_kind, caller,
               described(handle, found.kind, found.made_by) + " is not a " +
                   (what == wanted::structure ? "struct" : "real array"),
               found.origin);
    }
    return found;
}

array_handle array_table::insert(stored_array made) {
    made.origin = origin_now();
    made_.push_back({made.kind, made.made_by, made.origin});
    const auto handle = static_cast<array_handle>(made_.size());
    const bool has_data =
        made.kind == array_kind::real_matrix || made.kind == array_kind::real_scalar;
    const stored_array& stored = live_.emplace(handle, std::move(made)).first->second;
    if (has_data) {
        data_.emplace(stored.reals.data(), handle);
    }
    return handle;
}

array_handle array_table::add(stored_array made) {
    const std::lock_guard guard(lock_);
    return insert(std::move(made));
}

array_handle array_table::add_real(operation caller, std::int64_t rows, std::int64_t columns,
                                   std::vector<double> reals, array_kind kind) {
    // An array without elements has a data address, too.
    reals.reserve(1);
    stored_array made{kind, caller, rows, columns};
    made.reals = std::move(reals);
    return add(std::move(made));
}

void array_table::erase(array_handle handle) {
    const auto entry = live_.find(handle);
    const stored_array erased = std::move(entry->second);
    data_.erase(erased.reals.data());
    live_.erase(entry);
    for (const auto& elements : erased.values) {
        for (const array_handle value : elements) {
            if (value != 0) {
                erase(value);
            }
        }
    }
}

void array_table::destroy(array_handle handle) {
    constexpr operation caller = operation::qvdestroyarray800_;
    const std::lock_guard guard(lock_);
    if (is_failure_value(handle)) {
        return;
    }
    const stored_array& found = find(name(caller), handle, wanted::any);
    if (found.owner != 0) {
        refuse(fault_kind::bad_ownership, caller,
               described(handle, found.kind, found.made_by) + " belongs to array " +
                   std::to_string(found.owner),
               found.origin);
    }
    erase(handle);
}

/// Whether `part` is the holder itself or is stored in it, at any depth.
bool array_table::owns(array_handle holder, array_handle part) const {
    for (; part != 0; part = live_.at(part).owner) {
        if (part == holder) {
            return true;
        }
    }
    return false;
}

void array_table::store(operation caller, array_handle structure, std::int64_t index,
                        std::size_t field, array_handle value) {
    stored_array& owner = live_.at(structure);
    auto& elements = owner.values[field];
    if (index < 1 || index > static_cast<std::int64_t>(elements.size())) {
        refuse(fault_kind::out_of_range, caller,
               described(structure, owner.kind, owner.made_by) + " has no element " +
                   std::to_string(index),
               owner.origin);
    }
    if (!is_failure_value(value)) {
        stored_array& stored = find(name(caller), value, wanted::any);
        if (stored.owner != 0 || owns(value, structure)) {
            refuse(fault_kind::bad_ownership, caller,
                   described(value, stored.kind, stored.made_by) +
                       (stored.owner != 0 ? " belongs to array " + std::to_string(stored.owner)
                                          : " would be stored in itself"),
                   stored.origin);
        }
        stored.owner = structure;
    }
    const array_handle old = std::exchange(elements[static_cast<std::size_t>(index - 1)], value);
    if (old != 0) {
        erase(old);
    }
}

/// A value that cannot be stored after a failure is destroyed, because its handle is lost.
void array_table::destroy_unowned(array_handle value) {
    const auto entry = live_.find(value);
    if (entry != live_.end() && entry->second.owner == 0) {
        erase(value);
    }
}

void array_table::set_field(operation caller, array_handle structure, std::int64_t index,
                            const std::string& name, array_handle value) {
    const std::lock_guard guard(lock_);
    if (is_failure_value(structure)) {
        destroy_unowned(value);
        return;
    }
    const stored_array& found = find(standin::name(caller), structure, wanted::structure);
    const std::int32_t number = number_of(found, name);
    if (number == 0) {
        refuse(fault_kind::out_of_range, caller,
               described(structure, found.kind, found.made_by) + " has no field '" + name + "'",
               found.origin);
    }
    store(caller, structure, index, static_cast<std::size_t>(number - 1), value);
}

void array_table::set_field(operation caller, array_handle structure, std::int64_t index,
                            std::int32_t number, array_handle value) {
    const std::lock_guard guard(lock_);
    if (is_failure_value(structure)) {
        destroy_unowned(value);
        return;
    }
    const stored_array& found = find(name(caller), structure, wanted::structure);
    if (is_failure_value(number)) {
        destroy_unowned(value);
        return;
    }
    if (number < 1 || number > static_cast<std::int64_t>(found.names.size())) {
        refuse(fault_kind::out_of_range, caller,
               described(structure, found.kind, found.made_by) + " has no field number " +
                   std::to_string(number),
               found.origin);
    }
    store(caller, structure, index, static_cast<std::size_t>(number - 1), value);
}

std::int32_t array_table::number_of(const stored_array& structure, const std::string& name) {
    const auto& names = structure.names;
    const auto field = std::find(names.begin(), names.end(), field_name(name));
    return field == names.end() ? 0 : static_cast<std::int32_t>(field - names.begin()) + 1;
}

std::int32_t array_table::field_number(operation caller, array_handle structure,
                                       const std::string& name) {
    const std::lock_guard guard(lock_);
    return is_failure_value(structure)
               ? 0
               : number_of(find(standin::name(caller), structure, wanted::structure), name);
}

std::int32_t array_table::add_field(operation caller, array_handle structure,
                                    const std::string& name) {
    const std::lock_guard guard(lock_);
    if (is_failure_value(structure)) {
        return 0;
    }
    stored_array& found = find(standin::name(caller), structure, wanted::structure);
    if (const std::int32_t number = number_of(found, name); number != 0) {
        return number;
    }
    found.append_field(name, static_cast<std::size_t>(found.rows * found.columns));
    return static_cast<std::int32_t>(found.names.size());
}

double* array_table::data(operation caller, array_handle handle) {
    const std::lock_guard guard(lock_);
    return is_failure_value(handle) ? nullptr
                                    : find(name(caller), handle, wanted::real).reals.data();
}

void array_table::check_data(operation caller, const double* address, std::int64_t count) {
    if (count < 0) {
        refuse(fault_kind::bad_request, caller,
               std::to_string(count) + " numbers are to be copied");
    }
    if (count == 0 || is_failure_value(address)) {
        return;
    }
    auto after = data_.upper_bound(address);
    if (address == nullptr || after == data_.begin()) {
        refuse(fault_kind::unknown_object, caller, "no array has data at the address");
    }
    const array_handle handle = std::prev(after)->second;
    const stored_array& found = live_.at(handle);
    const double* const end = found.reals.data() + found.reals.size();
    if (!std::less_equal<>{}(address, end)) {
        refuse(fault_kind::unknown_object, caller, "no array has data at the address");
    }
    if (count > end - address) {
        refuse(fault_kind::out_of_range, caller,
               described(handle, found.kind, found.made_by) + " has " +
                   counted(end - address, "number") + " from that address on, not " +
                   std::to_string(count),
               found.origin);
    }
}

void array_table::copy_out(const double* data, double* target, std::int64_t count) {
    const std::lock_guard guard(lock_);
    check_data(operation::qvcopyptrtoreal8800_, data, count);
    if (data != nullptr) {
        std::copy_n(data, count, target);
    }
}

void array_table::copy_in(const double* source, double* data, std::int64_t count) {
    const std::lock_guard guard(lock_);
    check_data(operation::qvcopyreal8toptr800_, data, count);
    if (data != nullptr) {
        std::copy_n(source, count, data);
    }
}

array_value array_table::copy_of(const stored_array& original) const {
    array_value copy;
    copy.kind = original.kind;
    copy.rows = original.rows;
    copy.columns = original.columns;
    copy.reals_ = original.reals;
    copy.text_ = original.text;
    const bool is_single = original.rows * original.columns == 1;
    for (std::size_t i = 0; i < original.names.size(); ++i) {
        const array_handle value = is_single ? original.values[i][0] : 0;
        copy.fields_.emplace_back(original.names[i],
                                  value == 0 ? array_value{} : copy_of(live_.at(value)));
    }
    return copy;
}

array_value array_table::value_of(const char* caller, array_handle handle) {
    const std::lock_guard guard(lock_);
    return is_failure_value(handle) ? array_value{} : copy_of(find(caller, handle, wanted::any));
}

void array_table::list(std::vector<live_object>& all) {
    const std::lock_guard guard(lock_);
    for (const auto& [handle, array] : live_) {
        if (array.owner == 0) {
            all.push_back({array.made_by, handle, described(handle, array.kind, array.made_by),
                           array.origin});
        }
    }
}

array_value inspect(std::int64_t handle) {
    try {
        return array_table::instance().value_of("inspect", handle);
    } catch (const fault& found) {
        report_fault(found);
        return {};
    }
}

} // namespace zktarn::standin
