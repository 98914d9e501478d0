#include <cstdlib>

void* broken(int n) {
    return std::calloc(static_cast<std::size_t>(n), 8);
}
