// Solving three plane equations for their common point. Internal: shared by the line and plane
// classes, not exported.
#ifndef VOGEBASIC_EQUATION_ROWS_H
#define VOGEBASIC_EQUATION_ROWS_H

#include "VoGePoint3D.h"

namespace geolib {
namespace geometry {

/// Solves the 3x3 system whose rows (A, B, C, D), meaning A.x + B.y + C.z = D, are r0, r1 and
/// r2 (four doubles each, left unchanged) with the linear solve of core on the stack. Returns
/// false and leaves out untouched when the system is singular.
bool solveEquationRows(const double* r0, const double* r1, const double* r2, VoGePoint3D& out);

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_EQUATION_ROWS_H
