/* A zero-half cut: half the sum of three rows, rounded down, is valid for every integer point with
 * x >= 0, and here it cuts off the solution of the linear relaxation. */

#include <math.h>
#include <stdio.h>

#include "zktarn_util.h"

enum { COLUMNS = 5, ROWS = 3 };

static const double eps = 1e-9;

struct constraint {
    double coefficients[COLUMNS];
    double rhs;
};

static const struct constraint constraints[ROWS] = {
    {{1, 1, 0, 1, 0}, 1},
    {{0, 1, 1, 0, -1}, 1},
    {{1, 0, 1, 2, 0}, 1},
};

static const double solution[COLUMNS] = {0.5, 0.5, 0.5, 0, 0};

static void print(const char* name, const zktarn_vector* row, double rhs) {
    printf("%-9s", name);
    for (int32_t k = 1; k <= zktarn_vector_get_nz(row); ++k) {
        const int32_t j = zktarn_vector_get_ind(row, k);
        const double a = zktarn_vector_get_coef(row, j);
        printf(" %c %g x%d", a < 0 ? '-' : '+', fabs(a), (int)j);
    }
    printf(" <= %g\n", rhs);
}

/* Prints the rows and adds half of each to the cut. Returns half the sum of their right-hand sides.
 */
static double add_halves(zktarn_vector* cut, zktarn_vector* row) {
    double rhs = 0;
    for (int i = 0; i < ROWS; ++i) {
        zktarn_vector_clear(row);
        for (int32_t j = 1; j <= COLUMNS; ++j) {
            if (constraints[i].coefficients[j - 1] != 0) {
                zktarn_vector_add_nz(row, j, &constraints[i].coefficients[j - 1]);
            }
        }
        print("row", row, constraints[i].rhs);
        zktarn_vectors_combine(cut, row, 1.0, 0.5, eps); /* cut := cut + row / 2 */
        rhs += constraints[i].rhs / 2;
    }
    return rhs;
}

/* Prints the cut and how far it cuts off the solution. Returns 1 when it does. */
static int round_down(zktarn_vector* cut, double rhs) {
    /* x >= 0, so smaller coefficients weaken the row; then the left-hand side is an integer. */
    double activity = 0;
    double norm = 0;
    for (int32_t k = 1; k <= zktarn_vector_get_nz(cut); ++k) {
        const int32_t j = zktarn_vector_get_ind(cut, k);
        const double rounded = zktarn_epsilon_floor(zktarn_vector_get_coef(cut, j), eps);
        zktarn_vector_set_coef(cut, j, rounded);
        activity += rounded * solution[j - 1];
        norm += rounded * rounded;
    }
    zktarn_vector_rem_zeros(cut);
    rhs = zktarn_epsilon_floor(rhs, eps);
    print("cut", cut, rhs);
    printf("\nAt (0.5, 0.5, 0.5, 0, 0) the left-hand side of the cut is %g.\n", activity);
    printf("violation %g, efficacy %.3f\n", activity - rhs, (activity - rhs) / sqrt(norm));
    return activity > rhs + eps;
}

int main(void) {
    zktarn_vector* cut = NULL;
    zktarn_vector* row = NULL;
    int found = 0;
    if (zktarn_vector_alloc(&cut, COLUMNS, NULL, NULL, NULL) &&
        zktarn_vector_alloc(&row, COLUMNS, NULL, NULL, NULL)) {
        const double rhs = add_halves(cut, row);
        print("half sum", cut, rhs);
        found = round_down(cut, rhs);
    } else {
        fprintf(stderr, "separator: the host has no memory for a vector\n");
    }
    zktarn_vector_free(&row);
    zktarn_vector_free(&cut);
    return found ? 0 : 1;
}
