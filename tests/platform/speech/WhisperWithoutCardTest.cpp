// The engine against a graphics card whose driver ends the worker, stops it or has no memory.
#include <algorithm>

#include "tests/platform/speech/WhisperEngineFixture.h"

namespace korvane {
namespace {

class WhisperWithoutCard : public WhisperEngineTest {
  protected:
    static bool isWithoutCard(pid_t process) {
        return contentOf("/proc/" + std::to_string(process) + "/cmdline").find("--no-gpu") !=
               std::string::npos;
    }
    /// With a model that tells voices from other sounds.
    WhisperSettings withVoices(const std::string& behaviour) {
        auto made = settings(behaviour);
        made.findVoiceModel = [file = folder.file("ggml-voices.bin", "voices")] { return file; };
        made.log = [this](const std::string& line) { log.push_back(line); };
        return made;
    }

    std::vector<std::string> log;
};

class WhisperCardMishaps : public WhisperWithoutCard, public testing::WithParamInterface<const char*> {};

TEST_P(WhisperCardMishaps, areNotNoticedAndTheCardIsNotTouchedAgain) {
    auto whisper = engine(settings(GetParam()));
    const auto heard = recognize(whisper);
    EXPECT_EQ(heard.error, "");
    EXPECT_EQ(heard.words, oneTwo);
    const auto first = whisper.keeper().processId();
    EXPECT_TRUE(isWithoutCard(first));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(whisper.keeper().processId(), first);
    folder.file("ggml-fake.bin", "another model");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_NE(whisper.keeper().processId(), first);
    EXPECT_TRUE(isWithoutCard(whisper.keeper().processId()));
}

INSTANTIATE_TEST_SUITE_P(Every, WhisperCardMishaps,
                         testing::Values("card:looking-aborts", "card:looking-exits", "card:looking-hangs",
                                         "card:loading-aborts", "card:loading-hangs", "card:loading-killed",
                                         "card:no-memory-to-load", "card:engine-fails-to-load",
                                         "card:loaded-exits", "card:asked-aborts", "card:asked-hangs",
                                         "card:no-memory", "card:alive-forever", "card:answering-hangs",
                                         "card:answered-exits", "card:answering-nonsense"),
                         [](const auto& made) {
                             std::string name = made.param;
                             std::erase_if(name, [](char c) { return c == '-' || c == ':'; });
                             return name;
                         });

class WhisperCardMishapsBesideVoices : public WhisperCardMishaps {};

TEST_P(WhisperCardMishapsBesideVoices, areNotTheVoiceModelsFault) {
    auto whisper = engine(withVoices(GetParam()));
    const auto heard = recognize(whisper);
    EXPECT_EQ(heard.error, "");
    EXPECT_EQ(heard.words, oneTwo);
    const auto first = whisper.keeper().processId();
    EXPECT_TRUE(isWithoutCard(first));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(whisper.keeper().processId(), first);
    EXPECT_TRUE(log.empty());
}

INSTANTIATE_TEST_SUITE_P(Every, WhisperCardMishapsBesideVoices,
                         testing::Values("card:loading-aborts", "card:voices-aborts", "card:voices-hangs",
                                         "card:finding-aborts", "card:finding-hangs", "card:finding-killed",
                                         "card:no-memory-to-find", "card:found-exits", "card:asked-aborts"),
                         [](const auto& made) {
                             std::string name = made.param;
                             std::erase_if(name, [](char c) { return c == '-' || c == ':'; });
                             return name;
                         });

TEST_F(WhisperWithoutCard, theVoiceModelIsStillUsedBehindACardThatFailed) {
    // It ends wherever it looks for voices with a card, and finds none without.
    auto whisper = engine(withVoices("card:finding-aborts|no-voices"));
    const auto heard = recognize(whisper);
    EXPECT_EQ(heard.error, "");
    EXPECT_TRUE(heard.words.empty());
    EXPECT_TRUE(isWithoutCard(whisper.keeper().processId()));
    EXPECT_TRUE(log.empty());
}

TEST_F(WhisperWithoutCard, aCardThatWorksIsUsed) {
    auto whisper = engine(settings("card:"));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_FALSE(isWithoutCard(whisper.keeper().processId()));
}

TEST_F(WhisperWithoutCard, whoDoesNotWantTheCardHasAWorkerThatDoesNotTouchIt) {
    auto with = settings("card:looking-aborts");
    with.useCard = false;
    auto whisper = engine(with);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_TRUE(isWithoutCard(whisper.keeper().processId()));
}

TEST_F(WhisperWithoutCard, whatFailsWithoutTheCardTooIsOneError) {
    // Not "card:": it misbehaves whatever it is told, but says that it uses one.
    auto whisper = engine(settings("claims-card:asked-exits"));
    EXPECT_NE(recognize(whisper).error.find("broke off"), std::string::npos);
}

TEST_F(WhisperWithoutCard, whereVoicesCannotBeLookedForWithoutTheCardEitherTheLoudnessAloneGoesOn) {
    auto whisper = engine(withVoices("claims-card:finding-exits"));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log[0].find("loudness"), std::string::npos) << log[0];
}

}  // namespace
}  // namespace korvane
