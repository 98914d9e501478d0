#pragma once

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>

namespace zktarn::testing {

/// The shared library's symbol of a procedure that a header also defines inline.
template <class Procedure>
Procedure exported(const char* mangled_name) {
    static void* const library = dlopen(ZKTARN_TEST_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        std::fprintf(stderr, "cannot load the library: %s\n", dlerror());
        std::abort();
    }
    void* const symbol = dlsym(library, mangled_name);
    if (symbol == nullptr) {
        std::fprintf(stderr, "the library does not export %s\n", mangled_name);
        std::abort();
    }
    return reinterpret_cast<Procedure>(symbol);
}

} // namespace zktarn::testing
