// Layout formats of any bytes: one printable line, or a constraint that the layout pass survives.
#include "Platform/View/LayoutConstraint.h"

#include "Platform/View/ViewNode.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

using namespace trelmix;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto child = ViewNode::make();
    const auto root = ViewNode::make({{0, 0}, {100, 100}});
    root->addSubview(child);
    auto result = LayoutConstraint::constraintsWithVisualFormat({reinterpret_cast<const char*>(data), size},
                                                                {{"width", 5}, {"bad", std::nan("")}},
                                                                {{"v", child}, {"none", {}}});
    if (result) {
        root->addConstraints(*result);
        root->layoutIfNeeded();
        return 0;
    }
    if (result.reason().empty() || result.reason().size() > 400 ||
        result.reason().find('\n') != std::string::npos) {
        std::abort();
    }
    return 0;
}
