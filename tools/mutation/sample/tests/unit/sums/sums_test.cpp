#include "sample/sums/sums.hpp"

int main() {
    const int values[] = {1, 2, 4, 100}; // the calls do not include the last one
    const bool passes = sample::capped_sum(values, 3, 10) == 7 &&
                        sample::capped_sum(values, 3, 5) == 5 && sample::steps(4) == 2 &&
                        sample::steps(3) == 2 && sample::triple(0) == 0;
    return passes ? 0 : 1;
}
