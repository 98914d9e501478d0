#ifndef ZKTARN_TESTS_CHECK_H
#define ZKTARN_TESTS_CHECK_H

#include <stdio.h>

/* Counts the checks that fail and names each. A program ends with the status of `failures()`. */

static int failed_checks = 0;

static inline void check(int holds, const char* condition, const char* file, int line) {
    if (!holds) {
        failed_checks += 1;
        fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
    }
}

#define CHECK(condition) check((condition) ? 1 : 0, #condition, __FILE__, __LINE__)

static inline int failures(void) {
    return failed_checks == 0 ? 0 : 1;
}

#endif
