// How fast a download is, and how long it will take. The clock is a parameter.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>

#include "platform/models/ModelDownload.h"

namespace korvane {

class DownloadMeter {
  public:
    using Clock = std::chrono::steady_clock;

    explicit DownloadMeter(std::uint64_t totalBytes) : totalBytes_(totalBytes) {}

    /// Begins to measure anew, from `receivedBytes` on: what came before came at another time or speed.
    void restart(std::uint64_t receivedBytes, Clock::time_point now);
    void add(std::uint64_t receivedBytes, Clock::time_point now);
    DownloadProgress progress(DownloadStage stage, std::uint64_t receivedBytes, Clock::time_point now) const;

  private:
    struct Point {
        Clock::time_point time;
        std::uint64_t bytes;
    };
    std::uint64_t totalBytes_;
    std::deque<Point> points_;
};

}  // namespace korvane
