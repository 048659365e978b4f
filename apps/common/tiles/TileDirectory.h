#pragma once

#include "common/tiles/TileStore.h"

namespace trelmix::apps {

/// Tiles as single files, named by a template with {z}, {x} and {y} in it.
class TileDirectory final : public TileStore {
public:
    explicit TileDirectory(std::string pathTemplate);

    Result<std::optional<TileBytes>> tile(const TileIndex& tile) const override;
    /// Looks through the folders below the template's fixed part; what the files of the highest zoom cover.
    std::optional<TileBounds> bounds() const override;
    std::string attribution() const override { return {}; }
    const std::string& name() const override { return _template; }

private:
    std::string pathOf(const TileIndex& tile) const;
    std::optional<TileIndex> indexOf(const std::string& path) const;

    std::string _template;
};

} // namespace trelmix::apps
