#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <limits>

#include "property/reference/util_reference.hpp"

/// Literal reference of the fraction search, the divisors and the scalar search: the steps of their
/// definitions without shortcuts. A loop that would not end fails after `endless` steps.

namespace zktarn::reference {

inline constexpr int endless = 6000;

struct fraction {
    bool found = false;
    double num = 0.0;
    double den = 0.0;
};

inline bool within(double e, double eps) {
    return -eps <= e && e <= eps;
}

inline fraction get_rational_rep(double x, double eps, double max_den) {
    const double magnitude = std::fabs(max_den);
    const double bound = magnitude > 1.0 ? magnitude : 1.0;

    int k = 1;
    int step = 1;
    int steps = 0;
    while (k < 26) {
        for (double d = k; d <= bound; d *= 10.0) {
            if (++steps > endless) {
                return {};
            }
            const double p = x * d;
            const double f = guarded_floor(p, 0.0);
            const double lo = f / d;
            const double hi = (f + 1.0) / d;
            if (std::isnan(x) || std::isnan(lo - eps) || std::isnan(eps + hi) || x < lo - eps ||
                x > eps + hi) {
                continue;
            }
            if (x <= eps + lo) {
                return {true, f, d};
            }
            if (x >= hi - eps) {
                return {true, f + 1.0, d};
            }
        }
        if (k == 9) {
            step = 2;
        }
        if (k == 19) {
            step = 4;
        }
        k += step;
    }

    const double h = eps * 0.5;
    double a = guarded_floor(x, h);
    double e = x - a;
    if (within(e, eps)) {
        return {true, a, 1.0};
    }
    double s = e >= 0.0 ? 1.0 : -1.0;
    if (within(x - (a + s), eps)) {
        return {true, e < -eps ? a - 1.0 : a + 1.0, 1.0};
    }
    double r = x;
    double p = a;
    double q = 1.0;
    double p_prev = 1.0;
    double q_prev = 0.0;
    for (int round = 0; round < endless; ++round) {
        if (r < a - eps) {
            return {};
        }
        r = 1.0 / (r - a);
        a = guarded_floor(r, h);
        if (a < -eps) {
            return {};
        }
        const double q_new = std::fma(a, q, q_prev);
        if (q_new > bound) {
            return {};
        }
        const double p_new = std::fma(a, p, p_prev);
        e = x - p_new / q_new;
        if (within(e, eps)) {
            return {true, p_new, q_new};
        }
        s = e >= 0.0 ? 1.0 : -1.0;
        if (within(x - (p_new + s) / q_new, eps)) {
            return {true, e < -eps ? p_new - 1.0 : p_new + 1.0, q_new};
        }
        p_prev = p;
        q_prev = q;
        p = p_new;
        q = q_new;
    }
    return {};
}

inline double xgcd_r8(double a, double b, double eps) {
    constexpr double largest = std::numeric_limits<double>::max();
    if (!(a > -largest && a < largest && b > -largest && b < largest)) {
        return 0.0;
    }
    double big = std::max(std::fabs(a), std::fabs(b));
    double small = std::min(std::fabs(a), std::fabs(b));
    if (small <= eps) {
        return big;
    }
    for (;;) {
        const double r = std::fmod(big, small);
        if (!(r > eps)) {
            return small;
        }
        big = small;
        small = r;
    }
}

inline std::int32_t xgcd_i4(std::int32_t a, std::int32_t b) {
    constexpr std::int32_t largest = 2147483646;
    if (a < -largest || a > largest || b < -largest || b > largest) {
        return 0;
    }
    auto big = static_cast<std::uint32_t>(std::max(std::abs(a), std::abs(b)));
    auto small = static_cast<std::uint32_t>(std::min(std::abs(a), std::abs(b)));
    while (small != 0) {
        const std::uint32_t rest = big % small;
        big = small;
        small = rest;
    }
    return static_cast<std::int32_t>(big);
}

using supplier = std::function<void(std::int32_t, double&, std::int64_t&, std::int64_t&)>;

struct search_result {
    bool found = false;
    double scalar = 0.0;
    bool ended = true;
};

struct search_input {
    std::int32_t n;
    supplier get_element;
    double eps;
    double max_den;
    double max_scalar;
    bool skip_marked;
    bool selected_only;

    bool is_included(std::int32_t i, double& value) const {
        std::int64_t marked = 0;
        std::int64_t selected = 0;
        get_element(i, value, marked, selected);
        return !(skip_marked && marked != 0) && !(selected_only && selected == 0) &&
               std::fabs(value) > eps;
    }
};

inline bool integral(double p, double eps) {
    const double f = guarded_floor(p, 0.0);
    const double c = -guarded_floor(-p, 0.0);
    return p - f <= eps || c - p <= eps;
}

inline search_result scale_to_integral(const search_input& in, double start) {
    double s = std::fabs(start);
    if (!(s <= in.max_scalar)) {
        return {};
    }
    for (std::int32_t i = 1; i <= in.n; ++i) {
        double value = 0.0;
        if (!in.is_included(i, value)) {
            continue;
        }
        for (int round = 0;; ++round) {
            if (round > endless) {
                return {false, 0.0, false};
            }
            if (s > in.max_scalar) {
                return {};
            }
            if (std::fabs(value) * s >= 0.5 && integral(value * s, in.eps)) {
                break;
            }
            double t = s + s;
            for (const double m : {3.0, 5.0, 7.0, 9.0, 11.0, 13.0, 15.0, 17.0, 19.0}) {
                if (integral(value * (s * m), in.eps)) {
                    t = s * m;
                    break;
                }
            }
            if (t > in.max_scalar) {
                return {};
            }
            s = t;
        }
    }
    return {true, s};
}

inline search_result find_scalar_integral(const search_input& in) {
    double smallest = std::numeric_limits<double>::max();
    for (std::int32_t i = 1; i <= in.n; ++i) {
        double value = 0.0;
        std::int64_t marked = 0;
        std::int64_t selected = 0;
        in.get_element(i, value, marked, selected);
        if (std::fabs(value) > in.eps) {
            smallest = std::min(smallest, std::fabs(value));
        }
    }
    for (const double start : {1.0 / smallest, 1.0}) {
        const search_result quick = scale_to_integral(in, start);
        if (quick.found || !quick.ended) {
            return quick;
        }
    }
    double g = 1.0;
    double l = 1.0;
    bool first = true;
    for (std::int32_t i = 1; i <= in.n; ++i) {
        double value = 0.0;
        if (!in.is_included(i, value)) {
            continue;
        }
        const fraction rep = get_rational_rep(value, in.eps, in.max_den);
        if (!rep.found) {
            return {};
        }
        if (first) {
            g = std::fabs(rep.num);
            l = rep.den;
        } else {
            g = xgcd_r8(g, rep.num, in.eps);
            const double g2 = xgcd_r8(l, rep.den, in.eps);
            l = l * (rep.den / g2);
        }
        if (l / g > in.max_scalar) {
            return {};
        }
        first = false;
    }
    return {true, l / g};
}

} // namespace zktarn::reference
