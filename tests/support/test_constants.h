// Numbers the tests share, written out here rather than read from the library, so that a wrong
// constant in the library shows up as a failing test, a comparison of points within a tolerance
// and the generator of their random cases.
#ifndef VOGEBASIC_TESTS_TEST_CONSTANTS_H
#define VOGEBASIC_TESTS_TEST_CONSTANTS_H

#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>

namespace vgtest {

/// pi and the full turn as the doubles nearest to them.
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

/// True when every value is finite and at most limit in magnitude.
inline bool ordinary(std::initializer_list<double> values, double limit = 1e6) {
    for (double v : values) {
        if (!(std::fabs(v) <= limit))
            return false;
    }
    return true;
}

/// Every coordinate of a within tol of b's (points or vectors of any types with x, y and z).
template <class A, class B>
bool near(const A& a, const B& b, double tol) {
    return std::fabs(a.x - b.x) <= tol && std::fabs(a.y - b.y) <= tol &&
           std::fabs(a.z - b.z) <= tol;
}

/// A small linear congruential generator: the same cases for the same seed on every platform.
class Lcg {
public:
    explicit Lcg(std::uint32_t seed) : s_(seed) {}
    /// Uniform in [0, 1).
    double operator()() {
        s_ = s_ * 1664525u + 1013904223u;
        return (s_ >> 8) / 16777216.0;
    }
    /// Uniform in [lo, hi).
    double operator()(double lo, double hi) { return lo + (hi - lo) * (*this)(); }
    /// An integer in [0, n).
    int below(int n) { return static_cast<int>((*this)() * n); }

private:
    std::uint32_t s_;
};

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_TEST_CONSTANTS_H
