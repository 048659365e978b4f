#include "TilePyramid.h"

#include "Canvas.h"
#include "TownPainter.h"

#include <atomic>
#include <future>
#include <memory>

namespace trelmix::sample {

namespace {

/// Tiles are painted in squares of this many a side: fewer walks through the model.
constexpr int kBlock = 4;

void runJobs(std::size_t count, int threads, const std::function<void(std::size_t)>& job) {
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++) {
            job(i);
        }
    };
    std::vector<std::future<void>> workers;
    for (int i = 1; i < threads; ++i) {
        workers.push_back(std::async(std::launch::async, work));
    }
    work();
}

std::vector<TileRange> blocksOf(const std::vector<TileRange>& ranges) {
    std::vector<TileRange> blocks;
    for (const TileRange& range : ranges) {
        for (int top = range.top; top <= range.bottom; top += kBlock) {
            for (int left = range.left; left <= range.right; left += kBlock) {
                blocks.push_back({range.zoom, left, top, std::min(left + kBlock - 1, range.right),
                                  std::min(top + kBlock - 1, range.bottom)});
            }
        }
    }
    return blocks;
}

std::vector<std::uint32_t> cut(const Canvas& canvas, int column, int row) {
    cairo_surface_flush(canvas.image());
    const unsigned char* data = cairo_image_surface_get_data(canvas.image());
    const int stride = cairo_image_surface_get_stride(canvas.image());
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(kTileSize * kTileSize));
    for (int y = 0; y < kTileSize; ++y) {
        const auto* line = reinterpret_cast<const std::uint32_t*>(data + static_cast<std::ptrdiff_t>(stride) *
                                                                             (row * kTileSize + y)) +
                           column * kTileSize;
        for (int x = 0; x < kTileSize; ++x) {
            pixels.push_back(line[x] & 0xFFFFFFU);
        }
    }
    return pixels;
}

std::vector<Tile> paintBlock(const TownPainter& painter, const TileRange& block) {
    const int columns = block.right - block.left + 1;
    const int rows = block.bottom - block.top + 1;
    const Canvas canvas(columns * kTileSize, rows * kTileSize, false);
    painter.paint(canvas.cairo(), static_cast<std::int64_t>(block.left) * kTileSize,
                  static_cast<std::int64_t>(block.top) * kTileSize, columns * kTileSize, rows * kTileSize);
    std::vector<Tile> tiles;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            tiles.push_back(
                {block.zoom, block.left + column, block.top + row, palettePng(cut(canvas, column, row))});
        }
    }
    return tiles;
}

std::vector<Tile> joined(std::vector<std::vector<Tile>> parts) {
    std::vector<Tile> all;
    for (std::vector<Tile>& part : parts) {
        for (Tile& tile : part) {
            all.push_back(std::move(tile));
        }
    }
    return all;
}

} // namespace

TileRange TileRange::around(int zoom, double halfWidth, double halfHeight) {
    const GlobalPixel from = globalPixelOf({-halfWidth, -halfHeight}, zoom);
    const GlobalPixel to = globalPixelOf({halfWidth, halfHeight}, zoom);
    const auto tile = [](double pixel) { return static_cast<int>(std::floor(pixel / kTileSize)); };
    return {zoom, tile(from.x), tile(from.y), tile(to.x), tile(to.y)};
}

// Each level reaches as far as a tilted view of that level looks; the finest covers the town's core.
std::vector<TileRange> townRanges() {
    return {TileRange::around(15, 4000, 3600), TileRange::around(16, 2300, 2000),
            TileRange::around(17, 1350, 1150), TileRange::around(18, 860, 700),
            TileRange::around(19, 620, 500)};
}

std::vector<Tile> paintTown(const TownModel& model, int threads) {
    const std::vector<TileRange> ranges = townRanges();
    std::vector<std::unique_ptr<TownPainter>> painters;
    for (const TileRange& range : ranges) {
        painters.push_back(std::make_unique<TownPainter>(model, range.zoom));
    }
    const std::vector<TileRange> blocks = blocksOf(ranges);
    std::vector<std::vector<Tile>> done(blocks.size());
    runJobs(blocks.size(), threads, [&](std::size_t i) {
        const auto level = static_cast<std::size_t>(blocks[i].zoom - ranges.front().zoom);
        done[i] = paintBlock(*painters[level], blocks[i]);
    });
    return joined(std::move(done));
}

} // namespace trelmix::sample
