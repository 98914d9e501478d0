#include <cstdio>

void broken(int n) {
    std::printf("%d\n", n);
}
