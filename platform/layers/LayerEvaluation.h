// What a layer tree looks like at a time: pure functions over the plain values of Layer.h, any thread.
#pragma once

#include <span>

#include "platform/geometry/Geometry.h"
#include "platform/layers/Layer.h"

namespace korvane {

/// The curve's y where its x is `x`, both 0 to 1; solved to 1e-9 and better.
double timingValueAt(const TimingFunction& curve, double x);

/// Half-open: true exactly while 0 <= t - beginTime < duration, computed in that way, so that the end of one
/// animation and the begin of the next are the same moment.
bool isActiveAt(const Animation& animation, double seconds);

/// The animation's value, or `ownValue` outside its active time.
double valueAt(const Animation& animation, double seconds, double ownValue);

/// The value that the layer's animations on `keyPath` give; where several are active the last key wins.
double animatedValueAt(const Layer& layer, const std::string& keyPath, double seconds, double ownValue);

/// A layer as it stands in the picture: units of the tree's root, y down from the picture's top edge.
struct EvaluatedLayer {
    double opacity = 0.0;     ///< multiplied down the tree; 0: not seen
    double scale = 1.0;       ///< multiplied down the tree
    Point center;             ///< of the layer's frame; scaling leaves it where it is
    bool yGrowsDown = false;  ///< the direction of y in the geometry that the layer's frame and shadow are in
};

/// \param path  from the root down to the layer in question, at least one.
/// \param rootSize  the picture's size; the root itself has y growing upward.
EvaluatedLayer evaluatedAt(std::span<const Layer* const> path, Size rootSize, double seconds);

}  // namespace korvane
