// korvane-bench-whisper: one measured job of the Whisper engine in a process of its own, so that its memory
// counts alone. MODEL is a file, or scripted:LAYERS for one that listens with so many layers and then says a
// script.
//
//   installed            the models on this machine: "model", name and file, with tabs between;
//                        "none" and why when this build has no worker
//   minute MODEL AUDIO   start, speed, memory, cancelling
//   long MODEL AUDIO     memory after a long recording
//   pocketsphinx AUDIO   the other engine's speed
//
// Each value is a line: "value", its name, the number, with tabs between.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <exception>
#include <functional>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "bench/whisper/WatchedProcess.h"
#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/support/TemporaryFolder.h"

#if KORVANE_HAS_POCKETSPHINX
#include "platform/speech/pocketsphinx/PocketSphinxEngine.h"
#endif

namespace {

using namespace korvane;
using namespace korvane::bench;
using Clock = std::chrono::steady_clock;

constexpr int kStarts = 5;
constexpr int kCancellations = 12;
/// With a slow model, the first seconds stand for all.
constexpr double kLatestCancellation = 4.0;

void value(const std::string& name, double number) {
    std::printf("value\t%s\t%.6f\n", name.c_str(), number);
    std::fflush(stdout);
}

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

struct Recognition {
    double seconds = 0.0;  ///< until the answer; of a cancelled one, from the cancellation on
    std::size_t words = 0;
    bool wasCancelled = false;
    Clock::time_point cancelled;
};

/// \param cancelAfter   seconds; negative: never.
/// \param beforeCancel  called right before.
/// \throws what the engine answered with, but for the cancellation.
Recognition recognize(
    SpeechEngine& engine, const std::string& sound, double cancelAfter = -1.0,
    const std::function<void()>& beforeCancel = [] {}) {
    Recognition done;
    std::promise<void> answered;
    const auto recognizer = engine.makeRecognizer(Locale{"en-US"});
    if (!recognizer)
        throw std::runtime_error("No model for English.");
    auto start = Clock::now();
    const auto task = recognizer->recognitionTask({sound, false}, [&](const auto& result, const auto& error) {
        const auto now = Clock::now();
        try {
            if (error)
                std::rethrow_exception(error);
            done.words = result->segments.size();
            answered.set_value();
        } catch (const CancellationError&) {
            done.wasCancelled = true;
            answered.set_value();
        } catch (...) {
            answered.set_exception(std::current_exception());
        }
        done.seconds = std::chrono::duration<double>(now - start).count();
    });
    auto future = answered.get_future();
    if (cancelAfter >= 0.0) {
        std::this_thread::sleep_for(std::chrono::duration<double>(cancelAfter));
        beforeCancel();
        done.cancelled = start = Clock::now();
        task->cancel();
    }
    future.get();
    return done;
}

class WhisperBench {
  public:
    WhisperBench(const std::string& model, std::string sound)
        : settings_(whisperSettingsHere()), sound_(std::move(sound)) {
        model_.file = model;
        if (model.starts_with("scripted:")) {
            auto script =
                fixtures::ScriptedModel::saying({" It", " says", " the", " same", " to", " everyone."});
            script.encoderLayers = std::stoi(model.substr(model.find(':') + 1));
            model_.file = folder_.path() / "ggml-scripted.bin";
            script.write(model_.file);
        }
    }

    void minute() {
        measureStart();
        WhisperEngine engine([this] { return std::optional(model_); }, settings_);
        recognize(engine, sound_);  // the first one loads the model
        const auto worker = engine.keeper().processId();
        const double before = processorSeconds(worker).value();
        const auto warm = recognize(engine, sound_);
        value("seconds", warm.seconds);
        value("processor seconds", processorSeconds(worker).value() - before);
        value("words", static_cast<double>(warm.words));
        printMemory(engine);
        measureCancelling(engine, warm.seconds);
    }

    void longRecording() {
        WhisperEngine engine([this] { return std::optional(model_); }, settings_);
        const auto whole = recognize(engine, sound_);
        value("seconds", whole.seconds);
        value("words", static_cast<double>(whole.words));
        printMemory(engine);
    }

  private:
    void measureStart() const {
        std::vector<double> starts;
        for (int i = 0; i < kStarts; ++i) {
            const auto start = Clock::now();
            const WhisperWorker worker(settings_.command, model_.file, settings_.threads, {}, {});
            starts.push_back(secondsSince(start));
        }
        value("start", median(starts));
        value("threads", settings_.threads);
    }

    static void printMemory(const WhisperEngine& engine) {
        value("worker's memory", peakMegabytes(engine.keeper().processId()));
        value("own memory", peakMegabytes(getpid()));
    }

    /// At moments that are spread over the work; where a worker was ended, the next one's start belongs to
    /// it.
    void measureCancelling(WhisperEngine& engine, double busySeconds) const {
        std::mt19937 random(3);
        std::uniform_real_distribution<double> moment(0.0, std::min(busySeconds * 0.9, kLatestCancellation));
        double answer = 0.0;
        double rest = 0.0;
        int cancelled = 0;
        int ended = 0;
        for (int i = 0; i < kCancellations; ++i) {
            pid_t worker = 0;
            const auto stopped =
                recognize(engine, sound_, moment(random), [&] { worker = engine.keeper().processId(); });
            if (!stopped.wasCancelled)
                continue;  // it was quicker this time
            ++cancelled;
            answer = std::max(answer, stopped.seconds);
            if (worker == 0)
                continue;
            rest = std::max(rest, secondsUntilAtRest(worker, stopped.cancelled));
            ended += !processorSeconds(worker);
        }
        value("cancelled", cancelled);
        value("answer to a cancellation", answer);
        value("worker at rest", rest);
        value("workers ended", ended);
        value("right afterwards", recognize(engine, sound_).seconds);
    }

    const TemporaryFolder folder_;
    const WhisperSettings settings_;
    const std::string sound_;
    InstalledSpeechModel model_;
};

void printInstalled() {
    if (whisperSettingsHere().command.empty()) {
        std::printf("none\tThis build comes without Whisper.\n");
        return;
    }
    for (const auto& model : SpeechModelStore(StandardFolders::of(processEnvironment())).installed())
        std::printf("model\t%s\t%s\n", model.name.c_str(), model.file.c_str());
}

void measurePocketSphinx(const std::string& sound) {
#if KORVANE_HAS_POCKETSPHINX
    PocketSphinxEngine engine(
        PocketSphinxModels(StandardFolders::of(processEnvironment()), KORVANE_POCKETSPHINX_MODELS));
    const auto done = recognize(engine, sound);
    value("seconds", done.seconds);
    value("processor seconds", processorSeconds(getpid()).value());
    value("words", static_cast<double>(done.words));
#else
    throw std::runtime_error("This build comes without PocketSphinx; " + sound + " was not recognised.");
#endif
}

int run(const std::vector<std::string>& arguments) {
    const std::string job = arguments.empty() ? "" : arguments[0];
    if (job == "installed" && arguments.size() == 1)
        printInstalled();
    else if (job == "pocketsphinx" && arguments.size() == 2)
        measurePocketSphinx(arguments[1]);
    else if (job == "minute" && arguments.size() == 3)
        WhisperBench(arguments[1], arguments[2]).minute();
    else if (job == "long" && arguments.size() == 3)
        WhisperBench(arguments[1], arguments[2]).longRecording();
    else
        return 2;
    return 0;
}

}  // namespace

int main(int count, char** arguments) {
    try {
        const int result = run({arguments + 1, arguments + count});
        if (result == 2)
            std::fputs("The jobs are listed at the top of bench/whisper/main.cpp.\n", stderr);
        return result;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvane-bench-whisper: %s\n", error.what());
        return 1;
    }
}
