// korvane-bench-whisper: how long the Whisper worker takes to start, what it needs for a minute and for an
// hour of speech, and how soon it stops; for every installed model, and for one that only says a script.
//
//   korvane-bench-whisper [--hour] [MODEL.bin]...
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <exception>
#include <fstream>
#include <future>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "platform/models/SpeechModelStore.h"
#include "platform/speech/whisper/WhisperEngine.h"
#include "platform/tasks/Cancellation.h"
#include "tests/fixtures/whisper-model/ScriptedModel.h"
#include "tests/platform/speech/SpokenFixture.h"

namespace {

using namespace korvane;
using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// The most memory that a process has had so far, in MB.
double peakMemory(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stod(line.substr(6)) / 1024;
    return 0.0;
}

struct Recognition {
    double seconds = 0.0;
    std::size_t words = 0;
    std::string error;
};

/// \param cancelAfter  negative: never.
Recognition recognize(WhisperEngine& engine, const std::filesystem::path& sound, double cancelAfter = -1.0) {
    std::promise<Recognition> arrived;
    const auto recognizer = engine.makeRecognizer(Locale{"en-US"});
    auto start = Clock::now();
    const auto task = recognizer->recognitionTask({sound, false}, [&](const auto& result, const auto& error) {
        Recognition done{secondsSince(start), result ? result->segments.size() : 0, ""};
        try {
            if (error)
                std::rethrow_exception(error);
        } catch (const std::exception& wrong) {
            done.error = wrong.what();
        }
        arrived.set_value(done);
    });
    if (cancelAfter >= 0.0) {
        std::this_thread::sleep_for(std::chrono::duration<double>(cancelAfter));
        start = Clock::now();
        task->cancel();
    }
    return arrived.get_future().get();
}

class Bench {
  public:
    Bench() {
        const auto sentence =
            speak(folder_,
                  "We have to go to the station before the train leaves. It was a bright cold day, "
                  "and the clocks were striking. Nobody had told her where the others were.");
        std::vector<std::int16_t> minute;
        while (minute.size() < std::size_t{60} * spokenRateHz) {
            minute.insert(minute.end(), sentence.begin(), sentence.end());
            minute.resize(minute.size() + spokenRateHz / 2);
        }
        minuteSeconds_ = static_cast<double>(minute.size()) / spokenRateHz;
        minute_ = writeWav(folder_, "minute.wav", minute);
        samples_ = std::move(minute);
    }

    const TemporaryFolder& folder() const { return folder_; }

    void measure(const std::string& name, const std::filesystem::path& file, bool hour) {
        auto settings = whisperSettingsHere();
        std::printf("%s, %d threads\n", name.c_str(), settings.threads);
        std::vector<double> starts;
        for (int i = 0; i < 5; ++i) {
            const auto start = Clock::now();
            const WhisperWorker worker(settings.command, file, settings.threads, {}, {});
            starts.push_back(secondsSince(start));
        }
        std::printf("  start and load       %8.3f s\n", median(starts));

        InstalledSpeechModel model;
        model.file = file;
        WhisperEngine engine([model] { return std::optional(model); }, settings);
        const auto cold = recognize(engine, minute_);
        const auto warm = recognize(engine, minute_);
        if (!warm.error.empty())
            throw std::runtime_error(warm.error);
        std::printf("  a minute             %8.3f s, first %.3f s, %zu words, real-time factor %.4f\n",
                    warm.seconds, cold.seconds, warm.words, warm.seconds / minuteSeconds_);
        printMemory(engine);
        measureCancelling(engine, warm.seconds);
        if (hour)
            measureHour(engine);
    }

  private:
    static void printMemory(const WhisperEngine& engine) {
        std::printf("  most memory          %8.1f MB worker, %.1f MB here\n",
                    peakMemory(engine.keeper().processId()), peakMemory(getpid()));
    }

    void measureCancelling(WhisperEngine& engine, double busySeconds) {
        std::mt19937 random(3);
        std::uniform_real_distribution<double> moment(0.0, busySeconds * 0.8);
        double answer = 0.0;
        int replaced = 0;
        for (int i = 0; i < 20; ++i) {
            const auto before = engine.keeper().processId();
            answer = std::max(answer, recognize(engine, minute_, moment(random)).seconds);
            if (i > 0 && engine.keeper().processId() != before)
                ++replaced;
        }
        std::printf("  cancelled, slowest   %8.3f s of 20, worker replaced %d times\n", answer, replaced);
    }

    void measureHour(WhisperEngine& engine) {
        // In a process of its own: what writing the file takes doesn't count.
        const pid_t writer = fork();
        if (writer == 0) {
            std::vector<std::int16_t> hour;
            while (hour.size() < std::size_t{3600} * spokenRateHz)
                hour.insert(hour.end(), samples_.begin(), samples_.end());
            writeWav(folder_, "hour.wav", hour);
            _exit(0);
        }
        waitpid(writer, nullptr, 0);
        hour_ = folder_.path() / "hour.wav";
        const auto whole = recognize(engine, hour_);
        std::printf("  an hour              %8.3f s, %zu words %s\n", whole.seconds, whole.words,
                    whole.error.c_str());
        printMemory(engine);
    }

    TemporaryFolder folder_;
    std::filesystem::path minute_, hour_;
    std::vector<std::int16_t> samples_;
    double minuteSeconds_ = 0.0;
};

void run(const std::vector<std::string>& arguments) {
    if (whisperSettingsHere().command.empty())
        throw std::runtime_error("this build comes without Whisper");
    Bench bench;
    const auto scripted = bench.folder().path() / "ggml-scripted.bin";
    fixtures::ScriptedModel::saying({" It", " says", " the", " same", " to", " everyone."}).write(scripted);
    const bool hour = std::find(arguments.begin(), arguments.end(), "--hour") != arguments.end();
    bench.measure("Scripted model, one layer", scripted, hour);
    for (const auto& model : SpeechModelStore(StandardFolders::of(processEnvironment())).installed())
        bench.measure(model.name, model.file, hour);
    for (const auto& argument : arguments)
        if (argument != "--hour")
            bench.measure(argument, argument, hour);
}

}  // namespace

int main(int count, char** arguments) {
    try {
        run({arguments + 1, arguments + count});
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "korvane-bench-whisper: %s\n", error.what());
        return 1;
    }
}
