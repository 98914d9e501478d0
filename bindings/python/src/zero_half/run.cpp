#include "zero_half.hpp"

#include <deque>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include <CoinError.hpp>

#include "host/python_host.hpp"
#include "input/error.hpp"
#include "input/read_model.hpp"
#include "output/output.hpp"
#include "run/run.hpp"

namespace zktarn::python {

namespace py = pybind11;
using namespace zero_half;

namespace {

/// Calls `work`. What CoinUtils and Clp throw becomes an `error`, and a lack of memory a
/// MemoryError with a sentence.
template <class Work>
auto with_errors_of(const std::string& file, Work work) {
    try {
        return work();
    } catch (const CoinError& found) { // does not derive from std::exception
        throw error(file + ": " + found.message());
    } catch (const std::bad_alloc&) {
        const py::gil_scoped_acquire lock;
        PyErr_SetString(PyExc_MemoryError, "there is not enough memory for the model");
        throw py::error_already_set();
    }
}

/// The host's output function while the object exists.
class registered_function {
public:
    explicit registered_function(const py::object& function)
        : previous_(zktarn_python_set_function(name, function.ptr())) {
        if (previous_ == nullptr) {
            throw py::error_already_set();
        }
    }
    ~registered_function() {
        Py_XDECREF(zktarn_python_set_function(name, previous_));
        Py_DECREF(previous_);
    }
    registered_function(const registered_function&) = delete;
    registered_function& operator=(const registered_function&) = delete;

private:
    static constexpr const char* name = "tarnCallback";
    PyObject* previous_;
};

/// Removes the stored exception from the host and returns it, with its traceback, or None. Handles
/// a signal after the last poll as well: otherwise its handler would run when this module returns,
/// and its exception would replace the result.
py::object stored_exception() {
    if (zktarn_python_raise() == 0 && PyErr_CheckSignals() == 0) {
        return py::none();
    }
    PyObject* type = nullptr;
    PyObject* value = nullptr;
    PyObject* traceback = nullptr;
    PyErr_Fetch(&type, &value, &traceback);
    PyErr_NormalizeException(&type, &value, &traceback);
    if (traceback != nullptr) {
        PyException_SetTraceback(value, traceback);
    }
    Py_XDECREF(type);
    Py_XDECREF(traceback);
    return py::reinterpret_steal<py::object>(value);
}

run_options options_of(const py::dict& given, bool has_output_function) {
    run_options options;
    options.rounds = given["rounds"].cast<int>();
    options.seconds = given["time_limit"].cast<double>();
    options.seed = given["seed"].cast<std::int32_t>();
    options.show = static_cast<display>(given["display"].cast<std::int32_t>());
    options.has_output_function = has_output_function;
    options.optimum =
        given["optimum"].is_none() ? std::nullopt : std::optional(given["optimum"].cast<double>());
    options.stop_at_gap = given["stop_at_gap"].cast<double>();
    return options;
}

py::object number_or_none(const std::optional<double>& value) {
    return value ? py::object(py::float_(*value)) : py::object(py::none());
}

py::list rounds_of(const run_result& run) {
    py::list rounds;
    for (const round_figures& each : run.rounds) {
        rounds.append(py::make_tuple(each.round, each.bound, each.cuts_found, each.cuts_kept,
                                     each.separation_ms, each.relaxation_ms, each.seconds));
    }
    return rounds;
}

/// The cuts of the last relaxation as compressed sparse rows, with columns counted from 0.
py::dict cuts_of(const run_result& run) {
    std::vector<int> starts = {0};
    std::vector<int> indices;
    std::vector<double> data;
    std::vector<double> rhs;
    for (const std::size_t row : run.cuts) {
        for (const std::int32_t column : run.pool.columns(row)) {
            indices.push_back(column - 1);
        }
        const std::span<const double> coefficients = run.pool.coefficients(row);
        data.insert(data.end(), coefficients.begin(), coefficients.end());
        starts.push_back(static_cast<int>(indices.size()));
        rhs.push_back(run.pool.rhs(row));
    }
    py::dict cuts;
    cuts["indptr"] = copied_array(starts);
    cuts["indices"] = copied_array(indices);
    cuts["data"] = copied_array(data);
    cuts["rhs"] = copied_array(rhs);
    return cuts;
}

/// The value of the objective in the sense of the file.
std::optional<double> objective_of(const model& program, const run_result& run) {
    if (!run.is_integral) {
        return std::nullopt;
    }
    double value = program.constant;
    for (std::size_t j = 0; j < run.point.size(); ++j) {
        value += program.objective[j] * run.point[j];
    }
    return program.in_sense_of_file(value);
}

py::dict outcome_of(model program, run_result run) {
    const ending_text& ending = text_of(run.reason);
    py::dict outcome;
    outcome["status"] = ending.name;
    outcome["message"] = ending.description;
    outcome["fault"] = run.fault();
    outcome["initial_bound"] = number_or_none(run.first_bound);
    outcome["relaxation_bound"] = number_or_none(run.relaxation_bound);
    outcome["bound"] = number_or_none(run.bound);
    outcome["optimum"] = number_or_none(run.optimum);
    outcome["gap_closed"] = number_or_none(run.gap_closed(run.bound));
    outcome["rounds"] = rounds_of(run);
    outcome["cuts"] = cuts_of(run);
    outcome["point"] =
        run.point.empty() ? py::object(py::none()) : py::object(copied_array(run.point));
    outcome["objective"] = number_or_none(objective_of(program, run));
    outcome["seconds"] = run.seconds;
    outcome["cpu_seconds"] = run.cpu_seconds;
    std::deque<solved_model> solved;
    solved.push_back({std::move(program), std::move(run)});
    constexpr std::size_t table_width = 80;
    outcome["table"] = decoded(table_of(solved, table_width));
    return outcome;
}

/// The run, or the `error` that prevents it. Other exceptions pass through.
struct attempt {
    std::optional<run_result> run = {};
    std::optional<error> failure = {};
};

attempt attempted(const model& program, const run_options& options) {
    const py::gil_scoped_release unlocked;
    try {
        return {with_errors_of(program.file, [&] { return zero_half::tighten(program, options); })};
    } catch (const error& found) {
        return {{}, found};
    }
}

} // namespace

py::dict read_model(const py::bytes& file) {
    const std::string name = file;
    return with_errors_of(name, [&] { return arrays_of(zero_half::read_model(name)); });
}

py::tuple tighten(const py::dict& model_arrays, const py::dict& given,
                  const py::object& output_function) {
    model program = model_of(model_arrays);
    complete(program);
    const run_options options = options_of(given, !output_function.is_none());
    attempt result;
    try {
        const registered_function registered(output_function);
        result = attempted(program, options);
    } catch (...) {
        // What the host stored is the cause: a generator that could not be made, for example.
        py::object cause = stored_exception();
        if (cause.is_none()) {
            throw;
        }
        return py::make_tuple(py::none(), cause);
    }
    py::object raised = stored_exception();
    if (result.failure && raised.is_none()) {
        throw *result.failure;
    }
    if (!result.run) {
        return py::make_tuple(py::none(), raised);
    }
    return py::make_tuple(outcome_of(std::move(program), *std::move(result.run)), raised);
}

void write_mps(const py::dict& model_arrays, const py::dict& cuts, const py::bytes& file) {
    solved_model solved = {model_of(model_arrays), {}};
    const auto starts = cuts["indptr"].cast<py::array_t<int, py::array::c_style>>();
    const auto columns = cuts["indices"].cast<py::array_t<int, py::array::c_style>>();
    const auto data = cuts["data"].cast<py::array_t<double, py::array::c_style>>();
    const auto rhs = cuts["rhs"].cast<py::array_t<double, py::array::c_style>>();
    for (py::ssize_t i = 0; i < rhs.size(); ++i) {
        std::vector<std::int32_t> from_one;
        for (int k = starts.at(i); k < starts.at(i + 1); ++k) {
            from_one.push_back(columns.at(k) + 1);
        }
        const auto count = from_one.size();
        solved.run.pool.add(from_one, {data.data() + starts.at(i), count}, rhs.at(i), {});
        solved.run.cuts.push_back(static_cast<std::size_t>(i));
    }
    write_model(solved, file);
}

} // namespace zktarn::python
