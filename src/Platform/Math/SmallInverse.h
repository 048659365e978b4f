#pragma once

#include <array>
#include <cstddef>

namespace trelmix {

/// Column-major matrices of single precision, column by column.
template <int N>
using FloatMatrix = std::array<float, static_cast<std::size_t>(N) * N>;

/// Inverses by cofactors. Nothing is tested: a singular matrix, and one whose determinant leaves the range of
/// a float, gives entries that are not finite.
FloatMatrix<2> invert_f2(const FloatMatrix<2>& matrix);
FloatMatrix<3> invert_f3(const FloatMatrix<3>& matrix);
FloatMatrix<4> invert_f4(const FloatMatrix<4>& matrix);

} // namespace trelmix
