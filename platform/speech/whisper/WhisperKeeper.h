// Keeps a worker with its model loaded while the person works, and lends it to one recognition after another.
#pragma once

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "platform/speech/whisper/WhisperWorker.h"

namespace korvane {

struct WhisperSettings {
    std::vector<std::string> command;  ///< the worker program and its arguments
    int threads = 1;
    bool useCard = true;  ///< a graphics card, where there is one
    WhisperPatience patience;
    std::chrono::milliseconds idle{std::chrono::minutes(5)};  ///< how long an unused worker is kept
    std::chrono::milliseconds look{std::chrono::seconds(5)};  ///< how often memory is looked at meanwhile
    std::function<bool()> memoryIsShort = [] { return false; };
    /// The model that tells voices from other sounds, looked up anew each time; none when there is none.
    std::function<std::optional<std::filesystem::path>()> findVoiceModel = [] { return std::nullopt; };
    /// Gets a sentence about what goes on without anyone having to know.
    std::function<void(const std::string&)> log = [](const std::string&) {};
};

/// Any thread. Outlives its loans.
class WhisperKeeper {
  public:
    class Loan;

    explicit WhisperKeeper(WhisperSettings settings);
    ~WhisperKeeper();
    WhisperKeeper(const WhisperKeeper&) = delete;
    WhisperKeeper& operator=(const WhisperKeeper&) = delete;

    /// The process that is kept at present; 0: none. For measurements and tests.
    pid_t processId() const;

  private:
    using Clock = std::chrono::steady_clock;

    WhisperWorker& workerWith(const std::filesystem::path& model, const std::stop_token& stop);
    /// The worker ends, and those that come do without the card. By whoever has the turn.
    void giveUpCard();
    void spoilVoices(std::string fingerprint, const std::string& sentence);
    void keepHouse(const std::stop_token& stop);

    const WhisperSettings settings_;
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::list<int> turns_;  // whoever is in front has the worker
    std::unique_ptr<WhisperWorker> worker_;
    std::string loaded_;        // the file that it has loaded, as it was then
    bool isLettingGo_ = false;  // of an unused one, which takes its time
    bool useCard_;
    // Only whoever has the worker looks at these:
    std::string loadedVoices_;   // likewise; empty: none
    std::string spoiledVoices_;  // the one that didn't work, and isn't tried again
    Clock::time_point unusedSince_;
    std::jthread housekeeping_;
};

/// The worker for one recording, from when it is first needed. Lives on one thread.
class WhisperKeeper::Loan {
  public:
    Loan(WhisperKeeper& keeper, std::filesystem::path model, std::stop_token stop);
    ~Loan();
    Loan(const Loan&) = delete;
    Loan& operator=(const Loan&) = delete;

    /// As WhisperWorker::recognize. The first call waits for its turn, and for a worker that has the model:
    /// the one that is there when it can still be used, else a new one. When a graphics card may be at fault
    /// for what goes wrong, another worker is asked once more, without it; and the card stays unused from
    /// then on.
    std::vector<WhisperSegment> recognize(std::span<const float> samples, const std::string& language);

    /// The chance that somebody speaks, 0 to 1, for each whisper::voiceFrame samples; nothing when no model
    /// for that is installed, or it can't be used, which is logged once. Waits as recognize() does.
    /// \throws RecognitionError when the worker fails at it, and the model isn't used any more;
    /// CancellationError.
    std::optional<std::vector<double>> voicesIn(std::span<const float> samples);

  private:
    WhisperWorker& worker();
    WhisperWorker& workerWithoutCard();
    bool hasVoices();
    void takeTurn();
    void leave();

    WhisperKeeper& keeper_;
    const std::filesystem::path model_;
    const std::stop_token stop_;
    std::optional<std::list<int>::iterator> turn_;
    WhisperWorker* worker_ = nullptr;
    std::optional<bool> hasVoices_;  // whether the worker can tell voices apart; not yet known: nothing
};

}  // namespace korvane
