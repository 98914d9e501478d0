#include <string_view>

#include "zktarn_util.h"

static_assert(std::string_view(ZKTARN_C_VERSION) == ZKTARN_PROJECT_VERSION,
              "the header gives the version of the project");

const char* zktarn_version() {
    return ZKTARN_C_VERSION;
}
