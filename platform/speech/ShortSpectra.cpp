#include "platform/speech/ShortSpectra.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "platform/ffmpeg/FourierTransform.h"

namespace korvane {

ShortSpectra::ShortSpectra(std::span<const float> samples, int rateHz)
    : size_(std::bit_ceil(static_cast<std::size_t>(rateHz) * 32 / 1000)),
      count_(samples.size()),
      moments_((samples.size() + lead()) / hop() + 1),
      window_(size_),
      values_(moments_ * bands()) {
    for (std::size_t i = 0; i < size_; ++i)
        window_[i] =
            std::sin(std::numbers::pi_v<float> * (static_cast<float>(i) + 0.5F) / static_cast<float>(size_));
    const FourierTransform transform(size_);
    std::vector<std::complex<float>> part(size_);
    for (std::size_t moment = 0; moment < moments_; ++moment) {
        for (std::size_t i = 0; i < size_; ++i) {
            const std::size_t place = moment * hop() + i;
            const bool isInside = place >= lead() && place - lead() < count_;
            const float sample = isInside ? samples[place - lead()] : 0.0F;
            part[i] = std::isfinite(sample) ? sample * window_[i] : 0.0F;
        }
        transform(part);
        std::copy_n(part.begin(), bands(), at(moment).begin());
    }
}

std::vector<float> ShortSpectra::sound() const {
    std::vector<float> padded(moments_ * hop() + size_);
    const FourierTransform transform(size_);
    std::vector<std::complex<float>> part(size_);
    for (std::size_t moment = 0; moment < moments_; ++moment) {
        const auto* const spectrum = values_.data() + moment * bands();
        // The inverse of a real sound's spectrum is the transform of its conjugate.
        for (std::size_t i = 0; i < size_; ++i)
            part[i] = i < bands() ? std::conj(spectrum[i]) : spectrum[size_ - i];
        transform(part);
        for (std::size_t i = 0; i < size_; ++i)
            padded[moment * hop() + i] += part[i].real() * window_[i];
    }
    // Four windows overlap everywhere, and their squares add up to two.
    std::vector<float> samples(count_);
    for (std::size_t i = 0; i < count_; ++i)
        samples[i] = padded[i + lead()] / (2.0F * static_cast<float>(size_));
    return samples;
}

}  // namespace korvane
