#pragma once

#include <cstddef>

namespace trelmix {

/// C = A * B for row-major A (m x p), B (p x n) and C (m x n), each entry a sum over p in rising order.
/// Strides count doubles between neighbouring entries. C must not overlap A or B.
void vDSP_mmulD(const double* a, std::ptrdiff_t strideA, const double* b, std::ptrdiff_t strideB, double* c,
                std::ptrdiff_t strideC, std::size_t m, std::size_t n, std::size_t p);

} // namespace trelmix
