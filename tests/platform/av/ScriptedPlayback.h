// A clock, sound devices and a screen that do what a test says, so that hours of playing take seconds and
// every sample and picture can be counted.
#pragma once

#include <condition_variable>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "platform/av/AudioOutput.h"
#include "platform/av/PlaybackClock.h"
#include "platform/av/PlayerFrames.h"

namespace korvane {

/// Stands still until it is moved.
class ScriptedClock final : public PlaybackClock {
  public:
    ClockTime now() const override;
    void wait(std::unique_lock<std::mutex>& lock, std::condition_variable& changed, ClockTime until,
              const std::function<bool()>& ready) override;

    /// Returns once `threads` threads wait and none of them has anything to do before time moves on. Which
    /// threads: all that a player has. \throws std::runtime_error after half a minute.
    void settle(std::size_t threads);
    void advance(ClockTime by);

  private:
    struct Waiter {
        std::mutex* mutex;
        std::condition_variable* changed;
        ClockTime until;
        const std::function<bool()>* ready;
    };
    bool isSettled(std::size_t threads);

    mutable std::mutex mutex_;
    ClockTime now_{std::chrono::seconds(1)};
    std::list<Waiter> waiters_;
};

/// How a device behaves.
struct DeviceScript {
    ClockTime startDelay{std::chrono::milliseconds(40)};  ///< from the first sound written to the first heard
    ClockTime reportStep{std::chrono::milliseconds(1)};   ///< reports are this coarse
    bool dead = false;
    bool silent = false;  ///< takes sound, plays nothing
};

/// What was heard: sample n at clock time n / rate, silence included.
struct SoundTape {
    int rateHz = 0;
    int channels = 0;
    std::vector<float> samples;
    bool isOn = true;  ///< off: nothing is kept, for long runs
    std::int64_t heard = 0;
    std::int64_t gaps = 0;  ///< times that the device ran dry after it had begun
    std::int64_t flushes = 0;
};

/// A machine's sound devices.
class ScriptedOutputs final : public AudioOutputFactory {
  public:
    explicit ScriptedOutputs(const ScriptedClock& clock) : clock_(clock) {}
    std::unique_ptr<AudioOutput> open(AudioFormat format) override;
    std::shared_ptr<void> observeDevices(std::function<void()> changed) override;

    /// Tells the players that devices have come or gone.
    void tellChange();

    bool hasDevice = true;
    int opened = 0;
    std::shared_ptr<DeviceScript> script = std::make_shared<DeviceScript>();  ///< of the next device
    std::shared_ptr<SoundTape> tape = std::make_shared<SoundTape>();

  private:
    const ScriptedClock& clock_;
    std::vector<std::weak_ptr<std::function<void()>>> observers_;
};

/// Keeps what it was shown: when, of which time, and the number in the picture's bar code.
class ScriptedScreen final : public FrameConsumer {
  public:
    struct Shown {
        ClockTime at{0};
        MediaTime time;
        int number = -1;
    };
    explicit ScriptedScreen(const PlaybackClock& clock) : clock_(clock) {}
    void show(const PlayerFrame& frame) override;

    std::vector<Shown> all() const;
    std::optional<Shown> last() const;
    std::shared_ptr<const DisplayPicture> lastPicture() const;
    bool readsNumbers = true;
    bool keepsAll = true;  ///< false: only the last
    std::mutex gate;       ///< while a test holds it, the player can't hand over a picture

  private:
    const PlaybackClock& clock_;
    mutable std::mutex mutex_;
    std::vector<Shown> shown_;
    std::shared_ptr<const DisplayPicture> picture_;
};

/// The number in a picture's bar code; -1 where there is none.
int frameNumberOf(const DisplayPicture& picture);

}  // namespace korvane
