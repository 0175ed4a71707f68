// korvane-whisper: recognises speech for the program that started it, over its standard input and output, in
// a process of its own, so that whatever the library does to itself stays here. Writes no file, opens no
// connection, and ends when the program does.
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <ctime>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <thread>

#include "platform/speech/whisper/WhisperProtocol.h"
#include "platform/speech/whisper/worker/Backends.h"
#include "platform/speech/whisper/worker/MemoryWatch.h"
#include "platform/speech/whisper/worker/MemoryWords.h"
#include "platform/speech/whisper/worker/Model.h"
#include "platform/speech/whisper/worker/Requests.h"
#include "platform/speech/whisper/worker/Voices.h"

namespace korvane::whisper {
namespace {

/// The pipe back. Whole messages from any thread.
class Answers final : public Listener {
  public:
    explicit Answers(int output) : output_(output) {}

    void begin(std::int64_t id) { id_ = id; }
    void send(const std::string& message) {
        const std::lock_guard lock(mutex_);
        write(message);
    }
    void failed(std::string_view kind, std::string_view sentence) {
        sentence = sentence.substr(0, longestText);
        send(makeLine("failed", kind, sentence.size()) + std::string(sentence));
    }

    void alive() override { pulse(makeLine("alive", id_)); }
    /// What is said again and again, but not too often.
    void pulse(const std::string& message) {
        const auto now = std::chrono::steady_clock::now();
        const std::lock_guard lock(mutex_);
        if (now - lastPulse_ < std::chrono::milliseconds(200))
            return;
        lastPulse_ = now;
        write(message);
    }
    void segment(long long start, long long end, double silence) override {
        send(makeLine("segment", id_, start, end, share(silence)));
    }
    void token(long long end, double chance, std::string_view bytes) override {
        bytes = bytes.substr(0, longestText);
        send(makeLine("token", end, share(chance), bytes.size()) + std::string(bytes));
    }

  private:
    static double share(double value) { return value >= 0.0 && value <= 1.0 ? value : 0.0; }

    void write(std::string_view message) const {
        while (!message.empty()) {
            const auto written = ::write(output_, message.data(), message.size());
            if (written > 0)
                message.remove_prefix(static_cast<std::size_t>(written));
            else if (errno != EINTR)
                _exit(0);  // nobody listens any more
        }
    }

    const int output_;
    std::mutex mutex_;
    std::chrono::steady_clock::time_point lastPulse_;
    std::int64_t id_ = 0;
};

/// The processor time of all threads, in seconds.
double processorTime() {
    timespec used{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &used);
    return static_cast<double>(used.tv_sec) + static_cast<double>(used.tv_nsec) * 1e-9;
}

/// Says that the worker lives while the library is inside one of its calls: a small machine listens to a
/// single window of a large model for minutes. Whatever uses the processor isn't stuck; who turns in circles
/// uses it too, but the program lets no request go on for ever.
class Pulse {
  public:
    explicit Pulse(Answers& answers)
        : thread_([&answers](const std::stop_token& stop) {
              std::mutex mutex;
              std::unique_lock lock(mutex);
              std::condition_variable_any never;
              double used = processorTime();
              for (;;) {
                  never.wait_for(lock, stop, between, [] { return false; });
                  if (stop.stop_requested())
                      return;
                  if (processorTime() - used > leastWork)
                      answers.alive();
                  used = processorTime();
              }
          }) {}

  private:
    static constexpr std::chrono::milliseconds between{250};
    static constexpr double leastWork = 1e-3;  // seconds; the beat itself takes some microseconds
    std::jthread thread_;
};

/// What is loaded at present.
struct Loaded {
    const bool mayUseCard;
    std::optional<Model> model;
    std::optional<Voices> voices;
};

[[noreturn]] void askedTooEarly() {
    throw Failure(failure::engine, "It was asked before it had a model.");
}

void recognise(Loaded& loaded, const Request& request, const Requests& requests, Answers& answers) {
    if (!loaded.model)
        askedTooEarly();
    answers.begin(request.id);
    const auto isStopped = [&] { return requests.isStopped(request.id); };
    const bool whole = [&] {
        const Pulse pulse(answers);
        return loaded.model->recognise(request.samples, request.language, isStopped, answers);
    }();
    answers.send(makeLine(whole ? "done" : "stopped", request.id));
}

void findVoices(Loaded& loaded, const Request& request, const Requests& requests, Answers& answers) {
    if (!loaded.voices)
        askedTooEarly();
    answers.begin(request.id);
    const auto chances = [&] {
        const Pulse pulse(answers);
        return loaded.voices->chancesIn(request.samples);
    }();
    if (requests.isStopped(request.id))
        return answers.send(makeLine("stopped", request.id));
    answers.send(makeLine("chances", request.id, chances.size()) + chances);
    answers.send(makeLine("done", request.id));
}

/// A model, and what it is computed with.
void load(Loaded& loaded, const Request& request, Answers& answers) {
    loaded.model.reset();
    if (!canCompute()) {
        if (hasMemoryRunOut())
            throw Failure(failure::memory, "There is not enough memory.");
        throw Failure(failure::machine, "The library can't compute on this machine.");
    }
    // The library may see one even so: that of a driver which can't be hidden.
    const auto card = loaded.mayUseCard ? usableCard() : std::string();
    const auto computes = card.empty() ? std::string(processor) : card;
    answers.send(makeLine("loading", computes));
    loaded.model.emplace(request.path, request.threads, !card.empty(),
                         [&] { answers.pulse(makeLine("loading", computes)); });
    answers.send(makeLine("loaded", computes));
}

void answer(Loaded& loaded, const Request& request, const Requests& requests, Answers& answers) {
    switch (request.task) {
        case Task::load:
            return load(loaded, request, answers);
        case Task::loadVoices:
            loaded.voices.reset();
            loaded.voices.emplace(request.path);
            return answers.send(makeLine("loaded", processor));
        case Task::recognise:
            return recognise(loaded, request, requests, answers);
        case Task::findVoices:
            return findVoices(loaded, request, requests, answers);
    }
}

[[noreturn]] void serve(bool mayUseCard, Requests& requests, Answers& answers) {
    Loaded loaded{mayUseCard, {}, {}};
    for (;;) {
        try {
            answer(loaded, requests.next(), requests, answers);
        } catch (const Failure& failed) {
            answers.failed(failed.kind(), failed.what());
        } catch (const std::exception& error) {
            const bool lacksMemory = hasMemoryRunOut() || meansNoMemory(error);
            answers.failed(lacksMemory ? failure::memory : failure::engine, error.what());
        }
    }
}

/// \return nothing when they make no sense.
std::optional<Backends> readArguments(int count, char** arguments) {
    Backends backends;
    for (int i = 1; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--no-gpu")
            backends.useCard = false;
        else if (argument == "--backends" && i + 1 < count)
            backends.folder = arguments[++i];
        else
            return std::nullopt;
    }
    return backends;
}

/// When memory runs out, this process is to go, not the one with the person's work. And what it leaves behind
/// when it crashes is of no use to anyone.
void beExpendable() {
    const int file = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (file >= 0) {
        [[maybe_unused]] const auto written = ::write(file, "900", 3);
        close(file);
    }
    const rlimit none{0, 0};
    setrlimit(RLIMIT_CORE, &none);
}

}  // namespace
}  // namespace korvane::whisper

int main(int count, char** arguments) {
    using namespace korvane::whisper;
    signal(SIGPIPE, SIG_IGN);
    beExpendable();
    // The library prints to standard output here and there: what it prints goes nowhere.
    const int output = fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (output < 0 || nowhere < 0 || dup2(nowhere, STDOUT_FILENO) < 0)
        return 1;
    const auto backends = readArguments(count, arguments);
    if (!backends)
        return 2;
    watchMemory(output);
    Requests requests(STDIN_FILENO);
    Answers answers(output);
    answers.send(makeLine("hello", protocolVersion));
    if (backends->mayFindCard())
        answers.send("looking\n");
    backends->prepare();
    serve(backends->useCard, requests, answers);
}
