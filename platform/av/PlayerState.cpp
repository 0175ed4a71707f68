#include "platform/av/PlayerState.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "platform/av/CompositionReader.h"

namespace korvane {
namespace {

// A cut to another place of the source costs decoding up to there; a second of pictures bridges that.
constexpr double kFramesAheadSeconds = 1.0;
constexpr std::size_t kMostFrameBytes = 64'000'000;
constexpr std::size_t kFewestFrames = 4;
constexpr double kSoundAheadSeconds = 0.75;
// What lies ready before playing starts.
constexpr double kPrerollSeconds = 0.25;
// Less would run dry before the next is read.
constexpr double kLeastSoundSeconds = 0.1;

MediaTime frameDurationOf(const VideoComposition& video) {
    return video.frameDuration > kZeroTime ? video.frameDuration : MediaTime(1, 30);
}

}  // namespace

PlayerState::PlayerState(std::shared_ptr<PlayerItem> playedItem, MainQueue& mainQueue,
                         PlaybackClock& playbackClock)
    : item(std::move(playedItem)),
      queue(mainQueue),
      clock(playbackClock),
      duration(item->composition()->duration()),
      format(CompositionAudioReader::preferredFormat(*item->composition())) {
    grid.frameDuration = frameDurationOf(item->videoComposition());
    restart(kZeroTime);
}

void PlayerState::complete(PlayerCompletion& completion, bool finished) {
    if (!completion)
        return;
    queue.post([call = std::exchange(completion, nullptr), finished] { call(finished); });
}

double PlayerState::positionAtTime(ClockTime now) const {
    if (!running || !moving)
        return position;
    const double elapsed = std::chrono::duration<double>(now - positionAt).count();
    return position + std::max(0.0, elapsed) * rate * rateHz();
}

MediaTime PlayerState::timeAt(ClockTime now) const {
    return line.timeAt(lap, positionAtTime(now));
}

void PlayerState::halt(ClockTime now) {
    if (crossedEndAt) {
        crossedEndAt.reset();
        ended = true;
    }
    position = std::min(positionAtTime(now), static_cast<double>(line.lapEnd(lap)));
    positionAt = now;
    if (running)
        ++stream;
    running = false;
}

void PlayerState::restart(MediaTime start) {
    ++generation;
    ++stream;
    running = false;
    ended = false;
    crossedEndAt.reset();
    line = PlayLine(start, duration, rateHz());
    line.setLoop(loopPoint);
    grid.origin = line.loop().value_or(kZeroTime);
    lap = 0;
    position = 0.0;
    makeFramesFrom(0, start < duration ? start : frameTimeOf(start));
    picturesFailed = false;
    firstFrameDone = false;
    sound.clear();
    nextSoundLap = 0;
    nextSoundFrom = 0;
    soundFailed = false;
    notify();
}

void PlayerState::setLoop(MediaTime loop) {
    const bool known = line.loop().has_value();
    loopPoint = loop;
    if (known && line.loop() == loop)
        return;
    // What was made ready behind another loop point, and pictures counted from it, are of no use.
    const ClockTime now = clock.now();
    if (known) {
        if (!ended)
            restart(timeAt(now));
        return;
    }
    line.setLoop(loop);
    grid.origin = line.loop().value_or(kZeroTime);
    nextFrameTime = nextFrameLap > 0 && line.loop() ? *line.loop() : nextFrameTime;
    notify();
}

/// When the picture that is seen at `t` began; at the end, the last one.
MediaTime PlayerState::frameTimeOf(MediaTime t) const {
    MediaTime time = grid.atOrBefore(t);
    if (time >= duration)
        time = grid.atOrBefore(duration - grid.frameDuration);
    return std::max(time, kZeroTime);
}

void PlayerState::makeFramesFrom(std::int64_t firstLap, MediaTime time) {
    ++frameGeneration;
    std::ranges::move(frames, std::back_inserter(discarded));
    frames.clear();
    frameBytes = 0;
    nextFrameLap = firstLap;
    nextFrameTime = time;
}

void PlayerState::remakeFrames(ClockTime now) {
    makeFramesFrom(
        lap, std::max(frameTimeOf(timeAt(now)), std::min(line.lapStartTime(lap), frameTimeOf(duration))));
    notify();
}

void PlayerState::tellReady() {
    if (everReady_ || !shown || (format && !firstSoundDone))
        return;
    everReady_ = true;
    item->becomeReady();
}

bool PlayerState::wantsFrame() const {
    if (picturesFailed || nextFrameLap > lastLapAllowed())
        return false;
    if (frames.size() < kFewestFrames)
        return true;
    const double ahead = static_cast<double>(frames.back().due) - position;
    return frameBytes < kMostFrameBytes && ahead < kFramesAheadSeconds * rateHz();
}

bool PlayerState::wantsSound() const {
    if (!format || nextSoundLap > lastLapAllowed())
        return false;
    return static_cast<double>(nextSoundFrom) - position < kSoundAheadSeconds * rateHz();
}

bool PlayerState::hasSoundToBegin() const {
    return !wantsSound() || static_cast<double>(nextSoundFrom) >= position + kLeastSoundSeconds * rateHz();
}

bool PlayerState::isPrerolled() const {
    const double enough = position + kPrerollSeconds * rateHz();
    const bool pictures =
        !wantsFrame() || (!frames.empty() && static_cast<double>(frames.back().due) >= enough);
    const bool samples = !wantsSound() || static_cast<double>(nextSoundFrom) >= enough;
    return firstFrameDone && pictures && samples && (!format || deviceTried);
}

}  // namespace korvane
