#include "media/TickClock.h"

#include <condition_variable>
#include <mutex>

namespace korvane {

std::chrono::duration<double> SteadyTickClock::now() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

bool SteadyTickClock::sleepFor(std::chrono::nanoseconds time, const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any nothingButAStop;
    std::unique_lock lock(mutex);
    nothingButAStop.wait_for(lock, stop, time, [] { return false; });
    return !stop.stop_requested();
}

}  // namespace korvane
