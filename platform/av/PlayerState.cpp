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
constexpr double kSoundBehindDeviceSeconds = 0.4;
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
    const PlayLine before = line;
    const bool onFirstLap = lap == 0 && !picturesFailed && !soundFailed;
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
    picturesFailed = false;
    firstFrameDone = false;
    soundFailed = false;

    // On the same line from another point on: what is ready there need not be made again. A preview begins
    // with such a seek, a quarter of a second ahead.
    const std::int64_t shift = before.positionOf(0, start);
    const bool sameLine = onFirstLap && before.loop() == line.loop();
    const MediaTime first = start < duration ? start : frameTimeOf(start);
    if (!sameLine || !keepFramesFrom(first, shift))
        makeFramesFrom(0, first);
    if (!sameLine || !keepSoundFrom(shift)) {
        ++soundGeneration;
        sound.clear();
        nextSoundLap = 0;
        nextSoundFrom = 0;
    }
    notify();
}

/// \return false when the picture of `time`, in lap 0, is neither ready nor being made.
bool PlayerState::keepFramesFrom(MediaTime time, std::int64_t shift) {
    const auto first =
        std::ranges::find_if(frames, [&](const ReadyFrame& f) { return f.lap == 0 && f.frame.time == time; });
    // Before the loop point was known, pictures may have been counted from another one.
    const auto isCounted = [&](const ReadyFrame& f) {
        return f.frame.time == time || grid.atOrBefore(f.frame.time) == f.frame.time;
    };
    if ((first == frames.end() && frameInWork != time) || !std::all_of(first, frames.end(), isCounted))
        return false;
    for (auto dropped = frames.begin(); dropped != first; ++dropped)
        frameBytes -= dropped->frame.picture->bytes();
    std::move(frames.begin(), first, std::back_inserter(discarded));
    frames.erase(frames.begin(), first);
    for (ReadyFrame& kept : frames)
        kept.due -= shift;
    return true;
}

bool PlayerState::keepSoundFrom(std::int64_t shift) {
    const std::int64_t from = sound.empty() ? nextSoundFrom : sound.front().from;
    if (shift < from || shift > nextSoundFrom)
        return false;
    while (!sound.empty() && sound.front().to <= shift)
        sound.pop_front();
    for (ReadySound& kept : sound) {
        kept.from -= shift;
        kept.to -= shift;
    }
    nextSoundFrom -= shift;
    lineShift += shift;
    return true;
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
    frameInWork.reset();
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
    // Some devices hold most of a second themselves.
    const auto from =
        running ? static_cast<double>(soundWritten) - kSoundBehindDeviceSeconds * rateHz() : 0.0;
    return static_cast<double>(nextSoundFrom) - std::max(position, from) < kSoundAheadSeconds * rateHz();
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
