// Makes an even clock out of a sound device's rough reports: they lag, come in steps, and jitter by tens of
// milliseconds, while pictures should move evenly and lips move with the sound.
#pragma once

#include <cstdint>

#include "platform/av/AudioOutput.h"

namespace korvane {

/// One stream of sound. One thread at a time.
class HeardClock {
  public:
    explicit HeardClock(int rateHz) : rateHz_(rateHz) {}

    /// \param heard    the device's latest report.
    /// \param written  frames given to the device so far; nothing beyond can have been heard.
    /// \return frames heard at `now`; never falls.
    double framesAt(ClockTime now, HeardFrames heard, std::int64_t written);

    /// For how long the device has reported nothing new although it had something to play.
    ClockTime silentFor(ClockTime now) const;

  private:
    void take(HeardFrames heard);

    int rateHz_;
    std::int64_t lastReport_ = 0;
    ClockTime lastNews_{-1};
    ClockTime beganAt_{-1};  ///< nothing can have been heard before; negative: not known
    double early_ = 0.0;     ///< frames that reports were ahead of what can have been heard
    int underruns_ = 0;
    int reports_ = 0;
    int farReports_ = 0;
    double offset_ = 0.0;  ///< frames heard at clock time 0, were the stream endless
    ClockTime origin_{0};  ///< keeps the numbers small
    double last_ = 0.0;
};

}  // namespace korvane
