#include "platform/speech/NoiseReduction.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "platform/speech/BackgroundSound.h"
#include "platform/speech/ShortSpectra.h"

namespace korvane {
namespace {

// The background in a band, as the quietest fifth of its moments has it: of a steady noise's power, which is
// spread exponentially, the mean of the lowest fifth is 0.107 of the mean.
constexpr std::size_t quietPart = 5;
constexpr float quietToMean = 1.0F / 0.107F;
// A moment of digital silence tells nothing about the background.
constexpr float leastPower = 1e-9F;

constexpr float followed = 0.8F;     // of the background, from one moment to the next
constexpr float remembered = 0.98F;  // of what was left of the moment before, in the estimate of this one's
constexpr float speechOverNoise = 31.6F;  // 15 dB: how loud speech is where there is some
constexpr float leastGain = 0.25F;        // -12 dB: more gains nothing, and hurts weak sounds

/// One band on its way through the stretch.
class Band {
  public:
    explicit Band(std::vector<float> powers) {
        const auto count = std::max<std::size_t>(1, powers.size() / quietPart);
        const auto end = powers.begin() + static_cast<std::ptrdiff_t>(count);
        std::nth_element(powers.begin(), end - 1, powers.end());
        float sum = 0.0F;
        for (auto power = powers.begin(); power != end; ++power)
            sum += *power;
        noise_ = std::max(leastPower, quietToMean * sum / static_cast<float>(count));
    }

    float gain(float power) {
        follow(power);
        const float now = std::min(power / noise_, 1000.0F);
        const float before = left_ / noise_;
        const float ratio = remembered * before + (1.0F - remembered) * std::max(now - 1.0F, 0.0F);
        const float gain = ratio / (1.0F + ratio);
        left_ = gain * gain * power;
        return std::max(gain, leastGain);
    }

  private:
    void follow(float power) {
        const float wiener = speechOverNoise / (1.0F + speechOverNoise);
        const float evidence = std::min(power / noise_ * wiener, 50.0F);
        float speech = 1.0F / (1.0F + (1.0F + speechOverNoise) * std::exp(-evidence));
        // A background that became louder would be taken for speech for ever.
        often_ = 0.9F * often_ + 0.1F * speech;
        if (often_ > 0.99F)
            speech = std::min(speech, 0.99F);
        const float background = speech * noise_ + (1.0F - speech) * power;
        noise_ = std::max(leastPower, followed * noise_ + (1.0F - followed) * background);
    }

    float noise_ = 0.0F;
    float left_ = 0.0F;
    float often_ = 0.5F;
};

}  // namespace

std::vector<float> withoutNoise(std::span<const float> samples, int rateHz) {
    ShortSpectra spectra(samples, rateHz);
    if (!BackgroundSound::of(spectra).isAudibleNoise())
        return {samples.begin(), samples.end()};
    std::vector<float> powers(spectra.moments());
    for (std::size_t band = 0; band < spectra.bands(); ++band) {
        for (std::size_t moment = 0; moment < powers.size(); ++moment)
            powers[moment] = std::norm(spectra.at(moment)[band]);
        Band filter(powers);
        for (std::size_t moment = 0; moment < powers.size(); ++moment)
            spectra.at(moment)[band] *= filter.gain(powers[moment]);
    }
    return spectra.sound();
}

}  // namespace korvane
