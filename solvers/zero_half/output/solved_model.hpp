#pragma once

#include "input/model.hpp"
#include "run/result.hpp"

namespace zero_half {

struct solved_model {
    model program;
    run_result run;
};

} // namespace zero_half
