// The real worker with models that say what they are told.
#include "platform/speech/whisper/WhisperWorker.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <fstream>
#include <optional>
#include <random>
#include <set>
#include <thread>

#include "platform/speech/SpeechRecognizer.h"
#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/fixtures/whisper-model/ScriptedVoiceModel.h"
#include "tests/support/TemporaryFolder.h"

namespace korvane {
namespace {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using fixtures::ScriptedModel;

/// A quiet hum: the scripted model says the same whatever it hears.
std::vector<float> hum(double seconds) {
    std::vector<float> samples(static_cast<std::size_t>(seconds * 16000));
    for (std::size_t i = 0; i < samples.size(); ++i)
        samples[i] = 0.1F * std::sin(0.1F * static_cast<float>(i));
    return samples;
}

class WhisperWorkerTest : public testing::Test {
  protected:
    std::filesystem::path model(const ScriptedModel& script, const std::string& name = "ggml-test.bin") {
        script.write(folder.path() / name);
        return folder.path() / name;
    }
    std::unique_ptr<WhisperWorker> worker(const std::filesystem::path& file) {
        return std::make_unique<WhisperWorker>(command, file, 1, WhisperPatience(), std::stop_token());
    }
    /// The worker, which can't have more memory than this.
    std::vector<std::string> commandWith(std::int64_t kilobytes) const {
        auto limited = command;
        limited.insert(limited.begin(),
                       {"/bin/sh", "-c", "ulimit -v \"$0\" && exec \"$@\"", std::to_string(kilobytes)});
        return limited;
    }
    std::string errorOf(const std::filesystem::path& file) {
        try {
            worker(file);
        } catch (const RecognitionError& error) {
            return error.what();
        }
        return "";
    }

    const std::vector<std::string> command = whisperCommand(KORVANE_PROGRAMS);
    TemporaryFolder folder;
    const ScriptedModel hello{{{" Hello", 20}, {",", 25}, {" big", 50}, {" world", 90}, {".", 95}}, 110};
};

TEST_F(WhisperWorkerTest, theBuiltOneIsFoundFromWhereProgramsAreBuilt) {
    ASSERT_FALSE(command.empty());
    EXPECT_TRUE(whisperCommand(folder.path()).empty());
}

TEST_F(WhisperWorkerTest, tokensComeWithTheirEndsByAlignment) {
    const auto whisper = worker(model(hello));
    EXPECT_NE(whisper->backend(), "");
    const auto segments = whisper->recognize(hum(2.2), "en", {});
    ASSERT_EQ(segments.size(), 1U);
    std::string text;
    std::vector<std::int64_t> ends;
    for (const auto& token : segments[0].tokens) {
        text += token.bytes;
        ends.push_back(token.aligned);
        EXPECT_GT(token.probability, 0.5);
    }
    EXPECT_EQ(text, " Hello, big world.");
    EXPECT_EQ(ends, (std::vector<std::int64_t>{40, 50, 100, 180, 190}));
    EXPECT_LT(segments[0].silence, 0.5);
}

TEST_F(WhisperWorkerTest, oneRequestDoesNotDependOnTheOneBefore) {
    const auto whisper = worker(model(hello));
    const auto first = whisper->recognize(hum(2.2), "en", {});
    whisper->recognize(hum(4.0), "ja", {});
    const auto again = whisper->recognize(hum(2.2), "en", {});
    ASSERT_EQ(first.size(), again.size());
    for (std::size_t i = 0; i < first[0].tokens.size(); ++i)
        EXPECT_EQ(first[0].tokens[i].aligned, again[0].tokens[i].aligned);
}

TEST_F(WhisperWorkerTest, aRequestDoesNotDependOnWhetherSomebodySpokeInTheOneBefore) {
    // By the scores that were left from there the library would drop what an unsure model says, go on behind
    // it, 0.15 s before the end, and end its process: nothing so short can be aligned.
    ScriptedModel unsure{{{" One", 92, true}}};
    unsure.confidence = 0.25;
    unsure.noSpeechProbability = 0.95;
    const auto whisper = worker(model(unsure));
    const auto first = whisper->recognize(hum(2.0), "en", {});
    const auto second = whisper->recognize(hum(2.0), "en", {});
    EXPECT_EQ(first.size(), 1U);
    EXPECT_EQ(second.size(), 1U);
}

TEST_F(WhisperWorkerTest, aModelThatIsCaughtInALoopBehindAnEarlyTimeStampEndsNothing) {
    // The library takes what it has for the sound up to that time stamp: too short to align.
    ScriptedModel loop{{{" Ha", 20}}};
    loop.openingFrame = 2;
    loop.neverEnds = true;
    loop.textContext = 32;
    const auto whisper = worker(model(loop));
    EXPECT_NO_THROW(whisper->recognize(hum(2.0), "en", {}));
    EXPECT_TRUE(whisper->isUsable());
}

TEST_F(WhisperWorkerTest, aLanguageThatTheLibraryDoesNotKnowIsAnErrorThatTheWorkerSurvives) {
    const auto whisper = worker(model(hello));
    EXPECT_THROW(whisper->recognize(hum(1.0), "klingonese", {}), RecognitionError);
    EXPECT_TRUE(whisper->isUsable());
    EXPECT_FALSE(whisper->recognize(hum(2.2), "de", {}).empty());
}

TEST_F(WhisperWorkerTest, aStopAtAnyMomentEndsTheRequestSoon) {
    auto whisper = worker(model(hello));
    std::mt19937 random(5);
    int stopped = 0;
    for (int i = 0; i < 15; ++i) {
        std::stop_source stop;
        Clock::time_point asked;
        std::jthread stopper([&, ms = std::chrono::milliseconds(random() % 400)] {
            std::this_thread::sleep_for(ms);
            asked = Clock::now();
            stop.request_stop();
        });
        try {
            whisper->recognize(hum(30.0), "en", stop.get_token());
        } catch (const CancellationError&) {
            ++stopped;
        }
        const auto ended = Clock::now();
        stopper.join();
        EXPECT_LT(ended - asked, 1s);
        // A machine with much other work may not come to look at the stop in time.
        if (!whisper->isUsable())
            whisper = worker(folder.path() / "ggml-test.bin");
    }
    EXPECT_GT(stopped, 0);
    EXPECT_FALSE(whisper->recognize(hum(2.2), "en", {}).empty());
}

TEST_F(WhisperWorkerTest, aMachineThatTakesLongToListenToAWindowIsNotTakenForHung) {
    auto slow = hello;
    slow.encoderLayers = 80;  // many times as slow as has to be waited for
    WhisperPatience patience;
    patience.work = 700ms;
    WhisperWorker whisper(command, model(slow), 1, patience, {});
    std::stop_source stop;
    const std::jthread stopper([&] {
        std::this_thread::sleep_for(2 * patience.work + 100ms);
        stop.request_stop();
    });
    // It was still at work, and nobody had lost patience.
    EXPECT_THROW(whisper.recognize(hum(2.2), "en", stop.get_token()), CancellationError);
}

TEST_F(WhisperWorkerTest, aDamagedModelFileIsOneSentenceAndNeverACrash) {
    const auto whole = contentOf(model(hello));
    const auto size = whole.size();
    std::vector<std::string> files;
    for (const std::size_t length :
         {std::size_t{0}, std::size_t{3}, std::size_t{4}, std::size_t{30}, std::size_t{48}, std::size_t{60},
          std::size_t{70000}, size / 3, size / 2, size - 1})
        files.push_back(whole.substr(0, length));
    // Each number of the head, too small, too large and absurd.
    for (std::size_t at = 4; at < 48; at += 4) {
        for (const std::int32_t value : {-1, 0, 0x7fffffff, 100000000}) {
            if (at == 44)
                continue;  // the kind of most weights, which each tensor says for itself
            auto wrong = whole;
            std::memcpy(wrong.data() + at, &value, sizeof value);
            files.push_back(std::move(wrong));
        }
    }
    files.push_back("RIFF" + whole.substr(4));
    files.push_back(whole + "more");
    for (std::size_t i = 0; i < files.size(); ++i) {
        const auto error = errorOf(folder.file("ggml-damaged.bin", files[i]));
        EXPECT_NE(error.find("ggml-damaged.bin"), std::string::npos) << i << ": " << error;
        EXPECT_NE(error.find("Install the model again."), std::string::npos) << i << ": " << error;
    }
    EXPECT_NE(errorOf(folder.path() / "missing.bin").find("missing.bin"), std::string::npos);
    EXPECT_NE(errorOf(folder.path()), "");
}

TEST_F(WhisperWorkerTest, aModelWhoseNumbersDoNotBelongTogetherIsAnError) {
    const auto whole = contentOf(model(hello));
    // One more layer than there are tensors for, other widths, other heads: each fits the bounds.
    for (const auto& [at, value] : std::vector<std::pair<std::size_t, std::int32_t>>{
             {8, 1000}, {12, 96}, {16, 3}, {20, 2}, {24, 100}, {28, 96}, {32, 7}, {36, 2}, {40, 81}}) {
        auto wrong = whole;
        std::memcpy(wrong.data() + at, &value, sizeof value);
        std::string error;
        try {
            worker(folder.file("ggml-damaged.bin", wrong))->recognize(hum(2.2), "en", {});
        } catch (const RecognitionError& failed) {
            error = failed.what();
        }
        EXPECT_TRUE(error.ends_with('.')) << at << ": " << error;
    }
}

TEST_F(WhisperWorkerTest, howeverLittleMemoryThereIsTheErrorSpeaksOfMemory) {
    const auto file = model(hello);
    bool hasWorked = false;
    std::set<std::string> errors;
    for (std::int64_t kilobytes = 40000; !hasWorked && kilobytes < (1LL << 26); kilobytes += kilobytes / 6) {
        try {
            WhisperWorker whisper(commandWith(kilobytes), file, 2, WhisperPatience(), {});
            hasWorked = !whisper.recognize(hum(2.2), "en", {}).empty();
        } catch (const RecognitionError& error) {
            EXPECT_NE(
                std::string(error.what()).find("not enough memory for the Whisper model 'ggml-test.bin'"),
                std::string::npos)
                << kilobytes << " kB: " << error.what();
            errors.insert(error.what());
        }
    }
    EXPECT_TRUE(hasWorked);
    EXPECT_EQ(errors.size(), 1U);
}

TEST_F(WhisperWorkerTest, memoryThatIsMissingForVoicesIsNotTheVoiceModelsFault) {
    const auto file = model(hello);
    const auto voices = folder.path() / "ggml-silero-test.bin";
    fixtures::ScriptedVoiceModel().write(voices);
    bool hasWorked = false;
    int errors = 0;
    for (std::int64_t kilobytes = 40000; !hasWorked && kilobytes < (1LL << 26); kilobytes += kilobytes / 25) {
        std::optional<WhisperWorker> whisper;
        try {
            whisper.emplace(commandWith(kilobytes), file, 1, WhisperPatience(), std::stop_token());
            whisper->loadVoices(voices, {});
            hasWorked = !whisper->findVoices(hum(60), {}).empty();
        } catch (const RecognitionError& error) {
            if (!whisper)
                continue;
            ++errors;
            EXPECT_NE(std::string(error.what()).find("not enough memory"), std::string::npos)
                << kilobytes << " kB: " << error.what();
        }
    }
    EXPECT_TRUE(hasWorked);
    EXPECT_GT(errors, 0);
}

TEST_F(WhisperWorkerTest, withoutAGraphicsCardItComputesOnTheProcessor) {
    const auto file = model(hello);
    auto without = command;
    without.emplace_back("--no-gpu");
    WhisperWorker whisper(without, file, 1, WhisperPatience(), {});
    EXPECT_EQ(whisper.backend(), "CPU");
    EXPECT_FALSE(whisper.recognize(hum(2.2), "en", {}).empty());
}

TEST_F(WhisperWorkerTest, killedAtAnyMomentItIsOneErrorAndNothingElse) {
    const auto file = model(hello);
    std::mt19937 random(9);
    int errors = 0;
    for (int i = 0; i < 10; ++i) {
        const auto whisper = worker(file);
        std::jthread killer([id = whisper->processId(), ms = std::chrono::milliseconds(random() % 300)] {
            std::this_thread::sleep_for(ms);
            kill(id, SIGKILL);
        });
        try {
            for (;;)
                whisper->recognize(hum(2.2), "en", {});
        } catch (const RecognitionError& error) {
            errors += std::string(error.what()).find("memory ran out") == std::string::npos ? 0 : 1;
        }
        EXPECT_FALSE(whisper->isUsable());
    }
    EXPECT_EQ(errors, 10);
}

TEST_F(WhisperWorkerTest, itHoldsNothingButItsPipes) {
    const auto whisper = worker(model(hello));
    whisper->recognize(hum(2.2), "en", {});
    const auto process = std::filesystem::path("/proc") / std::to_string(whisper->processId());
    int pipes = 0;
    for (const auto& file : std::filesystem::directory_iterator(process / "fd")) {
        const auto target = std::filesystem::read_symlink(file).string();
        const bool isPipe = target.starts_with("pipe:");
        pipes += isPipe ? 1 : 0;
        EXPECT_TRUE(isPipe || target == "/dev/null") << target;
    }
    EXPECT_EQ(pipes, 2);
    EXPECT_EQ(contentOf(process / "oom_score_adj"), "900\n");
}

TEST_F(WhisperWorkerTest, itEndsWithTheProgramEvenWhenThatIsKilledInTheMiddleOfWork) {
    const auto file = model(hello);
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t program = fork();
    ASSERT_GE(program, 0);
    if (program == 0) {
        const auto whisper = worker(file);
        const pid_t id = whisper->processId();
        if (write(ends[1], &id, sizeof id) != sizeof id)
            _exit(1);
        for (;;)
            whisper->recognize(hum(30.0), "en", {});
    }
    pid_t id = 0;
    ASSERT_EQ(read(ends[0], &id, sizeof id), static_cast<ssize_t>(sizeof id));
    std::this_thread::sleep_for(100ms);
    ASSERT_EQ(kill(id, 0), 0);
    kill(program, SIGKILL);
    waitpid(program, nullptr, 0);
    close(ends[0]);
    close(ends[1]);
    // Whoever inherits it may take its time to sweep it up: what counts is that it doesn't work any more.
    const auto ended = [&] {
        const auto stat = contentOf("/proc/" + std::to_string(id) + "/stat");
        return stat.empty() || stat.find(") Z ") != std::string::npos;
    };
    const auto deadline = Clock::now() + 5s;
    while (!ended() && Clock::now() < deadline)
        std::this_thread::sleep_for(5ms);
    EXPECT_TRUE(ended());
}

}  // namespace
}  // namespace korvane
