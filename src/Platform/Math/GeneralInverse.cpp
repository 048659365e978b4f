#include "Platform/Math/GeneralInverse.h"

#include <cstddef>

namespace trelmix {

bool invertInPlace(std::vector<double>& values, int n) {
    if (n <= 0 || values.size() != static_cast<std::size_t>(n) * static_cast<std::size_t>(n)) {
        return false;
    }
    std::vector<int> pivots(static_cast<std::size_t>(n));
    int info = 0;
    dgetrf_(&n, &n, values.data(), &n, pivots.data(), &info);
    if (info != 0) {
        return false;
    }
    std::vector<double> work(static_cast<std::size_t>(n));
    dgetri_(&n, values.data(), &n, pivots.data(), work.data(), &n, &info);
    return info == 0;
}

} // namespace trelmix
