#include "Platform/Math/VectorProduct.h"

namespace trelmix {

void vDSP_mmulD(const double* a, std::ptrdiff_t strideA, const double* b, std::ptrdiff_t strideB, double* c,
                std::ptrdiff_t strideC, std::size_t m, std::size_t n, std::size_t p) {
    const auto at = [](std::size_t index, std::ptrdiff_t stride) {
        return static_cast<std::ptrdiff_t>(index) * stride;
    };
    for (std::size_t row = 0; row < m; ++row) {
        for (std::size_t col = 0; col < n; ++col) {
            double sum = 0;
            for (std::size_t k = 0; k < p; ++k) {
                sum += a[at(row * p + k, strideA)] * b[at(k * n + col, strideB)];
            }
            c[at(row * n + col, strideC)] = sum;
        }
    }
}

} // namespace trelmix
