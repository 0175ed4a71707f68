#include "platform/av/PlayLine.h"

#include <cmath>

namespace korvane {

void PlayLine::setLoop(std::optional<MediaTime> loop) {
    loop_.reset();
    if (loop && *loop >= kZeroTime && units(*loop) < units(end_))
        loop_ = loop;
}

std::int64_t PlayLine::lapStart(std::int64_t lap) const {
    if (lap == 0)
        return 0;
    const std::int64_t first = units(end_) - units(start_);
    return lap == 1 ? first : first + (lap - 1) * (units(end_) - units(*loop_));
}

std::int64_t PlayLine::positionOf(std::int64_t lap, MediaTime t) const {
    return lapStart(lap) + units(t) - units(lapStartTime(lap));
}

std::int64_t PlayLine::sampleAt(std::int64_t lap, std::int64_t position) const {
    return position - lapStart(lap) + units(lapStartTime(lap));
}

MediaTime PlayLine::timeAt(std::int64_t lap, double position) const {
    const auto whole = static_cast<std::int64_t>(std::floor(position));
    // The ends are exact; what lies between is known to a sample.
    if (whole <= lapStart(lap))
        return lapStartTime(lap);
    if (whole >= lapEnd(lap))
        return end_;
    return {sampleAt(lap, whole), rateHz_};
}

MediaTime FrameGrid::atOrBefore(MediaTime t) const {
    const std::int64_t ticks = (t - origin).toUnits(frameDuration.timescale(), Rounding::down);
    std::int64_t index = ticks / frameDuration.value();
    if (ticks % frameDuration.value() < 0)
        --index;
    return origin + MediaTime(index * frameDuration.value(), frameDuration.timescale());
}

}  // namespace korvane
