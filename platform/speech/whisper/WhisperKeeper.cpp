#include "platform/speech/whisper/WhisperKeeper.h"

#include <algorithm>
#include <system_error>
#include <utility>

#include "platform/speech/whisper/WhisperProgram.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

/// A file's name and what changes when another takes its place.
std::string fingerprint(const std::filesystem::path& file) {
    std::error_code ignored;
    const auto size = std::filesystem::file_size(file, ignored);
    const auto written = std::filesystem::last_write_time(file, ignored).time_since_epoch().count();
    return file.string() + '\n' + std::to_string(size) + '\n' + std::to_string(written);
}

constexpr const char* brokenOff = "The voice model isn't used any more: the worker broke off over it.";

}  // namespace

WhisperKeeper::Loan::Loan(WhisperKeeper& keeper, std::filesystem::path model, std::stop_token stop)
    : keeper_(keeper), model_(std::move(model)), stop_(std::move(stop)) {}

WhisperKeeper::Loan::~Loan() {
    if (!turn_)
        return;
    const std::lock_guard lock(keeper_.mutex_);
    keeper_.unusedSince_ = Clock::now();
    leave();
}

WhisperWorker& WhisperKeeper::Loan::worker() {
    if (!turn_)
        takeTurn();
    if (worker_)
        return *worker_;
    try {
        worker_ = &keeper_.workerWith(model_, stop_);
        return *worker_;
    } catch (const WhisperCardError&) {
        return workerWithoutCard();
    }
}

WhisperWorker& WhisperKeeper::Loan::workerWithoutCard() {
    worker_ = nullptr;
    hasVoices_.reset();
    keeper_.giveUpCard();
    worker_ = &keeper_.workerWith(model_, stop_);
    return *worker_;
}

std::vector<WhisperSegment> WhisperKeeper::Loan::recognize(std::span<const float> samples,
                                                           const std::string& language) {
    try {
        return worker().recognize(samples, language, stop_);
    } catch (const WhisperCardError&) {
        return workerWithoutCard().recognize(samples, language, stop_);
    }
}

std::optional<std::vector<double>> WhisperKeeper::Loan::voicesIn(std::span<const float> samples) {
    if (!hasVoices_)
        hasVoices_ = hasVoices();
    if (!*hasVoices_)
        return std::nullopt;
    try {
        return worker().findVoices(samples, stop_);
    } catch (const VoiceModelError& error) {
        keeper_.spoilVoices(keeper_.loadedVoices_, error.what());
        hasVoices_ = false;
        return std::nullopt;
    } catch (const RecognitionError&) {
        keeper_.spoilVoices(keeper_.loadedVoices_, brokenOff);
        throw;
    }
}

/// Sees to it that the worker has the model, if there is one.
bool WhisperKeeper::Loan::hasVoices() {
    const auto file = keeper_.settings_.findVoiceModel();
    if (!file)
        return false;
    auto& with = worker();
    const auto wanted = fingerprint(*file);
    if (wanted == keeper_.spoiledVoices_)
        return false;
    if (wanted == keeper_.loadedVoices_)
        return true;
    try {
        with.loadVoices(*file, stop_);
        keeper_.loadedVoices_ = wanted;
        return true;
    } catch (const VoiceModelError& error) {
        keeper_.spoilVoices(wanted, error.what());
        return false;
    } catch (const RecognitionError&) {
        keeper_.spoilVoices(wanted, brokenOff);
        throw;
    }
}

void WhisperKeeper::spoilVoices(std::string fingerprint, const std::string& sentence) {
    spoiledVoices_ = std::move(fingerprint);
    settings_.log(sentence + " Only the loudness of the sound tells where somebody speaks.");
}

void WhisperKeeper::Loan::takeTurn() {
    std::unique_lock lock(keeper_.mutex_);
    turn_ = keeper_.turns_.insert(keeper_.turns_.end(), 0);
    if (keeper_.changed_.wait(lock, stop_, [this] { return keeper_.turns_.begin() == *turn_; }))
        return;
    leave();
    throw CancellationError();
}

void WhisperKeeper::Loan::leave() {
    keeper_.turns_.erase(*turn_);
    turn_.reset();
    keeper_.changed_.notify_all();
}

WhisperKeeper::WhisperKeeper(WhisperSettings settings)
    : settings_(std::move(settings)), useCard_(settings_.useCard) {}

WhisperKeeper::~WhisperKeeper() = default;

WhisperWorker& WhisperKeeper::workerWith(const std::filesystem::path& model, const std::stop_token& stop) {
    auto wanted = fingerprint(model);
    std::unique_ptr<WhisperWorker> old;
    auto command = settings_.command;
    {
        std::unique_lock lock(mutex_);
        // Its memory first: two large models at once may be too much.
        if (!changed_.wait(lock, stop, [this] { return !isLettingGo_; }))
            throw CancellationError();
        if (worker_ && wanted == loaded_ && worker_->isUsable())
            return *worker_;
        old = std::move(worker_);
        if (!useCard_)
            command.emplace_back(whisperWithoutCard);
        if (!housekeeping_.joinable())
            housekeeping_ = std::jthread([this](const std::stop_token& end) { keepHouse(end); });
    }
    old.reset();
    auto made = std::make_unique<WhisperWorker>(command, model, settings_.threads, settings_.patience, stop);
    loadedVoices_.clear();
    const std::lock_guard lock(mutex_);
    loaded_ = std::move(wanted);
    worker_ = std::move(made);
    changed_.notify_all();
    return *worker_;
}

void WhisperKeeper::giveUpCard() {
    std::unique_ptr<WhisperWorker> old;  // ends behind the lock
    const std::lock_guard lock(mutex_);
    useCard_ = false;
    old = std::move(worker_);
}

pid_t WhisperKeeper::processId() const {
    const std::lock_guard lock(mutex_);
    return worker_ ? worker_->processId() : 0;
}

void WhisperKeeper::keepHouse(const std::stop_token& stop) {
    std::unique_lock lock(mutex_);
    while (!stop.stop_requested()) {
        if (!changed_.wait(lock, stop, [this] { return worker_ && turns_.empty(); }))
            return;
        const auto until = unusedSince_ + settings_.idle;
        changed_.wait_until(lock, stop, std::min(until, Clock::now() + settings_.look),
                            [this] { return !turns_.empty(); });
        lock.unlock();
        const bool isShort = settings_.memoryIsShort();
        lock.lock();
        // Both may have changed while nobody held the lock.
        if (!worker_ || !turns_.empty() ||
            (worker_->isUsable() && !isShort && Clock::now() < unusedSince_ + settings_.idle))
            continue;
        auto gone = std::move(worker_);
        isLettingGo_ = true;
        // Outside the lock: whoever comes meanwhile waits, but can be cancelled.
        lock.unlock();
        gone.reset();
        lock.lock();
        isLettingGo_ = false;
        changed_.notify_all();
    }
}

}  // namespace korvane
