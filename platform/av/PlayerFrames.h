// What a player shows, to whom, and the small values that it is set with.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/ffmpeg/DisplayPicture.h"
#include "platform/time/MediaTime.h"

namespace korvane {

struct PlayerFrame {
    std::shared_ptr<const DisplayPicture> picture;
    MediaTime time;  ///< item time from which it is to be seen
};

/// Takes pictures at the moment they are due.
class FrameConsumer {
  public:
    virtual ~FrameConsumer() = default;
    /// Called on the player's thread; to be quick. May still be called once after the player was given
    /// another consumer.
    virtual void show(const PlayerFrame& frame) = 0;
};

enum class ActionAtItemEnd { none, pause };

struct PlayerStatistics {
    std::int64_t shownFrames = 0;
    std::int64_t droppedFrames = 0;   ///< were due while playing, but never shown
    std::int64_t soundUnderruns = 0;  ///< times that the device had nothing to play although there was more
};

}  // namespace korvane
