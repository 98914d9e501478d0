#include "lp/crash.hpp"

#include <CoinMessageHandler.hpp>
#include <Idiot.hpp>

namespace zero_half {

namespace {

/// Bits of the strategy.
constexpr int scale_rows = 32;
constexpr int continue_by_simplex = 512;

/// Prints nothing. The crash method reports each pass here; setting its number of passes to 0 ends
/// it.
class pass_listener : public CoinMessageHandler {
public:
    pass_listener(Idiot& method, const std::function<bool()>& should_stop)
        : method_(method), should_stop_(should_stop) {
        constexpr int each_pass = 1;
        setLogLevel(each_pass);
    }
    int print() override {
        if (should_stop_()) {
            method_.setMajorIterations(0);
            method_.setStrategy(method_.getStrategy() & ~continue_by_simplex);
        }
        return 0;
    }
    CoinMessageHandler* clone() const override { return new pass_listener(*this); }

private:
    Idiot& method_;
    const std::function<bool()>& should_stop_;
};

} // namespace

void solve_by_crash(ClpSimplex& lp, const std::function<bool()>& should_stop) {
    // Among the settings tried on packing, covering and knapsack rows these need the least time.
    // Short passes make the polls frequent.
    constexpr int passes = 60;
    constexpr int steps_of_pass = 25;
    constexpr int passes_of_weight = 10;
    constexpr double first_weight = 1e3;
    Idiot method(lp);
    method.setStrategy(method.getStrategy() | scale_rows | continue_by_simplex);
    method.setStartingWeight(first_weight);
    method.setReduceIterations(passes_of_weight);
    method.setMinorIterations(steps_of_pass);
    pass_listener listener(method, should_stop);
    const CoinMessages messages = lp.messages();
    method.crash(passes, &listener, &messages, true);
}

} // namespace zero_half
