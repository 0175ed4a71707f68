#include "platform/speech/WordTimes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/speech/SoundLevel.h"

namespace korvane {
namespace {

class Edges {
  public:
    Edges(const SpeechStretch& stretch, int rateHz)
        : curve_(LevelCurve::of(stretch.samples, rateHz)), stretch_(stretch), ms_(rateHz / 1000) {}

    std::int64_t ms(std::int64_t count) const { return count * ms_; }

    /// The level that parts the word from its surroundings.
    double threshold(const TimedWord& word) const {
        double peak = silenceDb;
        for (auto i = firstWindowFrom(word.begin); i < windowsEndingBy(word.end); ++i)
            peak = std::max(peak, level(i));
        return std::max(stretch_.floorDb + 6.0, peak - 38.0);
    }

    /// The first moment in [from, to) above `threshold`, `otherwise` if there is none.
    std::int64_t firstLoud(std::int64_t from, std::int64_t to, double threshold,
                           std::int64_t otherwise) const {
        for (auto i = firstWindowFrom(from); i < windowsEndingBy(to); ++i) {
            if (level(i) > threshold)
                return stretch_.begin + i * curve_.step;
        }
        return otherwise;
    }

    /// The end of the last moment in [from, to) above `threshold`, `otherwise` if there is none.
    std::int64_t lastLoud(std::int64_t from, std::int64_t to, double threshold,
                          std::int64_t otherwise) const {
        for (auto i = windowsEndingBy(to); i-- > firstWindowFrom(from);) {
            if (level(i) > threshold)
                return stretch_.begin + i * curve_.step + curve_.window;
        }
        return otherwise;
    }

  private:
    std::int64_t firstWindowFrom(std::int64_t sample) const {
        const auto offset = std::max<std::int64_t>(0, sample - stretch_.begin);
        return (offset + curve_.step - 1) / curve_.step;
    }
    std::int64_t windowsEndingBy(std::int64_t sample) const {
        const auto offset = sample - stretch_.begin - curve_.window;
        return offset < 0 ? 0 : std::min<std::int64_t>(std::ssize(curve_.db), offset / curve_.step + 1);
    }
    double level(std::int64_t window) const { return curve_.db[static_cast<std::size_t>(window)]; }

    const LevelCurve curve_;
    const SpeechStretch& stretch_;
    const std::int64_t ms_;
};

/// Beyond a pause nothing is near; beyond a cut the next word may follow at once.
std::int64_t gapAtStart(const SpeechStretch& stretch, const TimedWord& first) {
    return stretch.beginsInSpeech ? first.begin - stretch.begin : std::numeric_limits<std::int64_t>::max();
}
std::int64_t gapAtEnd(const SpeechStretch& stretch, const TimedWord& last) {
    return stretch.endsInSpeech ? stretch.end() - last.end : std::numeric_limits<std::int64_t>::max();
}

void moveEdges(TimedWord& word, std::int64_t gapBefore, std::int64_t gapAfter, const Edges& edges) {
    const double threshold = edges.threshold(word);
    const auto outwards = [&](std::int64_t gap) { return std::min(edges.ms(60), gap / 2); };
    const auto inwards = std::min(edges.ms(160), word.end - word.begin);
    const TimedWord as = word;
    if (gapBefore >= edges.ms(80))
        word.begin = edges.firstLoud(as.begin - outwards(gapBefore), as.begin + inwards, threshold, as.begin);
    if (gapAfter >= edges.ms(80))
        word.end = edges.lastLoud(as.end - inwards, as.end + outwards(gapAfter), threshold, as.end);
}

}  // namespace

std::vector<TimedWord> refineWordTimes(std::vector<TimedWord> words, const SpeechStretch& stretch, int rateHz,
                                       std::int64_t notBefore) {
    const Edges edges(stretch, rateHz);
    for (auto& word : words) {
        word.begin += edges.ms(8);
        word.end += edges.ms(8);
    }
    const std::vector<TimedWord> shifted = words;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto before = i == 0 ? gapAtStart(stretch, shifted[i]) : shifted[i].begin - shifted[i - 1].end;
        const auto after =
            i + 1 == words.size() ? gapAtEnd(stretch, shifted[i]) : shifted[i + 1].begin - shifted[i].end;
        moveEdges(words[i], before, after, edges);
    }
    auto from = std::max(notBefore, stretch.begin);
    std::erase_if(words, [&](TimedWord& word) {
        word.begin = std::max(word.begin, from);
        word.end = std::min(word.end, stretch.end());
        if (word.end <= word.begin)
            return true;
        from = word.end;
        return false;
    });
    return words;
}

WordSeconds WordSeconds::of(const TimedWord& word, int rateHz) {
    const double start = static_cast<double>(word.begin) / rateHz;
    const double end = static_cast<double>(word.end) / rateHz;
    double duration = end - start;
    while (start + duration > end)
        duration = std::nextafter(duration, 0.0);
    return {start, duration};
}

}  // namespace korvane
