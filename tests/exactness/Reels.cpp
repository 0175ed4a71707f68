#include "tests/exactness/Reels.h"

#include <algorithm>
#include <fstream>
#include <iomanip>
#include <random>

#include "editor/VideoEditor.h"
#include "tests/fixtures/ClipCache.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/ClipWriter.h"
#include "tests/support/CollectingMainQueue.h"

namespace korvane::exactness {
namespace {

using fixtures::AudioSpec;
using fixtures::ClipSpec;
using fixtures::Ratio;
using fixtures::VideoSpec;

constexpr double kSourceSeconds = 600.0;
constexpr int kWords = 300;
/// The lower part of the picture, where the default style has its text and the pattern nothing.
constexpr fixtures::UnitRect kTextRegion{0.0, 0.5, 1.0, 0.92};

/// Every word is a few bars, which a test can count in the picture: a line of three words has 9, 12 or 15.
std::string textOfWord(std::size_t index) {
    return std::string(3 + index / 3 % 3, '|');
}

/// Random doubles, not multiples of any frame or time unit, from 0.02 to 0.34 s, each in its own two seconds.
std::vector<SpeechSegment> orderedWords(std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<SpeechSegment> words;
    for (std::size_t i = 0; i < kWords; ++i) {
        const double start = 1.0 + static_cast<double>(i) * 1.98 + unit(random) * 1.6;
        words.emplace_back(textOfWord(i), start, start + 0.02 + unit(random) * 0.32);
    }
    return words;
}

/// Anywhere, in any order; every third begins inside the one before it.
std::vector<SpeechSegment> scatteredWords(std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<SpeechSegment> words;
    double start = 0.0;
    for (std::size_t i = 0; i < 60; ++i) {
        start = i % 3 == 2 ? start + 0.07 : 0.3 + unit(random) * 590.0;
        words.emplace_back(textOfWord(i), start, start + 0.1 + unit(random) * 0.3);
    }
    return words;
}

/// A phone in changing light: 24 to 60 frames/s from moment to moment and now and then a long frame.
VideoSpec variableRate() {
    VideoSpec video;
    video.timeBase = {1, 90'000};
    std::mt19937 random(11);
    for (std::int64_t time = 0; time < static_cast<std::int64_t>(kSourceSeconds * 90'000);) {
        video.presentationTimes.push_back(time);
        const auto roll = random();
        time += roll % 50 == 0 ? 18'000 : 1'500 + static_cast<std::int64_t>(roll >> 8) % 2'250;
    }
    return video;
}

ReelCase makeCase(std::string name, VideoSpec video, int outputRate, std::uint32_t seed) {
    video.widthPx = 108;
    video.heightPx = 192;
    video.gopFrames = 50;
    AudioSpec audio;
    audio.durationSeconds = kSourceSeconds;
    audio.codec = "pcm_s16le";
    ReelCase reel{std::move(name), {}, orderedWords(seed), outputRate};
    reel.source.video.push_back(std::move(video));
    reel.source.audio.push_back(audio);
    return reel;
}

std::vector<ReelCase> makeCases() {
    const auto constant = [](int num, int den) {
        return VideoSpec::constantRate({num, den}, kSourceSeconds);
    };
    std::vector<ReelCase> cases;
    cases.push_back(makeCase("24", constant(24, 1), 24, 1));
    // A sample rate at which 1/600 s is no whole number of samples.
    cases.back().source.audio[0].rateHz = 44'100;
    cases.push_back(makeCase("25", constant(25, 1), 25, 2));
    cases.push_back(makeCase("29_97", constant(30'000, 1'001), 30, 3));
    // As phones write it: pictures out of order, compressed sound with its delay.
    cases.back().source.video[0].bFrames = 2;
    cases.back().source.audio[0].codec = "aac";
    cases.push_back(makeCase("30", constant(30, 1), 30, 4));
    cases.push_back(makeCase("59_94", constant(60'000, 1'001), 60, 5));
    cases.back().source.audio[0].codec = "aac";
    cases.push_back(makeCase("60", constant(60, 1), 60, 6));
    VideoSpec variable = variableRate();
    const double average = static_cast<double>(variable.presentationTimes.size()) / kSourceSeconds;
    cases.push_back(makeCase("variable", std::move(variable), static_cast<int>(average + 0.5), 7));
    cases.back().source.audio[0].codec = "aac";
    cases.push_back(makeCase("scattered", constant(30, 1), 30, 8));
    cases.back().words = scatteredWords(9);
    return cases;
}

std::filesystem::path sourceOf(const ReelCase& reel) {
    // The scattered words come out of the same source as those of 30 frames/s.
    const std::string name = reel.name == "scattered" ? "30" : reel.name;
    return fixtures::cachedClip("ten-minutes-" + name + ".mov", [&](const std::filesystem::path& path) {
        fixtures::writeClip(reel.source, path);
    });
}

}  // namespace

const std::vector<ReelCase>& reelCases() {
    static const std::vector<ReelCase> cases = makeCases();
    return cases;
}

std::filesystem::path reelOf(const ReelCase& reel) {
    const std::filesystem::path source = sourceOf(reel);
    return fixtures::cachedClip("reel-" + reel.name + ".mp4", [&](const std::filesystem::path& path) {
        SubtitleSettings settings;
        settings.fontFamilyName = "DejaVu Sans";
        settings.fontPostscriptName = "DejaVuSans-Bold";
        settings.hasShadow = false;
        CollectingMainQueue queue;
        VideoEditor(queue, silentLog()).exportVideo(source, reel.words, settings, path, [](double) {}, {});
    });
}

std::vector<FrameReading> readingsOf(const ReelCase& reel) {
    const std::filesystem::path file = reelOf(reel);
    const auto kept =
        fixtures::cachedClip("reel-" + reel.name + ".txt", [&](const std::filesystem::path& path) {
            std::ofstream out(path);
            out << std::setprecision(12);
            fixtures::readPictures(file, [&](const fixtures::DecodedPicture& picture) {
                const auto number =
                    fixtures::readFrameNumber(picture.luma).value_or(fixtures::FrameNumberReading{});
                const auto ink = fixtures::measureInk(picture.luma, kTextRegion);
                const fixtures::Ink box = ink.value_or(fixtures::Ink{});
                out << picture.pts << ' ' << picture.timeBase.num << ' ' << picture.timeBase.den << ' '
                    << number.number << ' ' << number.margin << ' ' << ink.has_value() << ' ' << box.left
                    << ' ' << box.top << ' ' << box.right << ' ' << box.bottom << ' ' << box.strokes << '\n';
                return true;
            });
        });
    std::vector<FrameReading> readings;
    std::ifstream in(kept);
    FrameReading next;
    fixtures::Ink box;
    bool hasInk = false;
    while (in >> next.pts >> next.timeBase.num >> next.timeBase.den >> next.number >> next.margin >> hasInk >>
           box.left >> box.top >> box.right >> box.bottom >> box.strokes) {
        next.ink = hasInk ? std::optional(box) : std::nullopt;
        readings.push_back(next);
    }
    return readings;
}

int strokesOfLine(std::size_t line) {
    return 3 * static_cast<int>(3 + line % 3);
}

}  // namespace korvane::exactness
