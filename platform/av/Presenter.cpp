#include "platform/av/Presenter.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace korvane {
namespace {

using namespace std::chrono_literals;

// The device takes at least a fifth of a second; refilled this often it can't run dry.
constexpr ClockTime kFeedEvery = 10ms;
// Sound that is not ready by then before it is due comes too late for the device, which holds about so much.
constexpr double kLateSeconds = 0.09;
constexpr double kFillSeconds = 0.02;
// How long the end's observer may take to seek to the loop point before playing on was a mistake.
constexpr ClockTime kLoopGrace = 250ms;
// A device that takes sound and plays nothing for this long is as good as none.
constexpr ClockTime kDeviceSilence = 1500ms;
// A sound server that went away may be back without anybody saying so.
constexpr ClockTime kRetryDevice = 3s;

}  // namespace

void Presenter::run() {
    Lock lock(state_.mutex);
    while (!state_.stopping) {
        keepDevice(lock);
        if (!state_.running && mayRun())
            begin(state_.clock.now());
        if (state_.running)
            advance(lock);
        showDue(lock);
        answer();
        if (state_.stopping)
            break;
        const ClockTime until = nextWake(state_.clock.now());
        sleepsWithoutFrame_ = state_.running && state_.frames.empty();
        state_.clock.wait(lock, state_.changed, until, [this] { return state_.stopping || hasNews(); });
    }
    lock.unlock();
    output_.reset();
}

bool Presenter::mayRun() const {
    return state_.rate > 0.0 && !state_.ended && state_.firstFrameDone && !state_.isHopeless() &&
           state_.hasSoundToBegin() && (!state_.format || state_.deviceTried);
}

/// Opens and closes the device as wanted, and drops what it still has of a stream that is over.
void Presenter::keepDevice(Lock& lock) {
    const ClockTime now = state_.clock.now();
    const bool retry = retryDeviceAt_ <= now && state_.deviceWanted;
    if (state_.devicesChanged || retry) {
        state_.devicesChanged = false;
        state_.deviceTried = false;
        retryDeviceAt_ = kNoClockTime;
        if (output_ || retry)
            loseDevice(lock);
    }
    if (stream_ != state_.stream && stream_ >= 0) {
        stream_ = -1;
        if (output_) {
            lock.unlock();
            output_->flush();
            lock.lock();
        }
    }
    if (state_.deviceWanted && !state_.deviceTried && state_.format) {
        const AudioFormat format = *state_.format;
        lock.unlock();
        auto opened = outputs_.open(format);
        lock.lock();
        output_ = std::move(opened);
        state_.deviceTried = true;
        // On to the new device from where the other clock has come.
        if (output_ && state_.running)
            state_.halt(state_.clock.now());
    }
}

/// From now on the steady clock counts, from where the sound has come.
void Presenter::loseDevice(Lock& lock) {
    const bool wasRunning = state_.running && !state_.ended;
    const auto crossed = state_.crossedEndAt;
    state_.crossedEndAt.reset();
    if (wasRunning)
        state_.halt(state_.clock.now());
    state_.crossedEndAt = crossed;
    stream_ = -1;
    heard_.reset();
    auto lost = std::move(output_);
    lock.unlock();
    lost.reset();
    lock.lock();
}

void Presenter::begin(ClockTime now) {
    state_.position = std::floor(state_.position);
    state_.positionAt = now;
    state_.running = true;
    state_.moving = output_ == nullptr;
    stream_ = state_.stream;
    streamFrom_ = written_ = state_.soundWritten = static_cast<std::int64_t>(state_.position);
    underruns_ = 0;
    late_ = false;
    heard_.reset();
    if (output_)
        heard_.emplace(state_.rateHz());
}

void Presenter::advance(Lock& lock) {
    const std::int64_t stream = stream_;
    HeardFrames report;
    if (output_) {
        lock.unlock();
        report = output_->heard();
        const bool dead = output_->isDead();
        lock.lock();
        if (state_.stream != stream || !state_.running)
            return;
        const ClockTime now = state_.clock.now();
        const double frames = heard_->framesAt(now, report, written_ - streamFrom_);
        state_.position = std::max(state_.position, static_cast<double>(streamFrom_) + frames);
        state_.positionAt = now;
        countUnderruns(report.underruns);
        if (dead || heard_->silentFor(now) > kDeviceSilence) {
            loseDevice(lock);
            retryDeviceAt_ = now + kRetryDevice;
            return;
        }
        feed(lock);
        if (state_.stream != stream || !state_.running)
            return;
        state_.moving = frames > 0.0 && frames < static_cast<double>(written_ - streamFrom_);
    } else {
        const ClockTime now = state_.clock.now();
        state_.position = state_.positionAtTime(now);
        state_.positionAt = now;
    }
    finishLap(state_.clock.now());
    releaseSound();
    state_.notify();  // how much is to be made ready depends on the position
}

void Presenter::feed(Lock& lock) {
    const std::int64_t stream = stream_;
    lock.unlock();
    std::int64_t room = output_->room();
    lock.lock();
    const int channels = state_.format->channels;
    std::vector<float> samples;
    while (room > 0 && state_.stream == stream) {
        const auto chunk = std::ranges::find_if(
            state_.sound, [&](const ReadySound& s) { return s.from <= written_ && written_ < s.to; });
        if (chunk == state_.sound.end()) {
            if (!fillLateSound(lock))
                return;
            room = 0;
            continue;
        }
        if (chunk->lap > state_.lastLapAllowed())
            return;
        late_ = false;
        const std::int64_t count = std::min(room, chunk->to - written_);
        const auto first = chunk->samples.begin() + (written_ - chunk->from) * channels;
        samples.assign(first, first + count * channels);
        state_.soundWritten = written_ += count;
        room -= count;
        lock.unlock();
        output_->write(samples);
        lock.lock();
    }
}

/// Sound that is not ready when the device is about to run dry is left out: pictures don't wait for it, and
/// what comes behind it is in time.
bool Presenter::fillLateSound(Lock& lock) {
    const std::int64_t end = state_.line.lapEnd(state_.lastLapAllowed());
    const bool isLate = static_cast<double>(written_) - state_.position < kLateSeconds * state_.rateHz();
    if (!isLate || written_ >= end || written_ == streamFrom_)
        return false;
    if (!std::exchange(late_, true))
        ++state_.statistics.soundUnderruns;
    const auto count = std::min(end - written_, static_cast<std::int64_t>(kFillSeconds * state_.rateHz()));
    const std::vector<float> silence(static_cast<std::size_t>(count * state_.format->channels));
    state_.soundWritten = written_ += count;
    lock.unlock();
    output_->write(silence);
    lock.lock();
    return true;
}

/// To be called before more is written: a device may run dry while this thread gets no processor.
void Presenter::countUnderruns(int underruns) {
    if (written_ < state_.line.lapEnd(state_.lastLapAllowed()))
        state_.statistics.soundUnderruns += underruns - underruns_;
    underruns_ = underruns;
}

/// Sound is kept until it was heard, so that another device can go on with it.
void Presenter::releaseSound() {
    while (!state_.sound.empty() && static_cast<double>(state_.sound.front().to) <= state_.position &&
           (!output_ || state_.sound.front().to <= written_))
        state_.sound.pop_front();
}

void Presenter::finishLap(ClockTime now) {
    const auto end = static_cast<double>(state_.line.lapEnd(state_.lap));
    if (state_.position < end)
        return;
    if (state_.crossedEndAt) {
        // Nobody seeks to the loop point: what has been played of it should not have been.
        if (now - *state_.crossedEndAt > kLoopGrace)
            state_.halt(now);
        return;
    }
    if (state_.goesOnAtEnd()) {
        state_.crossedEndAt = now;
    } else {
        // The device may still have its last milliseconds to play, so the stream is not cut off.
        state_.position = end;
        state_.running = false;
        state_.ended = true;
        if (state_.actionAtItemEnd == ActionAtItemEnd::pause)
            state_.rate = 0.0;
    }
    state_.endObservers.notify(state_.queue);
}

bool Presenter::hasDueFrame() const {
    if (state_.frames.empty())
        return false;
    const ReadyFrame& next = state_.frames.front();
    const std::int64_t lastLap = state_.lap + (state_.crossedEndAt ? 1 : 0);
    return static_cast<double>(next.due) <= state_.position && next.lap <= lastLap;
}

void Presenter::showDue(Lock& lock) {
    if (std::exchange(state_.showAgain, false) && state_.shown)
        show(lock, *state_.shown);
    std::optional<ReadyFrame> due;
    while (hasDueFrame()) {
        if (due)
            ++state_.statistics.droppedFrames;
        due = std::move(state_.frames.front());
        state_.frames.pop_front();
        state_.frameBytes -= due->frame.picture->bytes();
    }
    if (due) {
        state_.notify();
        state_.shown = due->frame;
        ++state_.statistics.shownFrames;
        const std::int64_t generation = state_.generation;
        show(lock, due->frame);
        // A seek may have come while the picture was handed over.
        if (state_.generation == generation)
            settleFirstFrame();
    }
    if (state_.picturesFailed && !state_.firstFrameDone)
        settleFirstFrame();
}

void Presenter::show(Lock& lock, const PlayerFrame& frame) {
    const auto consumer = state_.consumer;
    if (!consumer)
        return;
    const PlayerFrame copy = frame;
    lock.unlock();
    consumer->show(copy);
    lock.lock();
}

void Presenter::settleFirstFrame() {
    if (state_.firstFrameDone)
        return;
    state_.firstFrameDone = true;
    state_.tellReady();
    state_.complete(state_.seekCompletion, !state_.isHopeless());
}

void Presenter::answer() {
    if (!state_.prerollCompletion)
        return;
    if (state_.isHopeless())
        state_.complete(state_.prerollCompletion, false);
    else if (state_.isPrerolled())
        state_.complete(state_.prerollCompletion, true);
}

/// What run() would act on at once.
bool Presenter::hasNews() const {
    const bool device =
        state_.format && state_.deviceWanted && (!state_.deviceTried || state_.devicesChanged);
    const bool stale = stream_ >= 0 && stream_ != state_.stream;
    const bool start = !state_.running && mayRun();
    const bool failed = !state_.firstFrameDone && state_.picturesFailed;
    const bool prerolled = state_.prerollCompletion && (state_.isHopeless() || state_.isPrerolled());
    const bool replan = sleepsWithoutFrame_ && !state_.frames.empty();
    return device || stale || start || failed || prerolled || replan || hasDueFrame() || state_.showAgain;
}

ClockTime Presenter::nextWake(ClockTime now) const {
    ClockTime wake = state_.deviceWanted ? retryDeviceAt_ : kNoClockTime;
    if (!state_.running)
        return wake;
    const auto sleepUntil = [&](std::int64_t position) {
        const double seconds =
            (static_cast<double>(position) - state_.position) / (state_.rate * state_.rateHz());
        const auto wait = std::chrono::duration_cast<ClockTime>(std::chrono::duration<double>(seconds));
        wake = std::min(wake, now + std::max<ClockTime>(wait + 1us, output_ ? 1ms : 100us));
    };
    if (output_)
        wake = std::min(wake, now + kFeedEvery);
    if (!state_.frames.empty())
        sleepUntil(state_.frames.front().due);
    if (state_.crossedEndAt)
        wake = std::min(wake, std::max(now + 1ms, *state_.crossedEndAt + kLoopGrace + 1us));
    else
        sleepUntil(state_.line.lapEnd(state_.lap));
    return wake;
}

}  // namespace korvane
