#include "zero_half.hpp"

#include <vector>

namespace zktarn::python {

namespace py = pybind11;

namespace {

py::list decoded_list(const std::vector<std::string>& texts) {
    py::list list;
    for (const std::string& text : texts) {
        list.append(decoded(text));
    }
    return list;
}

std::vector<std::string> encoded_list(const py::handle& texts) {
    std::vector<std::string> list;
    for (const py::handle& text : texts) {
        list.push_back(encoded(text));
    }
    return list;
}

template <class T>
std::vector<T> values_of(const py::dict& arrays, const char* name) {
    const auto array = arrays[name].cast<py::array_t<T, py::array::c_style>>();
    return std::vector<T>(array.data(), array.data() + array.size());
}

CoinPackedMatrix matrix_of(const py::dict& arrays, std::size_t rows, std::size_t columns) {
    const std::vector<CoinBigIndex> starts = values_of<CoinBigIndex>(arrays, "indptr");
    const std::vector<int> indices = values_of<int>(arrays, "indices");
    const std::vector<double> data = values_of<double>(arrays, "data");
    const bool is_ordered_by_columns = false;
    return CoinPackedMatrix(is_ordered_by_columns, static_cast<int>(columns),
                            static_cast<int>(rows), static_cast<CoinBigIndex>(data.size()),
                            data.data(), indices.data(), starts.data(), nullptr);
}

/// In the sense of the file, and back: the conversion is its own inverse.
std::vector<double> in_other_sense(const zero_half::model& model, std::vector<double> objective) {
    for (double& cost : objective) {
        cost = model.in_sense_of_file(cost);
    }
    return objective;
}

} // namespace

py::str decoded(const std::string& text) {
    PyObject* const result =
        PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape");
    if (result == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::str>(result);
}

std::string encoded(const py::handle& text) {
    PyObject* const bytes = PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape");
    if (bytes == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::bytes>(bytes);
}

py::dict arrays_of(const zero_half::model& model) {
    const zero_half::mixed_integer_rows rows = model.rows_and_bounds();
    py::dict arrays;
    arrays["file"] = decoded(model.file);
    arrays["name"] = decoded(model.name);
    arrays["indptr"] = copied_array(rows.row_starts);
    arrays["indices"] = copied_array(rows.entry_columns);
    arrays["data"] = copied_array(rows.entry_values);
    arrays["row_lower"] = copied_array(model.row_lower);
    arrays["row_upper"] = copied_array(model.row_upper);
    arrays["lower"] = copied_array(model.lower);
    arrays["upper"] = copied_array(model.upper);
    arrays["c"] = copied_array(in_other_sense(model, model.objective));
    arrays["integrality"] =
        copied_array(std::vector<signed char>(model.is_integer.begin(), model.is_integer.end()));
    arrays["row_names"] = decoded_list(model.row_names);
    arrays["column_names"] = decoded_list(model.column_names);
    arrays["constant"] = model.in_sense_of_file(model.constant);
    arrays["maximise"] = model.is_maximised;
    return arrays;
}

zero_half::model model_of(const py::dict& arrays) {
    zero_half::model model;
    model.file = encoded(arrays["file"]);
    model.name = encoded(arrays["name"]);
    model.row_lower = values_of<double>(arrays, "row_lower");
    model.row_upper = values_of<double>(arrays, "row_upper");
    model.lower = values_of<double>(arrays, "lower");
    model.upper = values_of<double>(arrays, "upper");
    model.rows = matrix_of(arrays, model.row_lower.size(), model.lower.size());
    model.is_maximised = arrays["maximise"].cast<bool>();
    model.objective = in_other_sense(model, values_of<double>(arrays, "c"));
    model.constant = model.in_sense_of_file(arrays["constant"].cast<double>());
    const std::vector<signed char> integrality = values_of<signed char>(arrays, "integrality");
    model.is_integer.assign(integrality.begin(), integrality.end());
    model.row_names = encoded_list(arrays["row_names"]);
    model.column_names = encoded_list(arrays["column_names"]);
    return model;
}

} // namespace zktarn::python
