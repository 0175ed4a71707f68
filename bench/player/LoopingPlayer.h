// A player that does what the preview does with its own.
#pragma once

#include <memory>

#include "bench/player/LipSync.h"
#include "platform/av/Player.h"

namespace korvane::bench {

/// Main thread.
class LoopingPlayer {
  public:
    LoopingPlayer(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs, const CodedReel& reel,
                  std::shared_ptr<FrameConsumer> pictures);

    int laps() const { return laps_; }
    Player& player() { return player_; }

  private:
    int laps_ = 0;
    Player player_;
    Observation atEnd_;
};

}  // namespace korvane::bench
