#include "platform/av/HeardClock.h"

#include <algorithm>
#include <cmath>

namespace korvane {
namespace {

// Averaging begins at once with all reports alike and ends at this many: a second or two of reports.
constexpr int kAveragedReports = 100;
// This many reports in a row, each further off than this, are no jitter: the device stood still, or told an
// untruth when it began.
constexpr double kJumpSeconds = 0.03;
constexpr int kReportsThatAreAJump = 6;

double secondsOf(ClockTime time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

double HeardClock::framesAt(ClockTime now, HeardFrames heard, std::int64_t written) {
    const bool hasWork = written > heard.frames;
    if (lastNews_ < ClockTime(0) || !hasWork)
        lastNews_ = now;
    // A report that stays the same says when it was made only once.
    if (heard.frames > lastReport_) {
        lastReport_ = heard.frames;
        lastNews_ = now;
        take(heard);
    }
    if (reports_ == 0)
        return 0.0;
    const double even = offset_ + secondsOf(now - origin_) * rateHz_;
    last_ = std::max(last_, std::min(even, static_cast<double>(written)));
    return last_;
}

void HeardClock::take(HeardFrames heard) {
    if (reports_ == 0)
        origin_ = heard.at;
    const double offset = static_cast<double>(heard.frames) - secondsOf(heard.at - origin_) * rateHz_;
    const bool isFar = reports_ > 0 && std::abs(offset - offset_) > kJumpSeconds * rateHz_;
    farReports_ = isFar ? farReports_ + 1 : 0;
    if (farReports_ == kReportsThatAreAJump)
        reports_ = farReports_ = 0;
    reports_ = std::min(reports_ + 1, kAveragedReports);
    offset_ += (offset - offset_) / reports_;
}

ClockTime HeardClock::silentFor(ClockTime now) const {
    return lastNews_ < ClockTime(0) ? ClockTime(0) : now - lastNews_;
}

}  // namespace korvane
