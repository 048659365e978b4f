#include "trelmix/Locate.h"

#include "common/JsonCursor.h"
#include "common/scene/MapScene.h"
#include "common/scene/SceneFraming.h"

#include <cmath>
#include <cstdio>
#include <iostream>
#include <limits>
#include <numbers>

namespace trelmix::apps {

namespace {

constexpr double kHalfFieldOfView = std::numbers::pi / 6;
constexpr std::size_t kMaximumLineLength = 65536;

/// Answers questions for one camera and one size of the view.
class Locator {
public:
    Locator(std::shared_ptr<TrelmixMapProjection> projectionOfEngine, double viewingAngle, double height)
        : _projection(std::move(projectionOfEngine)), _horizon(horizonOf(viewingAngle, height)) {}

    /// Throws `JsonError` for what is no question.
    std::string answer(const JsonCursor& question) const {
        const bool asksForGround = question.member("x").has_value();
        if (asksForGround) {
            question.expectObject({"x", "y"});
            const CGPoint point{numberOf(question, "x"), numberOf(question, "y")};
            return point.y > _horizon ? text(_projection->worldCoordinateFor(point))
                                      : error("above the horizon");
        }
        question.expectObject({"lat", "lon"});
        const CLLocationCoordinate2D place{question.required("lat").number(-90, 90),
                                           question.required("lon").number(-180, 180)};
        const CGPoint point = _projection->screenCoordinateFor(place);
        // What lies behind the camera is mirrored through it, to above the horizon.
        return point.y > _horizon ? text(point) : error("behind the camera");
    }

    std::string corners() const {
        return "{\"topLeft\":" + text(_projection->topLeftCoordinate()) +
               ",\"topRight\":" + text(_projection->topRightCoordinate()) +
               ",\"bottomLeft\":" + text(_projection->bottomLeftCoordinate()) +
               ",\"bottomRight\":" + text(_projection->bottomRightCoordinate()) + "}";
    }

private:
    static double numberOf(const JsonCursor& question, std::string_view key) {
        return question.required(key).number(-1e9, 1e9);
    }
    static std::string error(const char* what) { return "{\"error\":" + quotedJson(what) + "}"; }

    static std::string pair(const char* first, double a, const char* second, double b) {
        if (!std::isfinite(a) || !std::isfinite(b)) {
            return error("not on the map");
        }
        return std::string("{\"") + first + "\":" + jsonNumber(a) + ",\"" + second + "\":" + jsonNumber(b) +
               "}";
    }
    static std::string text(CGPoint point) { return pair("x", point.x, "y", point.y); }
    static std::string text(CLLocationCoordinate2D place) {
        return pair("lat", place.latitude, "lon", place.longitude);
    }

    // How far down the screen the horizon lies, in points; minus infinity when the camera looks straight
    // down.
    static double horizonOf(double viewingAngle, double height) {
        const double slope = std::tan(viewingAngle * std::numbers::pi / 180) * std::tan(kHalfFieldOfView);
        return slope > 0 ? height / 2 - height / 2 / slope : -std::numeric_limits<double>::infinity();
    }

    std::shared_ptr<TrelmixMapProjection> _projection;
    double _horizon;
};

/// Ends early when nobody takes the answers.
ExitCode answerLines(const Locator& locator, std::istream& input) {
    ExitCode code = ExitCode::done;
    std::string line;
    for (std::size_t number = 1; std::getline(input, line); ++number) {
        if (line.find_first_not_of(" \t\r") == std::string::npos) {
            continue;
        }
        std::string reason = line.size() > kMaximumLineLength ? "is too long" : "";
        const auto question = reason.empty() ? parseJson(line) : Result<JsonValue>::failure(reason);
        if (question) {
            try {
                const std::string answer = locator.answer(JsonCursor(*question));
                if (const ExitCode printed = print(answer + "\n"); printed != ExitCode::done) {
                    return printed;
                }
            } catch (const JsonError& error) {
                reason = error.what();
            }
        } else {
            reason = question.reason();
        }
        if (!reason.empty()) {
            code = complain("standard input, line " + std::to_string(number) + ": " + reason,
                            ExitCode::badInput);
        }
    }
    if (std::ferror(stdin) != 0) {
        return complain("standard input: cannot be read to its end", ExitCode::badInput);
    }
    return code;
}

} // namespace

ExitCode locate(const LocateOptions& options) {
    const auto scene = readScene(options.view);
    if (!scene) {
        return complain(scene.reason(), ExitCode::badInput);
    }
    SceneContent content;
    if (!scene->camera) {
        auto loaded = loadSceneContent(*scene, options.view.sceneFile);
        if (!loaded) {
            return complain(loaded.reason(), ExitCode::badInput);
        }
        content = std::move(*loaded);
    }
    const CGSize size{scene->view.width, scene->view.height};
    const auto camera = cameraOfScene(*scene, content, size);
    if (!camera) {
        return complain(options.view.sceneFile + ": " + camera.reason(), ExitCode::badInput);
    }
    const auto engine = makeEngine(*scene, *camera, size);
    const Locator locator(engine->projection(), engine->camera()->viewingAngle(), size.height);
    if (options.corners) {
        return print(locator.corners() + "\n");
    }
    return answerLines(locator, std::cin);
}

} // namespace trelmix::apps
