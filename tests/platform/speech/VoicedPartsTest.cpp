#include "platform/speech/whisper/VoicedParts.h"

#include <gtest/gtest.h>

#include <numeric>
#include <random>

#include "platform/speech/whisper/WhisperProtocol.h"

namespace korvane {
namespace {

constexpr auto frame = whisper::voiceFrame;
constexpr std::int64_t pad = whisper::rateHz / 4;

/// A stretch from sample 1000 on, each sample with its own number.
SpeechStretch stretch(std::int64_t frames, std::int64_t more = 0) {
    SpeechStretch made;
    made.begin = 1000;
    made.samples.resize(static_cast<std::size_t>(frames * frame + more));
    std::iota(made.samples.begin(), made.samples.end(), 0.0F);
    made.floorDb = -50.0;
    return made;
}

/// As many frames of one chance after those of another.
std::vector<double> frames(std::initializer_list<std::pair<int, double>> runs) {
    std::vector<double> all;
    for (const auto& [count, chance] : runs)
        all.insert(all.end(), static_cast<std::size_t>(count), chance);
    return all;
}

void expectSame(const SpeechStretch& part, const SpeechStretch& whole) {
    EXPECT_EQ(part.begin, whole.begin);
    EXPECT_EQ(part.samples, whole.samples);
    EXPECT_EQ(part.floorDb, whole.floorDb);
    EXPECT_EQ(part.beginsInSpeech, whole.beginsInSpeech);
    EXPECT_EQ(part.endsInSpeech, whole.endsInSpeech);
}

TEST(VoicedParts, aStretchWithoutVoicesLeavesNothing) {
    EXPECT_TRUE(voicedParts(stretch(100), frames({{100, 0.1}})).empty());
    EXPECT_TRUE(voicedParts(stretch(100), frames({{100, 0.45}})).empty());
}

TEST(VoicedParts, aStretchThatVoicesFillStaysAsItIs) {
    auto whole = stretch(100, 17);
    whole.beginsInSpeech = true;
    const auto parts = voicedParts(whole, frames({{8, 0.0}, {85, 0.9}, {8, 0.0}}));
    ASSERT_EQ(parts.size(), 1U);
    expectSame(parts[0].stretch, whole);
    EXPECT_FALSE(parts[0].voiceBegin || parts[0].voiceEnd);
}

TEST(VoicedParts, shortTimesWithoutAVoiceAreKept) {
    const auto whole = stretch(120);
    const auto parts = voicedParts(whole, frames({{31, 0.0}, {20, 0.9}, {31, 0.0}, {8, 0.9}, {30, 0.0}}));
    ASSERT_EQ(parts.size(), 1U);
    expectSame(parts[0].stretch, whole);
}

TEST(VoicedParts, musicBeforeAndBehindAVoiceIsCutOff) {
    const auto whole = stretch(200, 100);
    const auto parts = voicedParts(whole, frames({{60, 0.0}, {50, 0.9}, {91, 0.0}}));
    ASSERT_EQ(parts.size(), 1U);
    const auto& part = parts[0].stretch;
    EXPECT_EQ(part.begin, 1000 + 60 * frame - pad);
    EXPECT_EQ(part.end(), 1000 + 110 * frame + pad);
    EXPECT_EQ(part.samples.front(), static_cast<float>(60 * frame - pad));
    EXPECT_EQ(part.floorDb, whole.floorDb);
    EXPECT_TRUE(part.beginsInSpeech && part.endsInSpeech) << "no pause is there";
    EXPECT_EQ(parts[0].voiceBegin, 1000 + 59 * frame);
    EXPECT_EQ(parts[0].voiceEnd, 1000 + 111 * frame);
}

TEST(VoicedParts, musicBetweenTwoVoicesPartsThem) {
    const auto whole = stretch(200);
    const auto parts = voicedParts(whole, frames({{10, 0.0}, {50, 0.9}, {40, 0.2}, {80, 0.7}, {20, 0.0}}));
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].stretch.begin, whole.begin);
    EXPECT_FALSE(parts[0].stretch.beginsInSpeech || parts[0].voiceBegin);
    EXPECT_EQ(parts[0].stretch.end(), 1000 + 60 * frame + pad);
    EXPECT_TRUE(parts[0].stretch.endsInSpeech);
    EXPECT_EQ(parts[0].voiceEnd, 1000 + 61 * frame);
    EXPECT_EQ(parts[1].stretch.begin, 1000 + 100 * frame - pad);
    EXPECT_EQ(parts[1].voiceBegin, 1000 + 99 * frame);
    EXPECT_EQ(parts[1].stretch.end(), whole.end());
    EXPECT_FALSE(parts[1].stretch.endsInSpeech || parts[1].voiceEnd);
}

TEST(VoicedParts, aVoiceHoldsWhileTheModelHesitates) {
    const auto parts =
        voicedParts(stretch(150), frames({{50, 0.0}, {5, 0.8}, {40, 0.4}, {5, 0.8}, {50, 0.0}}));
    ASSERT_EQ(parts.size(), 1U);
    EXPECT_EQ(parts[0].voiceBegin, 1000 + 49 * frame);
    EXPECT_EQ(parts[0].voiceEnd, 1000 + 101 * frame);
}

TEST(VoicedParts, oneFrameIsAClickAndTwoAreAVoice) {
    EXPECT_TRUE(voicedParts(stretch(20), frames({{9, 0.0}, {1, 0.9}, {10, 0.0}})).empty());
    EXPECT_TRUE(voicedParts(stretch(20), frames({{19, 0.0}, {1, 0.9}})).empty());
    EXPECT_TRUE(voicedParts(stretch(20), frames({{9, 0.0}, {1, 0.9}, {6, 0.4}, {4, 0.0}})).empty());
    EXPECT_EQ(voicedParts(stretch(20), frames({{9, 0.0}, {2, 0.9}, {9, 0.0}})).size(), 1U);
}

TEST(VoicedParts, theLastFrameMayReachBeyondTheStretch) {
    auto whole = stretch(10, 5);
    whole.endsInSpeech = true;
    const auto parts = voicedParts(whole, frames({{11, 0.9}}));
    ASSERT_EQ(parts.size(), 1U);
    expectSame(parts[0].stretch, whole);
}

TEST(VoicedParts, partsLieInOrderInsideTheStretchWhateverTheModelSays) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::mt19937 random(seed);
        const auto whole = stretch(400, static_cast<std::int64_t>(random() % 512));
        std::vector<double> chances;
        while (chances.size() < 401)
            chances.insert(chances.end(), 1 + random() % 60, static_cast<double>(random() % 101) / 100);
        chances.resize(401);
        auto from = whole.begin;
        for (const auto& part : voicedParts(whole, chances)) {
            ASSERT_GE(part.stretch.begin, from) << seed;
            ASSERT_FALSE(part.stretch.samples.empty()) << seed;
            ASSERT_EQ(part.stretch.samples.front(), static_cast<float>(part.stretch.begin - whole.begin))
                << seed;
            ASSERT_GE(part.voiceBegin.value_or(part.stretch.begin), part.stretch.begin) << seed;
            ASSERT_LE(part.voiceEnd.value_or(part.stretch.end()), part.stretch.end()) << seed;
            from = part.stretch.end();
        }
        ASSERT_LE(from, whole.end()) << seed;
    }
}

}  // namespace
}  // namespace korvane
