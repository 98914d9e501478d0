double broken(double a, double b) {
    return a * b;
}
