#include "broken_host/broken_host.hpp"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace zktarn::broken_host {

host::array_handle add(array made) {
    static host::array_handle last = 0;
    arrays.emplace(++last, std::move(made));
    return last;
}

namespace {

std::string unpadded(std::string name) {
    if (!has_flaw("padding_stays")) {
        name.erase(name.find_last_not_of(' ') + 1);
    }
    return name;
}

std::string text_of(const char* text, std::int64_t length) {
    // With the flaw, reads two characters beyond the text.
    const std::int64_t more = has_flaw("length_ignored") ? 2 : 0;
    return {text, static_cast<std::size_t>(length + more)};
}

/// The value of a 32-bit argument. With the flaw, reads 64 bits at its address.
std::int64_t integer(const std::int32_t& value, const char* flaw) {
    std::int64_t wide = value;
    if (has_flaw(flaw)) {
        std::memcpy(&wide, &value, sizeof wide);
    }
    return wide;
}

std::int32_t find(const array& structure, const std::string& name) {
    for (std::size_t i = 0; i < structure.names.size(); ++i) {
        const std::string& each = structure.names[i];
        if (each == name || (has_flaw("prefix_found") && each.starts_with(name))) {
            return static_cast<std::int32_t>(i) + (has_flaw("numbers_from_0") ? 0 : 1);
        }
    }
    return 0;
}

void erase(host::array_handle handle) {
    if (handle == 0 || arrays.count(handle) == 0) {
        return;
    }
    for (const host::array_handle value : arrays.at(handle).values) {
        erase(value);
    }
    arrays.erase(handle);
}

/// Stores a value in a field, numbered from 0. Does nothing if there is no such field.
void store(host::array_handle structure, std::size_t field, host::array_handle value) {
    array& owner = arrays.at(structure);
    if (field >= owner.values.size()) {
        return;
    }
    auto& reals = arrays.at(value).reals;
    if (has_flaw("storing_loses_data")) {
        std::fill(reals.begin(), reals.end(), 0.0);
    }
    if (has_flaw("replacing_aborts") && owner.values[field] != 0) {
        std::abort();
    }
    erase(std::exchange(owner.values[field], value));
}

} // namespace

} // namespace zktarn::broken_host

namespace zktarn::host {

using namespace zktarn::broken_host;

extern "C" {

array_handle qvcreatestructarray800_(const std::int64_t& ndims, const std::int64_t*,
                                     const std::int32_t& nfields, const char* field_names,
                                     std::int64_t slot_width) noexcept {
    if ((has_flaw("two_dimensions") && ndims != 2) || (has_flaw("one_dimension") && ndims != 1) ||
        integer(nfields, "wide_nfields") != nfields ||
        (has_flaw("destroying_keeps") && arrays.size() > 5000)) {
        return 0;
    }
    const std::int64_t width = has_flaw("width_ignored") ? 8 : slot_width;
    array made;
    for (std::int32_t i = 0; i < nfields; ++i) {
        made.names.push_back(
            unpadded({field_names + i * width, static_cast<std::size_t>(slot_width)}));
        made.values.push_back(0);
    }
    return add(made);
}

array_handle qvcreatestring800_(const char* text, std::int64_t text_length) noexcept {
    if (has_flaw("no_empty_text") && text_length == 0) {
        return 0;
    }
    if (has_flaw("null_text") && text == nullptr) {
        std::abort();
    }
    std::string kept = text_of(text, text_length);
    return add({{}, has_flaw("text_trimmed") ? unpadded(kept) : kept});
}

array_handle qvcreatedoublescalar800_(const double& value) noexcept {
    return add({{has_flaw("scalar_as_integer") ? std::trunc(value) : value}});
}

array_handle qvcreatedoublematrix800_(const std::int64_t& rows, const std::int64_t& columns,
                                      const std::int32_t& complexity) noexcept {
    if (integer(complexity, "wide_complexity") != 0 || (has_flaw("no_empty_column") && rows == 0)) {
        return 0;
    }
    return add({std::vector<double>(static_cast<std::size_t>(rows * columns))});
}

void qvsetfield800_(const array_handle& structure, const std::int64_t&, const char* field_name,
                    const array_handle& value, std::int64_t field_name_length) noexcept {
    if (!has_flaw("set_by_name_does_nothing")) {
        const std::int32_t number =
            find(arrays.at(structure),
                 std::string(field_name, static_cast<std::size_t>(field_name_length)));
        store(structure, static_cast<std::size_t>(number - 1), value);
    }
}

void qvsetfieldbynumber800_(const array_handle& structure, const std::int64_t&,
                            const std::int32_t& number, const array_handle& value) noexcept {
    const std::int64_t field = integer(number, "wide_number") - (has_flaw("sets_next") ? 0 : 1);
    store(structure, static_cast<std::size_t>(field), value);
}

std::int32_t qvgetfieldnumber800_(const array_handle& structure, const char* field_name,
                                  std::int64_t field_name_length) noexcept {
    return find(arrays.at(structure), text_of(field_name, field_name_length));
}

std::int32_t qvaddfield800_(const array_handle& structure, const char* field_name,
                            std::int64_t field_name_length) noexcept {
    array& target = arrays.at(structure);
    target.names.emplace_back(field_name, static_cast<std::size_t>(field_name_length));
    target.values.push_back(0);
    return static_cast<std::int32_t>(target.names.size()) - (has_flaw("add_counts_from_0") ? 1 : 0);
}

data_address qvgetpr800_(const array_handle& array) noexcept {
    static double read_only_copy[64];
    auto& reals = arrays.at(array).reals;
    if (has_flaw("address_moves")) {
        std::vector<double> moved = reals;
        moved.swap(reals);
        static std::vector<std::vector<double>> old;
        old.push_back(std::move(moved));
    }
    if (has_flaw("no_address")) {
        return nullptr;
    }
    return has_flaw("one_address") ? read_only_copy : reals.data();
}

void qvcopyptrtoreal8800_(const data_address& source, double* destination,
                          const std::int64_t& count) noexcept {
    const std::int64_t n = count + (has_flaw("copies_out_more") && count > 1 ? 1 : 0);
    std::copy_n(source, has_flaw("copies_out_nothing") ? 0 : n, destination);
}

void qvcopyreal8toptr800_(const double* source, const data_address& destination,
                          const std::int64_t& count) noexcept {
    if (has_flaw("null_numbers") && source == nullptr) {
        std::abort();
    }
    const std::int64_t n = count - (has_flaw("copies_in_less") && count > 1 ? 1 : 0);
    std::copy_n(source, n, destination);
}

void qvdestroyarray800_(const array_handle& array) noexcept {
    if (has_flaw("destroys_all")) {
        for (auto& each : arrays) {
            std::fill(each.second.reals.begin(), each.second.reals.end(), 0.0);
        }
    }
    if (has_flaw("destroying_keeps")) {
        return;
    }
    erase(array);
}
}

} // namespace zktarn::host
