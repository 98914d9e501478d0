#include <vector>

#include "binary/identity/procedures.hpp"

namespace zktarn::identity {

namespace {

using namespace util;

constexpr std::int32_t longest = 40;

template <class T>
T any(draws& draw) {
    return static_cast<T>(draw.word() >> 32);
}
template <>
double any<double>(draws& draw) {
    return draw.real();
}

void add(digest& results, double value) {
    results.copied(value);
}
void add(digest& results, std::int32_t value) {
    results.integer(value);
}

/// A random array. It is at least as long as every count, so that the hash also covers the elements
/// behind the first n, which must not change.
template <class T>
std::vector<T> filled(draws& draw) {
    std::vector<T> elements(longest);
    for (T& each : elements) {
        each = any<T>(draw);
    }
    return elements;
}

template <class T, auto copy>
void call_copy(draws& draw, digest& results) {
    const std::vector<T> source = filled<T>(draw);
    std::vector<T> destination = filled<T>(draw);
    const std::int32_t n = draw.between(-2, longest);
    copy(source.data(), destination.data(), n);
    for (const T each : destination) {
        add(results, each);
    }
}

template <class T, auto clear>
void call_clear(draws& draw, digest& results) {
    std::vector<T> elements = filled<T>(draw);
    const std::int32_t n = draw.between(-2, longest);
    clear(elements.data(), n);
    for (const T each : elements) {
        add(results, each);
    }
}

constexpr int calls = 500;

constexpr procedure procedures[] = {
    {"util.xcopy_i1", call_copy<std::int8_t, xcopy_i1>, calls},
    {"util.xcopy_i4", call_copy<std::int32_t, xcopy_i4>, calls},
    {"util.xcopy_r8", call_copy<double, xcopy_r8>, calls},
    {"util.xzero_i4", call_clear<std::int32_t, xzero_i4>, calls},
    {"util.xzero_r8", call_clear<double, xzero_r8>, calls},
};

} // namespace

std::span<const procedure> array_copy_procedures() {
    return procedures;
}

} // namespace zktarn::identity
