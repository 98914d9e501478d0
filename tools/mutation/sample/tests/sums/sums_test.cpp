#include "sample/sums/sums.hpp"

int main() {
    const int values[] = {1, 2, 4};
    const bool right = sample::capped_sum(values, 3, 10) == 7 &&
                       sample::capped_sum(values, 3, 5) == 5 && sample::steps(4) == 2 &&
                       sample::steps(3) == 2 && sample::triple(0) == 0;
    return right ? 0 : 1;
}
