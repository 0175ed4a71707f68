// One worker process with one model loaded, as the program sees it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "platform/speech/whisper/WhisperHeard.h"
#include "platform/speech/whisper/WorkerProcess.h"

namespace korvane {

/// How long a worker may be without a sign of life before it counts as hung.
struct WhisperPatience {
    std::chrono::milliseconds start{std::chrono::seconds(30)};  ///< of the process, up to its first word
    std::chrono::milliseconds load{std::chrono::minutes(3)};    ///< of a model from a slow disk
    std::chrono::milliseconds work{std::chrono::minutes(3)};    ///< between two signs of life
    std::chrono::milliseconds stop{400};                        ///< for a request to end that was stopped
};

/// Owned by one thread at a time.
class WhisperWorker {
  public:
    /// Starts the process and loads the model: 0.1 s and some seconds for a large one.
    /// \param command  the worker program and its arguments.
    /// \throws RecognitionError, CancellationError
    WhisperWorker(const std::vector<std::string>& command, std::filesystem::path model, int threads,
                  const WhisperPatience& patience, const std::stop_token& stop);

    /// Recognises up to a minute of mono sound at 16 kHz.
    /// \param language  such as "en".
    /// \throws CancellationError once a stop is requested: the worker is told, and ended when it doesn't
    /// react.
    ///         RecognitionError when it failed, died, hung or talked nonsense.
    std::vector<WhisperSegment> recognize(std::span<const float> samples, const std::string& language,
                                          const std::stop_token& stop);

    /// Whether it can take another request.
    bool isUsable() { return isUsable_ && process_.isRunning(); }
    const std::filesystem::path& model() const { return model_; }
    /// What computes, such as "CPU".
    const std::string& backend() const { return backend_; }
    pid_t processId() const { return process_.id(); }

  private:
    using Clock = std::chrono::steady_clock;
    struct Message {
        std::string line;
        std::string text;  ///< that follows it
    };

    void greet(const std::stop_token& stop);
    void load(int threads, const std::stop_token& stop);
    std::vector<WhisperSegment> receive(const std::stop_token& stop);
    void send(std::span<const char> bytes, const std::stop_token& stop);
    /// The next one, whole: what a stop interrupts can be read on from afterwards.
    Message next(const std::stop_token& stop);
    std::optional<Message> takeWhole();
    void fill(const std::stop_token& stop);
    /// Whatever came of a read or write that isn't some bytes is an end.
    void checkMoved(WorkerProcess::Event event, std::size_t count);
    /// Tells it to stop and waits until it has.
    void giveUp();
    [[noreturn]] void failed(const Message& message);
    [[noreturn]] void died();
    [[noreturn]] void hung();
    [[noreturn]] void talkedNonsense();

    const std::filesystem::path model_;
    const WhisperPatience patience_;
    WorkerProcess process_;
    std::string backend_;
    std::string heard_;  // read and not yet looked at
    Clock::time_point deadline_;
    std::int64_t request_ = -1;  // the one that it works on
    bool isUsable_ = false;
};

}  // namespace korvane
