// The unbroken line along which a player moves from one seek to the next: from where it started to the item's
// end, and from the loop point to the end again and again. Positions on it are counted samples, so that no
// number of laps drifts. A plain value.
//
//   item   |-----P--------S------------E|        S start, E end, P loop point
//   line                  |S..........E|P.....................E|P.....................E| ...
//   laps                  |     0      |           1           |           2           |
#pragma once

#include <cstdint>
#include <optional>

#include "platform/time/MediaTime.h"

namespace korvane {

class PlayLine {
  public:
    PlayLine() = default;
    /// \param start  0 <= start <= end. \param rateHz  positions a second.
    PlayLine(MediaTime start, MediaTime end, int rateHz) : start_(start), end_(end), rateHz_(rateHz) {}

    /// Where laps after the first begin. A point that leaves no lap of at least one position is none.
    void setLoop(std::optional<MediaTime> loop);
    const std::optional<MediaTime>& loop() const { return loop_; }
    bool hasLap(std::int64_t lap) const { return lap == 0 || loop_.has_value(); }

    int rateHz() const { return rateHz_; }
    MediaTime end() const { return end_; }
    MediaTime lapStartTime(std::int64_t lap) const { return lap == 0 ? start_ : *loop_; }
    std::int64_t lapStart(std::int64_t lap) const;
    std::int64_t lapEnd(std::int64_t lap) const { return lapStart(lap + 1); }

    /// Line position of item time `t` in a lap.
    std::int64_t positionOf(std::int64_t lap, MediaTime t) const;
    /// The item's sample at a line position of a lap.
    std::int64_t sampleAt(std::int64_t lap, std::int64_t position) const;
    /// Item time at a line position of a lap, held inside it.
    MediaTime timeAt(std::int64_t lap, double position) const;

  private:
    std::int64_t units(MediaTime t) const { return t.toUnits(rateHz_); }

    MediaTime start_;
    MediaTime end_;
    std::optional<MediaTime> loop_;
    int rateHz_ = 48'000;
};

/// When pictures change: every `frameDuration`, counted from `origin`.
struct FrameGrid {
    MediaTime origin;
    MediaTime frameDuration{1, 30};  ///< > 0

    MediaTime atOrBefore(MediaTime t) const;
    MediaTime after(MediaTime t) const { return atOrBefore(t) + frameDuration; }
};

}  // namespace korvane
