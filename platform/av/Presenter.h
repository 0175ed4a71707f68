// The thread that makes a player move: it keeps the sound device fed, takes the time from it (or from the
// clock where there is none), shows each picture when it is due, and notices the end.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/av/AudioOutput.h"
#include "platform/av/HeardClock.h"
#include "platform/av/PlayerState.h"

namespace korvane {

class Presenter {
  public:
    Presenter(PlayerState& state, AudioOutputFactory& outputs) : state_(state), outputs_(outputs) {}
    /// Until the state is stopping. Owns the device meanwhile.
    void run();

  private:
    using Lock = std::unique_lock<std::mutex>;

    bool mayRun() const;
    void keepDevice(Lock& lock);
    void loseDevice(Lock& lock);
    void begin(ClockTime now);
    void advance(Lock& lock);
    void feed(Lock& lock);
    bool fillLateSound(Lock& lock);
    void countUnderruns(int underruns);
    void releaseSound();
    void finishLap(ClockTime now);
    bool hasDueFrame() const;
    void showDue(Lock& lock);
    void show(Lock& lock, const PlayerFrame& frame);
    void settleFirstFrame();
    void answer();
    bool hasNews() const;
    ClockTime nextWake(ClockTime now) const;

    PlayerState& state_;
    AudioOutputFactory& outputs_;
    std::unique_ptr<AudioOutput> output_;
    std::optional<HeardClock> heard_;  ///< while the sound is the clock
    std::int64_t stream_ = -1;         ///< the stream that is playing
    std::int64_t streamFrom_ = 0;      ///< line position of its first frame
    std::int64_t written_ = 0;         ///< line position of the next frame to be written
    int underruns_ = 0;                ///< of the stream, as the device told last
    bool late_ = false;                ///< silence stands in for sound that is not ready
    bool sleepsWithoutFrame_ = false;  ///< the next picture's time was not known when the sleep began
    ClockTime retryDeviceAt_ = kNoClockTime;
};

}  // namespace korvane
