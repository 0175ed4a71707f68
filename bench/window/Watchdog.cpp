#include "bench/window/Watchdog.h"

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QEvent>
#include <algorithm>
#include <cmath>
#include <cstdio>

#include "bench/window/Frame.h"

namespace korvane::bench {
namespace {

constexpr std::chrono::milliseconds kInterval{1};

double millisecondsSince(std::chrono::steady_clock::time_point begin) {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

double Waits::longest() const {
    return all.empty() ? 0.0 : *std::ranges::max_element(all);
}

double Waits::perMille() const {
    if (all.empty())
        return 0.0;
    std::vector<double> sorted = all;
    std::ranges::sort(sorted);
    return sorted[static_cast<std::size_t>(std::ceil(static_cast<double>(sorted.size()) * 0.999)) - 1];
}

int Waits::longerThanFrame() const {
    return static_cast<int>(std::ranges::count_if(all, [](double ms) { return ms > kFrameMs; }));
}

Watchdog::Watchdog(std::function<std::string()> shown) : shown_(std::move(shown)) {
    pthread_getcpuclockid(pthread_self(), &mainClock_);
    schedule_ = open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    control_ = std::thread([this] { answerAsControl(); });
    asking_ = std::thread([this] { ask(); });
}

Watchdog::~Watchdog() {
    ends_ = true;
    asking_.join();
    question_.release();
    control_.join();
    close(schedule_);
}

void Watchdog::begin(const std::string& step) {
    step_ = {.name = step, .main = {}, .own = {}, .control = {}, .shownAtWorst = {}};
    worstOwn_ = 0.0;
    shownBefore_ = shown_();
    const std::lock_guard lock(controlMutex_);
    controlWaits_.all.clear();
}

WatchedStep Watchdog::end() {
    const std::lock_guard lock(controlMutex_);
    step_.control = controlWaits_;
    return step_;
}

void Watchdog::ask() {
    auto next = Clock::now();
    while (!ends_) {
        next = std::max(next + kInterval, Clock::now());
        std::this_thread::sleep_until(next);
        if (!controlOwesAnswer_.exchange(true)) {
            controlAsked_ = Clock::now();
            question_.release();
        }
        if (mainOwesAnswer_.exchange(true))
            continue;
        processorAtAsking_ = processorMs();
        queuedAtAsking_ = queuedMs();
        asked_ = Clock::now();
        QCoreApplication::postEvent(this, new QEvent(QEvent::User));
    }
}

void Watchdog::answerAsControl() {
    for (question_.acquire(); !ends_; question_.acquire()) {
        const double waited = millisecondsSince(controlAsked_);
        {
            const std::lock_guard lock(controlMutex_);
            controlWaits_.all.push_back(waited);
        }
        controlOwesAnswer_ = false;
    }
}

bool Watchdog::event(QEvent* event) {
    if (event->type() != QEvent::User)
        return QObject::event(event);
    const double waited = millisecondsSince(asked_);
    // A wait for a processor that began before the question counts from its beginning: then the processor
    // time is what is certain.
    const double own = std::clamp(waited - (queuedMs() - queuedAtAsking_),
                                  std::min(waited, processorMs() - processorAtAsking_), waited);
    const std::string shownNow = shown_();
    if (own > worstOwn_) {
        worstOwn_ = own;
        step_.shownAtWorst = shownBefore_ == shownNow ? shownNow : shownBefore_ + " > " + shownNow;
    }
    shownBefore_ = shownNow;
    step_.main.all.push_back(waited);
    step_.own.all.push_back(own);
    mainOwesAnswer_ = false;
    return true;
}

double Watchdog::processorMs() const {
    timespec used{};
    clock_gettime(mainClock_, &used);
    return static_cast<double>(used.tv_sec) * 1e3 + static_cast<double>(used.tv_nsec) / 1e6;
}

double Watchdog::queuedMs() const {
    char text[96] = {};
    unsigned long long ran = 0;
    unsigned long long waited = 0;
    if (pread(schedule_, text, sizeof text - 1, 0) <= 0 || std::sscanf(text, "%llu %llu", &ran, &waited) != 2)
        return 0.0;
    return static_cast<double>(waited) / 1e6;
}

}  // namespace korvane::bench
