#include "tests/platform/av/ScriptedPlayback.h"

#include <algorithm>
#include <deque>
#include <stdexcept>
#include <thread>

#include "tests/fixtures/TestPattern.h"

namespace korvane {

ClockTime ScriptedClock::now() const {
    const std::scoped_lock lock(mutex_);
    return now_;
}

void ScriptedClock::wait(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                         ClockTime until, const std::function<bool()>& ready) {
    std::list<Waiter>::iterator self;
    {
        const std::scoped_lock own(mutex_);
        self = waiters_.insert(waiters_.end(), Waiter{lock.mutex(), &changed, until, &ready});
    }
    changed.wait(lock, [&] { return ready() || now() >= until; });
    const std::scoped_lock own(mutex_);
    waiters_.erase(self);
}

// The waiters' own mutex first, as in wait(); they all belong to one player.
bool ScriptedClock::isSettled(std::size_t threads) {
    std::mutex* shared = nullptr;
    {
        const std::scoped_lock own(mutex_);
        if (waiters_.size() != threads)
            return false;
        shared = waiters_.front().mutex;
    }
    const std::scoped_lock lock(*shared);
    const ClockTime time = now();
    std::list<Waiter> waiters;
    {
        const std::scoped_lock own(mutex_);
        waiters = waiters_;
    }
    return waiters.size() == threads &&
           std::ranges::none_of(waiters, [&](const Waiter& w) { return (*w.ready)() || w.until <= time; });
}

void ScriptedClock::settle(std::size_t threads) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!isSettled(threads)) {
        if (std::chrono::steady_clock::now() > deadline)
            throw std::runtime_error("the player's threads never come to rest");
        std::this_thread::yield();
    }
}

void ScriptedClock::advance(ClockTime by) {
    std::list<Waiter> waiters;
    {
        const std::scoped_lock own(mutex_);
        now_ += by;
        waiters = waiters_;
    }
    for (const Waiter& waiter : waiters) {
        const std::scoped_lock lock(*waiter.mutex);
        waiter.changed->notify_all();
    }
}

namespace {

class ScriptedOutput final : public AudioOutput {
  public:
    ScriptedOutput(const ScriptedClock& clock, AudioFormat format, std::shared_ptr<DeviceScript> script,
                   std::shared_ptr<SoundTape> tape)
        : clock_(clock), format_(format), script_(std::move(script)), tape_(std::move(tape)) {
        tape_->rateHz = format.rateHz;
        tape_->channels = format.channels;
    }
    ~ScriptedOutput() override { play(); }

    std::int64_t room() override {
        play();
        return std::max<std::int64_t>(0, format_.rateHz / 5 - (written_ - heard_));
    }
    void write(std::span<const float> samples) override {
        play();
        if (!startsAt_)
            startsAt_ = clock_.now() + script_->startDelay;
        waiting_.insert(waiting_.end(), samples.begin(), samples.end());
        written_ += static_cast<std::int64_t>(samples.size()) / format_.channels;
    }
    void flush() override {
        play();
        ++tape_->flushes;
        waiting_.clear();
        written_ = heard_ = 0;
        underruns_ = 0;
        startsAt_.reset();
    }
    HeardFrames heard() override {
        play();
        const std::int64_t step = std::max<std::int64_t>(1, samplesAt(script_->reportStep));
        return {heard_ / step * step, clock_.now(), underruns_};
    }
    bool isDead() override { return script_->dead; }

  private:
    std::int64_t samplesAt(ClockTime time) const { return time.count() * format_.rateHz / 1'000'000'000; }

    /// Moves sound to the tape up to now.
    void play() {
        const std::int64_t now = samplesAt(clock_.now());
        if (!playedTo_)
            playedTo_ = now;
        for (; *playedTo_ < now; ++*playedTo_) {
            const bool plays = startsAt_ && *playedTo_ >= samplesAt(*startsAt_) && !script_->dead &&
                               !script_->silent && !waiting_.empty();
            const bool dry = startsAt_ && heard_ > 0 && waiting_.empty();
            if (dry && !dry_) {
                ++tape_->gaps;
                ++underruns_;
            }
            dry_ = dry;
            tapeSample(plays);
        }
    }
    void tapeSample(bool plays) {
        if (tape_->isOn)
            tape_->samples.resize(static_cast<std::size_t>((*playedTo_ + 1) * format_.channels));
        for (int c = 0; plays && c < format_.channels; ++c) {
            if (tape_->isOn)
                tape_->samples[static_cast<std::size_t>(*playedTo_ * format_.channels + c)] =
                    waiting_.front();
            waiting_.pop_front();
        }
        heard_ += plays ? 1 : 0;
        tape_->heard += plays ? 1 : 0;
    }

    const ScriptedClock& clock_;
    AudioFormat format_;
    std::shared_ptr<DeviceScript> script_;
    std::shared_ptr<SoundTape> tape_;
    std::deque<float> waiting_;
    std::int64_t written_ = 0;
    std::int64_t heard_ = 0;
    std::optional<ClockTime> startsAt_;
    std::optional<std::int64_t> playedTo_;
    int underruns_ = 0;
    bool dry_ = false;
};

}  // namespace

std::unique_ptr<AudioOutput> ScriptedOutputs::open(AudioFormat format) {
    if (!hasDevice)
        return nullptr;
    ++opened;
    return std::make_unique<ScriptedOutput>(clock_, format, script, tape);
}

std::shared_ptr<void> ScriptedOutputs::observeDevices(std::function<void()> changed) {
    auto observer = std::make_shared<std::function<void()>>(std::move(changed));
    observers_.push_back(observer);
    return observer;
}

void ScriptedOutputs::tellChange() {
    for (const auto& observer : observers_)
        if (const auto call = observer.lock())
            (*call)();
}

void ScriptedScreen::show(const PlayerFrame& frame) {
    const std::scoped_lock open(gate);
    const int number = readsNumbers ? frameNumberOf(*frame.picture) : -1;
    const std::scoped_lock lock(mutex_);
    if (!keepsAll)
        shown_.clear();
    shown_.push_back({clock_.now(), frame.time, number});
    picture_ = frame.picture;
}

std::vector<ScriptedScreen::Shown> ScriptedScreen::all() const {
    const std::scoped_lock lock(mutex_);
    return shown_;
}

std::optional<ScriptedScreen::Shown> ScriptedScreen::last() const {
    const std::scoped_lock lock(mutex_);
    return shown_.empty() ? std::nullopt : std::optional(shown_.back());
}

std::shared_ptr<const DisplayPicture> ScriptedScreen::lastPicture() const {
    const std::scoped_lock lock(mutex_);
    return picture_;
}

int frameNumberOf(const DisplayPicture& picture) {
    std::vector<std::uint8_t> green(static_cast<std::size_t>(picture.width) *
                                    static_cast<std::size_t>(picture.height));
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x)
            green[static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                  static_cast<std::size_t>(x)] =
                picture.data[static_cast<std::ptrdiff_t>(y) * picture.strideBytes + 4 * x + 1];
    const auto reading =
        fixtures::readFrameNumber({green.data(), picture.width, picture.width, picture.height});
    return reading ? reading->number : -1;
}

}  // namespace korvane
