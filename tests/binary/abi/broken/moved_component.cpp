// The record of moved_component_before.cpp with two components exchanged.
struct record {
    int count;
    double* coefficients;
};

int broken(const record& r) {
    return r.count;
}
