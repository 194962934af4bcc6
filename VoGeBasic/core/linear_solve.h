// The small dense linear solve behind gaussLiner and the line and plane intersections.
// Internal, not exported.
#ifndef VOGEBASIC_CORE_LINEAR_SOLVE_H
#define VOGEBASIC_CORE_LINEAR_SOLVE_H

namespace geolib {
namespace core {

/// A pivot of smaller magnitude (strict) makes the system singular. Absolute, not relative to
/// the size of the entries.
constexpr double kPivotMin = 1e-6;

/// Solves a.x = b by Gaussian elimination with partial pivoting; a is n row pointers to n
/// doubles each. a and b are overwritten (only the upper triangle of a stays meaningful). The
/// pivot of each column is the first of the largest magnitudes; a pivot below kPivotMin (NaN
/// included) means "singular". Returns false when singular, when n <= 0 or when a, a row of a,
/// b or x is null; x is then untouched or partly written.
bool solveLinear(int n, double** a, double* b, double* x);

}  // namespace core
}  // namespace geolib

#endif  // VOGEBASIC_CORE_LINEAR_SOLVE_H
