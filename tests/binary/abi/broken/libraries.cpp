// A library for each macro. Each breaks one rule of the binary interface, with three exceptions:
// NEVER_FUSES and TAKES_INTERRUPT are harmless alone, and the options of the linker make the flaw;
// SMALL_INTERFACE is an interface before and after a change.

#if defined(ONE_NAME_TOO_MANY)

namespace zktarn::memory_mod {
void mallocate_quickly() {}
} // namespace zktarn::memory_mod

#elif defined(ABORTS)

#include <cstdlib>

void broken(int n) {
    if (n < 0) {
        std::abort();
    }
}

#elif defined(THROWS)

void broken(int n) {
    if (n < 0) {
        throw n;
    }
}

#elif defined(PRINTS)

#include <cstdio>

void broken(int n) {
    std::printf("%d\n", n);
}

#elif defined(STREAMS)

#include <iostream>

void broken(int n) {
    std::cout << n;
}

#elif defined(PROCESS_MEMORY)

#include <cstdlib>

void* broken(int n) {
    return std::calloc(static_cast<std::size_t>(n), 8);
}

#elif defined(STARTS_UP)

int compute();
int broken = compute();

#elif defined(THREAD_LOCAL)

thread_local int state = 0;

int broken() {
    return ++state;
}

#elif defined(KEEPS_COUNT)

extern "C" {
long count_of_calls = 0;
}
static int once = 1;

int broken(int n) {
    count_of_calls += once;
    once = n;
    return n;
}

#elif defined(TEXT_RELOCATION)

// An absolute address among the instructions, which the loader has to write there.
asm(".text\n.quad broken_address\n");

extern "C" {
int broken_address = 1;
}

#elif defined(TOO_LARGE)

extern const char broken[100 * 1024] = {1};

#elif defined(NEVER_FUSES)

double broken(double a, double b) {
    return a * b;
}

#elif defined(CONTRACTS)

double broken(double a, double b, double c) {
    return a * b + c;
}

namespace zktarn::util {

// The source asks for one fused operation; the compiler makes two.
double xgcd_r8(const double& a, const double& b, const double& c) {
    const double rest = __builtin_fma(a, b, c);
    return rest * a + b;
}

} // namespace zktarn::util

#elif defined(TAKES_INTERRUPT)

extern "C" bool utIsInterruptPending() noexcept;

bool broken() {
    return utIsInterruptPending();
}

#elif defined(OTHER_OWNER)

// Defines the host's poll for interrupts in a library that does not own it.
extern "C" bool utIsInterruptPending() noexcept {
    return false;
}

#elif defined(REPLACEABLE)

// A weak definition, which any other library of the process may replace.
[[gnu::weak]] int replaceable() {
    return 1;
}

int broken() {
    return replaceable();
}

#elif defined(SMALL_INTERFACE)

// A small interface, and a change of it for each macro that is defined as well: COMPONENT,
// ARGUMENT, REMOVED_EXPORT and ADDED_EXPORT.

struct record {
#ifdef COMPONENT
    int count;
    double* coefficients;
#else
    double* coefficients;
    int count;
#endif
};

#ifdef ARGUMENT
using second = long;
#else
using second = int;
#endif

// Names of C do not contain the types of the arguments.
extern "C" int takes(const record& r, second number) {
    return static_cast<int>(number) + r.count;
}

#ifndef REMOVED_EXPORT
extern "C" void removed_later() {}
#endif

#ifdef ADDED_EXPORT
extern "C" void added_later() {}
#endif

#endif
