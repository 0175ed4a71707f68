#include "platform/ffmpeg/FourierTransform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace korvane {
namespace {

using Values = std::vector<std::complex<float>>;

/// By the definition.
Values transformed(const Values& values) {
    Values result(values.size());
    const double turn = -2.0 * std::numbers::pi / static_cast<double>(values.size());
    for (std::size_t k = 0; k < values.size(); ++k) {
        std::complex<double> sum;
        for (std::size_t n = 0; n < values.size(); ++n)
            sum += std::complex<double>(values[n]) *
                   std::polar(1.0, turn * static_cast<double>(k * n % values.size()));
        result[k] = std::complex<float>(sum);
    }
    return result;
}

TEST(FourierTransform, isTheSumThatItIsDefinedAs) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> any(-1.0F, 1.0F);
    for (const std::size_t size : {2U, 16U, 256U, 512U, 2048U}) {
        Values values(size + 1);  // from an odd place on, as callers may have it
        for (auto& value : values)
            value = {any(random), any(random)};
        const std::span part = std::span(values).subspan(1);
        const auto expected = transformed({part.begin(), part.end()});
        const FourierTransform transform(size);
        transform(part);
        for (std::size_t k = 0; k < size; ++k)
            ASSERT_LT(std::abs(part[k] - expected[k]), 1e-4F * std::sqrt(static_cast<float>(size)))
                << size << ", " << k;
    }
}

}  // namespace
}  // namespace korvane
