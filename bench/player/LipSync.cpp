#include "bench/player/LipSync.h"

#include <cmath>
#include <optional>
#include <utility>

#include "tests/fixtures/AudioCode.h"
#include "tests/platform/av/ScriptedPlayback.h"

namespace korvane::bench {
namespace {

constexpr double kProbeSeconds = 0.02;
constexpr double kSearchedSeconds = 0.1;
/// The sound is faded at the cuts, so the probe is taken behind them.
constexpr double kBehindCutSeconds = 0.06;
constexpr double kLeastLikeness = 0.8;

double secondsOf(ClockTime time) {
    return std::chrono::duration<double>(time).count();
}

int wordOf(const CodedReel& reel, int number) {
    for (std::size_t i = 0; i < reel.words.size(); ++i)
        if (number >= reel.words[i].firstPicture &&
            number < reel.words[i].firstPicture + reel.words[i].pictures)
            return static_cast<int>(i);
    return -1;
}

/// Where in the stream the sound begins that belongs to picture `number`, if what the device played a little
/// after that picture was shown is the same stretch of the source at all.
std::optional<double> soundOf(const ShownPicture& shown, const PlayedSound& sound, int rate) {
    const int hz = sound.rateHz();
    const auto heard =
        sound.heardAt(shown.at + std::chrono::milliseconds(static_cast<int>(kBehindCutSeconds * 1e3)));
    if (!heard)
        return std::nullopt;
    const auto from = static_cast<std::int64_t>(std::floor(*heard));
    const auto probe = sound.samples(from, static_cast<std::int64_t>(kProbeSeconds * hz));
    if (probe.empty())
        return std::nullopt;
    const std::int64_t first = static_cast<std::int64_t>(shown.number) * hz / rate;
    const auto behind = static_cast<std::int64_t>(kBehindCutSeconds * hz);
    const fixtures::AudioCode code(1, fixtures::AudioCode::latticeFor(hz));
    const auto found =
        fixtures::locate(probe, code, hz, first + behind, static_cast<int>(kSearchedSeconds * hz));
    if (found.correlation < kLeastLikeness)
        return std::nullopt;
    const double source = static_cast<double>(first + behind) - found.offsetSamples;
    return static_cast<double>(from) - (source - static_cast<double>(first));
}

}  // namespace

void PictureLog::show(const PlayerFrame& frame) {
    const ClockTime at = clock_.now();
    const int number = frameNumberOf(*frame.picture);
    const std::scoped_lock lock(mutex_);
    shown_.push_back({at, number});
}

std::vector<ShownPicture> PictureLog::take() {
    const std::scoped_lock lock(mutex_);
    return std::exchange(shown_, {});
}

LipSync compare(const std::vector<ShownPicture>& shown, const PlayedSound& sound, const CodedReel& reel) {
    LipSync result;
    const int rate = reel.picturesPerSecond;
    const double lapSamples = static_cast<double>(reel.lapPictures()) / rate * sound.rateHz();
    std::optional<double> lastBeginning;
    for (std::size_t i = 1; i < shown.size(); ++i) {
        const int word = wordOf(reel, shown[i].number);
        if (word == wordOf(reel, shown[i - 1].number))
            continue;
        if (word == 0)
            result.pictureHoles.push_back(secondsOf(shown[i].at - shown[i - 1].at) - 1.0 / rate);
        const auto soundFrom = word < 0 ? std::nullopt : soundOf(shown[i], sound, rate);
        const auto heard = sound.heardAt(shown[i].at);
        if (!soundFrom || !heard) {
            ++result.unheard;
            lastBeginning = word == 0 ? std::nullopt : lastBeginning;
            continue;
        }
        result.atCuts.push_back((*heard - *soundFrom) / sound.rateHz());
        if (word != 0)
            continue;
        const double beginning =
            *soundFrom -
            static_cast<double>(shown[i].number - reel.words[0].firstPicture) / rate * sound.rateHz();
        if (lastBeginning)
            result.soundHoles.push_back(beginning - *lastBeginning - lapSamples);
        lastBeginning = beginning;
    }
    return result;
}

}  // namespace korvane::bench
