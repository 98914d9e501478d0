double broken(double a, double b, double c) {
    return a * b + c;
}

namespace zktarn::util {

// Asks for one fused operation, and gets one more.
double xgcd_r8(const double& a, const double& b, const double& c) {
    const double rest = __builtin_fma(a, b, c);
    return rest * a + b;
}

} // namespace zktarn::util
