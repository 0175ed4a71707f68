#include "platform/models/DownloadMeter.h"

#include <algorithm>

namespace korvane {
namespace {

// Long enough to be calm, short enough to follow a connection that changes.
constexpr std::chrono::seconds window{5};
constexpr std::chrono::milliseconds step{100};
// Sooner, a time left would be a guess.
constexpr double shortestMeasureSeconds = 0.5;

}  // namespace

void DownloadMeter::restart(std::uint64_t receivedBytes, Clock::time_point now) {
    points_.assign(1, {now, receivedBytes});
}

void DownloadMeter::add(std::uint64_t receivedBytes, Clock::time_point now) {
    if (!points_.empty() && now - points_.back().time < step)
        return;
    points_.push_back({now, receivedBytes});
    while (points_.size() > 2 && now - points_[1].time >= window)
        points_.pop_front();
}

DownloadProgress DownloadMeter::progress(DownloadStage stage, std::uint64_t receivedBytes,
                                         Clock::time_point now) const {
    DownloadProgress progress;
    progress.stage = stage;
    progress.receivedBytes = receivedBytes;
    progress.totalBytes = totalBytes_;
    if (stage != DownloadStage::downloading || points_.empty() || receivedBytes < points_.front().bytes)
        return progress;
    const std::chrono::duration<double> span = now - points_.front().time;
    if (span.count() < shortestMeasureSeconds)
        return progress;
    progress.bytesPerSecond = static_cast<double>(receivedBytes - points_.front().bytes) / span.count();
    if (progress.bytesPerSecond >= 1)
        progress.secondsLeft =
            static_cast<double>(totalBytes_ - std::min(receivedBytes, totalBytes_)) / progress.bytesPerSecond;
    return progress;
}

}  // namespace korvane
