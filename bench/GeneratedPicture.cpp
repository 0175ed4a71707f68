#include "bench/GeneratedPicture.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <random>

namespace korvane::bench {
namespace {

constexpr int kSceneWidth = 3072;
constexpr int kSceneHeight = 1536;
constexpr int kGrainWidth = 2560;
constexpr int kGrainHeight = 1600;
constexpr int kEdges = 220;
// In 8-bit steps: what a phone's sensor leaves indoors after its own noise reduction.
constexpr double kGrainStrength = 1.9;

float smooth(float t) {
    return t * t * (3.0F - 2.0F * t);
}

std::uint8_t toByte(float value) {
    return static_cast<std::uint8_t>(std::clamp(static_cast<int>(value + 0.5F), 16, 235));
}

double wave(double seconds, double period, double phase = 0.0) {
    return std::sin(2.0 * std::numbers::pi * (seconds / period + phase));
}

/// Where the upper left corner of the view lies in the scene, in pixels: a slow pan, and a hand's tremor.
std::pair<float, float> camera(double seconds) {
    const double x =
        0.5 + 0.42 * wave(seconds, 17.0) + 0.004 * wave(seconds, 0.43) + 0.002 * wave(seconds, 0.19, 0.3);
    const double y = 0.5 + 0.3 * wave(seconds, 23.0, 0.2) + 0.008 * wave(seconds, 0.37, 0.1) +
                     0.004 * wave(seconds, 0.23, 0.7);
    return {static_cast<float>(x * (kSceneWidth - GeneratedPicture::widthPx - 2)),
            static_cast<float>(y * (kSceneHeight - GeneratedPicture::heightPx - 2))};
}

}  // namespace

float GeneratedPicture::Texture::at(float x, float y) const {
    const int column = std::clamp(static_cast<int>(x), 0, width - 2);
    const int row = std::clamp(static_cast<int>(y), 0, height - 2);
    const float u = x - static_cast<float>(column);
    const float v = y - static_cast<float>(row);
    const float* p = samples.data() + static_cast<std::ptrdiff_t>(row) * width + column;
    const float above = p[0] + u * (p[1] - p[0]);
    const float below = p[width] + u * (p[width + 1] - p[width]);
    return above + v * (below - above);
}

/// Noise whose details are the weaker the finer they are, as in nature; from about -1 to 1.
GeneratedPicture::Texture GeneratedPicture::texture(int width, int height, int coarsest, int finest,
                                                    std::uint32_t seed) {
    Texture result{width, height,
                   std::vector<float>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
    std::mt19937 random(seed);
    float strength = 0.5F;
    for (int cell = coarsest; cell >= finest; cell /= 2, strength *= 0.62F) {
        Texture grid{width / cell + 2, height / cell + 2, {}};
        grid.samples.resize(static_cast<std::size_t>(grid.width) * static_cast<std::size_t>(grid.height));
        for (float& s : grid.samples)
            s = static_cast<float>(random()) / 2147483648.0F - 1.0F;
        for (int y = 0; y < height; ++y) {
            const int row = y / cell;
            const float v = smooth(static_cast<float>(y % cell) / static_cast<float>(cell));
            for (int x = 0; x < width; ++x) {
                const int column = x / cell;
                const float u = smooth(static_cast<float>(x % cell) / static_cast<float>(cell));
                const float* p = grid.samples.data() + static_cast<std::ptrdiff_t>(row) * grid.width + column;
                const float above = p[0] + u * (p[1] - p[0]);
                const float below = p[grid.width] + u * (p[grid.width + 1] - p[grid.width]);
                result.samples[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                               static_cast<std::size_t>(x)] += strength * (above + v * (below - above));
            }
        }
    }
    return result;
}

GeneratedPicture::GeneratedPicture()
    : luma_(texture(kSceneWidth, kSceneHeight, 512, 2, 1)),
      cb_(texture(kSceneWidth / 2, kSceneHeight / 2, 256, 16, 2)),
      cr_(texture(kSceneWidth / 2, kSceneHeight / 2, 256, 16, 3)),
      skin_(texture(640, 640, 128, 2, 4)),
      grain_(static_cast<std::size_t>(kGrainWidth) * kGrainHeight),
      frame_(static_cast<std::size_t>(widthPx) * heightPx * 3 / 2) {
    for (float& s : luma_.samples)
        s = 118.0F + 75.0F * s;
    addEdges();
    for (Texture* chroma : {&cb_, &cr_})
        for (float& s : chroma->samples)
            s = 128.0F + 40.0F * s;
    for (float& s : skin_.samples)
        s = 150.0F + 30.0F * s;
    // Neighbours share some of their grain, since a sensor's colours are interpolated.
    std::mt19937 random(5);
    std::normal_distribution<double> normal(0.0, kGrainStrength * 1.2);
    double before = 0.0;
    for (std::int8_t& g : grain_) {
        const double now = normal(random);
        g = static_cast<std::int8_t>(std::clamp(std::lround(0.8 * now + 0.5 * before), -30L, 30L));
        before = now;
    }
}

/// Windows, poles, signs: rectangles that keep the texture below them but stand off from it.
void GeneratedPicture::addEdges() {
    std::mt19937 random(6);
    for (int i = 0; i < kEdges; ++i) {
        const int left = static_cast<int>(random() % kSceneWidth);
        const int top = static_cast<int>(random() % kSceneHeight);
        const int right = std::min<int>(kSceneWidth, left + 6 + static_cast<int>(random() % 220));
        const int bottom = std::min<int>(kSceneHeight, top + 6 + static_cast<int>(random() % 260));
        const float step = static_cast<float>(random() % 90) - 45.0F;
        for (int y = top; y < bottom; ++y)
            for (int x = left; x < right; ++x)
                luma_.samples[static_cast<std::size_t>(y) * kSceneWidth + static_cast<std::size_t>(x)] +=
                    step;
    }
}

const std::vector<std::uint8_t>& GeneratedPicture::at(double seconds) {
    drawScene(seconds);
    drawThings(seconds);
    addGrain(seconds);
    return frame_;
}

void GeneratedPicture::drawScene(double seconds) {
    const auto [left, top] = camera(seconds);
    std::uint8_t* out = frame_.data();
    for (int y = 0; y < heightPx; ++y)
        for (int x = 0; x < widthPx; ++x)
            *out++ = toByte(luma_.at(left + static_cast<float>(x), top + static_cast<float>(y)));
    for (const Texture* chroma : {&cb_, &cr_})
        for (int y = 0; y < heightPx / 2; ++y)
            for (int x = 0; x < widthPx / 2; ++x)
                *out++ =
                    toByte(chroma->at(left / 2 + static_cast<float>(x), top / 2 + static_cast<float>(y)));
}

/// A face in the middle that nods, and two things that cross the view at their own pace.
void GeneratedPicture::drawThings(double seconds) {
    struct Thing {
        double x, y, radius, cb, cr;
    };
    const Thing things[] = {
        {960 + 40 * wave(seconds, 3.1), 520 + 25 * wave(seconds, 1.3, 0.2), 250, 112, 150},
        {960 + 1000 * wave(seconds, 9.0), 300 + 60 * wave(seconds, 2.3), 120, 150, 110},
        {700 + 700 * wave(seconds, 7.0, 0.4), 840 + 90 * wave(seconds, 1.7), 90, 100, 120}};
    for (const Thing& thing : things) {
        const int top = std::max(0, static_cast<int>(thing.y - thing.radius));
        const int bottom = std::min(heightPx, static_cast<int>(thing.y + thing.radius));
        for (int y = top; y < bottom; ++y) {
            const double half =
                std::sqrt(std::max(0.0, thing.radius * thing.radius - (y - thing.y) * (y - thing.y)));
            const int left = std::max(0, static_cast<int>(thing.x - half));
            const int right = std::min(widthPx, static_cast<int>(thing.x + half));
            for (int x = left; x < right; ++x) {
                const auto u = static_cast<float>(320.0 + (x - thing.x));
                const auto v = static_cast<float>(320.0 + (y - thing.y));
                frame_[static_cast<std::size_t>(y) * widthPx + static_cast<std::size_t>(x)] =
                    toByte(skin_.at(u, v));
                const std::size_t chroma = static_cast<std::size_t>(y / 2) * (widthPx / 2) +
                                           static_cast<std::size_t>(x / 2) +
                                           static_cast<std::size_t>(widthPx) * heightPx;
                frame_[chroma] = static_cast<std::uint8_t>(thing.cb);
                frame_[chroma + static_cast<std::size_t>(widthPx / 2) * (heightPx / 2)] =
                    static_cast<std::uint8_t>(thing.cr);
            }
        }
    }
}

/// New grain for every picture: another part of one large sheet.
void GeneratedPicture::addGrain(double seconds) {
    std::mt19937 random(static_cast<std::uint32_t>(std::lround(seconds * 1000.0)) + 7);
    const std::size_t left = random() % (kGrainWidth - widthPx);
    const std::size_t top = random() % (kGrainHeight - heightPx);
    std::uint8_t* out = frame_.data();
    for (std::size_t y = 0; y < heightPx; ++y) {
        const std::int8_t* grain = grain_.data() + (top + y) * kGrainWidth + left;
        for (std::size_t x = 0; x < widthPx; ++x, ++out)
            *out = static_cast<std::uint8_t>(std::clamp(*out + grain[x], 16, 235));
    }
}

}  // namespace korvane::bench
