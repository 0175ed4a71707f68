#include <algorithm>
#include <string>

#include "editor/LogFormat.h"
#include "editor/VideoEditor.h"

namespace korvane {
namespace {

constexpr double kMarginPoints = 72.0;         // kept free above and below the box
constexpr double kBoxHeightInFontSizes = 4.0;  // room for wrapped lines
constexpr double kBoxWidthFraction = 0.86;
constexpr double kShortestLineSeconds = 0.001;
constexpr double kLongestPopSeconds = 0.35;
constexpr double kShadowOpacity = 0.85;
constexpr Point kShadowOffset{0.0, -2.0};

Rect subtitleBox(Size canvas, const SubtitleSettings& settings) {
    const double height = settings.fontSize * kBoxHeightInFontSizes;
    const double usable = canvas.height - 2.0 * kMarginPoints - height;
    const double width = canvas.width * kBoxWidthFraction;
    return {(canvas.width - width) / 2.0, settings.verticalPosition * usable + kMarginPoints, width, height};
}

/// Opaque while it lasts; the layer's own opacity hides the line before and after.
BasicAnimation visibility(double beginTime, double duration) {
    BasicAnimation animation;
    animation.keyPath = "opacity";
    animation.fromValue = 1.0;
    animation.toValue = 1.0;
    animation.beginTime = beginTime;
    animation.duration = duration;
    animation.fillMode = FillMode::removed;
    animation.removedOnCompletion = false;
    return animation;
}

/// Starts small, overshoots, and settles at the layer's own size.
KeyframeAnimation pop(double beginTime, double duration) {
    KeyframeAnimation animation;
    animation.keyPath = "transform.scale";
    animation.values = {0.78, 1.08, 1.0};
    animation.keyTimes = {0.0, 0.55, 1.0};
    animation.timingFunctions = {TimingFunction::easeOut(), TimingFunction::easeInEaseOut()};
    animation.beginTime = beginTime;
    animation.duration = std::min(kLongestPopSeconds, duration);
    animation.fillMode = FillMode::removed;
    animation.removedOnCompletion = false;
    return animation;
}

std::shared_ptr<Layer> canvasLayer(Size canvas) {
    auto layer = std::make_shared<Layer>();
    layer->frame = {0.0, 0.0, canvas.width, canvas.height};
    return layer;
}

std::shared_ptr<Layer> textLayer(const SubtitleEntry& entry, const Rect& box,
                                 const SubtitleSettings& settings) {
    auto layer = std::make_shared<Layer>();
    layer->frame = box;
    layer->opacity = 0.0;

    TextContent text;
    text.text = entry.text;
    text.fontPostScriptName = settings.fontPostscriptName;
    text.fontSize = settings.fontSize;
    text.foregroundColor = VideoEditor::cgColor(settings.textColor());
    text.alignment = TextAlignment::center;
    text.wrapped = true;
    text.contentsScale = 1.0;
    layer->text = text;
    if (settings.hasShadow) {
        layer->shadow = Shadow{VideoEditor::cgColor(settings.shadowColor()), kShadowOpacity,
                               settings.shadowRadius, kShadowOffset};
    }

    const double duration = std::max(entry.end - entry.start, kShortestLineSeconds);
    const double beginTime = entry.start <= 0.0 ? kBeginTimeAtZero : entry.start;
    layer->animations.emplace("visibility", visibility(beginTime, duration));
    if (settings.hasPopAnimation)
        layer->animations.emplace("pop", pop(beginTime, duration));
    return layer;
}

}  // namespace

AnimationTool VideoEditor::buildAnimationLayer(const std::vector<SubtitleEntry>& subtitleEntries,
                                               const SubtitleSettings& settings) const {
    const Rect box = subtitleBox(targetSize, settings);
    log_("🎬 [CA] Building " + std::to_string(subtitleEntries.size()) +
         " subtitle layers  boxY=" + formatDecimal(box.y));

    const auto videoLayer = canvasLayer(targetSize);
    const auto overlayLayer = canvasLayer(targetSize);
    overlayLayer->geometryFlipped = true;
    for (const SubtitleEntry& entry : subtitleEntries)
        overlayLayer->sublayers.push_back(textLayer(entry, box, settings));

    const auto parentLayer = canvasLayer(targetSize);
    parentLayer->beginTime = kBeginTimeAtZero;
    parentLayer->sublayers = {videoLayer, overlayLayer};
    return {videoLayer, parentLayer};
}

Color VideoEditor::cgColor(const Color& color) {
    return color.inDeviceRgb().value_or(Color::white());
}

}  // namespace korvane
