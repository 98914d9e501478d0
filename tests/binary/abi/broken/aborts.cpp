#include <cstdlib>

void broken(int n) {
    if (n < 0) {
        std::abort();
    }
}
