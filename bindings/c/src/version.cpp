#include "zktarn/version.hpp"

#include "zktarn_util.h"

const char* zktarn_version() {
    return ZKTARN_VERSION_STRING;
}
