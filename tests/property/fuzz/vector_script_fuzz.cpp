// Runs scripts of operations on two vectors. The first three bytes select the modes, the capacity
// and whether the vectors keep their invariants; the others give the contents and the operations.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "property/vector_script.hpp"

namespace {

using namespace zktarn::testing;

class bytes : public choices {
public:
    bytes(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    /// One byte, or 14 bits of two bytes when the first is 0xC0 or larger. Zero at the end of the
    /// input.
    std::uint64_t word() override {
        std::uint64_t value = byte();
        if (value >= 0xC0) {
            value = (value & 0x3F) << 8 | byte();
        }
        return value;
    }
    bool done() const { return next_ == end_; }

private:
    std::uint64_t byte() { return next_ == end_ ? 0 : *next_++; }

    const std::uint8_t* next_;
    const std::uint8_t* end_;
};

void expect(bool holds, const outcome& after) {
    if (!holds) {
        std::fprintf(stderr, "differs from the reference after %s\n", after.operation);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    bytes draw(data, size);
    const std::int32_t forms = draw.below(36);
    const std::int32_t n = draw.between(1, 320);
    const state how = draw.chance(2) ? state::consistent : state::inconsistent;
    mirrored_vector x(n, form_of(forms / 6));
    mirrored_vector y(n, form_of(forms % 6));
    fill(draw, x, draw.below(n + 1), how);
    fill(draw, y, draw.below(n + 1), how);
    for (int steps = 0; steps < 64 && !draw.done(); ++steps) {
        const outcome done = draw.chance(3) ? step(draw, y, x, how) : step(draw, x, y, how);
        expect(done.results_agree && x.agrees() && y.agrees(), done);
    }
    return 0;
}
