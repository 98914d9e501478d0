// An interface before (NONE) and after a change.

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

// With the names of C, which say nothing about the arguments.
extern "C" int takes(const record& r, second number) {
    return static_cast<int>(number) + r.count;
}

#ifndef REMOVED_EXPORT
extern "C" void removed_later() {}
#endif

#ifdef ADDED_EXPORT
extern "C" void added_later() {}
#endif
