#include "Platform/Graphics/Canvas.h"

#include "Platform/Graphics/CairoParts.h"
#include "Platform/Graphics/UIBezierPath.h"
#include "Platform/Graphics/Utf8.h"

#include <Trelmix/Platform/UIImage.h>

#include <algorithm>
#include <cmath>
#include <new>
#include <span>
#include <utility>
#include <vector>

namespace trelmix {

namespace {

constexpr int kLargestSide = 32767;
// Halvings that take any image down to one pixel.
constexpr std::size_t kMostLevels = 30;
constexpr std::size_t kLongestText = 1000;
constexpr double kLargestLetter = 2000.0;
constexpr double kHaloPerSize = 0.2;

bool isFinite(CGRect rect) {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height);
}

bool isUsable(CGRect rect) {
    return isFinite(rect) && rect.size.width > 0 && rect.size.height > 0;
}

/// One of an image's levels of detail.
struct Level {
    std::span<const std::uint8_t> pixels;
    int width = 0;
    int height = 0;
};

/// The smallest level that still has a pixel for every pixel drawn, of those that Cairo can read.
Level levelFor(const UIImage& image, CGSize drawn, double pixelsPerPoint) {
    const double reduction =
        std::min(image.pixelWidth() / drawn.width, image.pixelHeight() / drawn.height) / pixelsPerPoint;
    const int longest = std::max(image.pixelWidth(), image.pixelHeight());
    Level level{image.pixels(), image.pixelWidth(), image.pixelHeight()};
    std::size_t number = 0;
    double left = reduction;
    while (number < kMostLevels && (left >= 2 || (longest >> number) > kLargestSide)) {
        left /= 2;
        ++number;
    }
    if (number == 0) {
        return level;
    }
    const auto levels = image.levels();
    number = std::min(number, levels.size() - 1);
    return {levels[number], std::max(1, level.width >> number), std::max(1, level.height >> number)};
}

/// False when letters of this size cannot be drawn.
bool selectFont(cairo_t* context, double size, bool isBold) {
    if (!(size > 0) || !(size * largestScale(context) <= kLargestLetter)) {
        return false;
    }
    cairo_select_font_face(context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, size);
    const Cairo<cairo_font_options_t> options(cairo_font_options_create());
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    // Without hinting the same text has the same width at every scale and on every desktop.
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(context, options.get());
    return true;
}

} // namespace

/// The members go in reverse order: the context, then the surface, then the pixels under it.
struct Canvas::Surface {
    int width = 0;
    int height = 0;
    double pointScale = 1;
    std::vector<std::uint8_t> pixels;
    Cairo<cairo_surface_t> surface;
    Cairo<cairo_t> context;
    int savedCount = 0;

    /// Empty when Cairo cannot draw on such a bitmap.
    static std::unique_ptr<Surface> make(int width, int height, double scale,
                                         std::vector<std::uint8_t> pixels);
};

std::unique_ptr<Canvas::Surface> Canvas::Surface::make(int width, int height, double scale,
                                                       std::vector<std::uint8_t> pixels) {
    auto made = std::make_unique<Surface>();
    made->width = width;
    made->height = height;
    made->pointScale = scale;
    made->pixels = std::move(pixels);
    made->surface = surfaceOn(made->pixels.data(), width, height);
    if (!made->surface) {
        return nullptr;
    }
    made->context.reset(cairo_create(made->surface.get()));
    if (cairo_status(made->context.get()) != CAIRO_STATUS_SUCCESS) {
        return nullptr;
    }
    cairo_scale(made->context.get(), scale, scale);
    return made;
}

Canvas::Canvas(int width, int height, double scale) {
    const bool isSizeFine = width > 0 && height > 0 && width <= kLargestSide && height <= kLargestSide &&
                            std::int64_t{width} * height <= UIImage::kMaximumPixelCount;
    if (!isSizeFine || !(scale >= 1e-6 && scale <= 1e6)) {
        return;
    }
    try {
        const auto count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
        _surface = Surface::make(width, height, scale, std::vector<std::uint8_t>(count * 4));
    } catch (const std::bad_alloc&) {
        // Not valid, as for a size that is too large.
    }
}

Canvas::Canvas(const UIImage& image) : Canvas(image.pixelWidth(), image.pixelHeight(), image.scale()) {
    if (_surface) {
        cairo_surface_flush(_surface->surface.get());
        std::copy(image.pixels().begin(), image.pixels().end(), _surface->pixels.begin());
        cairo_surface_mark_dirty(_surface->surface.get());
    }
}

Canvas::~Canvas() = default;
Canvas::Canvas(Canvas&& other) noexcept = default;
Canvas& Canvas::operator=(Canvas&& other) noexcept = default;

std::shared_ptr<const UIImage> Canvas::image() const& {
    if (!_surface) {
        return nullptr;
    }
    cairo_surface_flush(_surface->surface.get());
    return UIImage::withPixels(_surface->width, _surface->height, _surface->pixels, _surface->pointScale);
}

std::shared_ptr<const UIImage> Canvas::image() && {
    const std::unique_ptr<Surface> surface = std::move(_surface);
    if (!surface) {
        return nullptr;
    }
    // Nobody may draw on the pixels any more once they are an image's.
    surface->context.reset();
    surface->surface.reset();
    return UIImage::withPixels(surface->width, surface->height, std::move(surface->pixels),
                               surface->pointScale);
}

void Canvas::clear(UIColor color) {
    if (!_surface) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    setColor(context, color);
    cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
    cairo_paint(context);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
}

void Canvas::fillRect(CGRect rect, UIColor color) {
    if (!_surface || !isUsable(rect)) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    addRect(context, rect);
    setColor(context, color);
    cairo_fill(context);
}

void Canvas::fillPath(const UIBezierPath& path, UIColor color) {
    if (!_surface) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    addPath(context, path);
    setColor(context, color);
    cairo_fill(context);
}

void Canvas::strokePath(const UIBezierPath& path, UIColor color) {
    if (!_surface || !(path.lineWidth() > 0) ||
        !(path.lineWidth() * largestScale(_surface->context.get()) < kFarAway)) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    addPath(context, path);
    setColor(context, color);
    cairo_set_line_width(context, path.lineWidth());
    cairo_set_line_join(context, CAIRO_LINE_JOIN_MITER);
    cairo_stroke(context);
}

void Canvas::drawImage(const UIImage& image, CGRect rect, double alpha) {
    if (!_surface || !isUsable(rect) || !(alpha > 0)) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    const Level level = levelFor(image, rect.size, largestScale(context));
    // Only ever read: Cairo takes the pixels of a source and of a target by the same type.
    auto* const pixels = const_cast<std::uint8_t*>(level.pixels.data());
    const Cairo<cairo_surface_t> source = surfaceOn(pixels, level.width, level.height);
    if (!source) {
        return;
    }
    const Cairo<cairo_pattern_t> pattern(cairo_pattern_create_for_surface(source.get()));
    cairo_matrix_t toImage;
    cairo_matrix_init_scale(&toImage, level.width / rect.size.width, level.height / rect.size.height);
    cairo_matrix_translate(&toImage, -rect.origin.x, -rect.origin.y);
    if (!isInvertible(toImage)) {
        return;
    }
    cairo_pattern_set_matrix(pattern.get(), &toImage);
    // Cairo's own filters for shrinking read the whole image each time, which the levels have done once.
    cairo_pattern_set_filter(pattern.get(), CAIRO_FILTER_BILINEAR);
    // The rectangle ends the image; its own border pixels must not fade into what lies beyond.
    cairo_pattern_set_extend(pattern.get(), CAIRO_EXTEND_PAD);
    cairo_save(context);
    addRect(context, rect);
    cairo_clip(context);
    cairo_set_source(context, pattern.get());
    cairo_paint_with_alpha(context, std::min(alpha, 1.0));
    cairo_restore(context);
}

void Canvas::drawText(std::string_view text, CGPoint baseline, const TextStyle& style) {
    if (!_surface || !std::isfinite(baseline.x) || !std::isfinite(baseline.y) ||
        !selectFont(_surface->context.get(), style.size, style.isBold)) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    const CGPoint start = withinReach(context, baseline);
    const std::string line = printableLine(text, kLongestText);
    cairo_new_path(context);
    if (style.halo) {
        cairo_move_to(context, start.x, start.y);
        cairo_text_path(context, line.c_str());
        setColor(context, *style.halo);
        cairo_set_line_width(context, style.size * kHaloPerSize);
        cairo_set_line_join(context, CAIRO_LINE_JOIN_ROUND);
        cairo_stroke(context);
    }
    setColor(context, style.color);
    cairo_move_to(context, start.x, start.y);
    cairo_show_text(context, line.c_str());
    cairo_new_path(context);
}

double Canvas::textWidth(std::string_view text, double size, bool isBold) const {
    if (!_surface || !selectFont(_surface->context.get(), size, isBold)) {
        return 0;
    }
    cairo_text_extents_t extents{};
    cairo_text_extents(_surface->context.get(), printableLine(text, kLongestText).c_str(), &extents);
    return extents.x_advance;
}

void Canvas::save() {
    if (_surface) {
        cairo_save(_surface->context.get());
        ++_surface->savedCount;
    }
}

void Canvas::restore() {
    // One too many would stop Cairo for good.
    if (_surface && _surface->savedCount > 0) {
        cairo_restore(_surface->context.get());
        --_surface->savedCount;
    }
}

void Canvas::translate(double x, double y) {
    if (_surface) {
        cairo_matrix_t change;
        cairo_matrix_init_translate(&change, x, y);
        transform(_surface->context.get(), change);
    }
}

void Canvas::scale(double x, double y) {
    if (_surface) {
        cairo_matrix_t change;
        cairo_matrix_init_scale(&change, x, y);
        transform(_surface->context.get(), change);
    }
}

void Canvas::rotate(double radians) {
    if (_surface) {
        cairo_matrix_t change;
        cairo_matrix_init_rotate(&change, radians);
        transform(_surface->context.get(), change);
    }
}

void Canvas::clipRect(CGRect rect) {
    if (!_surface || !isFinite(rect)) {
        return;
    }
    cairo_t* const context = _surface->context.get();
    if (isUsable(rect)) {
        addRect(context, rect);
    } else {
        // Nothing lies in a rectangle without area.
        cairo_new_path(context);
    }
    cairo_clip(context);
}

} // namespace trelmix
