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

    struct VoiceModel {
        std::filesystem::path file;
        std::string fingerprint;  ///< of the file as it was when the recording began
    };

    WhisperWorker& workerWith(const std::filesystem::path& model, const std::stop_token& stop);
    // These three by whoever has the turn:
    /// The worker ends, and those that come do without the card. \return false when they did so already.
    bool giveUpCard();
    /// Sees to it that the worker has this one.
    void loadVoices(WhisperWorker& worker, const VoiceModel& model, const std::stop_token& stop);
    /// It isn't tried again. \param sentence  why.
    void spoilVoices(const VoiceModel& model, const std::string& sentence);
    void keepHouse(const std::stop_token& stop);

    const WhisperSettings settings_;
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::list<int> turns_;  // whoever is in front has the worker
    std::unique_ptr<WhisperWorker> worker_;
    std::string loaded_;        // the file that it has loaded, as it was then
    bool isLettingGo_ = false;  // of an unused one, which takes its time
    bool useCard_;
    Clock::time_point unusedSince_;
    // Only whoever has the turn looks at these, without the lock. Fingerprints; empty: none.
    std::string loadedVoices_;   // the voice model that the worker has
    std::string spoiledVoices_;  // the one that didn't work, and isn't tried again
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
    /// for that is installed, or it can't be used. One that can't, or over which a worker broke off without a
    /// graphics card being at fault, is logged once and not used any more. Waits as recognize() does.
    /// \throws RecognitionError when no worker can be had; CancellationError.
    std::optional<std::vector<double>> voicesIn(std::span<const float> samples);

  private:
    WhisperWorker& worker();
    WhisperWorker& workerWithoutCard();
    /// The one to be used; null when there is none.
    const VoiceModel* voiceModel();
    void takeTurn();
    void leave();

    WhisperKeeper& keeper_;
    const std::filesystem::path model_;
    const std::stop_token stop_;
    std::optional<std::list<int>::iterator> turn_;
    WhisperWorker* worker_ = nullptr;
    bool hasLookedForVoices_ = false;
    std::optional<VoiceModel> voiceModel_;  // for the whole recording, once it was looked for
};

}  // namespace korvane
