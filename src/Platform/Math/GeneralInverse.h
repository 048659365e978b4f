#pragma once

#include <vector>

// LAPACK, as its Fortran callers see it: column-major matrices, 32-bit sizes.
extern "C" {
void dgetrf_(const int* m, const int* n, double* a, const int* lda, int* pivots, int* info);
void dgetri_(const int* n, double* a, const int* lda, const int* pivots, double* work, const int* workSize,
             int* info);
}

namespace trelmix {

/// Replaces an n x n matrix by its inverse, by LU factorisation. Row-major and column-major storage give the
/// same. False, with `values` left undefined, when it is singular or `values` does not hold n * n entries.
bool invertInPlace(std::vector<double>& values, int n);

} // namespace trelmix
