#include "zktarn/assert/assert_mod.hpp"
#include "zktarn/version.hpp"
#include "zktarn_util.h"

void zktarn_tarnassert(zktarn_flag condition) {
    zktarn::assert_mod::tarnassert(condition);
}

const char* zktarn_version() {
    return ZKTARN_VERSION_STRING;
}
