/* Arrays and raw blocks in the host's memory. */

#include <stdint.h>
#include <string.h>

#include "check.h"
#include "zktarn_standin.h"
#include "zktarn_util.h"

/* One element type in one dimension: made, written, released, empty, refused, too large. */
#define TEST_1D(type, element)                                                                     \
    static void test_##type(void) {                                                                \
        zktarn_##type##_1d_array a = {0};                                                          \
        CHECK(zktarn_allocmem_##type##_1d_array(&a, 7) == 1);                                      \
        CHECK(a.data != NULL && a.extent[0] == 7 && a.lower_bound[0] == 1);                        \
        for (int k = 1; k <= 7; ++k) {                                                             \
            a.data[k - 1] = (element)k;                                                            \
        }                                                                                          \
        CHECK(zktarn_standin_check_blocks() == 0);                                                 \
        zktarn_standin_block block;                                                                \
        CHECK(zktarn_standin_live_blocks(&block, 1) == 1);                                         \
        CHECK(block.address == a.data && block.nbytes == (int64_t)(7 * sizeof(element)));          \
        zktarn_freemem_##type##_1d_array(&a);                                                      \
        CHECK(a.data == NULL && a.extent[0] == 7);                                                 \
        zktarn_freemem_##type##_1d_array(&a);                                                      \
        CHECK(zktarn_allocmem_##type##_1d_array(&a, 0) == 1 && a.data == NULL);                    \
        CHECK(zktarn_allocmem_##type##_1d_array(&a, -3) == 1 && a.data == NULL);                   \
        zktarn_standin_fail_request(1);                                                            \
        CHECK(zktarn_allocmem_##type##_1d_array(&a, 5) == 0 && a.data == NULL);                    \
        const int64_t requests = zktarn_standin_requests();                                        \
        CHECK(sizeof(element) == 1 || zktarn_allocmem_##type##_1d_array(&a, INT64_MAX) == 0);      \
        CHECK(a.data == NULL && zktarn_standin_requests() == requests);                            \
        CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);                                           \
    }

TEST_1D(l4, zktarn_logical4)
TEST_1D(i8, int64_t)
TEST_1D(i4, int32_t)
TEST_1D(i2, int16_t)
TEST_1D(i1, int8_t)
TEST_1D(r8, double)

/* In two dimensions each element has its own place, column after column. */
#define TEST_2D(type, element)                                                                     \
    static void test_##type##_2d(void) {                                                           \
        zktarn_##type##_2d_array a = {0};                                                          \
        CHECK(zktarn_allocmem_##type##_2d_array(&a, 3, 4) == 1);                                   \
        CHECK(a.extent[0] == 3 && a.extent[1] == 4);                                               \
        CHECK(a.lower_bound[0] == 1 && a.lower_bound[1] == 1);                                     \
        for (int64_t j = 1; j <= 4; ++j) {                                                         \
            for (int64_t i = 1; i <= 3; ++i) {                                                     \
                *zktarn_##type##_2d_element(&a, i, j) = (element)(10 * i + j);                     \
            }                                                                                      \
        }                                                                                          \
        CHECK(a.data[0] == (element)11 && a.data[1] == (element)21);                               \
        CHECK(a.data[3] == (element)12 && a.data[11] == (element)34);                              \
        CHECK(zktarn_standin_check_blocks() == 0);                                                 \
        zktarn_freemem_##type##_2d_array(&a);                                                      \
        CHECK(a.data == NULL && a.extent[1] == 4);                                                 \
        CHECK(zktarn_allocmem_##type##_2d_array(&a, 0, 5) == 1 && a.data == NULL);                 \
        CHECK(zktarn_allocmem_##type##_2d_array(&a, -2, -3) == 1 && a.data != NULL);               \
        CHECK(a.extent[0] == -2 && a.extent[1] == -3);                                             \
        zktarn_freemem_##type##_2d_array(&a);                                                      \
        zktarn_standin_fail_request(1);                                                            \
        CHECK(zktarn_allocmem_##type##_2d_array(&a, 3, 4) == 0 && a.data == NULL);                 \
        CHECK(zktarn_allocmem_##type##_2d_array(&a, INT64_MAX, 2) == 0 && a.data == NULL);         \
        CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);                                           \
    }

TEST_2D(i4, int32_t)
TEST_2D(r8, double)

static void test_blocks(void) {
    void* const block = zktarn_mallocate(100);
    CHECK(block != NULL);
    memset(block, 1, 100);
    CHECK(zktarn_standin_check_blocks() == 0);
    zktarn_mdeallocate(block);
    const int64_t requests = zktarn_standin_requests();
    CHECK(zktarn_mallocate(0) == NULL && zktarn_mallocate(-1) == NULL);
    CHECK(zktarn_standin_requests() == requests);
    zktarn_standin_fail_request(1);
    CHECK(zktarn_mallocate(1) == NULL);
    zktarn_mdeallocate(NULL);
    CHECK(zktarn_standin_live_blocks(NULL, 0) == 0);
}

int main(void) {
    test_l4();
    test_i8();
    test_i4();
    test_i2();
    test_i1();
    test_r8();
    test_i4_2d();
    test_r8_2d();
    test_blocks();
    return failures();
}
