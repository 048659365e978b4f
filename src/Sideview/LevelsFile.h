#pragma once

#include <Trelmix/Platform/Result.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trelmix {

/// The keys of a levels file; matched exactly, case included.
inline constexpr const char* kItemBearing = "bearing";
inline constexpr const char* kItemBowPosition = "bowPosition";
inline constexpr const char* kItemSouthLatitude = "southLatitude";
inline constexpr const char* kItemNorthLatitude = "northLatitude";
inline constexpr const char* kItemWestLongitude = "westLongitude";
inline constexpr const char* kItemEastLongitude = "eastLongitude";
inline constexpr const char* kItemBottomOffset = "bottomOffset";
inline constexpr const char* kItemTopOffset = "topOffset";
inline constexpr const char* kItemLeftOffset = "leftOffset";
inline constexpr const char* kItemRightOffset = "rightOffset";
inline constexpr const char* kItemLevels = "levels";
inline constexpr const char* kItemLevelNumber = "levelNumber";
inline constexpr const char* kItemLevelBounds = "levelbounds";
inline constexpr const char* kItemRelativeHeight = "relativeheight";
inline constexpr const char* kItemCeilingHeight = "ceilingheight";

/// Where in the image the bow is drawn.
enum class SideviewBowPosition { right, left };

/// One vertical extent of a level; metres, not checked for sign or size.
struct SideviewLevelBounds {
    /// The floor above height 0, which is the top of the image's bottom margin.
    double relativeHeight = 0;
    /// From the floor to the ceiling.
    double ceilingHeight = 0;
    friend bool operator==(const SideviewLevelBounds&, const SideviewLevelBounds&) = default;
};

/// One level as the file gives it.
struct SideviewLevel {
    /// Absent when the file gives none or one that is no 64-bit whole number: no lookup by number finds the
    /// level.
    std::optional<std::int64_t> levelNumber;
    /// Absent when the file gives none. An empty list is something else: it lowers the net height.
    std::optional<std::vector<SideviewLevelBounds>> levelBounds;
    friend bool operator==(const SideviewLevel&, const SideviewLevel&) = default;
};

using SideviewLevels = std::vector<SideviewLevel>;

/// What a levels file says: checked for its types, not for whether the numbers make sense together. Its text
/// is LevelsJson's; from there on keys, records and their reading are one list, and stand together.
struct LevelsFile {
    /// Degrees.
    double bearing = 0;
    SideviewBowPosition bowPosition = SideviewBowPosition::right;
    /// The structure's box, degrees.
    double southLatitude = 0;
    double northLatitude = 0;
    double westLongitude = 0;
    double eastLongitude = 0;
    /// Margins, image points.
    double bottomOffset = 0;
    double topOffset = 0;
    double leftOffset = 0;
    double rightOffset = 0;
    /// In the file's order, which decides ties. Absent when the file gives none.
    std::optional<SideviewLevels> levels;
};

/// The bytes of a levels file understood, or one line naming the place (key path, or line and column) and
/// what is wrong there. Pure; any thread.
Result<LevelsFile> parseLevelsFile(std::span<const std::byte> text);

/// The file read and understood. The reason begins with the path. Files above 16 MiB are refused. Any thread.
Result<LevelsFile> readLevelsFile(const std::string& path);

/// Only the levels of the file: box and bearing are not looked at and may be missing. Any thread.
Result<std::optional<SideviewLevels>> readLevels(const std::string& path);

/// The first level of that number, or null. Borrowed from `levels`.
const SideviewLevel* findLevel(const std::optional<SideviewLevels>& levels, std::int64_t levelNumber);

} // namespace trelmix
