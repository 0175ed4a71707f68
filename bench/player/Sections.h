// The parts of the measurement of the preview; each reports what it finds.
#pragma once

#include <string>

#include "bench/Measurements.h"
#include "bench/window/WindowJob.h"

namespace korvane::bench {

/// In the real window there.
void measureFirstFrame(const Setting& setting, Report& report, const std::string& platform);
/// Pictures, sound, styling, main thread and processor time while a reel is looped in the real window there.
void measurePlayback(const Setting& setting, Report& report, const std::string& platform);
/// \param device  there is a sound device that may be used.
void measureLipSync(const Setting& setting, Report& report, bool device);
void measureExactSeeks(const Setting& setting, Report& report);

}  // namespace korvane::bench
