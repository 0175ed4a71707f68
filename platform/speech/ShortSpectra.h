// A sound as the spectra of short moments, and back.
#pragma once

#include <complex>
#include <cstddef>
#include <span>
#include <vector>

namespace korvane {

/// Windows of 32 ms (the next power of two in samples), one each 8 ms, weighted by the root of a Hann window
/// both ways: unchanged spectra give the sound back. Takes 4 times the sound's memory. A value.
class ShortSpectra {
  public:
    /// What is no finite number counts as silence. \throws MediaError when there is no memory.
    ShortSpectra(std::span<const float> samples, int rateHz);

    std::size_t moments() const { return moments_; }
    std::size_t bands() const { return size_ / 2 + 1; }
    /// From 0 Hz to half the rate, evenly spaced. The middle of moment i is sample (i - 1) * hop().
    std::span<std::complex<float>> at(std::size_t moment) {
        return std::span(values_).subspan(moment * bands(), bands());
    }
    std::size_t hop() const { return size_ / 4; }

    /// As many samples as came in.
    std::vector<float> sound() const;

  private:
    /// The first moments begin before the sound, so that as many windows hear its first sample as any other.
    std::size_t lead() const { return size_ - hop(); }

    std::size_t size_;
    std::size_t count_;
    std::size_t moments_;
    std::vector<float> window_;
    std::vector<std::complex<float>> values_;
};

}  // namespace korvane
