// Measures how long the main thread lets others wait. A thread of its own asks it every millisecond, and asks
// an idle thread at the same time: what both are late by is the machine's doing, not ours.
#pragma once

#include <ctime>

#include <QObject>
#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace korvane::bench {

/// Times in milliseconds.
struct Waits {
    std::vector<double> all;
    double longest() const;
    /// That 99.9 % of the questions did not wait longer than.
    double perMille() const;
    int longerThanFrame() const;
};

struct WatchedStep {
    std::string name;
    Waits main;  ///< from question to answer
    Waits own;   ///< of these, what the main thread worked or slept, without what it waited for a processor
    Waits control;             ///< of the idle thread
    std::string shownAtWorst;  ///< what the screen said before and after the longest own wait
};

/// Made and used on the main thread, which must run its event loop.
class Watchdog : public QObject {
  public:
    /// \param shown  what the screen says now; called on the main thread.
    explicit Watchdog(std::function<std::string()> shown);
    ~Watchdog() override;

    void begin(const std::string& step);
    /// The loop must have run since the last work of the step.
    WatchedStep end();
    /// Questions answered in this step.
    std::size_t answered() const { return step_.main.all.size(); }

    bool event(QEvent* event) override;

  private:
    using Clock = std::chrono::steady_clock;

    void ask();
    void answerAsControl();
    double processorMs() const;
    double queuedMs() const;

    std::function<std::string()> shown_;
    WatchedStep step_;
    std::string shownBefore_;
    double worstOwn_ = 0.0;
    clockid_t mainClock_{};
    int schedule_ = -1;  ///< the kernel's account of how long the main thread waited for a processor

    // Written before a question is posted, read by its answer.
    Clock::time_point asked_;
    double processorAtAsking_ = 0.0;
    double queuedAtAsking_ = 0.0;
    std::atomic<bool> mainOwesAnswer_ = false;

    std::mutex controlMutex_;
    Waits controlWaits_;
    Clock::time_point controlAsked_;
    std::atomic<bool> controlOwesAnswer_ = false;
    std::counting_semaphore<> question_{0};

    std::atomic<bool> ends_ = false;
    std::thread asking_;
    std::thread control_;
};

}  // namespace korvane::bench
