#include <vector>

#include "zktarn/zktarn_util.hpp"

using namespace std;
using namespace zktarn::vector_mod;

int main() {
    vector* x = nullptr;
    return x == nullptr ? 0 : 1;
}
