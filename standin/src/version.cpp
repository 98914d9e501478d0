#include "zktarn_standin/operations.hpp"

const char* zktarn_standin_version() noexcept {
    return ZKTARN_STANDIN_VERSION;
}
