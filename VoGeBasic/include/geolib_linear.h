// Small dense linear systems and products on plain arrays of doubles (namespace geolib).
//
// All storage belongs to the caller; nothing here knows about the geometry classes. Every sum
// starts from 0.0 and is accumulated in increasing index order. Matrices are row-major.
#ifndef VOGEBASIC_GEOLIB_LINEAR_H
#define VOGEBASIC_GEOLIB_LINEAR_H

#include "VoGeBasicExport.h"

namespace geolib {

/// Solves a.x = b by Gaussian elimination with partial pivoting; a is n row pointers to n
/// doubles each. a and b are overwritten (only the upper triangle of a stays meaningful).
/// The pivot of each column is the first of the largest magnitudes; a pivot below 1e-6 (an
/// absolute limit, NaN included) means "singular". Returns false when singular, when n <= 0
/// or when a, a row of a, b or x is null; x is then untouched or partly written.
VOGEBASIC_API bool gaussLiner(short n, double** a, double* b, double* x);
/// The same system with a given as n*n doubles row by row; a is left intact, b is overwritten.
/// Works on a private copy of a (n + 1 heap blocks, all given back before it returns). Returns
/// false as the row-pointer form does, and also when an allocation fails.
VOGEBASIC_API bool gaussLiner(short n, double* a, double* b, double* x);

/// out[i] = sum over j < cols of m[i*cols + j] * v[j], for i < rows (cols <= 0 gives zeros).
/// Does nothing when an array is null.
VOGEBASIC_API void matrixMultVector(int rows, int cols, const double* m, const double* v,
                                    double* out);
/// out[j] = sum over i < rows of v[i] * m[i*cols + j], for j < cols (rows <= 0 gives zeros).
/// Does nothing when an array is null.
VOGEBASIC_API void vectorMultMatrix(int rows, int cols, const double* v, const double* m,
                                    double* out);
/// *out = sum over i < n of a[i] * b[i]; n <= 0 writes 0.0. Does nothing when an array is null.
VOGEBASIC_API void vecPMulVector(int n, const double* a, const double* b, double* out);

}  // namespace geolib

#endif  // VOGEBASIC_GEOLIB_LINEAR_H
