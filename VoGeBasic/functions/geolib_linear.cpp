#include "geolib_linear.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "core/linear_solve.h"

namespace {

void freeRows(double** rows, int count) {
    for (int i = 0; i < count; ++i)
        std::free(rows[i]);
    std::free(rows);
}

}  // namespace

namespace geolib {

bool gaussLiner(short n, double** a, double* b, double* x) {
    return core::solveLinear(n, a, b, x);
}

bool gaussLiner(short n, double* a, double* b, double* x) {
    if (x == nullptr || a == nullptr || b == nullptr || n <= 0)
        return false;
    // n is at most 32767, so n * n doubles fit a size_t comfortably.
    const std::size_t len = static_cast<std::size_t>(n);
    double** rows = static_cast<double**>(std::malloc(len * sizeof(double*)));
    if (rows == nullptr)
        return false;
    for (int i = 0; i < n; ++i) {
        rows[i] = static_cast<double*>(std::malloc(len * sizeof(double)));
        if (rows[i] == nullptr) {
            freeRows(rows, i);
            return false;
        }
        for (std::size_t j = 0; j < len; ++j)
            rows[i][j] = a[static_cast<std::size_t>(i) * len + j];
    }
    const bool solved = gaussLiner(n, rows, b, x);
    freeRows(rows, n);
    return solved;
}

void matrixMultVector(int rows, int cols, const double* m, const double* v, double* out) {
    if (m == nullptr || v == nullptr || out == nullptr)
        return;
    for (int i = 0; i < rows; ++i) {
        const double* row = m + static_cast<std::ptrdiff_t>(i) * cols;
        out[i] = 0.0;
        for (int j = 0; j < cols; ++j)
            out[i] += row[j] * v[j];
    }
}

void vectorMultMatrix(int rows, int cols, const double* v, const double* m, double* out) {
    if (m == nullptr || v == nullptr || out == nullptr)
        return;
    for (int j = 0; j < cols; ++j) {
        out[j] = 0.0;
        for (int i = 0; i < rows; ++i)
            out[j] += v[i] * m[static_cast<std::ptrdiff_t>(i) * cols + j];
    }
}

void vecPMulVector(int n, const double* a, const double* b, double* out) {
    if (a == nullptr || b == nullptr || out == nullptr)
        return;
    *out = 0.0;
    for (int i = 0; i < n; ++i)
        *out += a[i] * b[i];
}

}  // namespace geolib
