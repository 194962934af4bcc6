// Numbers the tests share, written out here rather than read from the library, so that a wrong
// constant in the library shows up as a failing test.
#ifndef VOGEBASIC_TESTS_TEST_CONSTANTS_H
#define VOGEBASIC_TESTS_TEST_CONSTANTS_H

namespace vgtest {

/// pi and the full turn as the doubles nearest to them.
constexpr double kPi = 3.141592653589793;
constexpr double kTwoPi = 6.283185307179586;

}  // namespace vgtest

#endif  // VOGEBASIC_TESTS_TEST_CONSTANTS_H
