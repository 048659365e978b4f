#pragma once

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace trelmix {

/// A dense matrix of doubles, row by row.
class Matrix {
public:
    /// Empty unless both sizes are positive and `values` holds exactly rows * cols entries.
    static std::optional<Matrix> make(std::vector<double> values, std::int64_t rows, std::int64_t cols);

    /// Entry (i, j) is values()[i * cols() + j].
    const std::vector<double>& values() const { return _values; }
    std::int64_t rows() const { return _rows; }
    std::int64_t cols() const { return _cols; }

    /// The entries of one row; empty for a row that does not exist.
    std::vector<double> operator[](std::int64_t row) const;

    /// The inverse; empty when the matrix is not square.
    ///
    /// Up to 4 x 4 without the flag: in single precision, and a singular matrix gives entries that are not
    /// finite. With the flag, or larger: by LAPACK in double precision, and a singular matrix gives none.
    std::optional<Matrix> inverted(bool useAccelerate) const;

    /// a * b; empty when a has not as many columns as b has rows.
    static std::optional<Matrix> product(const Matrix& a, const Matrix& b);

private:
    Matrix(std::vector<double> values, std::int64_t rows, std::int64_t cols)
        : _values(std::move(values)), _rows(rows), _cols(cols) {}
    Matrix smallInverse() const;
    std::optional<Matrix> generalInverse() const;

    std::vector<double> _values;
    std::int64_t _rows;
    std::int64_t _cols;
};

} // namespace trelmix
