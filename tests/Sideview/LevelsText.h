#pragma once

#include "Sideview/SideviewProjection.h"
#include "support/NotFinite.h"

#include <gtest/gtest.h>

#include <span>
#include <string>

namespace trelmix {

inline Result<LevelsFile> parseText(const std::string& text) {
    return parseLevelsFile(std::as_bytes(std::span(text.data(), text.size())));
}

/// A file of a small ship's box with the given further members, each ending in a comma.
inline std::string levelsText(const std::string& members) {
    return "{" + members +
           R"("southLatitude": 53.54, "northLatitude": 53.542, "westLongitude": 9.96, "eastLongitude": 9.964})";
}

/// 1000 x 300 image points unless the test says otherwise; a failed creation fails the test.
inline std::shared_ptr<const SideviewProjection> projectionOf(const std::string& text, double width = 1000,
                                                              double height = 300) {
    Result<LevelsFile> file = parseText(text);
    EXPECT_TRUE(file) << file.reason() << "\n" << text;
    if (!file) {
        return nullptr;
    }
    auto made = SideviewProjection::make(*file, width, height);
    EXPECT_TRUE(made) << made.reason() << "\n" << text;
    return made ? *made : nullptr;
}

/// Two levels, 3 m and 4 m high, with margins of 20 and 30.
inline const std::string kTwoLevels = R"("bottomOffset": 20, "topOffset": 30, "levels": [
    {"levelNumber": 0, "levelbounds": [{"relativeheight": 0, "ceilingheight": 3}]},
    {"levelNumber": 1, "levelbounds": [{"relativeheight": 3, "ceilingheight": 4}]}],)";

} // namespace trelmix
