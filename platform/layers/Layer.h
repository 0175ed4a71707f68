// Layers as plain values: what is drawn where, and how it changes over time. A tree is built once, then only
// read, from any thread. What it looks like at a time is a pure function (LayerEvaluation.h); drawing it is
// the LayerRenderer's.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/layers/Color.h"

namespace korvane {

/// Time zero of a composition. A begin time of exactly 0 would mean "now", which an offline renderer has not
/// got.
inline constexpr double kBeginTimeAtZero = 1e-100;

/// What an animation does outside its active time: `removed` leaves the layer's own value.
enum class FillMode { removed };

/// A cubic timing curve by its two inner control points.
struct TimingFunction {
    std::array<double, 2> c1;
    std::array<double, 2> c2;
    static constexpr TimingFunction linear() { return {{0.0, 0.0}, {1.0, 1.0}}; }
    static constexpr TimingFunction easeOut() { return {{0.0, 0.0}, {0.58, 1.0}}; }
    static constexpr TimingFunction easeInEaseOut() { return {{0.42, 0.0}, {0.58, 1.0}}; }
    friend bool operator==(const TimingFunction&, const TimingFunction&) = default;
};

/// Active in [beginTime, beginTime + duration), in seconds of composition time.
struct BasicAnimation {
    std::string keyPath;  ///< "opacity" or "transform.scale"
    double fromValue = 0.0;
    double toValue = 0.0;
    double beginTime = 0.0;
    double duration = 0.0;
    FillMode fillMode = FillMode::removed;
    bool removedOnCompletion = true;
};

/// `timingFunctions[i]` shapes the way from values[i] to values[i + 1]; keyTimes are fractions of the
/// duration.
struct KeyframeAnimation {
    std::string keyPath;
    std::vector<double> values;
    std::vector<double> keyTimes;
    std::vector<TimingFunction> timingFunctions;
    double beginTime = 0.0;
    double duration = 0.0;
    FillMode fillMode = FillMode::removed;
    bool removedOnCompletion = true;
};

using Animation = std::variant<BasicAnimation, KeyframeAnimation>;

enum class TextAlignment { center };

/// Wrapped text in the layer's frame: each line centred, the block of lines centred between the frame's top
/// and bottom. Text that needs more height than the frame goes on beyond it in both directions alike.
struct TextContent {
    std::string text;                ///< UTF-8
    std::string fontPostScriptName;  ///< exact face; a missing one is replaced by the font look-up
    double fontSize = 0.0;           ///< canvas pixels per em
    Color foregroundColor;
    TextAlignment alignment = TextAlignment::center;
    bool wrapped = true;
    double contentsScale = 1.0;
};

/// A soft copy of the content behind it. The blur is a Gaussian whose standard deviation is `radius`.
struct Shadow {
    Color color;
    double opacity = 0.0;  ///< multiplies color.alpha
    double radius = 0.0;   ///< canvas pixels
    Point offset;          ///< canvas pixels in the layer's own geometry (y down below a flipped parent)
};

struct Layer {
    Rect frame;                       ///< in the parent's geometry
    std::optional<double> beginTime;  ///< seconds; none: since ever
    bool geometryFlipped = false;     ///< true: sublayers' y grows downward from the top edge
    double opacity = 1.0;
    std::optional<Shadow> shadow;
    std::optional<TextContent> text;                      ///< a text layer has this
    std::map<std::string, Animation> animations;          ///< by key, e.g. "visibility", "pop"
    std::vector<std::shared_ptr<const Layer>> sublayers;  ///< bottom to top
};

}  // namespace korvane
