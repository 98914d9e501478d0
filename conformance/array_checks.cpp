#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "checks.hpp"
#include "sample_struct.hpp"
#include "zktarn/host/libqv.hpp"

namespace zktarn::host_conformance {

namespace {

using host::array_handle;
using numbers = std::vector<double>;

constexpr const char* no_array = "the handle is 0";
constexpr const char* no_address = "the address is null";

/// Owns an array and destroys it.
class array {
public:
    explicit array(array_handle made) : handle(made) {}
    ~array() {
        if (handle != 0) {
            host::qvdestroyarray800_(handle);
        }
    }
    array(const array&) = delete;
    array& operator=(const array&) = delete;

    const array_handle handle;
};

finding finds(const array_handle& structure, std::string_view name, std::int32_t number) {
    const std::int32_t found = field_number(structure, name);
    return found == number ? finding()
                           : "field '" + std::string(name) + "' has number " +
                                 std::to_string(found) + ", not " + std::to_string(number);
}

using field_numbers = std::initializer_list<std::pair<std::string_view, std::int32_t>>;

finding finds_all(const array_handle& structure, field_numbers fields) {
    finding wrong;
    for (const auto& [name, number] : fields) {
        const finding each = finds(structure, name, number);
        wrong += wrong.empty() || each.empty() ? each : "; " + each;
    }
    return wrong;
}

finding makes_struct_of_padded_slot() {
    const array made(make_struct(1, {"phase     "}));
    return made.handle == 0 ? no_array : finds(made.handle, "phase", 1);
}

finding makes_struct_of_slots() {
    const array made(make_struct(2, {"phase     ", "ten_letter", "x         "}));
    if (made.handle == 0) {
        return no_array;
    }
    return finds_all(made.handle, {{"phase", 1}, {"ten_letter", 2}, {"x", 3}});
}

finding misses_fields() {
    const array made(make_struct(1, {"phase     "}));
    if (made.handle == 0) {
        return no_array;
    }
    return finds_all(made.handle, {{"column", 0}, {"phas", 0}, {"phase2", 0}});
}

finding reads_name_of_length() {
    const array made(make_struct(1, {"phase     "}));
    if (made.handle == 0) {
        return no_array;
    }
    const std::string_view longer = "phase_and_more";
    return finds(made.handle, longer.substr(0, 5), 1);
}

finding adds_fields() {
    const array made(make_struct(1, {"phase     "}));
    if (made.handle == 0) {
        return no_array;
    }
    for (std::int32_t i = 2; i <= 20; ++i) {
        const std::string name = "field" + std::to_string(i);
        const std::int32_t number = host::qvaddfield800_(made.handle, (name + "_and_more").data(),
                                                         static_cast<std::int64_t>(name.size()));
        if (number != i) {
            return "'" + name + "' got number " + std::to_string(number);
        }
        if (finding wrong = finds(made.handle, name, i); !wrong.empty()) {
            return wrong;
        }
    }
    return finds(made.handle, "phase", 1);
}

finding makes_texts() {
    for (const std::string_view text : {"phase", "trailing blanks   ", ""}) {
        const array made(make_text(text));
        if (made.handle == 0) {
            return "the handle is 0 for '" + std::string(text) + "'";
        }
    }
    return {};
}

finding makes_scalars() {
    for (const double value : {2.5, -0.0, 1e308, -std::numeric_limits<double>::infinity()}) {
        double variable = value;
        const array made(host::qvcreatedoublescalar800_(variable));
        variable = 17.0;
        if (made.handle == 0) {
            return no_array;
        }
        const host::data_address data = host::qvgetpr800_(made.handle);
        if (data == nullptr) {
            return no_address;
        }
        if (*data != value || std::signbit(*data) != std::signbit(value)) {
            return "its data are " + std::to_string(*data) + ", not " + std::to_string(value);
        }
    }
    return {};
}

finding data_are_writable() {
    const array made(make_matrix(3, 2));
    if (made.handle == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(made.handle);
    if (data == nullptr) {
        return no_address;
    }
    for (int i = 0; i < 6; ++i) {
        data[i] = i + 0.5;
    }
    for (int i = 0; i < 6; ++i) {
        if (data[i] != i + 0.5) {
            return "what was written cannot be read back";
        }
    }
    return {};
}

finding address_stays() {
    const array made(make_matrix(3, 1));
    if (made.handle == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(made.handle);
    if (data == nullptr) {
        return no_address;
    }
    data[2] = 2.5;
    for (int i = 0; i < 100; ++i) {
        const array other(make_matrix(1 + i, 3));
        if (other.handle == 0 || other.handle == made.handle) {
            return "another array cannot be made beside it";
        }
    }
    return expect(host::qvgetpr800_(made.handle) == data && data[2] == 2.5,
                  "it changes while other arrays are made and destroyed");
}

finding copies_out() {
    const array made(make_matrix(3, 2));
    if (made.handle == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(made.handle);
    if (data == nullptr) {
        return no_address;
    }
    for (int i = 0; i < 6; ++i) {
        data[i] = i + 1.0;
    }
    numbers room(6, -1.0);
    const std::int64_t count = 4;
    host::qvcopyptrtoreal8800_(data, room.data(), count);
    return expect(room == numbers{1.0, 2.0, 3.0, 4.0, -1.0, -1.0}, "not the first 4 of 6 numbers");
}

finding copies_in() {
    const array made(make_matrix(3, 2));
    if (made.handle == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(made.handle);
    if (data == nullptr) {
        return no_address;
    }
    for (int i = 0; i < 6; ++i) {
        data[i] = -1.0;
    }
    const numbers source = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    const std::int64_t count = 4;
    host::qvcopyreal8toptr800_(source.data(), data, count);
    return expect(numbers(data, data + 6) == numbers{1.0, 2.0, 3.0, 4.0, -1.0, -1.0},
                  "not the first 4 of 6 numbers");
}

finding makes_empty_column() {
    const array made(make_matrix(0, 1));
    if (made.handle == 0) {
        return no_array;
    }
    const double unused = 0.0;
    const std::int64_t none = 0;
    host::qvcopyreal8toptr800_(&unused, host::qvgetpr800_(made.handle), none);
    return {};
}

/// Stores a matrix by `store` and checks that its data stay where they are.
template <class Store>
finding takes_over(Store store) {
    const array structure(make_struct(1, {"phase     "}));
    const array_handle value = make_matrix(3, 1);
    if (structure.handle == 0 || value == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(value);
    if (data == nullptr) {
        return no_address;
    }
    data[0] = 2.5;
    store(structure.handle, value);
    return expect(data[0] == 2.5, "the data of the stored array have changed");
}

/// Fills the fields of a struct many times, beside other fields.
finding replaces_values() {
    for (int i = 0; i < 100; ++i) {
        const array structure(make_sample_struct());
        if (structure.handle == 0) {
            return no_array;
        }
        for (const std::string_view name : {"phase", "value", "column"}) {
            const array_handle value = make_matrix(10, 1);
            if (value == 0) {
                return no_array;
            }
            set_field(structure.handle, name, value);
            set_field(structure.handle, field_number(structure.handle, name), make_text(name));
        }
        if (finding wrong = finds(structure.handle, "column", 3); !wrong.empty()) {
            return wrong;
        }
    }
    return {};
}

finding destroys_one_alone() {
    const array kept(make_matrix(2, 1));
    const array_handle other = make_matrix(2, 1);
    const array_handle structure = make_sample_struct();
    if (kept.handle == 0 || other == 0 || structure == 0) {
        return no_array;
    }
    const host::data_address data = host::qvgetpr800_(kept.handle);
    if (data == nullptr) {
        return no_address;
    }
    data[1] = 2.5;
    host::qvdestroyarray800_(other);
    host::qvdestroyarray800_(structure);
    return expect(host::qvgetpr800_(kept.handle) == data && data[1] == 2.5,
                  "an array that was not destroyed no longer exists");
}

finding come_and_go() {
    for (int i = 0; i < 2000; ++i) {
        const array made(make_sample_struct());
        if (made.handle == 0) {
            return "the handle is 0 after " + std::to_string(i);
        }
    }
    return {};
}

void check_structs() {
    check("qvcreatestructarray800_", "makes a 1-by-1 struct of one dimension and a padded slot",
          makes_struct_of_padded_slot);
    check("qvcreatestructarray800_", "makes a 1-by-1 struct of two dimensions and three slots",
          makes_struct_of_slots);
    check("qvgetfieldnumber800_", "returns 0 for a field that does not exist", misses_fields);
    check("qvgetfieldnumber800_", "reads as much of a name as its length says",
          reads_name_of_length);
    check("qvaddfield800_", "returns the next number, which is that of the field", adds_fields);
    check("qvsetfield800_", "owns the array, whose data stay where they are", [] {
        return takes_over([](const array_handle& structure, const array_handle& value) {
            set_field(structure, "phase", value);
        });
    });
    check("qvsetfieldbynumber800_", "owns the array, whose data stay where they are", [] {
        return takes_over([](const array_handle& structure, const array_handle& value) {
            set_field(structure, 1, value);
        });
    });
    check("qvsetfieldbynumber800_", "replaces the value of a field", replaces_values);
    check("qvdestroyarray800_", "leaves other arrays unchanged", destroys_one_alone);
    check("qvdestroyarray800_", "releases structs with all they own", come_and_go);
}

} // namespace

void check_arrays() {
    check("qvcreatestring800_", "makes texts, an empty one included", makes_texts);
    check("qvcreatedoublescalar800_", "makes scalars that hold their value", makes_scalars);
    check("qvcreatedoublematrix800_", "makes an empty column, into which nothing is copied",
          makes_empty_column);
    check("qvgetpr800_", "returns data that can be written and read", data_are_writable);
    check("qvgetpr800_", "returns the same address while the array exists", address_stays);
    check("qvcopyptrtoreal8800_", "copies the requested count of numbers", copies_out);
    check("qvcopyreal8toptr800_", "copies the requested count of numbers", copies_in);
    check_structs();
}

} // namespace zktarn::host_conformance
