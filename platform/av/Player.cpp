#include "platform/av/Player.h"

#include <algorithm>
#include <stop_token>
#include <thread>
#include <utility>

#include "platform/av/PlayerSources.h"
#include "platform/av/PlayerState.h"
#include "platform/av/Presenter.h"

namespace korvane {

/// The shared state and the threads on it.
class Player::Engine {
  public:
    Engine(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs,
           std::shared_ptr<PlayerItem> item)
        : state(std::move(item), queue, clock),
          devices_(outputs.observeDevices([this] {
              const std::scoped_lock lock(state.mutex);
              state.devicesChanged = true;
              state.notify();
          })),
          frames_([this] { FrameSource(state, stop_.get_token()).run(); }),
          sound_([this] { SoundSource(state, stop_.get_token()).run(); }),
          presenter_([this, &outputs] { Presenter(state, outputs).run(); }) {}

    ~Engine() {
        devices_.reset();
        stop_.request_stop();
        const std::scoped_lock lock(state.mutex);
        state.stopping = true;
        state.complete(state.seekCompletion, false);
        state.complete(state.prerollCompletion, false);
        state.notify();
    }

    PlayerState state;

  private:
    std::stop_source stop_;
    std::shared_ptr<void> devices_;
    std::jthread frames_;
    std::jthread sound_;
    std::jthread presenter_;
};

Player::Player(MainQueue& queue, PlaybackClock& clock, AudioOutputFactory& outputs,
               std::shared_ptr<PlayerItem> item)
    : engine_(std::make_unique<Engine>(queue, clock, outputs, std::move(item))) {}

Player::~Player() = default;

const std::shared_ptr<PlayerItem>& Player::currentItem() const {
    return engine_->state.item;
}

void Player::play() {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    s.rate = 1.0;
    s.deviceWanted = true;
    s.notify();
}

void Player::pause() {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    s.halt(s.clock.now());
    s.rate = 0.0;
    s.notify();
}

double Player::rate() const {
    const std::scoped_lock lock(engine_->state.mutex);
    return engine_->state.rate;
}

MediaTime Player::currentTime() const {
    const PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    return s.timeAt(s.clock.now());
}

void Player::seek(MediaTime to, Completion completion) {
    // Half a picture: nobody sees the difference.
    const MediaTime tolerance = multipliedByRatio(engine_->state.grid.frameDuration, 1, 2);
    seek(to, tolerance, tolerance, std::move(completion));
}

void Player::seek(MediaTime to, MediaTime toleranceBefore, MediaTime toleranceAfter, Completion completion) {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    const MediaTime target = std::clamp(to, kZeroTime, std::max(kZeroTime, s.duration));
    s.complete(s.seekCompletion, false);
    s.complete(s.prerollCompletion, false);
    s.seekCompletion = std::move(completion);
    const bool broken = s.picturesFailed || s.soundFailed;
    if (s.crossedEndAt && !broken && *s.line.loop() >= target - toleranceBefore &&
        *s.line.loop() <= target + toleranceAfter) {
        s.crossedEndAt.reset();
        ++s.lap;
        s.complete(s.seekCompletion, true);
        s.notify();
        return;
    }
    if (s.ended || s.crossedEndAt)
        s.loopPoint = target;
    s.restart(target);
}

void Player::preroll(double rate, Completion completion) {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    s.complete(s.prerollCompletion, false);
    s.prerollCompletion = std::move(completion);
    if (!(rate > 0.0))
        s.complete(s.prerollCompletion, false);
    s.deviceWanted = true;
    s.notify();
}

void Player::setActionAtItemEnd(ActionAtItemEnd action) {
    const std::scoped_lock lock(engine_->state.mutex);
    engine_->state.actionAtItemEnd = action;
    engine_->state.notify();
}

ActionAtItemEnd Player::actionAtItemEnd() const {
    const std::scoped_lock lock(engine_->state.mutex);
    return engine_->state.actionAtItemEnd;
}

Observation Player::observeEnd(std::function<void()> observer) {
    return engine_->state.endObservers.add(std::move(observer));
}

void Player::setLoopHint(MediaTime loopPoint) {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    s.setLoop(loopPoint);
}

void Player::setFrameSize(int width, int height) {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    if (width == s.frameWidth && height == s.frameHeight)
        return;
    s.frameWidth = width;
    s.frameHeight = height;
    if (!s.running)
        s.remakeFrames(s.clock.now());
}

void Player::setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) {
    PlayerState& s = engine_->state;
    const std::scoped_lock lock(s.mutex);
    s.consumer = std::move(consumer);
    s.showAgain = s.consumer && s.shown;
    s.notify();
}

PlayerStatistics Player::statistics() const {
    const std::scoped_lock lock(engine_->state.mutex);
    return engine_->state.statistics;
}

}  // namespace korvane
