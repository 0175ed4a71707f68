// korvane-clip: what the scripts of this folder can't do themselves. It makes a clip whose pictures carry
// their numbers, reads numbers and lines out of pictures of the screen, and finds a reel's sound on a tape.
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/fixtures/InkMeter.h"
#include "tests/fixtures/TestPattern.h"

using namespace korvane::fixtures;

namespace {

/// Below the bar code and above the lower corners, where lines stand in the usual style.
constexpr UnitRect kLineRegion{0.0, 0.5, 1.0, 0.92};

/// 30 pictures a second, wider than high, so that the reel shows its middle. No sound.
void writePictures(double seconds, const std::string& path) {
    ClipSpec spec;
    spec.container = "mp4";
    spec.video = {VideoSpec::constantRate({30, 1}, seconds)};
    spec.video[0].widthPx = 640;
    spec.video[0].heightPx = 360;
    spec.video[0].bFrames = 2;
    writeClip(spec, path);
}

/// For each grey picture of the input a line: number, margin (-1 0 without a code), then the line's left,
/// top, right, bottom and strokes (zeros without one).
void readPicturesFromInput(int width, int height) {
    std::vector<std::uint8_t> grey(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    while (std::fread(grey.data(), 1, grey.size(), stdin) == grey.size()) {
        const PlaneView plane{grey.data(), width, width, height};
        const auto number = readFrameNumber(plane).value_or(FrameNumberReading{});
        const auto ink = measureInk(plane, kLineRegion).value_or(Ink{});
        std::printf("%d %.3f %.2f %.2f %.2f %.2f %d\n", number.number, number.margin, ink.left, ink.top,
                    ink.right, ink.bottom, ink.strokes);
    }
}

/// Four kHz are enough to tell words apart.
constexpr int kThin = 12;

std::vector<float> thinned(std::span<const float> samples) {
    std::vector<float> thin(samples.size() / kThin);
    for (std::size_t i = 0; i < thin.size(); ++i) {
        const auto part = samples.subspan(i * kThin, kThin);
        for (const float sample : part)
            thin[i] += sample / kThin;
    }
    return thin;
}

std::vector<float> readTape(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), {}};
    std::vector<float> samples(bytes.size() / 2);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const auto low = static_cast<unsigned char>(bytes[2 * i]);
        const auto high = static_cast<signed char>(bytes[2 * i + 1]);
        samples[i] = static_cast<float>(high * 256 + low) / 32768.0F;
    }
    return samples;
}

double powerOf(std::span<const float> samples) {
    double sum = 0.0;
    for (const float sample : samples)
        sum += static_cast<double>(sample) * sample;
    return sum;
}

double product(std::span<const float> one, std::span<const float> other) {
    double sum = 0.0;
    for (std::size_t i = 0; i < one.size(); ++i)
        sum += static_cast<double>(one[i]) * other[i];
    return sum;
}

/// For each place on a tape (16 bit, mono, 48 kHz) where a fifth of a second of the reel sounds, a line:
/// seconds of the reel, seconds of the tape, correlation. Stretches of the reel in which nothing is said are
/// left out.
void findSound(const std::string& tapePath, const std::string& reelPath) {
    const DecodedSound sound = readSound(reelPath);
    if (sound.rateHz != 48'000 || sound.channels != 1)
        throw std::runtime_error("the reel's sound is not mono at 48 kHz");
    const std::vector<float> tape = thinned(readTape(tapePath));
    const std::vector<float> reel = thinned(sound.samples);
    constexpr std::size_t kRate = 48'000 / kThin;
    constexpr std::size_t kProbe = kRate / 5;
    for (std::size_t from = 0; from + kProbe <= reel.size(); from += kProbe) {
        const auto probe = std::span(reel).subspan(from, kProbe);
        const double own = powerOf(probe);
        if (own < 1e-4 * kProbe)
            continue;
        std::size_t best = 0;
        double bestMatch = 0.0;
        for (std::size_t at = 0; at + kProbe <= tape.size(); ++at) {
            const auto stretch = std::span(tape).subspan(at, kProbe);
            const double power = powerOf(stretch);
            const double match = power > 0.01 * own ? product(probe, stretch) / std::sqrt(power * own) : 0.0;
            // One line for each place: the best one within a probe's length.
            if (match > 0.8 && (bestMatch == 0.0 || match > bestMatch)) {
                best = at;
                bestMatch = match;
            }
            const bool isPast = bestMatch > 0.0 && (at > best + kProbe || at + kProbe == tape.size());
            if (!isPast)
                continue;
            std::printf("%.4f %.4f %.3f\n", static_cast<double>(from) / kRate,
                        static_cast<double>(best) / kRate, bestMatch);
            bestMatch = 0.0;
        }
    }
}

int run(const std::vector<std::string>& arguments) {
    if (arguments.size() == 3 && arguments[0] == "pictures")
        writePictures(std::stod(arguments[1]), arguments[2]);
    else if (arguments.size() == 3 && arguments[0] == "read")
        readPicturesFromInput(std::stoi(arguments[1]), std::stoi(arguments[2]));
    else if (arguments.size() == 3 && arguments[0] == "hear")
        findSound(arguments[1], arguments[2]);
    else {
        std::fputs("korvane-clip pictures SECONDS FILE | read WIDTH HEIGHT | hear TAPE REEL\n", stderr);
        return 2;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvane-clip: %s\n", error.what());
        return 1;
    }
}
