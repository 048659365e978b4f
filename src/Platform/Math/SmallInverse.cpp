#include "Platform/Math/SmallInverse.h"

namespace trelmix {

FloatMatrix<2> invert_f2(const FloatMatrix<2>& m) {
    const float determinant = m[0] * m[3] - m[2] * m[1];
    return {m[3] / determinant, -m[1] / determinant, -m[2] / determinant, m[0] / determinant};
}

FloatMatrix<3> invert_f3(const FloatMatrix<3>& m) {
    const float c0 = m[4] * m[8] - m[5] * m[7];
    const float c1 = m[5] * m[6] - m[3] * m[8];
    const float c2 = m[3] * m[7] - m[4] * m[6];
    FloatMatrix<3> inverse{c0, m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4],
                           c1, m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5],
                           c2, m[1] * m[6] - m[0] * m[7], m[0] * m[4] - m[1] * m[3]};
    const float determinant = m[0] * c0 + m[1] * c1 + m[2] * c2;
    for (float& entry : inverse) {
        entry /= determinant;
    }
    return inverse;
}

FloatMatrix<4> invert_f4(const FloatMatrix<4>& m) {
    // Two-by-two minors of the first two columns (s) and of the last two (c): each is needed several times.
    const auto minorOf = [&m](std::size_t first, std::size_t i, std::size_t j) {
        return m[first + i] * m[first + 4 + j] - m[first + 4 + i] * m[first + j];
    };
    const float s0 = minorOf(0, 0, 1), s1 = minorOf(0, 0, 2), s2 = minorOf(0, 0, 3);
    const float s3 = minorOf(0, 1, 2), s4 = minorOf(0, 1, 3), s5 = minorOf(0, 2, 3);
    const float c0 = minorOf(8, 0, 1), c1 = minorOf(8, 0, 2), c2 = minorOf(8, 0, 3);
    const float c3 = minorOf(8, 1, 2), c4 = minorOf(8, 1, 3), c5 = minorOf(8, 2, 3);
    FloatMatrix<4> inverse{m[5] * c5 - m[6] * c4 + m[7] * c3,     -m[1] * c5 + m[2] * c4 - m[3] * c3,
                           m[13] * s5 - m[14] * s4 + m[15] * s3,  -m[9] * s5 + m[10] * s4 - m[11] * s3,
                           -m[4] * c5 + m[6] * c2 - m[7] * c1,    m[0] * c5 - m[2] * c2 + m[3] * c1,
                           -m[12] * s5 + m[14] * s2 - m[15] * s1, m[8] * s5 - m[10] * s2 + m[11] * s1,
                           m[4] * c4 - m[5] * c2 + m[7] * c0,     -m[0] * c4 + m[1] * c2 - m[3] * c0,
                           m[12] * s4 - m[13] * s2 + m[15] * s0,  -m[8] * s4 + m[9] * s2 - m[11] * s0,
                           -m[4] * c3 + m[5] * c1 - m[6] * c0,    m[0] * c3 - m[1] * c1 + m[2] * c0,
                           -m[12] * s3 + m[13] * s1 - m[14] * s0, m[8] * s3 - m[9] * s1 + m[10] * s0};
    const float determinant = s0 * c5 - s1 * c4 + s2 * c3 + s3 * c2 - s4 * c1 + s5 * c0;
    for (float& entry : inverse) {
        entry /= determinant;
    }
    return inverse;
}

} // namespace trelmix
