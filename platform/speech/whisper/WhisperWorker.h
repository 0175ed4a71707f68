// One worker process with one model loaded, as the program sees it.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "platform/speech/SpeechRecognizer.h"
#include "platform/speech/whisper/WhisperHeard.h"
#include "platform/speech/whisper/WorkerProcess.h"

namespace korvane {

/// How long a worker may be without a sign of life before it counts as hung, and how long it may work at all.
struct WhisperPatience {
    std::chrono::milliseconds start{std::chrono::seconds(30)};  ///< of the process, up to its first word
    std::chrono::milliseconds load{std::chrono::minutes(3)};    ///< between two pieces of a model
    std::chrono::milliseconds work{std::chrono::minutes(3)};    ///< between two signs of life
    std::chrono::milliseconds stop{250};                        ///< for a request to end that was stopped
    /// In place of `work` while a card is looked for, and when one computes, from a request's first sign of
    /// life on: what comes before that may be its driver's preparations.
    std::chrono::milliseconds card{std::chrono::minutes(1)};
    std::chrono::milliseconds wholeLoad{std::chrono::hours(1)};  ///< 3 GB at less than 1 MB/s
    /// A request as a whole. What is listened to is half a minute long however short the sound is: some
    /// minutes for a large model on a small machine. Words come on top, by its length.
    std::chrono::milliseconds request{std::chrono::minutes(5)};
    int requestPerLength = 10;
};

/// A worker failed, died or hung while a graphics card computed or its driver was looked for: that may be
/// where the fault lies.
class WhisperCardError : public RecognitionError {
  public:
    using RecognitionError::RecognitionError;
};

/// The model that tells voices from other sounds can't be used; the worker can.
class VoiceModelError : public RecognitionError {
  public:
    using RecognitionError::RecognitionError;
};

/// Owned by one thread at a time.
class WhisperWorker {
  public:
    /// Starts the process and loads the model: 0.1 s and some seconds for a large one.
    /// \param command  the worker program and its arguments.
    /// \throws RecognitionError (WhisperCardError), CancellationError
    WhisperWorker(const std::vector<std::string>& command, std::filesystem::path model, int threads,
                  const WhisperPatience& patience, const std::stop_token& stop);

    /// Recognises up to a minute of mono sound at 16 kHz.
    /// \param language  such as "en".
    /// \throws CancellationError once a stop is requested: the worker is told, and ended when it doesn't
    /// react.
    ///         RecognitionError (WhisperCardError) when it failed, died, hung, talked nonsense or found no
    ///         end.
    std::vector<WhisperSegment> recognize(std::span<const float> samples, const std::string& language,
                                          const std::stop_token& stop);

    /// Loads the model that tells voices from other sounds, in place of the one that it had.
    /// \throws VoiceModelError, RecognitionError, CancellationError
    void loadVoices(const std::filesystem::path& file, const std::stop_token& stop);

    /// The chance that somebody speaks, 0 to 1, for each whisper::voiceFrame samples of up to a minute of
    /// mono sound at 16 kHz. Needs loadVoices. \throws as recognize does, and VoiceModelError.
    std::vector<double> findVoices(std::span<const float> samples, const std::stop_token& stop);

    /// Whether it can take another request.
    bool isUsable() { return isUsable_ && process_.isRunning(); }
    const std::filesystem::path& model() const { return model_; }
    /// What computes: "CPU", or the name of a graphics card.
    const std::string& backend() const { return backend_; }
    pid_t processId() const { return process_.id(); }

  private:
    using Clock = std::chrono::steady_clock;
    struct Message {
        std::string line;
        std::string text;  ///< that follows it
    };

    /// Takes what is said between a request and its end; throws what it likes.
    using Take = std::function<void(Message& message)>;

    void greet(const std::stop_token& stop);
    /// \return what computes with it.
    std::string load(const std::string& request, const std::filesystem::path& file,
                     const std::stop_token& stop);
    /// \param about  what stands between the request's number and its samples.
    void ask(const std::string& verb, const std::string& about, std::span<const float> samples,
             const Take& take, const std::stop_token& stop);
    /// \param until  when the request has taken too long.
    void receive(const Take& take, Clock::time_point until, const std::stop_token& stop);
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
    /// \param sentence  what went wrong and what helps.
    [[noreturn]] void broken(const std::string& sentence) const;
    [[noreturn]] void unreachable(const std::system_error& error);
    [[noreturn]] void died();
    [[noreturn]] void hung();
    [[noreturn]] void tookTooLong();
    [[noreturn]] void talkedNonsense();

    const std::filesystem::path model_;
    const WhisperPatience patience_;
    WorkerProcess process_;
    std::string backend_;
    bool usesCard_ = false;       // or looks for one
    std::string heard_;           // read and not yet looked at
    Clock::time_point deadline_;  // for the next sign of life
    std::int64_t request_ = -1;   // the one that it works on
    std::string voices_;          // the file's name
    bool isUsable_ = false;
};

}  // namespace korvane
