// The engine against a worker that misbehaves in every way that could be thought of.
#include "platform/speech/whisper/WhisperEngine.h"

#include <algorithm>
#include <atomic>

#include "tests/platform/speech/StarvedTime.h"
#include "tests/platform/speech/WhisperEngineFixture.h"

namespace korvane {
namespace {

TEST_F(WhisperEngineTest, aWorkerIsStartedOnceAndKept) {
    auto whisper = engine(settings(""));
    EXPECT_EQ(whisper.keeper().processId(), 0);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    const auto process = whisper.keeper().processId();
    EXPECT_GT(process, 0);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_EQ(whisper.keeper().processId(), process);
}

TEST_F(WhisperEngineTest, theFirstWordBeginsAndTheLastOneEndsWithTheVoice) {
    auto whisper = engine(settings(""));
    const auto heard = recognize(whisper);
    ASSERT_EQ(heard.segments.size(), 2U);
    EXPECT_NEAR(heard.segments[0].timestamp, 0.8, 0.02);
    // The voice begins 0.25 s into what the worker is given, so what it hears at 0.5 s was said at 1.05 s.
    EXPECT_NEAR(heard.segments[0].timestamp + heard.segments[0].duration, 1.05, 0.02);
    EXPECT_NEAR(heard.segments[1].timestamp + heard.segments[1].duration, 2.0, 0.02);
}

struct Mishap {
    const char* behaviour;
    const char* says;  ///< part of the sentence
};

void PrintTo(const Mishap& mishap, std::ostream* out) {
    *out << mishap.behaviour;
}

class WhisperMishaps : public WhisperEngineTest, public testing::WithParamInterface<Mishap> {};

TEST_P(WhisperMishaps, areOneSentenceAndTheNextRequestStartsAFreshWorker) {
    const int before = openFiles();
    {
        auto whisper = engine(once(GetParam().behaviour));
        const auto start = Clock::now();
        const auto outcome = recognize(whisper);
        EXPECT_LT(Clock::now() - start, 5s);
        EXPECT_TRUE(outcome.words.empty());
        EXPECT_NE(outcome.error.find(GetParam().says), std::string::npos) << outcome.error;
        EXPECT_TRUE(outcome.error.ends_with('.')) << outcome.error;
        EXPECT_EQ(recognize(whisper).words, oneTwo);
    }
    EXPECT_EQ(openFiles(), before);
    EXPECT_FALSE(hasChildren());
}

const Mishap mishaps[] = {
    {"started-exits", "broke off unexpectedly (code 3)"},
    {"started-aborts", "broke off unexpectedly (signal 6)"},
    {"started-nonsense", "makes no sense"},
    {"started-flood", "makes no sense"},
    {"started-binary", "makes no sense"},
    {"started-hangs", "didn't answer"},
    {"other-version", "different versions"},
    {"loading-exits", "broke off"},
    {"loading-killed", "memory ran out"},
    {"loading-hangs", "didn't answer"},
    {"loading-closes", "didn't answer"},
    {"loading-nonsense", "makes no sense"},
    {"bad-model", "It is broken"},
    {"loaded-exits", "broke off"},
    {"deaf", "didn't answer"},
    {"asked-exits", "broke off"},
    {"asked-aborts", "signal 6"},
    {"asked-killed", "memory ran out"},
    {"asked-hangs", "didn't answer"},
    {"asked-closes", "didn't answer"},
    {"asked-flood", "makes no sense"},
    {"answering-exits", "broke off"},
    {"answering-killed", "memory ran out"},
    {"answering-hangs", "didn't answer"},
    {"answering-nonsense", "makes no sense"},
    {"answered-exits", "broke off"},
    {"wrong-request", "makes no sense"},
    {"token-first", "makes no sense"},
    {"text-too-long", "makes no sense"},
    {"text-cut", "didn't answer"},
    {"no-numbers", "makes no sense"},
    {"endless", "makes no sense"},
    {"no-memory", "not enough memory"},
    {"no-memory-to-load", "not enough memory"},
    {"no-machine", "--engine pocketsphinx"},
    {"loads-forever", "took too long"},
    {"alive-forever", "took too long"},
    {"card:bad-model", "It is broken"},
};
INSTANTIATE_TEST_SUITE_P(Every, WhisperMishaps, testing::ValuesIn(mishaps), [](const auto& made) {
    std::string name = made.param.behaviour;
    std::erase_if(name, [](char c) { return c == '-' || c == ':'; });
    return name;
});

TEST_F(WhisperEngineTest, aModelThatComesSlowlyIsWaitedForAsLongAsItComes) {
    // Twice as long as would be waited without a sign of life.
    auto whisper = engine(settings("loads-slowly"));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
}

TEST_F(WhisperEngineTest, aWorkerThatDiedWhileNobodyNeededItIsReplacedUnnoticed) {
    auto whisper = engine(once("idle-exits"));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    const auto first = whisper.keeper().processId();
    EXPECT_TRUE(comesTrue([&] { return !isAlive(first) || recognize(whisper).words == oneTwo; }));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_NE(whisper.keeper().processId(), first);
}

TEST_F(WhisperEngineTest, timesThatMakeNoSenseStillGiveWordsInOrderInsideTheRecording) {
    auto whisper = engine(settings("backwards"));
    const auto heard = recognize(whisper);
    EXPECT_EQ(heard.words, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_TRUE(heard.error.empty());
    double end = 0.0;
    for (const auto& segment : heard.segments) {
        EXPECT_GE(segment.timestamp, end);
        EXPECT_GT(segment.duration, 0.0);
        end = segment.timestamp + segment.duration;
    }
    EXPECT_LE(end, 3.0);
}

TEST_F(WhisperEngineTest, aWorkerThatCannotBeStartedIsOneSentence) {
    WhisperSettings nothing;
    nothing.command = {"/nowhere/korvane-whisper"};
    auto whisper = engine(nothing);
    const auto error = recognize(whisper).error;
    EXPECT_TRUE(error.starts_with("Whisper can't be started: No such file or directory.")) << error;
    EXPECT_TRUE(error.ends_with("install Korvane again.")) << error;
}

TEST_F(WhisperEngineTest, cancellingAtEachStageAnswersAtOnceAndTheNextOneWorks) {
    for (const char* stage :
         {"started-hangs", "deaf", "loading-hangs", "asked-hangs", "answering-hangs", "alive-forever"}) {
        auto with = once(stage);
        with.patience = {};
        auto whisper = engine(with);
        std::promise<Outcome> arrived;
        const auto recognizer = whisper.makeRecognizer(Locale{"en-US"});
        auto task = recognizer->recognitionTask(
            {folder.path() / "voice.wav", false},
            [&](const auto& result, const auto& error) { arrived.set_value(outcomeOf(result, error)); });
        ASSERT_TRUE(comesTrue([&] { return std::filesystem::exists(with.command.back()); })) << stage;
        std::this_thread::sleep_for(30ms);  // somewhere in it: each moment must do
        const StarvedTime starved;
        const auto start = Clock::now();
        task->cancel();
        EXPECT_TRUE(arrived.get_future().get().cancelled) << stage;
        EXPECT_LT(Clock::now() - start - starved.sum(), 300ms) << stage;
        task.reset();
        EXPECT_EQ(recognize(whisper).words, oneTwo) << stage;
    }
    EXPECT_FALSE(hasChildren());
}

TEST_F(WhisperEngineTest, destroyingTheEngineDoesNotWaitForAHungWorker) {
    const auto start = [&] {
        auto with = settings("asked-hangs");
        with.patience = {};
        auto whisper = engine(with);
        const auto task = whisper.makeRecognizer(Locale{"en-US"})
                              ->recognitionTask({folder.path() / "voice.wav", false}, [](auto&&, auto&&) {});
        EXPECT_TRUE(comesTrue([&] { return whisper.keeper().processId() != 0; }));
        return Clock::now();
    }();
    EXPECT_LT(Clock::now() - start, 2s);
    EXPECT_FALSE(hasChildren());
}

TEST_F(WhisperEngineTest, whereNobodySpeaksNoWorkerIsNeeded) {
    auto whisper = engine(settings("started-exits"));
    const auto heard = recognize(whisper, "silence.wav");
    EXPECT_TRUE(heard.error.empty());
    EXPECT_TRUE(heard.words.empty());
    EXPECT_EQ(whisper.keeper().processId(), 0);
}

TEST_F(WhisperEngineTest, severalAtOnceAreServedByOneWorker) {
    auto whisper = engine(settings(""));
    std::vector<std::future<Outcome>> all;
    for (int i = 0; i < 8; ++i)
        all.push_back(std::async(std::launch::async, [&] { return recognize(whisper); }));
    for (auto& one : all)
        EXPECT_EQ(one.get().words, oneTwo);
}

TEST_F(WhisperEngineTest, oneThatWaitsForItsTurnIsCancelledAtOnce) {
    auto with = once("asked-hangs");
    with.patience = {};
    auto whisper = engine(with);
    const auto recognizer = whisper.makeRecognizer(Locale{"en-US"});
    std::promise<Outcome> first, second;
    const auto start = [&](std::promise<Outcome>& into) {
        return recognizer->recognitionTask(
            {folder.path() / "voice.wav", false},
            [&](const auto& result, const auto& error) { into.set_value(outcomeOf(result, error)); });
    };
    const auto working = start(first);
    ASSERT_TRUE(comesTrue([&] { return whisper.keeper().processId() != 0; }));
    auto waiting = start(second);
    const StarvedTime starved;
    const auto now = Clock::now();
    waiting.reset();
    EXPECT_TRUE(second.get_future().get().cancelled);
    EXPECT_LT(Clock::now() - now - starved.sum(), 300ms);
    working->cancel();
    EXPECT_TRUE(first.get_future().get().cancelled);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
}

TEST_F(WhisperEngineTest, anUnusedWorkerIsLetGoAfterAWhile) {
    auto with = settings("");
    with.idle = 50ms;
    auto whisper = engine(with);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_TRUE(comesTrue([&] { return whisper.keeper().processId() == 0; }));
    EXPECT_TRUE(comesTrue([&] { return !hasChildren(); }));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
}

TEST_F(WhisperEngineTest, anUnusedWorkerIsLetGoWhenMemoryIsShort) {
    std::atomic<bool> isShort = false;
    auto with = settings("");
    with.look = 5ms;
    with.memoryIsShort = [&] { return isShort.load(); };
    auto whisper = engine(with);
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    std::this_thread::sleep_for(50ms);
    EXPECT_NE(whisper.keeper().processId(), 0);
    isShort = true;
    EXPECT_TRUE(comesTrue([&] { return whisper.keeper().processId() == 0; }));
}

TEST_F(WhisperEngineTest, anotherModelOrAnotherFileInItsPlaceIsLoadedAnew) {
    auto whisper = engine(settings(""));
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    auto last = whisper.keeper().processId();
    folder.file("ggml-fake.bin", "another model");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_NE(whisper.keeper().processId(), last);
    last = whisper.keeper().processId();
    model.file = folder.file("ggml-other.bin", "another model");
    EXPECT_EQ(recognize(whisper).words, oneTwo);
    EXPECT_NE(whisper.keeper().processId(), last);
}

TEST_F(WhisperEngineTest, withoutModelWorkerOrLanguageItSaysWhatIsMissing) {
    auto whole = engine(settings(""));
    EXPECT_TRUE(whole.support(Locale{"uk-UA"}).installed);
    EXPECT_EQ(whole.support(Locale{"uk-UA"}).description, "Whisper fake, " + model.file.string());
    EXPECT_FALSE(whole.support(Locale{"xx-XX"}).installed);
    EXPECT_EQ(whole.makeRecognizer(Locale{"xx-XX"}), nullptr);

    auto workerless = engine({});
    EXPECT_EQ(workerless.makeRecognizer(Locale{"en-US"}), nullptr);
    EXPECT_NE(workerless.support(Locale{"en-US"}).description.find("without Whisper"), std::string::npos);

    WhisperEngine modelless([] { return std::optional<InstalledSpeechModel>(); }, settings(""));
    EXPECT_EQ(modelless.makeRecognizer(Locale{"en-US"}), nullptr);
    EXPECT_NE(modelless.support(Locale{"en-US"}).description.find("Install a Whisper model"),
              std::string::npos);
}

TEST_F(WhisperEngineTest, everyLanguageOfTheProductIsKnown) {
    for (const char* id : {"ru-RU", "en-US", "uk-UA", "fr-FR", "de-DE", "es-ES", "it-IT", "zh-CN", "ja-JP"})
        EXPECT_EQ(whisperLanguage(Locale{id}), std::string(id).substr(0, 2));
    EXPECT_EQ(whisperLanguage(Locale{"zh_Hans_CN"}), "zh");
    EXPECT_EQ(whisperLanguage(Locale{""}), "");
    EXPECT_EQ(whisperLanguage(Locale{"english"}), "");
}

}  // namespace
}  // namespace korvane
