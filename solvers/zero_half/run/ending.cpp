#include "run/ending.hpp"

namespace zero_half {

namespace {

struct ending_text {
    const char* name;
    const char* description;
};

ending_text text_of(ending reason) {
    switch (reason) {
    case ending::no_cut_found:
        return {"no_cut_found", "no violated cut was found"};
    case ending::integral:
        return {"integral", "the relaxation's optimum is integral"};
    case ending::rounds_used:
        return {"rounds_used", "all rounds were used"};
    case ending::time_used:
        return {"time_used", "the time was used"};
    case ending::gap_closed:
        return {"gap_closed", "the gap is closed as far as asked"};
    case ending::no_integer_point:
        return {"no_integer_point", "the cuts leave no point: there is no integer one"};
    case ending::stopped_by_output_function:
        return {"stopped_by_output_function", "the output function stopped it"};
    case ending::numeric_error:
        return {"numeric_error", "the relaxation with the cuts could not be solved"};
    case ending::interrupted:
        break;
    }
    return {"interrupted", "it was interrupted"};
}

} // namespace

const char* description(ending reason) {
    return text_of(reason).description;
}

const char* name(ending reason) {
    return text_of(reason).name;
}

} // namespace zero_half
