/* One row of a constraint matrix, 3 x2 + 2 x5 - x7, as a sparse vector in each of its three modes,
 * on the stand-in host, and the response of a program when the host refuses the memory. */

#include <stdio.h>

#include "zktarn_standin.h"
#include "zktarn_util.h"

enum { COLUMNS = 8 };

struct mode {
    const char* name;
    zktarn_flag no_ind;
    zktarn_flag no_elm;
    const char* membership;
};

static const struct mode modes[] = {
    {"marks", 0, 0, "j is marked: elm(j) = 1"},
    {"list", 0, 1, "j is found in the list"},
    {"dense", 1, 1, "every j, a zero included"},
};

static void add(zktarn_vector* row, int32_t j, double value) {
    zktarn_vector_add_nz(row, j, &value);
}

/* Creates, fills, prints and releases the row in one mode. Returns 0 if memory is missing. */
static int show(const struct mode* m) {
    zktarn_vector* row = NULL;
    if (!zktarn_vector_alloc(&row, COLUMNS, NULL, &m->no_ind, &m->no_elm)) {
        return 0;
    }
    if (row->ind.data == NULL) {
        zktarn_xzero_r8(row->coef.data, COLUMNS); /* without a list every coefficient counts */
    }
    add(row, 2, 3.0);
    add(row, 5, 2.0);
    add(row, 7, -1.0);

    printf("%-5s  coef %-3s %-3s  %-24s ", m->name, row->ind.data != NULL ? "ind" : "",
           row->elm.data != NULL ? "elm" : "", m->membership);
    for (int32_t j = 1; j <= COLUMNS; ++j) {
        printf("%3g", zktarn_vector_get_coef(row, j));
    }
    printf("  ");
    const int listed = row->ind.data != NULL;
    const int32_t count = listed ? zktarn_vector_get_nz(row) : COLUMNS;
    for (int32_t k = 1; k <= count; ++k) {
        const int32_t j = listed ? zktarn_vector_get_ind(row, k) : k;
        printf(" %d:%g", (int)j, zktarn_vector_get_coef(row, j));
    }
    printf("\n");
    zktarn_vector_free(&row);
    return 1;
}

int main(int argc, char** argv) {
    if (argc > 1) {
        fprintf(stderr, "vectors: takes no arguments, but was given '%s'\n", argv[1]);
        return 2;
    }
    printf("The row 3 x2 + 2 x5 - x7 over %d columns, in each mode of a vector:\n\n", COLUMNS);
    printf("mode   arrays        members                   x1 x2 x3 x4 x5 x6 x7 x8   entries\n");
    for (size_t i = 0; i < sizeof modes / sizeof modes[0]; ++i) {
        if (!show(&modes[i])) {
            fprintf(stderr, "vectors: the host has no memory for a vector\n");
            return 1;
        }
    }
    zktarn_standin_fail_request(2);
    zktarn_vector* refused = NULL;
    const zktarn_flag made = zktarn_vector_alloc(&refused, COLUMNS, NULL, NULL, NULL);
    printf("\nThe host refuses the second array: vector_alloc returns %d, %d blocks are left.\n",
           (int)made, (int)zktarn_standin_live_blocks(NULL, 0));
    zktarn_vector_free(&refused); /* harmless: refused is NULL */

    char report[200];
    zktarn_standin_memory_report(report, sizeof report);
    printf("\n%s", report);
    return zktarn_standin_live_blocks(NULL, 0) == 0 ? 0 : 1;
}
