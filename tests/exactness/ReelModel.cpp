#include "tests/exactness/ReelModel.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace korvane::exactness {
namespace {

constexpr std::int64_t kScale = 600;

/// A cubic timing curve from (0, 0) to (1, 1): the y at x.
double curve(double x1, double y1, double x2, double y2, double x) {
    const auto bezier = [](double a, double b, double s) {
        return 3.0 * (1.0 - s) * (1.0 - s) * s * a + 3.0 * (1.0 - s) * s * s * b + s * s * s;
    };
    double low = 0.0;
    double high = 1.0;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2.0;
        (bezier(x1, x2, middle) < x ? low : high) = middle;
    }
    return bezier(y1, y2, low);
}

/// value x rateHz / 600 to nearest, halves up; for values >= 0.
std::int64_t toSample(std::int64_t value, int rateHz) {
    return (2 * value * rateHz + kScale) / (2 * kScale);
}

}  // namespace

ReelModel::ReelModel(const std::vector<SpeechSegment>& segments) {
    preroll_ = std::llround(std::min(0.25, segments.front().start()) * kScale);
    std::int64_t cursor = preroll_;
    for (const SpeechSegment& segment : segments) {
        const std::int64_t start = std::llround(segment.start() * kScale);
        const std::int64_t length = std::llround(segment.end() * kScale) - start;
        if (start < 0 || length <= 0)
            throw std::invalid_argument("the model takes words of some length only");
        words_.push_back({start, cursor, length});
        cursor += length;
    }
    end_ = cursor;

    const std::size_t count = words_.size();
    for (std::size_t at = 0; at < count;) {
        const std::size_t left = count - at;
        const std::size_t size = left == 4 ? 2 : std::min<std::size_t>(left, 3);
        const ModelWord& last = words_[at + size - 1];
        lines_.push_back({words_[at].target, last.target + last.length});
        at += size;
    }
}

int ReelModel::frameCount(int rate) const {
    return static_cast<int>(((end_ - preroll_) * rate + kScale - 1) / kScale);
}

std::size_t ReelModel::wordAt(int frame, int rate) const {
    const std::int64_t time = preroll_ * rate + frame * kScale;  // in 1/(600 x rate) s
    const auto next =
        std::upper_bound(words_.begin(), words_.end(), time,
                         [rate](std::int64_t t, const auto& word) { return t < word.target * rate; });
    return static_cast<std::size_t>(next - words_.begin()) - 1;
}

int ReelModel::sourceFrame(int frame, int rate, const fixtures::VideoSpec& source) const {
    const ModelWord& word = words_[wordAt(frame, rate)];
    const std::int64_t time = preroll_ * rate + frame * kScale - word.target * rate + word.source * rate;
    const std::int64_t perSecond = kScale * rate;
    // pts x num / den <= time / perSecond
    const auto& pts = source.presentationTimes;
    const auto next = std::upper_bound(pts.begin(), pts.end(), time, [&](std::int64_t t, std::int64_t p) {
        return t * source.timeBase.den < p * source.timeBase.num * perSecond;
    });
    return static_cast<int>(next - pts.begin()) - 1;
}

double ReelModel::sourceSeconds(int frame, int rate) const {
    const ModelWord& word = words_[wordAt(frame, rate)];
    const std::int64_t time = preroll_ * rate + frame * kScale - word.target * rate + word.source * rate;
    return static_cast<double>(time) / static_cast<double>(kScale * rate);
}

std::size_t ReelModel::lineAt(int frame, int rate) const {
    const std::int64_t time = preroll_ * rate + frame * kScale;
    const auto next =
        std::upper_bound(lines_.begin(), lines_.end(), time,
                         [rate](std::int64_t t, const auto& line) { return t < line.start * rate; });
    return static_cast<std::size_t>(next - lines_.begin()) - 1;
}

double ReelModel::lineAge(int frame, int rate) const {
    const ModelLine& line = lines_[lineAt(frame, rate)];
    return static_cast<double>(preroll_ * rate + frame * kScale - line.start * rate) /
           static_cast<double>(kScale * rate);
}

double ReelModel::popScale(int frame, int rate) const {
    const ModelLine& line = lines_[lineAt(frame, rate)];
    const double duration = std::min(0.35, static_cast<double>(line.end - line.start) / kScale);
    const double x = lineAge(frame, rate) / duration;
    if (x >= 1.0)
        return 1.0;
    if (x < 0.55)
        return 0.78 + (1.08 - 0.78) * curve(0.0, 0.0, 0.58, 1.0, x / 0.55);
    return 1.08 + (1.0 - 1.08) * curve(0.42, 0.0, 0.58, 1.0, (x - 0.55) / 0.45);
}

std::int64_t ReelModel::firstSample(std::size_t index, int rateHz) const {
    return toSample(words_[index].target, rateHz) - toSample(preroll_, rateHz);
}

std::int64_t ReelModel::firstSourceSample(std::size_t index, int rateHz) const {
    return toSample(words_[index].source, rateHz);
}

double ReelModel::rampSeconds(std::size_t index) const {
    const double before = static_cast<double>(words_[index].length) / kScale / 2.0;
    const double after = static_cast<double>(words_[index + 1].length) / kScale / 2.0;
    return std::min({0.02, before, after});
}

}  // namespace korvane::exactness
