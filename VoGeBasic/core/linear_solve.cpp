#include "core/linear_solve.h"

#include <cmath>

namespace geolib {
namespace core {

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

}  // namespace

bool solveLinear(int n, double** a, double* b, double* x) {
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

}  // namespace core
}  // namespace geolib
