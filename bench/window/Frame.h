// What everything on the screen is measured against.
#pragma once

namespace korvane::bench {

constexpr double kFramesPerSecond = 60.0;
constexpr double kFrameMs = 1000.0 / kFramesPerSecond;

}  // namespace korvane::bench
