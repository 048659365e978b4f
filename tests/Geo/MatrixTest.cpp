#include "Geo/Matrix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>

namespace trelmix::matrix_test {

Matrix square(std::vector<double> values, std::int64_t size) {
    return *Matrix::make(std::move(values), size, size);
}

double distanceFromIdentity(const Matrix& matrix) {
    double largest = 0;
    for (std::int64_t row = 0; row < matrix.rows(); ++row) {
        const std::vector<double> entries = matrix[row];
        for (std::int64_t col = 0; col < matrix.cols(); ++col) {
            const double entry = entries[static_cast<std::size_t>(col)];
            largest = std::max(largest, std::abs(entry - (row == col ? 1 : 0)));
        }
    }
    return largest;
}

TEST(Matrix, sizesThatDoNotMatchTheEntriesAreRefusedAndRowsOutsideAreEmpty) {
    EXPECT_FALSE(Matrix::make({1, 2, 3}, 2, 2));
    EXPECT_FALSE(Matrix::make({1, 2, 3, 4}, -2, -2));
    EXPECT_FALSE(Matrix::make({}, 0, 0));
    // The product of these sizes wraps to 4.
    EXPECT_FALSE(Matrix::make({1, 2, 3, 4}, (std::int64_t{1} << 62) + 1, 4));
    const Matrix matrix = *Matrix::make({1, 2, 3, 4, 5, 6}, 2, 3);
    EXPECT_EQ(matrix[1], (std::vector<double>{4, 5, 6}));
    EXPECT_TRUE(matrix[2].empty());
    EXPECT_TRUE(matrix[-1].empty());
    EXPECT_EQ(Matrix::product(matrix, *Matrix::make({7, 8, 9}, 3, 1))->values(),
              (std::vector<double>{50, 122}));
    EXPECT_FALSE(Matrix::product(matrix, matrix));
}

TEST(Matrix, aMatrixTimesItsInverseIsTheIdentity) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> entry(-1, 1);
    for (std::int64_t size = 1; size <= 7; ++size) {
        for (int i = 0; i < 50; ++i) {
            std::vector<double> values(static_cast<std::size_t>(size * size));
            std::generate(values.begin(), values.end(), [&] { return entry(random); });
            for (std::int64_t k = 0; k < size; ++k) {
                values[static_cast<std::size_t>(k * size + k)] += 3; // far from singular
            }
            const Matrix matrix = square(values, size);
            EXPECT_LT(distanceFromIdentity(*Matrix::product(matrix, *matrix.inverted(true))), 1e-13);
            EXPECT_LT(distanceFromIdentity(*Matrix::product(*matrix.inverted(false), matrix)),
                      size > 4 ? 1e-13 : 1e-5);
        }
    }
}

TEST(Matrix, theSmallInverseWorksInSinglePrecision) {
    const double c = std::cos(0.7), s = std::sin(0.7);
    const Matrix inverse = *square({c, s, 0, -s, c, 0, 0, 0, 1}, 3).inverted(false);
    for (const double entry : inverse.values()) {
        EXPECT_EQ(entry, static_cast<double>(static_cast<float>(entry)));
    }
    EXPECT_EQ(square({0.1}, 1).inverted(false)->values()[0], 1 / 0.1) << "a single entry stays in doubles";
}

TEST(Matrix, singularMatricesHaveNoGeneralInverseAndANonFiniteSmallOne) {
    EXPECT_FALSE(Matrix::make({1, 2, 3, 4, 5, 6}, 2, 3)->inverted(false));
    EXPECT_FALSE(square({1, 2, 2, 4}, 2).inverted(true));
    // The last two: entries beyond a float, and a determinant that vanishes in one.
    for (const Matrix& matrix :
         {square({0}, 1), square({1, 2, 2, 4}, 2), square({1, 2, 3, 4, 5, 6, 7, 8, 9}, 3),
          square(std::vector<double>(16, 1.0), 4), square({1e300, 0, 0, 1}, 2),
          square({1e-30, 0, 0, 1e-30}, 2)}) {
        const std::vector<double> inverse = matrix.inverted(false)->values();
        EXPECT_FALSE(std::isfinite(std::accumulate(inverse.begin(), inverse.end(), 0.0))) << matrix.rows();
    }
}

} // namespace trelmix::matrix_test
