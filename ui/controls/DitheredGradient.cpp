#include "DitheredGradient.h"

#include <array>
#include <cmath>
#include <cstdint>

namespace korvane {

namespace {

// Steps of 1/g and 1/g² modulo 1 in 16 bits, g = 1.32471795... (g³ = g + 1): the additive sequence that
// spreads over the plane most evenly, so that its noise is fine and without a pattern; and it costs an
// addition a pixel.
constexpr std::uint32_t stepX = 49471;
constexpr std::uint32_t stepY = 37345;
// Each channel starts elsewhere in the sequence, so that their roundings do not add up to a brighter pixel.
constexpr std::array<std::uint32_t, 3> phases{0, 21845, 43690};

struct Ramp {
    double start;
    double perX;
    double perY;
};

Ramp rampOf(float from, float to, const QSize& size) {
    const double w = size.width();
    const double h = size.height();
    const double scale = 255.0 * (double(to) - double(from)) / (w * w + h * h);
    // At the pixels' centres.
    return {255.0 * double(from) + scale * (w + h) / 2, scale * w, scale * h};
}

void fillRow(std::uint32_t* row, int width, const std::array<std::uint32_t, 3>& starts,
             const std::array<std::uint32_t, 3>& steps, const std::array<std::uint32_t, 3>& thresholds) {
    // Colours are 8.16 fixed point; a wrapping 32-bit sum carries negative steps too.
    for (int x = 0; x < width; ++x) {
        const auto i = static_cast<std::uint32_t>(x);
        const std::uint32_t spread = i * stepX;
        const std::uint32_t r = (starts[0] + i * steps[0] + ((spread + thresholds[0]) & 0xffffU)) >> 16U;
        const std::uint32_t g = (starts[1] + i * steps[1] + ((spread + thresholds[1]) & 0xffffU)) >> 16U;
        const std::uint32_t b = (starts[2] + i * steps[2] + ((spread + thresholds[2]) & 0xffffU)) >> 16U;
        row[x] = 0xff000000U | r << 16U | g << 8U | b;
    }
}

std::uint32_t fixed(double value) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(std::lround(value * 65536)));
}

}  // namespace

QImage ditheredGradient(const QSize& size, const QColor& from, const QColor& to) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    const std::array<Ramp, 3> ramps{rampOf(from.redF(), to.redF(), size),
                                    rampOf(from.greenF(), to.greenF(), size),
                                    rampOf(from.blueF(), to.blueF(), size)};
    std::array<std::uint32_t, 3> steps{};
    for (std::size_t c = 0; c < 3; ++c) {
        steps[c] = fixed(ramps[c].perX);
    }
    for (int y = 0; y < size.height(); ++y) {
        std::array<std::uint32_t, 3> starts{};
        std::array<std::uint32_t, 3> thresholds{};
        for (std::size_t c = 0; c < 3; ++c) {
            starts[c] = fixed(ramps[c].start + y * ramps[c].perY);
            thresholds[c] = phases[c] + static_cast<std::uint32_t>(y) * stepY;
        }
        fillRow(reinterpret_cast<std::uint32_t*>(image.scanLine(y)), size.width(), starts, steps, thresholds);
    }
    return image;
}

}  // namespace korvane
