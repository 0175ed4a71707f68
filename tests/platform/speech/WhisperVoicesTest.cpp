// The engine beside a model that tells voices from other sounds, with a worker that misbehaves at that.
#include <algorithm>
#include <mutex>

#include "tests/platform/speech/StarvedTime.h"
#include "tests/platform/speech/WhisperEngineFixture.h"

namespace korvane {
namespace {

class WhisperVoicesTest : public WhisperEngineTest {
  protected:
    /// With such a model, whose file need only be there.
    WhisperSettings withVoices(WhisperSettings made) {
        made.findVoiceModel = [this]() -> std::optional<std::filesystem::path> { return voices; };
        made.log = [this](const std::string& line) {
            const std::lock_guard lock(mutex);
            log.push_back(line);
        };
        return made;
    }
    WhisperEngine voicesEngine(const std::string& behaviour) {
        return engine(withVoices(settings(behaviour)));
    }

    std::optional<std::filesystem::path> voices = folder.file("ggml-voices.bin", "voices");
    std::mutex mutex;
    std::vector<std::string> log;
};

TEST_F(WhisperVoicesTest, whereVoicesAreFoundEverythingIsAsWithoutTheModel) {
    auto with = voicesEngine("");
    auto without = engine(settings(""));
    const auto found = recognize(with);
    const auto heard = recognize(without);
    EXPECT_EQ(found.words, oneTwo);
    ASSERT_EQ(found.segments.size(), heard.segments.size());
    for (std::size_t i = 0; i < heard.segments.size(); ++i) {
        EXPECT_EQ(found.segments[i].timestamp, heard.segments[i].timestamp);
        EXPECT_EQ(found.segments[i].duration, heard.segments[i].duration);
    }
    EXPECT_TRUE(log.empty());
}

TEST_F(WhisperVoicesTest, whereNoVoiceIsFoundNothingIsRecognised) {
    auto whisper = voicesEngine("no-voices");
    const auto heard = recognize(whisper);
    EXPECT_TRUE(heard.words.empty());
    EXPECT_TRUE(heard.error.empty());
    EXPECT_FALSE(heard.cancelled);
}

TEST_F(WhisperVoicesTest, theModelIsLoadedOnceForAWorker) {
    // A second load would be taken for the end of the worker.
    auto whisper = voicesEngine("voices-again");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    const auto process = whisper.keeper().processId();
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(whisper.keeper().processId(), process);
}

TEST_F(WhisperVoicesTest, aModelThatComesLaterIsUsedFromThenOn) {
    const auto file = std::exchange(voices, std::nullopt);
    auto whisper = voicesEngine("no-voices");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    voices = file;
    EXPECT_TRUE(recognize(whisper).words.empty());
    voices.reset();
    EXPECT_EQ(recognize(whisper).words, oneTwo);
}

TEST_F(WhisperVoicesTest, theModelThatWasThereBeforeABadOneIsLoadedAnew) {
    // The worker lets go of the first for the second.
    const auto good = voices;
    const auto bad = folder.file("ggml-voices-2.bin", "bad");
    auto whisper = voicesEngine("second-voices-bad");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    voices = bad;
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    voices = good;
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    ASSERT_EQ(log.size(), 1U) << log.back();
    EXPECT_NE(log[0].find("ggml-voices-2.bin"), std::string::npos) << log[0];
}

class UnusableVoices : public WhisperVoicesTest, public testing::WithParamInterface<const char*> {};

TEST_P(UnusableVoices, areOneLineInTheLogAndTheLoudnessAloneGoesOn) {
    auto whisper = voicesEngine(GetParam());
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(recognize(whisper).words, oneTwo);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log[0].find("\"ggml-voices.bin\""), std::string::npos) << log[0];
    EXPECT_NE(log[0].find("loudness"), std::string::npos) << log[0];
    // Another in its place is tried anew.
    folder.file("ggml-voices.bin", "another");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(log.size(), 2U);
}

INSTANTIATE_TEST_SUITE_P(Every, UnusableVoices, testing::Values("bad-voices", "spoiled-voices"),
                         [](const auto& made) {
                             std::string name = made.param;
                             std::erase(name, '-');
                             return name;
                         });

class VoicesMishaps : public WhisperVoicesTest, public testing::WithParamInterface<const char*> {};

TEST_P(VoicesMishaps, areOneLineInTheLogAndAnotherWorkerGoesOnWithoutTheModel) {
    // It would misbehave each time.
    auto whisper = voicesEngine(GetParam());
    const auto start = Clock::now();
    const auto outcome = recognize(whisper);
    EXPECT_LT(Clock::now() - start, 5s);
    EXPECT_EQ(outcome.error, "");
    EXPECT_EQ(outcome.words, oneTwo);
    const auto process = whisper.keeper().processId();
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(whisper.keeper().processId(), process);
    ASSERT_EQ(log.size(), 1U);
    EXPECT_NE(log[0].find("loudness"), std::string::npos) << log[0];
}

INSTANTIATE_TEST_SUITE_P(Every, VoicesMishaps,
                         testing::Values("voices-exits", "voices-killed", "voices-hangs", "voices-closes",
                                         "voices-nonsense", "finding-exits", "finding-aborts",
                                         "finding-killed", "finding-hangs", "finding-flood",
                                         "finding-nonsense", "no-memory-to-find", "few-chances", "no-chances",
                                         "found-exits", "found-hangs"),
                         [](const auto& made) {
                             std::string name = made.param;
                             std::erase(name, '-');
                             return name;
                         });

TEST_F(WhisperVoicesTest, whatComesAgainWithoutTheModelIsToldAsWhatItIs) {
    struct Mishap {
        const char* behaviour;
        const char* says;  ///< part of the sentence
    };
    for (const auto& [behaviour, says] : {Mishap{"finding-killed+asked-killed", "memory ran out"},
                                          Mishap{"no-memory-to-find+no-memory", "not enough memory"},
                                          Mishap{"voices-aborts+asked-aborts", "signal 6"},
                                          Mishap{"finding-hangs+answering-hangs", "didn't answer"}}) {
        log.clear();
        auto whisper = voicesEngine(behaviour);
        const auto outcome = recognize(whisper);
        EXPECT_TRUE(outcome.words.empty()) << behaviour;
        EXPECT_NE(outcome.error.find(says), std::string::npos) << behaviour << ": " << outcome.error;
        EXPECT_EQ(log.size(), 1U) << behaviour;
    }
}

TEST_F(WhisperVoicesTest, cancellingWhileVoicesAreLookedForAnswersAtOnceAndTheNextOneWorks) {
    for (const char* stage : {"voices-hangs", "finding-hangs", "found-hangs"}) {
        auto with = withVoices(once(stage));
        with.patience = {};
        auto whisper = engine(with);
        std::promise<Outcome> arrived;
        const auto recognizer = whisper.makeRecognizer(Locale{"en-US"});
        auto task = recognizer->recognitionTask(
            {folder.path() / "voice.wav", false},
            [&](const auto& result, const auto& error) { arrived.set_value(outcomeOf(result, error)); });
        ASSERT_TRUE(comesTrue([&] { return std::filesystem::exists(with.command.back()); })) << stage;
        std::this_thread::sleep_for(30ms);  // somewhere in it
        const StarvedTime starved;
        const auto start = Clock::now();
        task->cancel();
        EXPECT_TRUE(arrived.get_future().get().cancelled) << stage;
        EXPECT_LT(Clock::now() - start - starved.sum(), 300ms) << stage;
        task.reset();
        EXPECT_EQ(recognize(whisper).words, oneTwo) << stage;
    }
    EXPECT_TRUE(log.empty()) << "nothing was wrong with the model";
    EXPECT_FALSE(hasChildren());
}

}  // namespace
}  // namespace korvane
