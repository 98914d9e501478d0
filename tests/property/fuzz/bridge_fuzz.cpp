// Runs scripts of a solver's calls on the stand-in host: structs passed to an output function,
// lines, interrupts, sorts, random numbers, and records with values in their slots. Compares the
// result of each call with a model. The host must report no fault and no leak.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <numeric>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "zktarn/host/libqv.hpp"
#include "zktarn/zktarn_util.hpp"
#include "zktarn_standin/control.hpp"

namespace {

using namespace zktarn;
using namespace zktarn::callbacks_util;
using namespace zktarn::callbacks_type_util;

class bytes {
public:
    bytes(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    bool done() const { return next_ == end_; }
    std::uint8_t byte() { return next_ == end_ ? std::uint8_t{0} : *next_++; }
    int below(int n) { return byte() % n; }
    bool chance() { return byte() % 2 == 0; }
    double real() { return (byte() - 128) / 4.0; }
    std::string text(int most) {
        std::string characters;
        for (int n = below(most); n > 0; --n) {
            characters += static_cast<char>(' ' + below(95));
        }
        return characters;
    }

private:
    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

void expect(bool holds, const char* what) {
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}

/// The model's values of a field.
using column = std::vector<double>;

/// Calls of the bridge, and a model of their effects.
class bridge_script {
public:
    explicit bridge_script(bytes& draw) : draw_(draw) {
        standin::set_console(standin::console::capture);
        standin::set_function("tarnCallback", [this](const standin::array_value& input) {
            check_struct(input);
            ++calls_;
            return result_;
        });
        cbinit(data_);
    }
    ~bridge_script() {
        drop_struct();
        delete data_;
    }
    bridge_script(const bridge_script&) = delete;
    bridge_script& operator=(const bridge_script&) = delete;

    void step() {
        switch (draw_.below(9)) {
        case 0:
            begin_solve();
            break;
        case 1:
            new_struct();
            break;
        case 2:
            add_scalar();
            break;
        case 3:
            add_column();
            break;
        case 4:
            call_output_function();
            break;
        case 5:
            print();
            break;
        case 6:
            expect((cbhasinterrupt(status_, ctrlc_) != 0) == must_end(), "cbhasinterrupt");
            break;
        case 7:
            standin::raise_interrupt();
            pending_ = true;
            break;
        default:
            status_ = draw_.below(5);
            ctrlc_ = draw_.below(3);
        }
    }

private:
    void begin_solve() {
        delete data_;
        cbinit(data_);
        expect(data_ != nullptr && data_->nodes_explored == 0, "cbinit");
        interrupt_flag_ = false;
    }

    void new_struct() {
        drop_struct();
        phase_ = draw_.text(20);
        structure_ = qvinitcbarray(phase_);
        names_ = {"phase"};
    }

    void drop_struct() {
        if (structure_ != 0) {
            host::qvdestroyarray800_(structure_);
        }
        structure_ = 0;
        fields_.clear();
    }

    std::string field() {
        static constexpr const char* names[] = {"x", "gap", "round", "a_longer_name"};
        const std::string name = names[draw_.below(4)];
        if (std::find(names_.begin(), names_.end(), name) == names_.end()) {
            names_.push_back(name);
        }
        return name;
    }

    void add_scalar() {
        if (structure_ != 0) {
            const std::string name = field();
            const double value = draw_.real();
            addrealscalartoqvstruct(structure_, name, value);
            fields_[name] = {value};
        }
    }

    void add_column() {
        if (structure_ != 0) {
            const std::string name = field();
            column values(static_cast<std::size_t>(draw_.below(6)));
            std::generate(values.begin(), values.end(), [this] { return draw_.real(); });
            addrealvectoqvstruct(structure_, name, values.data(),
                                 static_cast<std::int64_t>(values.size()));
            fields_[name] = values;
        }
    }

    void check_struct(const standin::array_value& input) {
        expect(input.field_names() == names_, "the fields of the struct");
        expect(input.field("phase").text() == phase_, "the phase");
        for (const auto& [name, values] : fields_) {
            expect(input.field(name).reals() == values, "the values of a field");
        }
    }

    /// Whether the solve must end: interrupt flag set, stopped, or a poll reports an interrupt now.
    bool must_end() {
        if (interrupt_flag_ || status_ == 3) {
            return true;
        }
        if (ctrlc_ == 1) {
            interrupt_flag_ = std::exchange(pending_, false);
        }
        return interrupt_flag_;
    }

    void call_output_function() {
        if (structure_ == 0) {
            return;
        }
        const double first = draw_.real();
        if (draw_.chance()) {
            result_ = first;
        } else {
            result_ = column{first, 1.0};
        }
        const int before = calls_;
        flag stop = -1;
        qvcalloutputfcn(structure_, stop, status_, ctrlc_);
        const bool ended = must_end();
        expect(calls_ - before == (ended ? 0 : 1), "calls of the output function");
        expect(stop == (!ended && first >= 1.0 && first < 2.0 ? 1 : 0), "stop");
    }

    void print() {
        const std::string line = draw_.text(30) + std::string(draw_.chance() ? 0u : 600u, '-');
        const std::int32_t display = draw_.below(3);
        standin::clear_console();
        cbprintdisplay(status_, ctrlc_, display, line);
        const bool silent = display == 0 || must_end();
        expect(standin::flushed_console_text() == (silent ? "" : line + "\n"), "a line");
    }

    bytes& draw_;
    cbdata* data_ = nullptr;
    std::int32_t status_ = 0;
    std::int32_t ctrlc_ = 0;
    bool interrupt_flag_ = false;
    bool pending_ = false;
    array_handle structure_ = 0;
    std::string phase_;
    std::vector<std::string> names_;
    std::map<std::string, column> fields_;
    standin::reply result_ = 0.0;
    int calls_ = 0;
};

/// Stores, copies, moves and finalises records whose slots hold texts.
void record_script(bytes& draw) {
    std::vector<cbdatalist> records(3);
    std::vector<std::optional<std::string>> model(3);
    for (int steps = 0; steps < 12; ++steps) {
        const auto i = static_cast<std::size_t>(draw.below(3));
        const auto j = static_cast<std::size_t>(draw.below(3));
        switch (draw.below(5)) {
        case 0:
            model[i] = draw.text(30);
            expect(store(records[i], *model[i]), "store");
            break;
        case 1:
            records[i] = records[j];
            model[i] = model[j];
            break;
        case 2:
            records[i] = std::move(records[j]);
            if (i != j) {
                model[i] = std::exchange(model[j], std::nullopt);
            }
            break;
        case 3:
            _cbdatalistfinalise(records[i], 1);
            model[i].reset();
            break;
        default:
            records.push_back(records[i]);
            records.pop_back();
        }
        for (std::size_t k = 0; k < 3; ++k) {
            const std::string* const held = stored<std::string>(records[k]);
            expect((held != nullptr) == model[k].has_value() && (!held || *held == *model[k]),
                   "the value of a slot");
        }
    }
}

void sort_script(bytes& draw) {
    const std::int32_t first = draw.byte() - 128;
    std::vector<int> keys(static_cast<std::size_t>(draw.below(64)));
    std::generate(keys.begin(), keys.end(), [&] { return draw.below(16); });
    std::vector<int> order(keys.size());
    std::iota(order.begin(), order.end(), 0);
    const std::vector<int> before = keys;
    sorting_mod::sort(first, first + static_cast<std::int32_t>(keys.size()) - 1,
                      [&](std::int32_t a, std::int32_t b) {
                          const auto lower = static_cast<std::size_t>(a - first);
                          const auto upper = static_cast<std::size_t>(b - first);
                          if (keys.at(lower) <= keys.at(upper)) {
                              return false;
                          }
                          std::swap(keys[lower], keys[upper]);
                          std::swap(order[lower], order[upper]);
                          return true;
                      });
    expect(std::is_sorted(keys.begin(), keys.end()), "the order of the keys");
    for (std::size_t i = 0; i < keys.size(); ++i) {
        expect(before[static_cast<std::size_t>(order[i])] == keys[i], "the companions");
    }
}

void random_script(bytes& draw) {
    random::rng_state rng;
    expect(random::instantiaterng(rng, draw.byte()) == 1, "instantiaterng");
    random::saved_state state = nullptr;
    expect(random::getrngstate(rng, state) == 1, "getrngstate");
    const double number = random::rand_number(rng);
    for (int n = draw.below(4); n > 0; --n) {
        random::rand_number(rng);
    }
    random::setrngstate(rng, state);
    expect(random::rand_number(rng) == number, "the number after setrngstate");
    random::deleterngstate(state);
    random::deleterng(rng);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes draw(data, size);
    standin::reset();
    standin::listen_for_sigint(false);
    {
        bridge_script bridge(draw);
        for (int steps = 0; steps < 64 && !draw.done(); ++steps) {
            switch (draw.below(8)) {
            case 0:
                record_script(draw);
                break;
            case 1:
                sort_script(draw);
                break;
            case 2:
                random_script(draw);
                break;
            default:
                bridge.step();
            }
        }
    }
    // A fault would have ended the process.
    expect(standin::live_objects().empty() && standin::live_blocks().empty(),
           standin::report().c_str());
    return 0;
}
