// How loud a sound is where speech has its energy: the one measure that finding speech and timing words
// share.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace korvane {

/// What counts as no sound at all; also the level of digital silence.
inline constexpr double silenceDb = -100.0;

/// Level of a mean square relative to full scale (a square wave of 1.0 is 0 dB), not below silenceDb.
double levelDb(double meanSquare);

/// Takes away what lies below 150 Hz: offsets, mains hum, wind and rumble, which would pass for speech.
/// A Butterworth filter of second order; its delay is about a millisecond in the speech band.
class RumbleFilter {
  public:
    explicit RumbleFilter(int rateHz);
    /// Anything that is no finite number counts as silence.
    double next(double sample);

  private:
    double b_, a1_, a2_;
    double x1_ = 0, x2_ = 0, y1_ = 0, y2_ = 0;
};

/// Levels of windows of 10 ms, one each 5 ms: entry i covers the samples from i * step on.
struct LevelCurve {
    std::int64_t step = 0;    ///< samples between windows
    std::int64_t window = 0;  ///< samples in a window
    std::vector<double> db;

    static LevelCurve of(std::span<const float> samples, int rateHz);
};

}  // namespace korvane
