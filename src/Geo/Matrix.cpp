#include "Geo/Matrix.h"

#include "Platform/Math/GeneralInverse.h"
#include "Platform/Math/SmallInverse.h"
#include "Platform/Math/VectorProduct.h"

#include <algorithm>
#include <limits>

namespace trelmix {

namespace {

bool countsMatch(std::size_t count, std::int64_t rows, std::int64_t cols) {
    // By division: the product of two sizes from outside may not fit.
    return rows > 0 && cols > 0 && count % static_cast<std::uint64_t>(cols) == 0 &&
           count / static_cast<std::uint64_t>(cols) == static_cast<std::uint64_t>(rows);
}

// The inverse of the transpose is the transpose of the inverse: what goes in row by row and is taken for
// columns comes out row by row.
template <int N>
std::vector<double> invertedInFloats(const std::vector<double>& values,
                                     FloatMatrix<N> (*invert)(const FloatMatrix<N>&)) {
    FloatMatrix<N> narrow;
    std::transform(values.begin(), values.end(), narrow.begin(),
                   [](double v) { return static_cast<float>(v); });
    const FloatMatrix<N> inverse = invert(narrow);
    return {inverse.begin(), inverse.end()};
}

} // namespace

std::optional<Matrix> Matrix::make(std::vector<double> values, std::int64_t rows, std::int64_t cols) {
    if (!countsMatch(values.size(), rows, cols)) {
        return std::nullopt;
    }
    return Matrix(std::move(values), rows, cols);
}

std::vector<double> Matrix::operator[](std::int64_t row) const {
    if (row < 0 || row >= _rows) {
        return {};
    }
    const auto first = _values.begin() + row * _cols;
    return {first, first + _cols};
}

std::optional<Matrix> Matrix::inverted(bool useAccelerate) const {
    if (_rows != _cols) {
        return std::nullopt;
    }
    if (!useAccelerate && _rows <= 4) {
        return smallInverse();
    }
    return generalInverse();
}

Matrix Matrix::smallInverse() const {
    switch (_rows) {
    case 1:
        return Matrix({1.0 / _values[0]}, 1, 1);
    case 2:
        return Matrix(invertedInFloats<2>(_values, invert_f2), 2, 2);
    case 3:
        return Matrix(invertedInFloats<3>(_values, invert_f3), 3, 3);
    default:
        return Matrix(invertedInFloats<4>(_values, invert_f4), 4, 4);
    }
}

std::optional<Matrix> Matrix::generalInverse() const {
    if (_rows > std::numeric_limits<int>::max()) {
        return std::nullopt;
    }
    std::vector<double> working = _values;
    if (!invertInPlace(working, static_cast<int>(_rows))) {
        return std::nullopt;
    }
    return Matrix(std::move(working), _rows, _cols);
}

std::optional<Matrix> Matrix::product(const Matrix& a, const Matrix& b) {
    if (a._cols != b._rows) {
        return std::nullopt;
    }
    const auto rows = static_cast<std::size_t>(a._rows);
    const auto cols = static_cast<std::size_t>(b._cols);
    std::vector<double> values;
    if (rows > values.max_size() / cols) {
        return std::nullopt;
    }
    values.resize(rows * cols);
    vDSP_mmulD(a._values.data(), 1, b._values.data(), 1, values.data(), 1, rows, cols,
               static_cast<std::size_t>(a._cols));
    return Matrix(std::move(values), a._rows, b._cols);
}

} // namespace trelmix
