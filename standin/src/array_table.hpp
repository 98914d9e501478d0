#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "zktarn_standin/arrays.hpp"
#include "zktarn_standin/leaks.hpp"

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
    call_stack origin = {};

    /// Adds a field, empty in each of `count` elements. If memory is missing, throws and adds
    /// nothing.
    void append_field(const std::string& name, std::size_t count);
};

/// All arrays of the host. Handles count from 1 and are never reused. A procedure with faulty
/// arguments throws the fault and changes nothing.
///
/// A failure value (handle 0, field number 0, a null address) that an earlier failed operation
/// returned is not a fault: the procedure then does nothing and returns its own failure value.
class array_table {
public:
    static array_table& instance();

    array_handle add(stored_array made);
    array_handle add_real(operation caller, std::int64_t rows, std::int64_t columns,
                          std::vector<double> reals, array_kind kind);
    void destroy(array_handle handle);

    void set_field(operation caller, array_handle structure, std::int64_t index,
                   const std::string& name, array_handle value);
    void set_field(operation caller, array_handle structure, std::int64_t index,
                   std::int32_t number, array_handle value);
    std::int32_t field_number(operation caller, array_handle structure, const std::string& name);
    std::int32_t add_field(operation caller, array_handle structure, const std::string& name);

    double* data(operation caller, array_handle handle);
    // Copy `count` numbers from or to host data, which must hold that many.
    void copy_out(const double* data, double* target, std::int64_t count);
    void copy_in(const double* source, double* data, std::int64_t count);

    array_value value_of(const char* caller, array_handle handle);
    void list(std::vector<live_object>& all);

private:
    struct past_array {
        array_kind kind;
        operation made_by;
        call_stack origin;
    };
    enum class wanted { any, structure, real };

    stored_array& find(const char* caller, array_handle handle, wanted what);
    static std::int32_t number_of(const stored_array& structure, const std::string& name);
    void check_data(operation caller, const double* address, std::int64_t count);
    void destroy_unowned(array_handle value);
    array_handle insert(stored_array made);
    void erase(array_handle handle);
    void store(operation caller, array_handle structure, std::int64_t index, std::size_t field,
               array_handle value);
    bool owns(array_handle holder, array_handle part) const;
    array_value copy_of(const stored_array& original) const;

    std::mutex lock_;
    std::map<array_handle, stored_array> live_;
    std::map<const double*, array_handle> data_;
    /// Every array ever made, released ones included, in the order of their handles.
    std::vector<past_array> made_;
};

} // namespace zktarn::standin
