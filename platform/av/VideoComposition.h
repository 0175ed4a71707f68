// How a composition's video track becomes output pictures: canvas, frame rate, placement, and layers above
// it.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "platform/geometry/Geometry.h"
#include "platform/layers/Layer.h"
#include "platform/time/MediaTime.h"

namespace korvane {

/// Maps natural-size coordinates of a track (y down) to canvas coordinates (y down).
struct LayerInstruction {
    int trackID = 0;
    AffineTransform transform;
};

struct VideoCompositionInstruction {
    TimeRange timeRange;
    std::vector<LayerInstruction> layerInstructions;
};

/// Draws the video into `videoLayer`, which stands somewhere inside `parentLayer`.
struct AnimationTool {
    std::shared_ptr<const Layer> videoLayer;
    std::shared_ptr<const Layer> parentLayer;
};

struct VideoComposition {
    Size renderSize;
    MediaTime frameDuration;
    std::vector<VideoCompositionInstruction> instructions;
    std::optional<AnimationTool> animationTool;
};

}  // namespace korvane
