#include "platform/speech/WordTimes.h"

#include <algorithm>
#include <cmath>
#include <ranges>

#include "platform/speech/SoundLevel.h"

namespace korvane {
namespace {

// Chosen with the learning half of bench/word-timing, measured with the other.
constexpr std::int64_t inwardsMs =
    400;  // how much too long a word may be: many give it the pause that follows
constexpr std::int64_t outwardsMs = 120;    // and how much too short
constexpr std::int64_t lookMs = 100;        // how far beyond that a pause is followed
constexpr std::int64_t toldPauseMs = 20;    // a gap between words that is more than a matter of rounding
constexpr std::int64_t leastToldMs = 30;    // how much of a told pause must be quiet
constexpr std::int64_t leastFoundMs = 100;  // quiet for longer than the closure of a "t" or "k" is a pause
constexpr std::int64_t shortestMs = 20;     // of a word
constexpr double aboveFloorDb = 3.0;
constexpr double belowPeakDb = 36.0;

/// Samples [begin, end) of the recording.
struct Span {
    std::int64_t begin = 0;
    std::int64_t end = 0;
    std::int64_t length() const { return end - begin; }
};

class Levels {
  public:
    Levels(const SpeechStretch& stretch, int rateHz)
        : curve_(LevelCurve::of(stretch.samples, rateHz)), stretch_(stretch), ms_(rateHz / 1000) {}

    std::int64_t ms(std::int64_t count) const { return count * ms_; }

    /// The level that parts the word from its surroundings.
    double threshold(const TimedWord& word) const {
        double peak = silenceDb;
        for (auto i = windowAt(word.begin); i < windowAt(word.end); ++i)
            peak = std::max(peak, curve_.db[static_cast<std::size_t>(i)]);
        return std::max(stretch_.floorDb + aboveFloorDb, peak - belowPeakDb);
    }

    /// Whether the background is so quiet that what is near it is no part of a word.
    bool isClear(const TimedWord& word) const { return threshold(word) > stretch_.floorDb + aboveFloorDb; }

    /// The longest time within `range` that is nowhere louder than `threshold`, empty if there is none. What
    /// lies outside a stretch that begins or ends in a pause is quiet.
    Span longestQuiet(const Span& range, double threshold) const {
        const auto beyond = ms(outwardsMs + lookMs);
        const bool startsBefore = range.begin < stretch_.begin && !stretch_.beginsInSpeech;
        const bool endsBehind = range.end > stretch_.end() && !stretch_.endsInSpeech;
        Span best;
        Span quiet{startsBefore ? stretch_.begin - beyond : std::max(range.begin, stretch_.begin), 0};
        const auto endAt = [&](std::int64_t moment) {
            quiet.end = moment;
            if (quiet.length() > best.length())
                best = quiet;
        };
        const auto last = windowAt(range.end);
        for (auto i = windowAt(range.begin); i < last; ++i) {
            if (curve_.db[static_cast<std::size_t>(i)] <= threshold)
                continue;
            // A window stands for the step in its middle, those at the ends for what is left there as well.
            const auto step = stretch_.begin + i * curve_.step + (curve_.window - curve_.step) / 2;
            endAt(i == 0 ? stretch_.begin : step);
            quiet.begin = i + 1 == std::ssize(curve_.db) ? stretch_.end() : step + curve_.step;
        }
        endAt(endsBehind ? stretch_.end() + beyond : std::min(range.end, stretch_.end()));
        return best;
    }

  private:
    /// The window whose middle is at the sample or next after it.
    std::int64_t windowAt(std::int64_t sample) const {
        const auto offset = sample - stretch_.begin - curve_.window / 2;
        return offset < 0
                   ? 0
                   : std::min<std::int64_t>(std::ssize(curve_.db), (offset + curve_.step - 1) / curve_.step);
    }

    const LevelCurve curve_;
    const SpeechStretch& stretch_;
    const std::int64_t ms_;
};

/// Where the sound of a word ends, if quiet follows; the word's own end if none does.
std::int64_t heardEnd(const TimedWord& word, std::int64_t latest, std::int64_t least, const Levels& levels) {
    const auto from = std::max(word.begin, word.end - levels.ms(inwardsMs));
    const auto to = std::min(latest, word.end + levels.ms(outwardsMs + lookMs));
    const auto quiet = levels.longestQuiet({from, to}, levels.threshold(word));
    if (quiet.length() < least)
        return word.end;
    const bool isNear =
        quiet.begin >= word.begin + levels.ms(shortestMs) && quiet.begin <= word.end + levels.ms(outwardsMs);
    return isNear ? quiet.begin : word.end;
}

/// Where the sound of a word begins, if quiet comes before; the word's own begin if none does.
std::int64_t heardBegin(const TimedWord& word, std::int64_t earliest, std::int64_t least,
                        const Levels& levels) {
    const auto from = std::max(earliest, word.begin - levels.ms(outwardsMs + lookMs));
    const auto to = std::min(word.end, word.begin + levels.ms(inwardsMs));
    const auto quiet = levels.longestQuiet({from, to}, levels.threshold(word));
    if (quiet.length() < least)
        return word.begin;
    const bool isNear =
        quiet.end <= word.end - levels.ms(shortestMs) && quiet.end >= word.begin - levels.ms(outwardsMs);
    return isNear ? quiet.end : word.begin;
}

/// Makes words follow each other within `room` and none empty: the later one gives way, and at the end of the
/// room the earlier ones make place for those that would be pushed out of it.
void separate(std::vector<TimedWord>& words, Span room, std::int64_t shortest) {
    const auto count = std::max<std::int64_t>(std::ssize(words), 1);
    shortest = std::clamp<std::int64_t>(room.length() / count, 0, shortest);
    for (auto& word : words) {
        word.begin = std::max(word.begin, room.begin);
        word.end = std::max(word.end, word.begin + shortest);
        room.begin = word.end;
    }
    for (auto& word : words | std::views::reverse) {
        word.end = std::min(word.end, room.end);
        word.begin = std::min(word.begin, word.end - shortest);
        room.end = word.begin;
    }
}

/// Puts two neighbours where the pause between them is heard, if there is one.
void openPause(TimedWord& before, TimedWord& after, const Levels& levels) {
    const bool isTold = after.begin - before.end >= levels.ms(toldPauseMs);
    // In a loud background the weak sounds of a word are no louder than a pause.
    if (!isTold && !(levels.isClear(before) && levels.isClear(after)))
        return;
    const auto least = levels.ms(isTold ? leastToldMs : leastFoundMs);
    const auto earliest = std::max(before.begin, before.end - levels.ms(inwardsMs));
    const auto latest = std::min(after.end, after.begin + levels.ms(inwardsMs));
    const auto end = heardEnd(before, latest, least, levels);
    const auto begin = heardBegin(after, earliest, least, levels);
    if (end > begin)
        return;
    before.end = end;
    after.begin = begin;
}

}  // namespace

std::vector<TimedWord> refineWordTimes(std::vector<TimedWord> words, const SpeechStretch& stretch, int rateHz,
                                       std::int64_t notBefore) {
    const Levels levels(stretch, rateHz);
    const auto earliest = std::max(notBefore, stretch.begin);
    for (auto& word : words)
        word.end = std::min(word.end, stretch.end());
    separate(words, {earliest, stretch.end()}, levels.ms(shortestMs));
    // Beyond a pause nothing is near; beyond a cut the next word may follow at once.
    const auto least = levels.ms(leastToldMs);
    if (!words.empty() && !stretch.beginsInSpeech)
        words.front().begin = std::max(earliest, heardBegin(words.front(), earliest - 1, least, levels));
    for (std::size_t i = 1; i < words.size(); ++i)
        openPause(words[i - 1], words[i], levels);
    if (!words.empty() && !stretch.endsInSpeech)
        words.back().end = heardEnd(words.back(), stretch.end() + 1, least, levels);
    for (auto& word : words)
        word.end = std::min(word.end, stretch.end());
    std::erase_if(words, [](const TimedWord& word) { return word.end <= word.begin; });
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
