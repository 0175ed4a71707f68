// How long a test had to wait for the machine instead of for what it tests.
#pragma once

#include <atomic>
#include <chrono>
#include <thread>

namespace korvane {

/// While it lives, a thread of its own wants to run every two milliseconds. How late it comes is how late any
/// thread comes here: what is measured beside it can leave that out. On a machine with nothing else to do
/// that is nothing, and a limit stays as sharp as it is.
class StarvedTime {
  public:
    using Clock = std::chrono::steady_clock;

    /// So far.
    Clock::duration sum() const { return Clock::duration(late_.load()); }

  private:
    static constexpr std::chrono::milliseconds between{2};
    static constexpr std::chrono::milliseconds usual{3};  // what even an idle machine may need to wake it

    void watch(const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            const auto due = Clock::now() + between;
            std::this_thread::sleep_until(due);
            const auto late = Clock::now() - due;
            if (late > usual)
                late_ += late.count();
        }
    }

    std::atomic<Clock::rep> late_ = 0;
    std::jthread thread_{[this](const std::stop_token& stop) { watch(stop); }};
};

}  // namespace korvane
