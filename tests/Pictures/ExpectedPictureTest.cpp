#include "common/scene/SceneRunner.h"
#include "common/tiles/MbtilesArchive.h"
#include "common/tiles/TileServer.h"
#include "Pictures/Stage.h"
#include "sample/TilePyramid.h"

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <tuple>

using namespace trelmix;
using namespace trelmix::pictures;

namespace {

constexpr int kStride = 2;
constexpr Rgb kNoTile{255, 0, 255};

/// The archive that is named in the environment, or the sample's, made for this run.
class ArchiveFile {
public:
    ArchiveFile() {
        if (const char* given = std::getenv("TRELMIX_TEST_ARCHIVE"); given && *given) {
            path = given;
            return;
        }
        isOurs = true;
        path = testing::TempDir() + "trelmix-pictures-harbour.mbtiles";
        const auto model = sample::TownModel::build();
        fault = sample::writeArchive(path, "Trelhaven", sample::townRanges(), sample::paintTown(model, 2));
    }
    ~ArchiveFile() {
        if (isOurs) {
            std::error_code error;
            std::filesystem::remove(path, error);
        }
    }
    ArchiveFile(const ArchiveFile&) = delete;
    ArchiveFile& operator=(const ArchiveFile&) = delete;

    std::string path;
    std::string fault;

private:
    bool isOurs = false;
};

/// Looks the archive's tiles up pixel by pixel.
class Lookup {
public:
    explicit Lookup(const apps::TileStore& store) : _store(store) {}

    /// The map's colour at a place at that zoom, bilinear between the centres of the tile's own pixels; the
    /// nearest zoom above where the archive has no such tile. Kept inside the tile, as a texture is.
    Rgb at(MapPixel place, int zoom) {
        for (; zoom >= 0; --zoom, place = {place.x / 2, place.y / 2}) {
            const auto x = static_cast<std::int64_t>(std::floor(place.x / 256));
            const auto y = static_cast<std::int64_t>(std::floor(place.y / 256));
            if (const auto& image = tile({x, y, zoom})) {
                return bilinear(Picture(image), place.x - 256.0 * static_cast<double>(x),
                                place.y - 256.0 * static_cast<double>(y));
            }
        }
        return kNoTile;
    }

    /// The mean over the pixel's footprint.
    Rgb over(const Footprint& print, int zoom) {
        const auto across = samplesAlong(print.right);
        const auto down = samplesAlong(print.down);
        Rgb sum{};
        for (int i = 0; i < across; ++i) {
            for (int j = 0; j < down; ++j) {
                const double u = (i + 0.5) / across - 0.5;
                const double v = (j + 0.5) / down - 0.5;
                const Rgb color = at({print.centre.x + u * print.right.x + v * print.down.x,
                                      print.centre.y + u * print.right.y + v * print.down.y},
                                     zoom);
                for (std::size_t c = 0; c < 3; ++c) {
                    sum[c] += color[c] / (across * down);
                }
            }
        }
        return sum;
    }

private:
    static int samplesAlong(MapPixel side) {
        const double length = std::hypot(side.x, side.y);
        return length <= 1.05 ? 1 : static_cast<int>(std::ceil(2 * length));
    }

    const std::shared_ptr<const UIImage>& tile(const apps::TileIndex& index) {
        const auto [found, isNew] = _tiles.try_emplace({index.zoom, index.x, index.y});
        if (isNew) {
            const auto bytes = _store.tile(index);
            if (bytes && *bytes) {
                found->second = UIImage::withData(**bytes);
            }
        }
        return found->second;
    }

    static Rgb bilinear(const Picture& tile, double x, double y) {
        const double column = std::clamp(x * tile.width() / 256 - 0.5, 0.0, tile.width() - 1.0);
        const double row = std::clamp(y * tile.height() / 256 - 0.5, 0.0, tile.height() - 1.0);
        const int left = static_cast<int>(column);
        const int top = static_cast<int>(row);
        const int right = std::min(left + 1, tile.width() - 1);
        const int bottom = std::min(top + 1, tile.height() - 1);
        const double u = column - left;
        const double v = row - top;
        const Rgb a = tile.at(left, top);
        const Rgb b = tile.at(right, top);
        const Rgb c = tile.at(left, bottom);
        const Rgb d = tile.at(right, bottom);
        Rgb mixed{};
        for (std::size_t i = 0; i < 3; ++i) {
            mixed[i] = (a[i] * (1 - u) + b[i] * u) * (1 - v) + (c[i] * (1 - u) + d[i] * u) * v;
        }
        return mixed;
    }

    const apps::TileStore& _store;
    std::map<std::tuple<std::int64_t, std::int64_t, std::int64_t>, std::shared_ptr<const UIImage>> _tiles;
};

/// Draws what an archive gives, through the program's own tile server.
struct ArchiveStage {
    ArchiveStage(std::unique_ptr<apps::TileStore> store, const Look& first)
        : source(std::make_shared<apps::TileSource>(std::move(store))), stage(first) {
        stage.engine->setBackgroundColor(UIColor{1, 0, 1, 1});
        map.tileServer = std::make_shared<apps::TileServer>();
        map.engine = stage.engine;
        map.layers = {TrelmixMapEngineFactory::createMapTilesNode()};
        map.tileServer->serve(map.layers.front(), source);
        stage.engine->setDelegate(map.tileServer);
        map.layers.front()->setMap(stage.engine);
    }

    Picture draw(const Look& look) {
        stage.look(look);
        const auto count = apps::runUntilTilesAreDrawn(*stage.host, map, std::chrono::minutes(5), nullptr);
        EXPECT_EQ(count.answered, count.wanted);
        return stage.draw();
    }

    std::shared_ptr<apps::TileSource> source;
    Stage stage;
    apps::MapScene map;
};

void compare(const Picture& picture, const Stage& stage, Lookup& lookup, int zoom, const std::string& name) {
    Rgb sum{};
    int count = 0;
    std::vector<double> differences;
    for (int y = 0; y < 600; y += kStride) {
        for (int x = 0; x < 800; x += kStride) {
            const Rgb shown = picture.at(x, y);
            double largest = 0;
            if (shown != kNoTile) {
                const Rgb expected = lookup.over(footprintOf(stage, x, y, zoom), zoom);
                ++count;
                for (std::size_t i = 0; i < 3; ++i) {
                    const double difference = std::abs(shown[i] - expected[i]);
                    sum[i] += difference;
                    largest = std::max(largest, difference);
                }
            }
            differences.push_back(largest);
        }
    }
    // Below the middle everything is near enough to have tiles.
    EXPECT_GE(count, 400 * 150);
    bool isAlike = true;
    for (const double channel : sum) {
        EXPECT_LT(channel / count, 4) << name;
        isAlike = isAlike && channel / count < 4;
    }
    if (!isAlike) {
        picture.save(name + "-drawn.png");
        Picture(painted(800 / kStride, 600 / kStride, [&](int x, int y) {
            const double d = differences[static_cast<std::size_t>(y * (800 / kStride) + x)];
            return Rgb{d, d, d};
        })).save(name + "-difference.png");
    }
}

} // namespace

TEST(ExpectedPicture, aTiltedMapIsWhatTheArchivesTilesGiveAtTheProjectedPlaces) {
    const ArchiveFile file;
    ASSERT_EQ(file.fault, "");
    auto archive = apps::MbtilesArchive::open(file.path);
    ASSERT_TRUE(archive) << archive.reason();
    auto forLookup = apps::MbtilesArchive::open(file.path);
    ASSERT_TRUE(forLookup);
    const auto bounds = (*archive)->bounds();
    ASSERT_TRUE(bounds);
    const CLLocationCoordinate2D centre{(bounds->southWest.latitude + bounds->northEast.latitude) / 2,
                                        (bounds->southWest.longitude + bounds->northEast.longitude) / 2};
    Lookup lookup(**forLookup);
    ArchiveStage map(std::move(*archive), {0, 0, 16, centre});
    int number = 0;
    for (const auto& [zoom, rotation, tilt] : {std::tuple{16.0F, 0.0, 0.0},
                                               {16.0F, 37.0, 55.0},
                                               {17.4F, 180.0, 30.0},
                                               {17.4F, 0.0, 55.0},
                                               {18.6F, 37.0, 0.0},
                                               {18.6F, 180.0, 55.0}}) {
        const Look look{rotation, tilt, zoom, centre};
        SCOPED_TRACE(testing::Message() << look);
        const Picture picture = map.draw(look);
        compare(picture, map.stage, lookup, static_cast<int>(std::lround(zoom)),
                "expected-picture-" + std::to_string(number++));
    }
}
