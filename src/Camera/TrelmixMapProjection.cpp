#include <Trelmix/TrelmixMapProjection.h>

namespace trelmix {

TrelmixMapProjection::~TrelmixMapProjection() = default;

} // namespace trelmix
