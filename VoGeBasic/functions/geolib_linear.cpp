#include "geolib_linear.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>

#include "functions/function_tolerances.h"

using namespace geolib::functions;

namespace {

// Exchanges two rows of n doubles element by element: the same result as going through a
// scratch row, without asking the heap for one.
void swapRows(double* r, double* s, int n) {
    for (int j = 0; j < n; ++j) {
        const double t = r[j];
        r[j] = s[j];
        s[j] = t;
    }
}

void freeRows(double** rows, int count) {
    for (int i = 0; i < count; ++i)
        std::free(rows[i]);
    std::free(rows);
}

}  // namespace

namespace geolib {

bool gaussLiner(short n, double** a, double* b, double* x) {
    if (x == nullptr || a == nullptr || b == nullptr || n <= 0)
        return false;
    for (int i = 0; i < n; ++i) {
        if (a[i] == nullptr)
            return false;
    }

    for (int k = 0; k < n; ++k) {
        // The first of equal maxima wins: replace only on a strictly greater magnitude. A NaN
        // never replaces, so a column of NaN ends up "singular".
        int p = k;
        double best = 0.0;
        for (int i = k; i < n; ++i) {
            const double v = std::fabs(a[i][k]);
            if (v > best) {
                best = v;
                p = i;
            }
        }
        if (best < kPivotMin)
            return false;
        if (p != k) {
            swapRows(a[p], a[k], n);
            const double t = b[p];
            b[p] = b[k];
            b[k] = t;
        }
        // The entries below the pivot are left as they are: only the upper triangle is read.
        for (int i = k + 1; i < n; ++i) {
            b[i] = b[i] - b[k] * a[i][k] / a[k][k];
            for (int j = k + 1; j < n; ++j)
                a[i][j] = a[i][j] - a[k][j] * a[i][k] / a[k][k];
        }
    }

    x[n - 1] = b[n - 1] / a[n - 1][n - 1];
    for (int i = n - 2; i >= 0; --i) {
        double sum = 0.0;
        for (int j = i + 1; j < n; ++j)
            sum += a[i][j] * x[j];
        x[i] = (b[i] - sum) / a[i][i];
    }
    return true;
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
