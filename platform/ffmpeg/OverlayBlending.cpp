#include "platform/ffmpeg/OverlayBlending.h"

extern "C" {
#include <libavutil/frame.h>
}

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace korvane {
namespace {

constexpr float kFullCoverage = 32768.0F;

/// Rows of one component (and coverage) as floats: coverage 0 to 1, value premultiplied on the scale of 0 to
/// 255.
struct Component {
    int width;
    int height;
    std::vector<float> samples;
    float at(int x, int y) const {
        if (x < 0 || y < 0 || x >= width || y >= height)
            return 0.0F;
        return samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                       static_cast<std::size_t>(x)];
    }
};

// ITU-R BT.709, 8 bit, limited range: offset (times coverage) and the weights of premultiplied R', G', B' of
// 0 to 255.
struct Weights {
    float offset;
    float red;
    float green;
    float blue;
};
constexpr float kLumaScale = 219.0F / 255.0F;
constexpr float kChromaScale = 224.0F / 255.0F;
constexpr Weights kLuma{16.0F, 0.2126F * kLumaScale, 0.7152F * kLumaScale, 0.0722F * kLumaScale};
constexpr Weights kCb{128.0F, -0.2126F / 1.8556F * kChromaScale, -0.7152F / 1.8556F * kChromaScale,
                      0.5F * kChromaScale};
constexpr Weights kCr{128.0F, 0.5F * kChromaScale, -0.7152F / 1.5748F * kChromaScale,
                      -0.0722F / 1.5748F * kChromaScale};
constexpr Weights kCoverage{1.0F, 0.0F, 0.0F, 0.0F};

Component component(const std::uint8_t* bgra, int width, int height, int stride, const Weights& w,
                    float opacity) {
    Component c{width, height,
                std::vector<float>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    float* out = c.samples.data();
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* p = bgra + static_cast<std::ptrdiff_t>(y) * stride;
        for (int x = 0; x < width; ++x, p += 4)
            *out++ = opacity * (w.offset * p[3] / 255.0F + w.blue * p[0] + w.green * p[1] + w.red * p[2]);
    }
    return c;
}

std::uint16_t stored(float value, float scale) {
    return static_cast<std::uint16_t>(std::clamp(std::lround(value * scale), 0L, 65535L));
}

int floorHalf(int v) {
    return v >= 0 ? v / 2 : -((1 - v) / 2);
}

}  // namespace

BlendPlanes::BlendPlanes(const std::uint8_t* bgra, int width, int height, int strideBytes, int x, int y,
                         double opacity) {
    const auto strength = static_cast<float>(opacity);
    const Component coverage = component(bgra, width, height, strideBytes, kCoverage, strength);
    const Component luma = component(bgra, width, height, strideBytes, kLuma, strength);
    Plane& full = planes_[0];
    full = {x,
            y,
            width,
            height,
            std::vector<std::uint16_t>(coverage.samples.size()),
            std::vector<std::uint16_t>(coverage.samples.size())};
    for (std::size_t i = 0; i < coverage.samples.size(); ++i) {
        full.coverage[i] = stored(coverage.samples[i], kFullCoverage);
        full.value[i] = stored(luma.samples[i], 128.0F);
    }
    for (int plane = 1; plane < 3; ++plane) {
        const Component colour =
            component(bgra, width, height, strideBytes, plane == 1 ? kCb : kCr, strength);
        Plane& half = planes_[plane];
        // A colour sample at column i stands on pixel column 2i and between the rows 2j and 2j + 1; it takes
        // from the columns 2i - 1 to 2i + 1.
        half.x = floorHalf(x);
        half.y = floorHalf(y);
        half.width = floorHalf(x + width) + 1 - half.x;
        half.height = floorHalf(y + height - 1) + 1 - half.y;
        const auto size = static_cast<std::size_t>(half.width) * static_cast<std::size_t>(half.height);
        half.coverage.resize(size);
        half.value.resize(size);
        const auto averaged = [&](const Component& c, int i, int j) {
            const int column = 2 * (half.x + i) - x;
            const int row = 2 * (half.y + j) - y;
            float sum = 0.0F;
            for (int r = row; r < row + 2; ++r)
                sum += 0.25F * c.at(column - 1, r) + 0.5F * c.at(column, r) + 0.25F * c.at(column + 1, r);
            return sum * 0.5F;
        };
        std::size_t k = 0;
        for (int j = 0; j < half.height; ++j)
            for (int i = 0; i < half.width; ++i, ++k) {
                half.coverage[k] = stored(averaged(coverage, i, j), kFullCoverage);
                half.value[k] = stored(averaged(colour, i, j), 128.0F);
            }
    }
}

void BlendPlanes::blend(const Plane& plane, std::uint8_t* target, int stride, int columns, int rows) {
    const int left = std::max(0, plane.x);
    const int right = std::min(columns, plane.x + plane.width);
    const int top = std::max(0, plane.y);
    const int bottom = std::min(rows, plane.y + plane.height);
    if (left >= right)
        return;
    for (int y = top; y < bottom; ++y) {
        const std::size_t offset =
            static_cast<std::size_t>(y - plane.y) * static_cast<std::size_t>(plane.width) +
            static_cast<std::size_t>(left - plane.x);
        const std::uint16_t* coverage = plane.coverage.data() + offset;
        const std::uint16_t* value = plane.value.data() + offset;
        std::uint8_t* out = target + static_cast<std::ptrdiff_t>(y) * stride + left;
        const int count = right - left;
        for (int i = 0; i < count; ++i) {
            const std::uint32_t mixed =
                out[i] * (32768U - coverage[i]) + (static_cast<std::uint32_t>(value[i]) << 8) + 16384U;
            out[i] = static_cast<std::uint8_t>(std::min(mixed >> 15, 255U));
        }
    }
}

void BlendPlanes::blendOnto(AVFrame& canvas) const {
    for (int i = 0; i < 3; ++i) {
        const int shift = i == 0 ? 0 : 1;
        blend(planes_[i], canvas.data[i], canvas.linesize[i], (canvas.width + shift) >> shift,
              (canvas.height + shift) >> shift);
    }
}

}  // namespace korvane
