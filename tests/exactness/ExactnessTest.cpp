// Reads nothing but the written MP4 files and holds each picture and each stretch of sound against what the
// timeline calls for.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <algorithm>
#include <cmath>
#include <map>
#include <vector>

#include "tests/exactness/Reels.h"
#include "tests/fixtures/AudioCode.h"
#include "tests/fixtures/ClipReader.h"
#include "tests/fixtures/FileSurgery.h"
#include "tests/fixtures/InkMeter.h"

namespace korvane::exactness {
namespace {

using fixtures::DecodedSound;
using fixtures::Ink;

class Exactness : public testing::TestWithParam<ReelCase> {
  protected:
    const ReelCase& reel() const { return GetParam(); }
    const int rate_ = GetParam().outputRate;
    const ReelModel model_ = GetParam().model();
};

TEST_P(Exactness, everyFrameShowsTheSourceFrameThatTheTimelineCallsFor) {
    const std::vector<FrameReading> readings = readingsOf(reel());
    int wrong = 0;
    for (int frame = 0; frame < std::min(static_cast<int>(readings.size()), model_.frameCount(rate_));
         ++frame) {
        const FrameReading& seen = readings[static_cast<std::size_t>(frame)];
        const int wanted = model_.sourceFrame(frame, rate_, reel().video());
        if (seen.number == wanted || ++wrong > 10)
            continue;
        ADD_FAILURE() << "frame " << frame << " (word " << model_.wordAt(frame, rate_)
                      << ") shows source frame " << seen.number << " instead of " << wanted;
    }
    EXPECT_EQ(wrong, 0) << "of " << readings.size();
    EXPECT_EQ(static_cast<int>(readings.size()), model_.frameCount(rate_));
    const auto worst = std::min_element(readings.begin(), readings.end(),
                                        [](const auto& a, const auto& b) { return a.margin < b.margin; });
    EXPECT_GT(worst->margin, 0.7) << "frames were mixed";
}

TEST_P(Exactness, pictureNumberIStandsAtExactlyIFrameDurations) {
    const std::vector<FrameReading> readings = readingsOf(reel());
    for (std::size_t frame = 0; frame < readings.size(); ++frame) {
        const FrameReading& seen = readings[frame];
        ASSERT_EQ(seen.pts * seen.timeBase.num * rate_, static_cast<std::int64_t>(frame) * seen.timeBase.den)
            << "frame " << frame;
    }
}

/// One word's sound, as far as it can be told: words of less than 40 ms are all ramp.
struct HeardWord {
    std::size_t index = 0;
    double offsetSamples = 0.0;
    double gain = 0.0;  ///< between the ramps; 0 when there is nothing between
};

std::vector<HeardWord> listen(const ReelCase& reel, const ReelModel& model, const DecodedSound& sound) {
    const fixtures::AudioCode code(1);
    std::vector<HeardWord> heard;
    for (std::size_t i = 0; i < model.words().size(); ++i) {
        const std::int64_t first = model.firstSample(i, sound.rateHz);
        const std::int64_t last = i + 1 < model.words().size()
                                      ? model.firstSample(i + 1, sound.rateHz)
                                      : std::llround(model.reelSeconds() * sound.rateHz);
        if (last - first < sound.rateHz * 4 / 100 || last > sound.frames())
            continue;
        const auto all = std::span(sound.samples);
        const fixtures::Location whole =
            locate(all.subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(last - first)), code,
                   sound.rateHz, model.firstSourceSample(i, sound.rateHz), 400);
        EXPECT_GT(whole.correlation, 0.75) << reel.name << ", word " << i;
        HeardWord word{i, whole.offsetSamples, 0.0};
        const std::int64_t ramp = sound.rateHz * 3 / 100;
        if (last - first > 4 * ramp) {
            const auto inside = all.subspan(static_cast<std::size_t>(first + ramp),
                                            static_cast<std::size_t>(last - first - 2 * ramp));
            word.gain =
                locate(inside, code, sound.rateHz, model.firstSourceSample(i, sound.rateHz) + ramp, 2).gain;
        }
        heard.push_back(word);
    }
    return heard;
}

TEST_P(Exactness, everyWordSoundsWithinASampleOfItsPlaceAndTheErrorDoesNotGrow) {
    const DecodedSound sound = fixtures::readSound(reelOf(reel()));
    EXPECT_EQ(sound.rateHz, reel().source.audio[0].rateHz);
    EXPECT_EQ(sound.channels, 1);
    EXPECT_NEAR(static_cast<double>(sound.frames()), model_.reelSeconds() * sound.rateHz, 1'024.0);

    const std::vector<HeardWord> heard = listen(reel(), model_, sound);
    ASSERT_GT(heard.size(), model_.words().size() / 2);
    double worst = 0.0;
    for (const HeardWord& word : heard) {
        EXPECT_LE(std::abs(word.offsetSamples), 1.0) << "word " << word.index;
        worst = std::max(worst, std::abs(word.offsetSamples));
        if (word.gain > 0.0) {
            EXPECT_NEAR(word.gain, 1.0, 0.05) << "word " << word.index;
        }
    }
    const auto meanOf = [](auto from, auto to) {
        double sum = 0.0;
        for (auto at = from; at != to; ++at)
            sum += at->offsetSamples;
        return sum / static_cast<double>(to - from);
    };
    const auto tenth = static_cast<std::ptrdiff_t>(heard.size() / 5);
    EXPECT_NEAR(meanOf(heard.begin(), heard.begin() + tenth), meanOf(heard.end() - tenth, heard.end()), 0.3);
    RecordProperty("worstOffsetSamples", std::to_string(worst));
}

/// Gain of the sound against the code, in tenths of the ramps, over all cuts whose ramps have their full
/// length (or all others).
struct RampShape {
    std::array<double, 10> down{};
    std::array<double, 10> up{};
    /// Where down and up meet, against where the cut should lie: over all cuts, and the worst one.
    double cutOffsetSamples = 0.0;
    double worstCutOffsetSamples = 0.0;
    int cuts = 0;
};

RampShape measureRamps(const ReelModel& model, const DecodedSound& sound, bool fullLength) {
    const fixtures::AudioCode code(1);
    std::array<double, 10> downProduct{}, downPower{}, upProduct{}, upPower{};
    double shiftProduct = 0.0;
    double shiftPower = 0.0;
    RampShape shape;
    for (std::size_t i = 0; i + 1 < model.words().size(); ++i) {
        const double ramp = model.rampSeconds(i) * sound.rateHz;
        if ((ramp > 0.0199 * sound.rateHz) != fullLength || ramp < 0.005 * sound.rateHz)
            continue;
        ++shape.cuts;
        const std::int64_t cut = model.firstSample(i + 1, sound.rateHz);
        const auto length = static_cast<std::int64_t>(ramp);
        const auto before = code.samples(
            model.firstSourceSample(i, sound.rateHz) + cut - length - model.firstSample(i, sound.rateHz),
            sound.rateHz, length);
        const auto after = code.samples(model.firstSourceSample(i + 1, sound.rateHz), sound.rateHz, length);
        double ownProduct = 0.0;
        double ownPower = 0.0;
        for (std::int64_t n = 0; n < length; ++n) {
            const auto bin = static_cast<std::size_t>(10 * n / length);
            const auto at = static_cast<std::size_t>(n);
            const double falling = sound.samples[static_cast<std::size_t>(cut - length + n)];
            const double rising = sound.samples[static_cast<std::size_t>(cut + n)];
            downProduct[bin] += falling * before[at];
            downPower[bin] += static_cast<double>(before[at]) * before[at];
            upProduct[bin] += rising * after[at];
            upPower[bin] += static_cast<double>(after[at]) * after[at];
            // A cut that lies d samples later makes the falling side louder by d / ramp and the rising one
            // softer by as much.
            const double wantedFalling = before[at] * static_cast<double>(length - n) / ramp;
            const double wantedRising = after[at] * static_cast<double>(n) / ramp;
            ownProduct += (falling - wantedFalling) * before[at] - (rising - wantedRising) * after[at];
            ownPower +=
                (static_cast<double>(before[at]) * before[at] + static_cast<double>(after[at]) * after[at]) /
                ramp;
        }
        shiftProduct += ownProduct;
        shiftPower += ownPower;
        shape.worstCutOffsetSamples = std::max(shape.worstCutOffsetSamples, std::abs(ownProduct / ownPower));
    }
    for (std::size_t bin = 0; bin < 10; ++bin) {
        shape.down[bin] = downProduct[bin] / downPower[bin];
        shape.up[bin] = upProduct[bin] / upPower[bin];
    }
    shape.cutOffsetSamples = shiftProduct / shiftPower;
    return shape;
}

TEST_P(Exactness, theSoundFallsAndRisesLinearlyAroundEveryCut) {
    const DecodedSound sound = fixtures::readSound(reelOf(reel()));
    for (const bool fullLength : {true, false}) {
        const RampShape shape = measureRamps(model_, sound, fullLength);
        if (!fullLength && shape.cuts == 0)
            continue;  // no word is that short
        ASSERT_GT(shape.cuts, 3) << fullLength;
        for (std::size_t bin = 0; bin < 10; ++bin) {
            const double middle = (static_cast<double>(bin) + 0.5) / 10.0;
            EXPECT_NEAR(shape.down[bin], 1.0 - middle, 0.04) << fullLength << ", tenth " << bin;
            EXPECT_NEAR(shape.up[bin], middle, 0.04) << fullLength << ", tenth " << bin;
        }
        EXPECT_NEAR(shape.cutOffsetSamples, 0.0, 1.0) << fullLength << ", over " << shape.cuts << " cuts";
        // One cut alone is blurred by the codec's noise: a quarter of a millisecond.
        EXPECT_LT(shape.worstCutOffsetSamples, sound.rateHz / 4'000.0) << fullLength;
        RecordProperty(fullLength ? "worstCutOffsetSamples" : "worstCutOffsetOfShortRamps",
                       std::to_string(shape.worstCutOffsetSamples));
        RecordProperty(fullLength ? "cutOffsetSamples" : "cutOffsetOfShortRamps",
                       std::to_string(shape.cutOffsetSamples));
    }
}

TEST_P(Exactness, theReelBeginsAtFullVolumeWithTheFirstWord) {
    const DecodedSound sound = fixtures::readSound(reelOf(reel()));
    // 10 ms, in which the pre-roll's fade would have got nowhere. The word is long enough not to be fading
    // out.
    ASSERT_GT(model_.words().front().length, 600 * 3 / 100);
    const auto start = std::span(sound.samples).first(static_cast<std::size_t>(sound.rateHz / 100));
    const fixtures::Location found =
        locate(start, fixtures::AudioCode(1), sound.rateHz, model_.firstSourceSample(0, sound.rateHz), 100);
    EXPECT_NEAR(found.offsetSamples, 0.0, 1.0);
    EXPECT_NEAR(found.gain, 1.0, 0.1);
}

TEST_P(Exactness, eachLineIsThereExactlyFromItsStartToItsEnd) {
    const auto readings = readingsOf(reel());
    int wrong = 0;
    for (int frame = 0; frame < std::min(static_cast<int>(readings.size()), model_.frameCount(rate_));
         ++frame) {
        const auto& ink = readings[static_cast<std::size_t>(frame)].ink;
        const std::size_t line = model_.lineAt(frame, rate_);
        if ((ink ? ink->strokes : 0) == strokesOfLine(line) || ++wrong > 10)
            continue;
        ADD_FAILURE() << "frame " << frame << " has " << (ink ? ink->strokes : 0)
                      << " strokes instead of line " << line << "'s " << strokesOfLine(line) << ", "
                      << model_.lineAge(frame, rate_) << " s after it began";
    }
    EXPECT_EQ(wrong, 0) << "of " << readings.size();
}

TEST_P(Exactness, thePopHasItsScaleOnEveryFrame) {
    const auto readings = readingsOf(reel());
    // Width, height and middle at rest for each text, by its strokes.
    std::map<int, Ink> rest;
    for (int frame = 0; frame < std::min(static_cast<int>(readings.size()), model_.frameCount(rate_));
         ++frame)
        if (readings[static_cast<std::size_t>(frame)].ink && model_.lineAge(frame, rate_) > 0.36)
            rest.emplace(strokesOfLine(model_.lineAt(frame, rate_)),
                         *readings[static_cast<std::size_t>(frame)].ink);
    ASSERT_EQ(rest.size(), 3U);

    int wrong = 0;
    int popping = 0;
    double worst = 0.0;
    for (int frame = 0; frame < std::min(static_cast<int>(readings.size()), model_.frameCount(rate_));
         ++frame) {
        const auto& ink = readings[static_cast<std::size_t>(frame)].ink;
        if (!ink)
            continue;
        const Ink& still = rest.at(strokesOfLine(model_.lineAt(frame, rate_)));
        const double scale = model_.popScale(frame, rate_);
        popping += scale != 1.0 ? 1 : 0;
        const double widthError = ink->width() - scale * still.width();
        const double heightError = ink->height() - scale * still.height();
        // The layer's middle is the canvas' in x; in y it is that of its box of four times the font size.
        const double boxMiddle = 0.85 * (1920.0 - 144.0 - 288.0) + 72.0 + 144.0;
        const double middleError =
            std::max(std::abs(ink->centerX() - 540.0 - scale * (still.centerX() - 540.0)),
                     std::abs(ink->centerY() - boxMiddle - scale * (still.centerY() - boxMiddle)));
        const double error = std::max({std::abs(widthError), std::abs(heightError), middleError});
        worst = std::max(worst, error);
        if (error <= 1.0 || ++wrong > 10)
            continue;
        ADD_FAILURE() << "frame " << frame << ", " << model_.lineAge(frame, rate_)
                      << " s after the line began: scale " << ink->width() / still.width() << " x "
                      << ink->height() / still.height() << " instead of " << scale << ", middle off by "
                      << middleError;
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_GT(popping, static_cast<int>(model_.lines().size()) * 3);
    RecordProperty("worstErrorPx", std::to_string(worst));
}

TEST_P(Exactness, theFileIsWhatUploadSitesTake) {
    const auto path = reelOf(reel());
    const fixtures::FileFacts facts = fixtures::readFacts(path);
    const fixtures::StreamFacts* video = facts.first("video");
    ASSERT_TRUE(video);
    EXPECT_EQ(video->averageRate.num, rate_ * video->averageRate.den);
    EXPECT_TRUE(video->closedGops);
    ASSERT_FALSE(video->keySeconds.empty());
    for (std::size_t i = 0; i < video->keySeconds.size(); ++i) {
        const double next =
            i + 1 < video->keySeconds.size() ? video->keySeconds[i + 1] : model_.reelSeconds();
        EXPECT_LE(next - video->keySeconds[i], 2.0 + 1e-6);
    }
    const auto boxes = fixtures::topLevelBoxes(path);
    EXPECT_LT(std::find(boxes.begin(), boxes.end(), "moov"), std::find(boxes.begin(), boxes.end(), "mdat"));
}

INSTANTIATE_TEST_SUITE_P(Rates, Exactness, testing::ValuesIn(reelCases()),
                         [](const auto& parameter) { return parameter.param.name; });

}  // namespace
}  // namespace korvane::exactness

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
