#include "refusal.h"

#include "zktarn_standin/records.hpp"

void refuse_record(int64_t k) {
    zktarn::standin::fail_record(k);
}

int64_t live_records() {
    return zktarn::standin::live_records();
}
