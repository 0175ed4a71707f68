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
// For how long after the beginning reports are held against it; later, a device's clock may be the faster
// one.
constexpr ClockTime kTruthShowsWithin = std::chrono::seconds(1);

double secondsOf(ClockTime time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

double HeardClock::framesAt(ClockTime now, HeardFrames heard, std::int64_t written) {
    if (written == 0)
        beganAt_ = now;
    const bool hasWork = written > heard.frames;
    // Out of work it goes on late; by how much, its next reports tell.
    if (!hasWork || heard.underruns != underruns_)
        reports_ = farReports_ = 0;
    underruns_ = heard.underruns;
    if (!hasWork)
        last_ = std::max(last_, static_cast<double>(written));
    if (lastNews_ < ClockTime(0) || !hasWork)
        lastNews_ = now;
    // A report that stays the same says when it was made only once.
    if (heard.frames > lastReport_) {
        lastReport_ = heard.frames;
        lastNews_ = now;
        take(heard);
    }
    if (reports_ == 0)
        return last_;
    const double even = offset_ + secondsOf(now - origin_) * rateHz_;
    last_ = std::max(last_, std::min(even, static_cast<double>(written)));
    return last_;
}

void HeardClock::take(HeardFrames heard) {
    if (reports_ == 0)
        origin_ = heard.at;
    // Some servers count as heard what they have only taken, a block at a time.
    if (beganAt_ >= ClockTime(0) && heard.at - beganAt_ < kTruthShowsWithin)
        early_ =
            std::max(early_, static_cast<double>(heard.frames) - secondsOf(heard.at - beganAt_) * rateHz_);
    const double offset =
        static_cast<double>(heard.frames) - early_ - secondsOf(heard.at - origin_) * rateHz_;
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
