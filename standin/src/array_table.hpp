#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "core.hpp"

namespace zktarn::standin {

using array_handle = std::int64_t;

/// One array of the host.
struct stored_array {
    array_kind kind;
    operation made_by;
    std::int64_t rows;
    std::int64_t columns;
    std::vector<double> reals = {};
    std::string text = {};
    /// Names of the fields of a struct, and their values, element by element, by field.
    std::vector<std::string> names = {};
    std::vector<std::vector<array_handle>> values = {};
    /// The struct that owns it, or 0.
    array_handle owner = 0;

    /// Adds a field, empty in each of `count` elements, or nothing when there is no memory for it.
    void append_field(const std::string& name, std::size_t count);
};

/// Trailing blanks of a field's name are padding.
std::string field_name(const std::string& name);

/// All arrays of the host. Handles count from 1 and are never used again. A procedure with faulty
/// arguments throws the fault and changes nothing.
class array_table {
public:
    static array_table& instance();

    array_handle add(stored_array made);
    array_handle add_real(operation by, std::int64_t rows, std::int64_t columns,
                          std::vector<double> reals, array_kind kind);
    void destroy(array_handle handle);

    void set_field(operation by, array_handle structure, std::int64_t index,
                   const std::string& name, array_handle value);
    void set_field(operation by, array_handle structure, std::int64_t index, std::int32_t number,
                   array_handle value);
    std::int32_t field_number(operation by, array_handle structure, const std::string& name);
    std::int32_t add_field(operation by, array_handle structure, const std::string& name);

    double* data(operation by, array_handle handle);
    /// Host data that hold `count` numbers from `address` on.
    void check_data(operation by, const double* address, std::int64_t count);
    void copy_out(const double* from, double* to, std::int64_t count);
    void copy_in(const double* from, double* to, std::int64_t count);

    array_value value_of(const char* by, array_handle handle);
    void list(std::vector<live_object>& all);

private:
    struct past_array {
        array_kind kind;
        operation made_by;
    };
    enum class wanted { any, structure, real };

    stored_array* find(const char* by, array_handle handle, wanted what);
    static std::int32_t number_of(const stored_array& structure, const std::string& name);
    void drop(array_handle value);
    array_handle insert(stored_array made);
    void erase(array_handle handle);
    void store(operation by, array_handle structure, std::int64_t index, std::size_t field,
               array_handle value);
    bool owns(array_handle structure, array_handle handle) const;
    array_value copy_of(const stored_array& from) const;

    std::mutex lock_;
    std::map<array_handle, stored_array> live_;
    std::map<const double*, array_handle> data_;
    /// What each handle was given to, from the first one on.
    std::vector<past_array> made_;
};

} // namespace zktarn::standin
