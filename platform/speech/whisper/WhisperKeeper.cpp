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
    while (const auto* const model = voiceModel()) {
        auto& with = worker();  // whatever goes wrong with this isn't the voice model's fault
        try {
            keeper_.loadVoices(with, *model, stop_);
            return with.findVoices(samples, stop_);
        } catch (const VoiceModelError& error) {
            keeper_.spoilVoices(*model, error.what());
        } catch (const WhisperCardError&) {
            worker_ = nullptr;
            // The card's fault, until it comes again without one.
            if (!keeper_.giveUpCard())
                keeper_.spoilVoices(*model, brokenOff);
        } catch (const RecognitionError&) {
            worker_ = nullptr;  // another goes on without voices; what ends that one too is told
            keeper_.spoilVoices(*model, brokenOff);
        }
    }
    return std::nullopt;
}

const WhisperKeeper::VoiceModel* WhisperKeeper::Loan::voiceModel() {
    if (!hasLookedForVoices_) {
        hasLookedForVoices_ = true;
        if (auto file = keeper_.settings_.findVoiceModel())
            voiceModel_ = {*file, fingerprint(*file)};
    }
    if (!voiceModel_)
        return nullptr;
    if (!turn_)
        takeTurn();
    return voiceModel_->fingerprint == keeper_.spoiledVoices_ ? nullptr : &*voiceModel_;
}

void WhisperKeeper::loadVoices(WhisperWorker& worker, const VoiceModel& model, const std::stop_token& stop) {
    if (model.fingerprint == loadedVoices_)
        return;
    loadedVoices_.clear();  // the worker lets go of the one that it has, whatever comes of this one
    worker.loadVoices(model.file, stop);
    loadedVoices_ = model.fingerprint;
}

void WhisperKeeper::spoilVoices(const VoiceModel& model, const std::string& sentence) {
    spoiledVoices_ = model.fingerprint;
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

bool WhisperKeeper::giveUpCard() {
    std::unique_ptr<WhisperWorker> old;  // ends behind the lock
    const std::lock_guard lock(mutex_);
    old = std::move(worker_);
    return std::exchange(useCard_, false);
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
