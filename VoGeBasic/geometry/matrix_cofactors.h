// Cofactor routines behind VoGeMatrix3D::inverse(). Internal, not exported.
//
// Each works on an n x n block (1 <= n <= 4) stored with a row stride of four doubles, so a
// VoGeMatrix3D's elements are a 4x4 block and every minor fits a 16-double stack array.
#ifndef VOGEBASIC_MATRIX_COFACTORS_H
#define VOGEBASIC_MATRIX_COFACTORS_H

namespace geolib {
namespace geometry {

/// Row stride of the blocks below.
constexpr int kBlockStride = 4;

/// Determinant by Laplace expansion along row 0 (even columns added, odd subtracted).
double matDeterminant(const double* block, int n);
/// Adjugate: the signed minor of (r, c) stored transposed at out(c, r). For n = 1, out = 1.
void matAdjoint(const double* block, int n, double* out);
/// out := adjugate / determinant. A determinant of exactly 0.0 returns false and leaves out
/// untouched.
bool matInverse(const double* block, int n, double* out);

}  // namespace geometry
}  // namespace geolib

#endif  // VOGEBASIC_MATRIX_COFACTORS_H
