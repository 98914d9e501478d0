#include <cstdlib>

int broken(int n) {
    int* const entry = static_cast<int*>(std::malloc(sizeof(int)));
    if (entry == nullptr) {
        return 0;
    }
    *entry = n;
    std::free(entry);
    return *entry;
}
