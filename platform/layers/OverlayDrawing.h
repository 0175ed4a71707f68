// Draws a laid-out text with its shadow into a bitmap of its own. Pure apart from the text engine.
#pragma once

#include <optional>

#include "platform/layers/LayerRenderer.h"
#include "platform/layers/TextShape.h"

namespace korvane {

/// Where and how large, in canvas pixels, y down.
struct OverlayPlace {
    Point center;            ///< of the text's box
    Size box;                ///< at scale 1, in the box's own units
    double scale = 1.0;      ///< canvas pixels per unit of the box; > 0
    bool yGrowsDown = true;  ///< the direction of the shadow's offset.y
    Size canvas;             ///< what lies outside is not drawn

    friend bool operator==(const OverlayPlace&, const OverlayPlace&) = default;
};

/// The bitmap is no larger than what is drawn; its opacity is left at 1. None when nothing of it lies on the
/// canvas.
std::optional<PlacedOverlay> drawOverlay(const TextShape& shape, const std::optional<Shadow>& shadow,
                                         const OverlayPlace& place);

}  // namespace korvane
