#pragma once

#include <GLES2/gl2.h>

#include <cstddef>

namespace trelmix {

/// Which vertex attributes take their values from arrays: 0 to 4 are all that the renderer uses. Spares the
/// calls that would change nothing.
class VertexArrays {
public:
    static constexpr unsigned kCount = 5;

    /// Switches all off, whatever they were; what has no array reads as (0, 0, 0, 1).
    void reset() {
        for (GLuint i = 0; i < kCount; ++i) {
            glDisableVertexAttribArray(i);
            glVertexAttrib4f(i, 0, 0, 0, 1);
        }
        _enabled = 0;
    }
    /// Bit i: attribute i.
    void enable(unsigned mask) {
        for (GLuint i = 0; i < kCount; ++i) {
            const unsigned bit = 1U << i;
            if ((mask & bit) != 0 && (_enabled & bit) == 0) {
                glEnableVertexAttribArray(i);
            } else if ((mask & bit) == 0 && (_enabled & bit) != 0) {
                glDisableVertexAttribArray(i);
            }
        }
        _enabled = mask;
    }

private:
    unsigned _enabled = 0;
};

inline const void* bufferOffset(std::size_t bytes) {
    return reinterpret_cast<const void*>(bytes);
}

} // namespace trelmix
