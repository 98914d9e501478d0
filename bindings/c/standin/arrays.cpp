/// Arrays of the stand-in host, and functions of its language, in C.

#include "zktarn_standin/functions.hpp"

#include <string>
#include <utility>
#include <vector>

#include "text.hpp"
#include "zktarn_standin.h"

namespace standin = zktarn::standin;
using zktarn::standin_c::copy_text;

static_assert(zktarn_array_structure == static_cast<int>(standin::array_kind::structure));
static_assert(zktarn_array_real_matrix == static_cast<int>(standin::array_kind::real_matrix));
static_assert(zktarn_array_real_scalar == static_cast<int>(standin::array_kind::real_scalar));
static_assert(zktarn_array_text == static_cast<int>(standin::array_kind::text));

namespace {

// The C types are never complete: an address of one is the address of its C++ counterpart.

const standin::array_value& cpp(const zktarn_standin_array* array) noexcept {
    return *reinterpret_cast<const standin::array_value*>(array);
}

const zktarn_standin_array* in_c(const standin::array_value& array) noexcept {
    return reinterpret_cast<const zktarn_standin_array*>(&array);
}

standin::reply& cpp(zktarn_standin_reply* reply) noexcept {
    return *reinterpret_cast<standin::reply*>(reply);
}

} // namespace

zktarn_standin_array* zktarn_standin_inspect(int64_t handle) {
    try {
        return reinterpret_cast<zktarn_standin_array*>(
            new standin::array_value(standin::inspect(handle)));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void zktarn_standin_free_array(zktarn_standin_array* array) {
    delete reinterpret_cast<standin::array_value*>(array);
}

zktarn_standin_array_kind zktarn_standin_array_kind_of(const zktarn_standin_array* array) {
    return static_cast<zktarn_standin_array_kind>(cpp(array).kind);
}

int64_t zktarn_standin_array_rows(const zktarn_standin_array* array) {
    return cpp(array).rows;
}

int64_t zktarn_standin_array_columns(const zktarn_standin_array* array) {
    return cpp(array).columns;
}

double zktarn_standin_array_scalar(const zktarn_standin_array* array) {
    return cpp(array).scalar();
}

const double* zktarn_standin_array_reals(const zktarn_standin_array* array, size_t* count) {
    const std::vector<double>& reals = cpp(array).reals();
    *count = reals.size();
    return reals.data();
}

const char* zktarn_standin_array_characters(const zktarn_standin_array* array, size_t* length) {
    const std::string& text = cpp(array).text();
    *length = text.size();
    return text.data();
}

size_t zktarn_standin_array_field_count(const zktarn_standin_array* array) {
    try {
        return cpp(array).field_names().size();
    } catch (const std::bad_alloc&) {
        return 0;
    }
}

size_t zktarn_standin_array_field_name(const zktarn_standin_array* array, size_t number,
                                       char* buffer, size_t capacity) {
    return zktarn::standin_c::text_into(buffer, capacity, [array, number] {
        std::vector<std::string> names = cpp(array).field_names();
        return number >= 1 && number <= names.size() ? std::move(names[number - 1]) : std::string();
    });
}

bool zktarn_standin_array_has_field(const zktarn_standin_array* array, const char* name,
                                    size_t name_length) {
    try {
        return cpp(array).has_field(std::string(name, name_length));
    } catch (const std::bad_alloc&) {
        return false;
    }
}

const zktarn_standin_array* zktarn_standin_array_field(const zktarn_standin_array* array,
                                                       const char* name, size_t name_length) {
    static const standin::array_value nothing;
    try {
        return in_c(cpp(array).field(std::string(name, name_length)));
    } catch (const std::bad_alloc&) {
        return in_c(nothing);
    }
}

void zktarn_standin_reply_scalar(zktarn_standin_reply* reply, double value) {
    cpp(reply) = standin::reply(value);
}

void zktarn_standin_reply_column(zktarn_standin_reply* reply, const double* values, int64_t n) {
    try {
        cpp(reply) = n < 1 ? std::vector<double>() : std::vector<double>(values, values + n);
    } catch (const std::bad_alloc&) {
        cpp(reply) = std::vector<double>();
    }
}

void zktarn_standin_reply_text(zktarn_standin_reply* reply, const char* text, size_t text_length) {
    try {
        cpp(reply) = std::string(text, text_length);
    } catch (const std::bad_alloc&) {
        cpp(reply) = std::string();
    }
}

bool zktarn_standin_set_function(const char* name, size_t name_length,
                                 zktarn_standin_function function, void* context) {
    standin::host_function called;
    if (function != nullptr) {
        called = [function, context](const standin::array_value& input) {
            standin::reply reply(0.0);
            function(in_c(input), reinterpret_cast<zktarn_standin_reply*>(&reply), context);
            return reply;
        };
    }
    try {
        const standin::host_function previous =
            standin::set_function(std::string(name, name_length), std::move(called));
        return static_cast<bool>(previous);
    } catch (const std::bad_alloc&) {
        return false;
    }
}
