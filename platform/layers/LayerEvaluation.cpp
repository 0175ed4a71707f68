#include "platform/layers/LayerEvaluation.h"

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

/// One coordinate of the cubic curve from 0 to 1 with inner control values p1, p2, at parameter u.
double bezier(double p1, double p2, double u) {
    const double v = 1.0 - u;
    return 3.0 * v * v * u * p1 + 3.0 * v * u * u * p2 + u * u * u;
}

double beginOf(const Animation& animation) {
    const double begin = std::visit([](const auto& a) { return a.beginTime; }, animation);
    // The stand-in for zero is not a moment after zero: at t = 0 such an animation is on.
    return begin == kBeginTimeAtZero ? 0.0 : begin;
}

double durationOf(const Animation& animation) {
    return std::visit([](const auto& a) { return a.duration; }, animation);
}

const std::string& keyPathOf(const Animation& animation) {
    return std::visit([](const auto& a) -> const std::string& { return a.keyPath; }, animation);
}

double interpolated(double from, double to, double fraction) {
    return from == to ? from : from + (to - from) * fraction;
}

double valueAtFraction(const BasicAnimation& animation, double fraction) {
    return interpolated(animation.fromValue, animation.toValue, fraction);
}

double valueAtFraction(const KeyframeAnimation& animation, double fraction) {
    const std::size_t count = std::min(animation.values.size(), animation.keyTimes.size());
    if (count == 0)
        return 0.0;
    const auto end = animation.keyTimes.begin() + static_cast<std::ptrdiff_t>(count);
    const auto next = std::upper_bound(animation.keyTimes.begin(), end, fraction);
    if (next == animation.keyTimes.begin())
        return animation.values.front();
    if (next == end)
        return animation.values[count - 1];
    const auto i = static_cast<std::size_t>(next - animation.keyTimes.begin()) - 1;
    const double span = animation.keyTimes[i + 1] - animation.keyTimes[i];
    const double x = (fraction - animation.keyTimes[i]) / span;
    const auto& curve =
        i < animation.timingFunctions.size() ? animation.timingFunctions[i] : TimingFunction::linear();
    return interpolated(animation.values[i], animation.values[i + 1], timingValueAt(curve, x));
}

/// From a geometry with the given direction of y to the picture: p -> scale * (p.x, +-p.y) + origin.
struct Placement {
    double scale = 1.0;
    Point origin;
    bool yGrowsDown = false;

    Point apply(Point p) const {
        return {origin.x + scale * p.x, origin.y + (yGrowsDown ? scale : -scale) * p.y};
    }
};

/// The geometry that a layer's sublayers live in.
Placement inside(const Layer& layer, const Placement& outside, double scale, Point center) {
    Placement placement;
    placement.scale = scale;
    placement.yGrowsDown = outside.yGrowsDown || layer.geometryFlipped;
    const double halfHeight = layer.frame.height / 2.0 * scale;
    placement.origin.x = center.x - layer.frame.width / 2.0 * scale;
    placement.origin.y = placement.yGrowsDown ? center.y - halfHeight : center.y + halfHeight;
    return placement;
}

}  // namespace

double timingValueAt(const TimingFunction& curve, double x) {
    if (x <= 0.0)
        return 0.0;
    if (x >= 1.0)
        return 1.0;
    if (curve == TimingFunction::linear())
        return x;
    // x(u) grows monotonically for control values within 0 to 1, so bisection can't fail; 60 halvings
    // reach the precision of a double.
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2.0;
        (bezier(curve.c1[0], curve.c2[0], middle) < x ? low : high) = middle;
    }
    return bezier(curve.c1[1], curve.c2[1], (low + high) / 2.0);
}

bool isActiveAt(const Animation& animation, double seconds) {
    const double local = seconds - beginOf(animation);
    return 0.0 <= local && local < durationOf(animation);
}

double valueAt(const Animation& animation, double seconds, double ownValue) {
    if (!isActiveAt(animation, seconds))
        return ownValue;
    const double fraction = (seconds - beginOf(animation)) / durationOf(animation);
    return std::visit([fraction](const auto& a) { return valueAtFraction(a, fraction); }, animation);
}

double animatedValueAt(const Layer& layer, const std::string& keyPath, double seconds, double ownValue) {
    double value = ownValue;
    for (const auto& [key, animation] : layer.animations) {
        if (keyPathOf(animation) == keyPath)
            value = valueAt(animation, seconds, value);
    }
    return value;
}

EvaluatedLayer evaluatedAt(std::span<const Layer* const> path, Size rootSize, double seconds) {
    EvaluatedLayer result;
    result.opacity = 1.0;
    // The picture itself: y grows upward from its bottom edge.
    Placement placement{1.0, {0.0, rootSize.height}, false};
    for (const Layer* layer : path) {
        const double begin =
            layer->beginTime.value_or(0.0) == kBeginTimeAtZero ? 0.0 : layer->beginTime.value_or(0.0);
        if (layer->beginTime && seconds < begin)
            return {};
        result.opacity *= std::clamp(animatedValueAt(*layer, "opacity", seconds, layer->opacity), 0.0, 1.0);
        result.scale *= animatedValueAt(*layer, "transform.scale", seconds, 1.0);
        result.center = placement.apply(layer->frame.center());
        result.yGrowsDown = placement.yGrowsDown;
        placement = inside(*layer, placement, result.scale, result.center);
    }
    return result;
}

}  // namespace korvane
