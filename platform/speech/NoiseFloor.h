// How loud a recording is where nobody speaks, from moment to moment.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>

#include "platform/speech/SoundLevel.h"

namespace korvane {

/// Fed with the level of each frame (10 ms), tells the background's level at each, `lookAhead` frames later.
///
/// Even without a pause, speech falls to the background between syllables, so the quietest 50 ms of some
/// seconds are the background. The louder of the quietest moment just before and just after a frame counts:
/// so the floor follows at once when a fan or music sets in or stops, where a plain running minimum would
/// take seconds of it for speech. At the ends of a recording the window is moved inwards, not shortened.
class NoiseFloor {
  public:
    static constexpr std::int64_t lookAhead = 400;

    struct Frame {
        double level = 0.0;     ///< dB, as fed
        double smoothed = 0.0;  ///< dB, mean power of the five frames around it
        double floor = 0.0;     ///< dB
    };

    void push(double meanSquare);
    /// No more frames come: next() gives all that are left.
    void finish();
    /// The next frame in order, once its floor is known.
    std::optional<Frame> next();

  private:
    struct Power {
        double meanSquare = 0.0;
        double smoothed = silenceDb;
    };
    struct Minimum {
        std::int64_t frame;
        double level;
    };

    void smooth(std::int64_t frame);
    double minimumAt(std::int64_t window) const;

    std::deque<Power> frames_;    // the frames from first_ on
    std::int64_t first_ = 0;      // the one that next() returns next
    std::int64_t smoothed_ = 0;   // frames smoothed so far
    std::deque<Minimum> rising_;  // what can still be the minimum of the window that ends last
    std::deque<double> minima_;   // of the windows that begin at frame firstMinimum_ and after
    std::int64_t firstMinimum_ = 0;
    bool finished_ = false;
};

}  // namespace korvane
