// What a player's three threads and the main thread share: the line that is played, how far it has come, and
// what has been made ready ahead. Everything is guarded by `mutex`; nobody decodes, draws, writes sound or
// calls back while holding it.
//
// A seek begins a new generation. What was made ready and lies on the new line too is kept; of the rest, what
// threads still make is thrown away when they come back.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/av/PlayLine.h"
#include "platform/av/PlaybackClock.h"
#include "platform/av/PlayerFrames.h"
#include "platform/av/PlayerItem.h"
#include "platform/ffmpeg/AudioDecoder.h"

namespace korvane {

struct ReadyFrame {
    std::int64_t lap = 0;
    std::int64_t due = 0;  ///< line position
    PlayerFrame frame;
};

struct ReadySound {
    std::int64_t lap = 0;
    std::int64_t from = 0;       ///< line position
    std::int64_t to = 0;         ///< line position
    std::vector<float> samples;  ///< interleaved
};

using PlayerCompletion = std::function<void(bool finished)>;

class PlayerState {
  public:
    PlayerState(std::shared_ptr<PlayerItem> playedItem, MainQueue& mainQueue, PlaybackClock& playbackClock);

    // Never change.
    const std::shared_ptr<PlayerItem> item;
    MainQueue& queue;
    PlaybackClock& clock;
    const MediaTime duration;
    const std::optional<AudioFormat> format;  ///< none without sound
    int rateHz() const { return format ? format->rateHz : 48'000; }

    mutable std::mutex mutex;
    std::condition_variable changed;
    bool stopping = false;

    // The line. `lap` is the one that is played; of the next only what was made ready.
    std::int64_t generation = 0;
    PlayLine line;
    FrameGrid grid;
    std::int64_t lap = 0;
    double rate = 0.0;
    ActionAtItemEnd actionAtItemEnd = ActionAtItemEnd::pause;
    std::optional<MediaTime> loopPoint;
    bool ended = false;                     ///< stands at the end of the lap until the next seek
    std::optional<ClockTime> crossedEndAt;  ///< went on into the next lap, for which no seek has come yet
    double position = 0.0;                  ///< line position at `positionAt`
    ClockTime positionAt{0};
    bool running = false;
    bool moving = false;      ///< while running: time goes on; not while the device starts or has run dry
    std::int64_t stream = 0;  ///< counts the discontinuities of the sound

    // Pictures.
    int frameWidth = 0;  ///< asked for, pixels
    int frameHeight = 0;
    std::deque<ReadyFrame> frames;
    std::deque<ReadyFrame> discarded;  ///< for the pictures' thread to free: that takes milliseconds
    std::size_t frameBytes = 0;
    std::int64_t frameGeneration = 0;      ///< counts how often the pictures made ready became void
    std::optional<MediaTime> frameInWork;  ///< of lap 0: being made for this frame generation
    std::int64_t nextFrameLap = 0;
    MediaTime nextFrameTime;
    bool picturesFailed = false;  ///< no more in this generation
    bool firstFrameDone = false;  ///< this generation's first picture was shown, or can't be
    std::optional<PlayerFrame> shown;
    bool showAgain = false;
    std::shared_ptr<FrameConsumer> consumer;
    PlayerStatistics statistics;

    // Sound.
    std::deque<ReadySound> sound;
    std::int64_t nextSoundLap = 0;
    std::int64_t nextSoundFrom = 0;
    std::int64_t soundWritten = 0;     ///< line position up to which a device has been given sound
    std::int64_t soundGeneration = 0;  ///< counts how often the sound made ready became void
    std::int64_t lineShift = 0;  ///< by how much the line began later at each seek that kept what was ready
    bool soundFailed = false;    ///< silence from here on in this generation
    bool firstSoundDone = false;
    bool deviceWanted = false;  ///< sound is to be played soon
    bool deviceTried = false;   ///< and there is a device now, or none
    bool devicesChanged = false;

    // Who waits for what.
    PlayerCompletion seekCompletion;
    PlayerCompletion prerollCompletion;
    ObserverList<> endObservers;

    // All below: with the mutex held.

    void notify() { changed.notify_all(); }
    /// Hands `completion` its answer on the main queue and forgets it.
    void complete(PlayerCompletion& completion, bool finished);
    /// Line position at `now`, as far as was known last.
    double positionAtTime(ClockTime now) const;
    /// Item time that the player stands at.
    MediaTime timeAt(ClockTime now) const;
    /// Stops where it is; the sound that was written and not heard is void.
    void halt(ClockTime now);
    /// Begins a new generation at `start`.
    void restart(MediaTime start);
    /// True when the player can't play anything of the item.
    bool isHopeless() const { return picturesFailed && !everReady_; }
    void tellReady();

    bool goesOnAtEnd() const { return actionAtItemEnd == ActionAtItemEnd::none && line.loop(); }
    std::int64_t lastLapAllowed() const { return lap + (goesOnAtEnd() ? 1 : 0); }
    bool wantsFrame() const;
    bool wantsSound() const;
    bool hasSoundToBegin() const;
    bool isPrerolled() const;
    /// Where to go on at the end of a lap.
    void setLoop(MediaTime loop);
    /// Makes the picture of now, and those behind it, once more.
    void remakeFrames(ClockTime now);

  private:
    MediaTime frameTimeOf(MediaTime t) const;
    void makeFramesFrom(std::int64_t firstLap, MediaTime time);
    bool keepFramesFrom(MediaTime time, std::int64_t shift);
    bool keepSoundFrom(std::int64_t shift);

    bool everReady_ = false;
};

}  // namespace korvane
