#include "zktarn/assert/assert_mod.hpp"

#include "zktarn/host/libzkoptimutil.hpp"

namespace zktarn::assert_mod {

void tarnassert(const flag& condition) noexcept {
    constexpr flag lowest_byte = 0xFF;
    host::assertOptim((condition & lowest_byte) != 0);
}

} // namespace zktarn::assert_mod
