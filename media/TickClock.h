// The passing of time as something that is handed in, so that what depends on it can be tested at once.
#pragma once

#include <chrono>
#include <stop_token>

namespace korvane {

class TickClock {
  public:
    virtual ~TickClock() = default;
    /// From a fixed moment on, never falling. Any thread.
    virtual std::chrono::duration<double> now() = 0;
    /// Sleeps on the calling thread. \return false at once when a stop is requested.
    virtual bool sleepFor(std::chrono::nanoseconds time, const std::stop_token& stop) = 0;
};

/// The real one.
class SteadyTickClock final : public TickClock {
  public:
    std::chrono::duration<double> now() override;
    bool sleepFor(std::chrono::nanoseconds time, const std::stop_token& stop) override;
};

}  // namespace korvane
