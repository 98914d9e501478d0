// Generators of the host and snapshots of their states.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include "errors.hpp"
#include "module.hpp"
#include "zktarn/random/random.hpp"

namespace zktarn::python {

namespace {

namespace py = pybind11;

/// A generator that is deleted with its Python object.
class generator {
public:
    explicit generator(random::rng_state rng) noexcept : rng_(rng) {}
    generator(const generator&) = delete;
    generator& operator=(const generator&) = delete;
    ~generator() { random::deleterng(rng_); }

    [[nodiscard]] const random::rng_state& operator*() const noexcept { return rng_; }

private:
    random::rng_state rng_;
};

/// A snapshot that is deleted with its Python object.
class snapshot {
public:
    explicit snapshot(random::saved_state state) noexcept : state_(state) {}
    snapshot(const snapshot&) = delete;
    snapshot& operator=(const snapshot&) = delete;
    ~snapshot() { random::deleterngstate(state_); }

    [[nodiscard]] const random::saved_state& operator*() const noexcept { return state_; }

private:
    random::saved_state state_;
};

std::unique_ptr<generator> from_seed(std::int32_t seed) {
    random::rng_state rng;
    const flag made = random::instantiaterng(rng, seed);
    raise_pending();
    if (made == 0) {
        raise(PyExc_MemoryError, "no memory for a generator");
    }
    return std::make_unique<generator>(rng);
}

std::unique_ptr<generator> adopt(const py::object& source) {
    return std::make_unique<generator>(
        random::rng_state{require(zktarn_python_adopt_generator(source.ptr()))});
}

double draw(const generator& rng) {
    const double number = random::rand_number(*rng);
    raise_pending();
    return number;
}

void fill(const generator& rng, py::array_t<double, py::array::c_style>& numbers) {
    double* const data = numbers.mutable_data();
    for (py::ssize_t i = 0; i < numbers.size(); ++i) {
        data[i] = random::rand_number(*rng);
    }
    raise_pending();
}

std::unique_ptr<snapshot> save(const generator& rng) {
    random::saved_state state = nullptr;
    const flag made = random::getrngstate(*rng, state);
    raise_pending();
    if (made == 0) {
        raise(PyExc_MemoryError, "no memory for the state of a generator");
    }
    return std::make_unique<snapshot>(state);
}

void restore(const generator& rng, const snapshot& state) {
    random::setrngstate(*rng, *state);
    raise_pending();
}

py::object bit_generator(const generator& rng) {
    return py::reinterpret_steal<py::object>(
        require(zktarn_python_bit_generator((*rng).generator)));
}

} // namespace

void add_random(PyObject* module) {
    auto scope = py::reinterpret_borrow<py::module_>(module);
    py::class_<generator> generators(scope, "Generator");
    py::class_<snapshot>(scope, "GeneratorState");
    define(scope, "generator_from_seed", from_seed);
    define(scope, "adopt_generator", adopt);
    define(generators, "draw", draw);
    define(generators, "fill", fill);
    define(generators, "save", save);
    define(generators, "restore", restore);
    define(generators, "bit_generator", bit_generator);
}

} // namespace zktarn::python
