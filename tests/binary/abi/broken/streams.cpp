#include <iostream>

void broken(int n) {
    std::cout << n;
}
