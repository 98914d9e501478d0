#include "zktarn/zktarn_util.hpp"

int main() {
    bool found = false;
    double num = 0.0;
    double den = 0.0;
    zktarn::util::get_rational_rep(0.75, 1e-9, 100.0, found, num, den);
    return found ? 0 : 1;
}
