// Sounds as spectra, by the library's own transform, which uses what the processor has for it.
#pragma once

#include <complex>
#include <cstddef>
#include <memory>
#include <span>

struct AVTXContext;

namespace korvane {

/// The discrete Fourier transform of so many complex values: the sum over n of x[n] exp(-2 pi i k n / size),
/// not scaled. One thread at a time.
class FourierTransform {
  public:
    /// \param size  a power of two. \throws MediaError when there is no memory.
    explicit FourierTransform(std::size_t size);

    /// In place. \param values  size of them.
    void operator()(std::span<std::complex<float>> values) const;

  private:
    struct End {
        void operator()(AVTXContext* context) const;
    };
    std::unique_ptr<AVTXContext, End> context_;
    void (*function_)(AVTXContext*, void*, void*, std::ptrdiff_t) = nullptr;
};

}  // namespace korvane
