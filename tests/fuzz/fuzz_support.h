// Support of the fuzz targets: reading primitives and numbers from the fuzzer's bytes, and
// stopping loudly when a promise of the headers is broken.
#ifndef VOGEBASIC_TESTS_FUZZ_SUPPORT_H
#define VOGEBASIC_TESTS_FUZZ_SUPPORT_H

#include <fuzzer/FuzzedDataProvider.h>

#include <cstdio>
#include <cstdlib>

#include "tests/support/test_constants.h"

namespace vgfuzz {

/// Stops the run when cond is false: the fuzzer keeps the input that broke the promise.
#define VG_FUZZ_CHECK(cond, what)                                                           \
    do {                                                                                    \
        if (!(cond)) {                                                                      \
            std::fprintf(stderr, "broken promise: %s (%s:%d)\n", what, __FILE__, __LINE__); \
            std::abort();                                                                   \
        }                                                                                   \
    } while (0)

/// A number for a coordinate or a size: mostly ordinary values in [-range, range], sometimes
/// small integers (so that points coincide), values at the tolerances, huge values and the
/// non-finite ones.
inline double number(FuzzedDataProvider& in, double range = 10.0) {
    using vgtest::kInf;
    static const double kSpecial[] = {0.0,   1e-9,   -1e-9, 5e-7,         1e-6, 1e-5,
                                      1e-4,  3e-4,   1e-3,  1e-2,         1e9,  -1e9,
                                      1e154, -1e154, 1e300, vgtest::kNaN, kInf, -kInf};
    const unsigned kind = in.ConsumeIntegralInRange<unsigned>(0, 15);
    if (kind < 10)
        return in.ConsumeFloatingPointInRange<double>(-range, range);
    if (kind < 13)
        return static_cast<double>(in.ConsumeIntegralInRange<int>(-4, 4));
    if (kind < 15)
        return kSpecial[in.ConsumeIntegralInRange<unsigned>(
            0, sizeof kSpecial / sizeof *kSpecial - 1)];
    return in.ConsumeFloatingPoint<double>();
}

/// Three numbers, read in order, as a point or a vector of any type taking (x, y, z).
template <class T>
T triple(FuzzedDataProvider& in, double range = 10.0) {
    return T{number(in, range), number(in, range), number(in, range)};
}

using vgtest::ordinary;

}  // namespace vgfuzz

#endif  // VOGEBASIC_TESTS_FUZZ_SUPPORT_H
