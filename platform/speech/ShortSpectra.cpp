#include "platform/speech/ShortSpectra.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace korvane {
namespace {

using Complex = std::complex<float>;

/// The discrete Fourier transform in place (Cooley and Tukey, radix 2); the size is a power of two.
class Transform {
  public:
    explicit Transform(std::size_t size) : turns_(size / 2) {
        for (std::size_t i = 0; i < turns_.size(); ++i)
            turns_[i] = std::polar(
                1.0F, -2.0F * std::numbers::pi_v<float> * static_cast<float>(i) / static_cast<float>(size));
    }

    void operator()(std::vector<Complex>& values) const {
        const std::size_t size = values.size();
        for (std::size_t i = 1, j = 0; i < size; ++i) {
            std::size_t bit = size / 2;
            for (; (j & bit) != 0; bit /= 2)
                j ^= bit;
            j ^= bit;
            if (i < j)
                std::swap(values[i], values[j]);
        }
        for (std::size_t length = 2; length <= size; length *= 2)
            for (std::size_t begin = 0; begin < size; begin += length)
                for (std::size_t k = 0; k < length / 2; ++k)
                    butterfly(values[begin + k], values[begin + k + length / 2], turns_[k * (size / length)]);
    }

  private:
    /// Written out: the library's product looks for infinities each time.
    static void butterfly(Complex& a, Complex& b, Complex turn) {
        const Complex turned(b.real() * turn.real() - b.imag() * turn.imag(),
                             b.real() * turn.imag() + b.imag() * turn.real());
        b = a - turned;
        a += turned;
    }

    std::vector<Complex> turns_;
};

}  // namespace

ShortSpectra::ShortSpectra(std::span<const float> samples, int rateHz)
    : size_(std::bit_ceil(static_cast<std::size_t>(rateHz) * 32 / 1000)),
      count_(samples.size()),
      moments_((samples.size() + lead()) / hop() + 1),
      window_(size_),
      values_(moments_ * bands()) {
    for (std::size_t i = 0; i < size_; ++i)
        window_[i] =
            std::sin(std::numbers::pi_v<float> * (static_cast<float>(i) + 0.5F) / static_cast<float>(size_));
    const Transform transform(size_);
    std::vector<Complex> part(size_);
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
    const Transform transform(size_);
    std::vector<Complex> part(size_);
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
