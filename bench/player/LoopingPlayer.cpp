#include "bench/player/LoopingPlayer.h"

#include <utility>

namespace korvane::bench {
namespace {

// The clip's own: the bar code is as sharp as it can be.
constexpr int kWidth = 180;
constexpr int kHeight = 320;

}  // namespace

LoopingPlayer::LoopingPlayer(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs,
                             const CodedReel& reel, std::shared_ptr<FrameConsumer> pictures)
    : player_(queue, clock, outputs, reel.bundle.previewPlayerItem()) {
    const MediaTime loopPoint = reel.bundle.prerollDuration();
    player_.setActionAtItemEnd(ActionAtItemEnd::none);
    player_.setLoopHint(loopPoint);
    player_.setFrameSize(kWidth, kHeight);
    player_.setFrameConsumer(std::move(pictures));
    atEnd_ = player_.observeEnd([this, loopPoint] {
        ++laps_;
        player_.seek(loopPoint, [this](bool) { player_.play(); });
    });
    player_.seek(loopPoint, kZeroTime, kZeroTime,
                 [this](bool) { player_.preroll(1.0, [this](bool) { player_.play(); }); });
}

}  // namespace korvane::bench
