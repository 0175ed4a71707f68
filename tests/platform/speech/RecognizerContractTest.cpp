// What every recogniser must do, run against each.

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <random>
#include <thread>

#include "platform/ffmpeg/MediaError.h"
#if KORVANE_HAS_POCKETSPHINX
#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"
#endif
#if KORVANE_HAS_WHISPER
#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#endif
#include "tests/platform/speech/ScriptedRecognizer.h"
#include "tests/platform/speech/SpokenFixture.h"
#include "tests/platform/speech/StarvedTime.h"

namespace korvane {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto soon = std::chrono::milliseconds(300);

#if KORVANE_HAS_POCKETSPHINX
std::unique_ptr<SpeechEngine> makePocketSphinx() {
    return std::make_unique<PocketSphinxEngine>(
        PocketSphinxModels(StandardFolders::of(processEnvironment()), KORVANE_POCKETSPHINX_MODELS));
}

#endif

#if KORVANE_HAS_WHISPER
/// The real worker, with a model that says the same four words of whatever it hears.
std::unique_ptr<SpeechEngine> makeWhisper() {
    static const TemporaryFolder folder;
    InstalledSpeechModel model;
    model.name = "Whisper scripted";
    model.file = folder.path() / "ggml-scripted.bin";
    if (!std::filesystem::exists(model.file))
        fixtures::ScriptedModel{{{" We", 20}, {" have", 40}, {" to", 55}, {" go", 90}, {".", 100}}}.write(
            model.file);
    WhisperSettings settings;
    settings.command = whisperCommand(KORVANE_PROGRAMS);
    return std::make_unique<WhisperEngine>([model] { return std::optional(model); }, settings);
}
#endif

/// "Recognises" by the file's name, slowly where there is speech.
std::unique_ptr<SpeechEngine> makeScripted() {
    return std::make_unique<ScriptedEngine>(
        Locale{"en-US"},
        [](const FileRecognitionRequest& request,
           const std::stop_token& stop) -> std::vector<RecognizedSegment> {
            const auto name = request.path.filename();
            if (name == "silence.wav" || name == "short.wav" || name == "nothing.wav")
                return {};
            if (name != "speech.wav" && name != "long.wav")
                throw MediaError("'" + name.string() + "' is no recording.");
            for (int i = 0; i < (name == "long.wav" ? 2000 : 20); ++i) {
                checkCancelled(stop);
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            }
            return {{"one", 0.1, 0.2}, {"two", 0.35, 0.25}};
        });
}

struct Implementation {
    const char* name;
    std::unique_ptr<SpeechEngine> (*make)();
    int busyMs;  ///< with the long recording, at least
};

/// Made once for the whole program: speaking takes a while.
class Recordings {
  public:
    Recordings() {
        const auto sentence = speak(folder, "We have to go to the station before the train leaves.");
        seconds = static_cast<double>(sentence.size()) / spokenRateHz;
        writeWav(folder, "speech.wav", sentence);
        std::vector<std::int16_t> longSpeech;
        for (int i = 0; i < 20; ++i)
            longSpeech.insert(longSpeech.end(), sentence.begin(), sentence.end());
        writeWav(folder, "long.wav", longSpeech);
        writeWav(folder, "silence.wav", std::vector<std::int16_t>(2 * spokenRateHz));
        writeWav(folder, "short.wav", std::vector<std::int16_t>(10, 20000));
        writeWav(folder, "nothing.wav", {});
        folder.file("text.wav", "This is no recording.");
    }
    TemporaryFolder folder;
    double seconds = 0.0;
};

/// What a handler was called with.
struct Answer {
    std::atomic<int> calls = 0;
    std::thread::id thread;
    std::optional<RecognitionResult> result;
    std::exception_ptr error;
    Clock::time_point at;
    std::promise<void> arrived;

    RecognitionHandler handler() {
        return [this](std::optional<RecognitionResult> given, std::exception_ptr wrong) {
            thread = std::this_thread::get_id();
            result = std::move(given);
            error = std::move(wrong);
            at = Clock::now();
            if (++calls == 1)
                arrived.set_value();
        };
    }
};

template <class Error>
bool isA(const std::exception_ptr& error) {
    try {
        std::rethrow_exception(error);
    } catch (const Error&) {
        return true;
    } catch (...) {
        return false;
    }
}

class RecognizerContract : public testing::TestWithParam<Implementation> {
  protected:
    static void SetUpTestSuite() { recordings = std::make_unique<Recordings>(); }
    static void TearDownTestSuite() { recordings.reset(); }

    std::unique_ptr<RecognitionTask> start(const char* file, Answer& answer) {
        return recognizer->recognitionTask({recordings->folder.path() / file, false}, answer.handler());
    }

    static inline std::unique_ptr<Recordings> recordings;
    std::unique_ptr<SpeechEngine> engine = GetParam().make();
    std::unique_ptr<SpeechRecognizer> recognizer = engine->makeRecognizer(Locale{"en-US"});
};

TEST_P(RecognizerContract, aRecogniserIsOfItsLocaleAndOthersHaveNone) {
    ASSERT_TRUE(recognizer);
    EXPECT_EQ(recognizer->locale(), Locale{"en-US"});
    EXPECT_TRUE(recognizer->isAvailable());
    EXPECT_TRUE(engine->support(Locale{"en-US"}).installed);
    EXPECT_EQ(engine->makeRecognizer(Locale{"xx-XX"}), nullptr);
    EXPECT_FALSE(engine->support(Locale{"xx-XX"}).installed);
}

TEST_P(RecognizerContract, speechEndsInExactlyOneFinalResultOnAnotherThread) {
    Answer answer;
    auto task = start("speech.wav", answer);
    answer.arrived.get_future().wait();
    task.reset();
    EXPECT_EQ(answer.calls, 1);
    EXPECT_FALSE(answer.error);
    ASSERT_TRUE(answer.result);
    EXPECT_TRUE(answer.result->isFinal);
    EXPECT_NE(answer.thread, std::this_thread::get_id());
    ASSERT_GE(answer.result->segments.size(), 2U);
    double end = 0.0;
    for (const auto& segment : answer.result->segments) {
        EXPECT_FALSE(segment.substring.empty());
        EXPECT_GE(segment.timestamp, end);
        EXPECT_GT(segment.duration, 0.0);
        end = segment.timestamp + segment.duration;
    }
    EXPECT_LE(end, recordings->seconds);
}

TEST_P(RecognizerContract, whereNobodySpeaksIsAFinalResultWithoutWords) {
    for (const char* file : {"silence.wav", "short.wav", "nothing.wav"}) {
        Answer answer;
        const auto task = start(file, answer);
        answer.arrived.get_future().wait();
        ASSERT_TRUE(answer.result) << file;
        EXPECT_TRUE(answer.result->isFinal);
        EXPECT_TRUE(answer.result->segments.empty()) << file;
    }
}

TEST_P(RecognizerContract, whatCannotBeReadIsOneErrorInASentence) {
    for (const char* file : {"text.wav", "missing.wav", "."}) {
        Answer answer;
        auto task = start(file, answer);
        answer.arrived.get_future().wait();
        task.reset();
        EXPECT_EQ(answer.calls, 1);
        EXPECT_FALSE(answer.result);
        ASSERT_TRUE(isA<MediaError>(answer.error)) << file;
    }
}

TEST_P(RecognizerContract, cancellingAtOnceEndsInCancellation) {
    const StarvedTime starved;
    Answer answer;
    const auto task = start("long.wav", answer);
    const auto cancelled = Clock::now();
    const auto before = starved.sum();
    task->cancel();
    task->cancel();
    answer.arrived.get_future().wait();
    EXPECT_TRUE(isA<CancellationError>(answer.error));
    EXPECT_LT(answer.at - cancelled - (starved.sum() - before), soon);
}

TEST_P(RecognizerContract, cancellingAtAnyMomentEndsInCancellationSoon) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> moment(0, GetParam().busyMs);
    const StarvedTime starved;
    auto slowest = Clock::duration::zero();
    for (int i = 0; i < 20; ++i) {
        Answer answer;
        auto task = start("long.wav", answer);
        std::this_thread::sleep_for(std::chrono::milliseconds(moment(random)));
        const auto cancelled = Clock::now();
        const auto before = starved.sum();
        task->cancel();
        answer.arrived.get_future().wait();
        task.reset();
        slowest = std::max(slowest, Clock::now() - cancelled - (starved.sum() - before));
        EXPECT_EQ(answer.calls, 1);
        EXPECT_TRUE(isA<CancellationError>(answer.error));
    }
    EXPECT_LT(slowest, soon);
    RecordProperty("slowestMs", static_cast<int>(slowest / std::chrono::milliseconds(1)));
}

TEST_P(RecognizerContract, cancellingAfterTheEndChangesNothing) {
    Answer answer;
    auto task = start("silence.wav", answer);
    answer.arrived.get_future().wait();
    task->cancel();
    task.reset();
    EXPECT_EQ(answer.calls, 1);
    EXPECT_FALSE(answer.error);
}

TEST_P(RecognizerContract, destroyingARunningTaskAnswersItFirst) {
    Answer answer;
    start("long.wav", answer).reset();
    EXPECT_EQ(answer.calls, 1);
    EXPECT_TRUE(isA<CancellationError>(answer.error));
}

TEST_P(RecognizerContract, twoTasksAtOnceDoNotDisturbEachOther) {
    Answer first, second, cancelled;
    const auto one = start("speech.wav", first);
    const auto two = start("speech.wav", second);
    start("long.wav", cancelled).reset();
    first.arrived.get_future().wait();
    second.arrived.get_future().wait();
    ASSERT_TRUE(first.result && second.result);
    ASSERT_EQ(first.result->segments.size(), second.result->segments.size());
    for (std::size_t i = 0; i < first.result->segments.size(); ++i) {
        EXPECT_EQ(first.result->segments[i].substring, second.result->segments[i].substring);
        EXPECT_EQ(first.result->segments[i].timestamp, second.result->segments[i].timestamp);
    }
}

TEST_P(RecognizerContract, aTaskOutlivesTheRecogniserThatStartedIt) {
    Answer answer;
    const auto task = start("speech.wav", answer);
    recognizer.reset();
    answer.arrived.get_future().wait();
    EXPECT_TRUE(answer.result);
}

const Implementation implementations[] = {
#if KORVANE_HAS_POCKETSPHINX
    {"PocketSphinx", makePocketSphinx, 1500},
#endif
#if KORVANE_HAS_WHISPER
    {"Whisper", makeWhisper, 600},
#endif
    {"Scripted", makeScripted, 100}};
INSTANTIATE_TEST_SUITE_P(Every, RecognizerContract, testing::ValuesIn(implementations),
                         [](const auto& made) { return std::string(made.param.name); });

}  // namespace
}  // namespace korvane
