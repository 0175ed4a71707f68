// Where a player's sound goes. The sound that has been heard is the player's clock.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>

#include "platform/av/PlaybackClock.h"
#include "platform/ffmpeg/AudioDecoder.h"

namespace korvane {

/// How far the sound has come.
struct HeardFrames {
    std::int64_t frames = 0;  ///< of what was written since the last flush; may lag and come in steps
    ClockTime at{0};          ///< when that was so, by the clock that the player uses
    int underruns = 0;        ///< times that the device had nothing to play since the last flush
};

/// One device, opened for one player. Used and destroyed on the player's thread; no call blocks for longer
/// than a millisecond or two, except the destructor.
class AudioOutput {
  public:
    virtual ~AudioOutput() = default;

    /// Frames that write() takes now. Never promises more than about a third of a second ahead of what the
    /// device has taken.
    virtual std::int64_t room() = 0;
    /// Takes interleaved frames, at most room() of them; they sound at once behind what was written before.
    virtual void write(std::span<const float> samples) = 0;
    /// Nothing that was written and not heard will sound; counting starts over.
    virtual void flush() = 0;
    virtual HeardFrames heard() = 0;
    /// The device is gone: nothing will be heard any more.
    virtual bool isDead() = 0;
};

/// Must outlive the players that use it.
class AudioOutputFactory {
  public:
    virtual ~AudioOutputFactory() = default;
    /// Any thread. \return null when there is no device.
    virtual std::unique_ptr<AudioOutput> open(AudioFormat format) = 0;
    /// Any thread. Calls `changed` on any thread when another device should be used from now on, or one has
    /// come or gone. \return keeps it registered; after that is gone, no call begins and none is running.
    virtual std::shared_ptr<void> observeDevices(std::function<void()> changed) = 0;
};

}  // namespace korvane
