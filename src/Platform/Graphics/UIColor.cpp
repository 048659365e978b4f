#include <Trelmix/Platform/UIColor.h>

namespace trelmix {
namespace {

// Written so that what is not a number fails the first comparison.
double limitedComponent(double value) {
    if (!(value > 0)) {
        return 0;
    }
    return value < 1 ? value : 1;
}

} // namespace

UIColor UIColor::limited() const {
    return {limitedComponent(red), limitedComponent(green), limitedComponent(blue), limitedComponent(alpha)};
}

} // namespace trelmix
