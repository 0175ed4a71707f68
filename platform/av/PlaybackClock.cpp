#include "platform/av/PlaybackClock.h"

namespace korvane {

ClockTime SteadyPlaybackClock::now() const {
    return std::chrono::duration_cast<ClockTime>(std::chrono::steady_clock::now().time_since_epoch());
}

void SteadyPlaybackClock::wait(std::unique_lock<std::mutex>& lock, std::condition_variable& changed,
                               ClockTime until, const std::function<bool()>& ready) {
    if (until == kNoClockTime) {
        changed.wait(lock, ready);
        return;
    }
    changed.wait_until(lock, std::chrono::steady_clock::time_point(until), ready);
}

}  // namespace korvane
