// The engine with a worker that does as it is told.
#pragma once

#include <dirent.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>

#include <chrono>
#include <cmath>
#include <cstdint>
#include <future>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/tasks/Cancellation.h"
#include "tests/platform/speech/SpokenFixture.h"
#include "tests/platform/speech/SyntheticSound.h"

namespace korvane {

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

inline int openFiles() {
    int count = 0;
    DIR* const folder = opendir("/proc/self/fd");
    while (readdir(folder) != nullptr)
        ++count;
    closedir(folder);
    return count;
}

inline bool hasChildren() {
    return waitpid(-1, nullptr, WNOHANG) != -1;
}

inline bool isAlive(pid_t process) {
    return kill(process, 0) == 0;
}

/// Polls; a process ends when it ends.
template <class Condition>
bool comesTrue(Condition condition) {
    for (const auto deadline = Clock::now() + 10s; Clock::now() < deadline;
         std::this_thread::sleep_for(2ms)) {
        if (condition())
            return true;
    }
    return false;
}

class WhisperEngineTest : public testing::Test {
  protected:
    WhisperEngineTest() {
        auto sound = sound::background(3.0, -70.0);
        sound::addVoice(sound, 0.8, 2.0, -20.0);
        std::vector<std::int16_t> samples;
        for (const float sample : sound)
            samples.push_back(static_cast<std::int16_t>(std::lround(sample * 32767.0F)));
        writeWav(folder, "voice.wav", samples);
        writeWav(folder, "silence.wav", std::vector<std::int16_t>(spokenRateHz));
        model = {"fake", "Whisper fake", folder.file("ggml-fake.bin", "model"), 5, 5, 1.0, true};
    }

    WhisperSettings settings(const std::string& behaviour) const {
        WhisperSettings made;
        made.command = {KORVANE_FAKE_WHISPER, behaviour};
        made.patience = {2s, 500ms, 500ms, 200ms, 500ms, 2s, 2s, 0};
        return made;
    }
    /// Misbehaves the first time that it is started.
    WhisperSettings once(const std::string& behaviour) const {
        auto made = settings(behaviour);
        made.command.push_back((folder.path() / ("mark-" + behaviour)).string());
        return made;
    }

    struct Outcome {
        std::vector<std::string> words;
        std::vector<RecognizedSegment> segments;
        std::string error;
        bool cancelled = false;
    };
    static Outcome outcomeOf(const std::optional<RecognitionResult>& result,
                             const std::exception_ptr& error) {
        Outcome outcome;
        try {
            if (error)
                std::rethrow_exception(error);
            outcome.segments = result->segments;
            for (const auto& segment : result->segments)
                outcome.words.push_back(segment.substring);
        } catch (const RecognitionError& wrong) {
            outcome.error = wrong.what();
        } catch (const CancellationError&) {
            outcome.cancelled = true;
        }
        return outcome;
    }
    Outcome recognize(WhisperEngine& engine, const std::string& file = "voice.wav") const {
        std::promise<Outcome> arrived;
        const auto recognizer = engine.makeRecognizer(Locale{"en-US"});
        const auto task = recognizer->recognitionTask(
            {folder.path() / file, false},
            [&](const auto& result, const auto& error) { arrived.set_value(outcomeOf(result, error)); });
        return arrived.get_future().get();
    }
    WhisperEngine engine(WhisperSettings with) const {
        return WhisperEngine([this] { return std::optional(model); }, std::move(with));
    }

    const std::vector<std::string> oneTwo{"one", "two"};
    TemporaryFolder folder;
    InstalledSpeechModel model;
};

}  // namespace korvane
