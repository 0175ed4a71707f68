#include "platform/speech/NoiseFloor.h"

#include <algorithm>

namespace korvane {

void NoiseFloor::push(double meanSquare) {
    frames_.push_back({meanSquare});
    const auto count = first_ + std::ssize(frames_);
    if (count > 2)
        smooth(count - 3);
}

void NoiseFloor::finish() {
    if (finished_)
        return;
    finished_ = true;
    while (smoothed_ < first_ + std::ssize(frames_))
        smooth(smoothed_);
    // A recording shorter than one window is one window.
    if (minima_.empty() && !rising_.empty())
        minima_.push_back(rising_.front().level);
}

void NoiseFloor::smooth(std::int64_t frame) {
    const auto begin = std::max<std::int64_t>(0, frame - 2 - first_);
    const auto end = std::min<std::int64_t>(std::ssize(frames_), frame + 3 - first_);
    double sum = 0.0;
    for (auto i = begin; i < end; ++i)
        sum += frames_[static_cast<std::size_t>(i)].meanSquare;
    const double level = levelDb(sum / static_cast<double>(end - begin));
    frames_[static_cast<std::size_t>(frame - first_)].smoothed = level;
    smoothed_ = frame + 1;

    while (!rising_.empty() && rising_.back().level >= level)
        rising_.pop_back();
    rising_.push_back({frame, level});
    if (rising_.front().frame < frame - lookAhead)
        rising_.pop_front();
    if (frame >= lookAhead)
        minima_.push_back(rising_.front().level);
}

std::optional<NoiseFloor::Frame> NoiseFloor::next() {
    const bool known = first_ < firstMinimum_ + std::ssize(minima_);
    if (frames_.empty() || (!known && !finished_))
        return std::nullopt;
    const auto power = frames_.front();
    const Frame frame{levelDb(power.meanSquare), power.smoothed,
                      std::max(minimumAt(first_ - lookAhead), minimumAt(first_))};
    frames_.pop_front();
    ++first_;
    while (firstMinimum_ < first_ - lookAhead && minima_.size() > 1) {
        minima_.pop_front();
        ++firstMinimum_;
    }
    return frame;
}

double NoiseFloor::minimumAt(std::int64_t window) const {
    const auto index = std::clamp<std::int64_t>(window - firstMinimum_, 0, std::ssize(minima_) - 1);
    return minima_[static_cast<std::size_t>(index)];
}

}  // namespace korvane
