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
