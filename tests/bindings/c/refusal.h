#ifndef ZKTARN_TESTS_REFUSAL_H
#define ZKTARN_TESTS_REFUSAL_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Makes the k-th allocation of a record from now on fail; none for 0. */
void refuse_record(int64_t k);

/* The number of unreleased records. */
int64_t live_records(void);

#ifdef __cplusplus
}
#endif

#endif
