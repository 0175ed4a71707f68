// Time for players: a parameter, so that a test can make an hour pass in seconds.
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

namespace korvane {

using ClockTime = std::chrono::nanoseconds;
/// For waits that only a change ends.
inline constexpr ClockTime kNoClockTime = ClockTime::max();

/// Any thread.
class PlaybackClock {
  public:
    virtual ~PlaybackClock() = default;
    /// Time since some fixed point; never falls and never jumps.
    virtual ClockTime now() const = 0;
    /// Waits until `ready()` holds, which is looked at under `lock` and whenever `changed` is notified, or
    /// until the time `until` has come.
    virtual void wait(std::unique_lock<std::mutex>& lock, std::condition_variable& changed, ClockTime until,
                      const std::function<bool()>& ready) = 0;
};

/// The machine's own, std::chrono::steady_clock.
class SteadyPlaybackClock final : public PlaybackClock {
  public:
    ClockTime now() const override;
    void wait(std::unique_lock<std::mutex>& lock, std::condition_variable& changed, ClockTime until,
              const std::function<bool()>& ready) override;
};

}  // namespace korvane
