#include <algorithm>
#include <cmath>

#include "editor/LogFormat.h"
#include "editor/RuntimeTrap.h"
#include "editor/VideoEditor.h"

namespace korvane {
namespace {

/// One frame at the nearest whole rate. A rate that is no number goes on into the trap.
MediaTime frameDurationOf(float nominalFrameRate) {
    const float rate = nominalFrameRate < 1.0F ? 1.0F : nominalFrameRate;
    return {1, int32FromFloat(std::round(rate))};
}

}  // namespace

VideoComposition VideoEditor::makeVideoComposition(const CompositionTrack& compositionTrack, Size naturalSize,
                                                   const AffineTransform& preferredTransform,
                                                   float nominalFrameRate, MediaTime totalDuration) const {
    const AffineTransform& p = preferredTransform;
    const double displayWidth = std::abs(naturalSize.width * p.a + naturalSize.height * p.c);
    const double displayHeight = std::abs(naturalSize.width * p.b + naturalSize.height * p.d);
    const double scale = std::max(targetSize.width / displayWidth, targetSize.height / displayHeight);
    const double offsetX = (targetSize.width - displayWidth * scale) / 2.0;
    const double offsetY = (targetSize.height - displayHeight * scale) / 2.0;
    log_("🎬 [VC] displaySize=(" + formatDecimal(displayWidth) + "," + formatDecimal(displayHeight) +
         ") scale=" + formatDecimal(scale) + " tx=" + formatDecimal(offsetX) +
         " ty=" + formatDecimal(offsetY));

    const AffineTransform fit =
        AffineTransform::scale(scale, scale).concatenating(AffineTransform::translation(offsetX, offsetY));
    const VideoCompositionInstruction instruction{
        {kZeroTime, totalDuration},
        {{compositionTrack.trackID(), preferredTransform.concatenating(fit)}},
    };

    VideoComposition videoComposition;
    videoComposition.renderSize = targetSize;
    videoComposition.frameDuration = frameDurationOf(nominalFrameRate);
    videoComposition.instructions = {instruction};
    log_("🎬 [VC] renderSize=" + formatSize(videoComposition.renderSize) +
         " frameDuration=" + formatSeconds(videoComposition.frameDuration) + "s");
    return videoComposition;
}

}  // namespace korvane
