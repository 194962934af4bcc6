// Comparing points and vectors in tests: all three coordinates within tol, with a readable
// message on failure.
#ifndef VOGEBASIC_TESTS_GEOM_EXPECT_H
#define VOGEBASIC_TESTS_GEOM_EXPECT_H

#include <gtest/gtest.h>

#include <cmath>

namespace vgtest {

/// Works for VoGePoint3D and VoGeVector3D alike (anything with x, y and z).
template <class A, class B>
::testing::AssertionResult near3(const A& a, const B& b, double tol) {
    if (std::fabs(a.x - b.x) <= tol && std::fabs(a.y - b.y) <= tol && std::fabs(a.z - b.z) <= tol)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "(" << a.x << ", " << a.y << ", " << a.z << ") vs ("
                                         << b.x << ", " << b.y << ", " << b.z << ")";
}

/// The point a is (x, y, z) within tol.
template <class A>
::testing::AssertionResult near3(const A& a, double x, double y, double z, double tol) {
    struct {
        double x, y, z;
    } b{x, y, z};
    return near3(a, b, tol);
}

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_GEOM_EXPECT_H
