#include "run/bridge.hpp"

#include <new>

#include "zktarn/owners.hpp"

namespace zero_half {

using namespace zktarn::callbacks_util;

bridge::bridge(display show, bool has_output_function)
    : display_(static_cast<std::int32_t>(show)), indicator_(has_output_function ? 1 : 0) {
    cbinit(data_);
    if (data_ == nullptr) {
        throw std::bad_alloc();
    }
}

bridge::~bridge() {
    delete data_;
}

bool bridge::is_interrupted() const {
    return !is_stopped() && cbhasinterrupt(status_, code::poll_for_interrupts) != 0;
}

bool bridge::is_stopped() const {
    return cbstopfromoutputfcn(status_) != 0;
}

void bridge::print_round(const std::string& line) const {
    if (cbisdisplayfinal(display_) == 0) {
        cbprintdisplay(status_, code::poll_for_interrupts, display_, line);
    }
}

void bridge::report(const char* phase, int round, double bound,
                    const std::vector<double>& history) {
    if (cbhasoutputfcn(indicator_) == 0) {
        return;
    }
    const zktarn::owned_struct info(phase);
    addrealscalartoqvstruct(*info, "round", round);
    addrealscalartoqvstruct(*info, "bound", bound);
    addrealvectoqvstruct(*info, "history", history.data(),
                         static_cast<std::int64_t>(history.size()));
    zktarn::flag stop = 0;
    qvcalloutputfcn(*info, stop, status_, code::poll_for_interrupts);
    if (stop != 0) {
        status_ = code::stopped_by_output_function;
    }
}

} // namespace zero_half
