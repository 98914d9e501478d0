struct record {
    double* coefficients;
    int count;
};

int broken(const record& r) {
    return r.count;
}
