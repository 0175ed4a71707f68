// What korvane-bench-player can do; each job prints what it measured.
#pragma once

#include <string>

namespace korvane::bench {

/// Lip sync and loop of a coded reel in real time.
/// \param device  the machine's sound device, else one that plays evenly by the clock.
void measureLips(const std::string& folder, int picturesPerSecond, double seconds, bool device);
/// Lip sync before and after so many minutes of laps on a clock that is moved by hand.
void measureDrift(const std::string& folder, double minutes);
/// Exact seeks to places all over a video, each beside what libav's own functions take to get there.
void measureSeeks(const std::string& video, double videoSeconds, int count);

}  // namespace korvane::bench
