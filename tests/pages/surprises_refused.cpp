// A program for each macro, with a line that the compiler refuses.

#include <vector>

#include "zktarn/zktarn_util.hpp"

#if defined(AMBIGUOUS_VECTOR)

using namespace std;
using namespace zktarn::vector_mod;

int main() {
    vector* x = nullptr;
    return x == nullptr ? 0 : 1;
}

#elif defined(BOOL_AS_FLAG)

int main() {
    bool found = false;
    double num = 0.0;
    double den = 0.0;
    zktarn::util::get_rational_rep(0.75, 1e-9, 100.0, found, num, den);
    return found ? 0 : 1;
}

#endif
