#include "refusal.h"

#include "support/failing_new.hpp"

void refuse_record(int64_t k) {
    zktarn::testing::refuse_new(k);
}

int64_t live_records() {
    return zktarn::testing::live_objects();
}
