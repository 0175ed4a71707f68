#include "platform/speech/BackgroundSound.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/speech/SoundLevel.h"

namespace korvane {
namespace {

// Measured with bench/word-timing, four voices. Noise: 4.5 to 7.9. Music: 10.4 to 23.9.
constexpr double mostRippleOfNoise = 9.0;
// Recordings with noise 60 dB below the speech come out at 49 and more, those with 20 dB at 24 to 32.
constexpr double inaudibleDb = 40.0;

// In bands 31 Hz wide: what lies below is rumble, and tones lie up to 3 kHz.
constexpr std::size_t firstBand = 5;
constexpr std::size_t firstTone = 7;
constexpr std::size_t lastTone = 96;

struct Moment {
    double power = 0.0;
    std::size_t place = 0;
};

/// From the quietest to the loudest; without the first and last ones, which are half outside.
std::vector<Moment> momentsOf(ShortSpectra& spectra) {
    constexpr std::size_t outside = 3;
    std::vector<Moment> moments;
    for (std::size_t i = outside; i + outside < spectra.moments(); ++i) {
        double power = 0.0;
        for (const auto& value : spectra.at(i).subspan(firstBand))
            power += std::norm(value);
        moments.push_back({power, i});
    }
    std::sort(moments.begin(), moments.end(),
              [](const Moment& a, const Moment& b) { return a.power < b.power; });
    return moments;
}

/// How far bands lie off the middle of their neighbours, on average.
double unevenness(const std::vector<double>& levels) {
    double sum = 0.0;
    const auto end = std::min(lastTone, levels.size() - 1);
    for (std::size_t band = firstTone; band < end; ++band)
        sum += std::abs(levels[band] - (levels[band - 1] + levels[band + 1]) / 2.0);
    return sum / static_cast<double>(end - firstTone);
}

}  // namespace

BackgroundSound BackgroundSound::of(ShortSpectra& spectra) {
    const auto moments = momentsOf(spectra);
    if (moments.empty())
        return {};
    const auto levelAt = [&](std::size_t hundredth) {
        return levelDb(moments[moments.size() * hundredth / 100].power);
    };
    const auto quiet = std::max<std::size_t>(1, moments.size() / 5);
    std::vector<double> levels(spectra.bands());
    for (const auto& moment : std::span(moments).first(quiet)) {
        const auto spectrum = spectra.at(moment.place);
        for (std::size_t band = 0; band < levels.size(); ++band)
            levels[band] += levelDb(std::norm(spectrum[band])) / static_cast<double>(quiet);
    }
    // What chance does to a mean shrinks with the root of how many it is of.
    return {levelAt(98) - levelAt(5), unevenness(levels) * std::sqrt(static_cast<double>(quiet))};
}

bool BackgroundSound::isAudibleNoise() const {
    return ripple < mostRippleOfNoise && rangeDb < inaudibleDb;
}

}  // namespace korvane
