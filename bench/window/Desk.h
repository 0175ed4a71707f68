// The real window, as the program makes it, and a hand with a mouse in front of it. Its style store is a
// folder of its own. Main thread only.
#pragma once

#include <QElapsedTimer>
#include <QPointF>
#include <QQuickItem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "app/ViewController.h"
#include "bench/window/Watchdog.h"

namespace korvane::bench {

/// Frames drawn since it was made; counted on the thread that draws.
class FrameCounter {
  public:
    explicit FrameCounter(QQuickWindow& window);
    ~FrameCounter();
    FrameCounter(const FrameCounter&) = delete;
    FrameCounter& operator=(const FrameCounter&) = delete;

    int frames() const { return frames_; }
    double longestGapMs() const { return longestGapMs_; }

  private:
    std::atomic<int> frames_ = 0;
    std::atomic<double> longestGapMs_ = 0.0;
    QElapsedTimer sinceLast_;
    QMetaObject::Connection connection_;
};

class Desk {
  public:
    /// Shows the window and waits until it rests.
    explicit Desk(std::unique_ptr<SpeechRecognizerRegistry> recognizers);
    Desk();

    ContentView& view() { return *controller_->contentView(); }
    QQuickWindow& window() { return *controller_->window(); }

    /// \throws std::runtime_error when there is no such thing on the screen, or none that can be seen.
    QQuickItem& item(const char* objectName);
    /// \param across,down  of the item's extent
    QPointF place(QQuickItem& item, double across = 0.5, double down = 0.5);
    void press(QPointF where);
    void moveTo(QPointF where, Qt::MouseButtons held);
    void release(QPointF where);
    void click(QPointF where);
    void turnWheel(QPointF where, int eighthsOfDegree);

    /// Runs the event loop. \throws std::runtime_error when that takes too long
    void until(const std::function<bool()>& done, int limitSeconds = 60);
    void runFor(int milliseconds);
    void nextFrame();
    /// Runs the event loop without the watchdog, whose questions cost processor time.
    void leaveAlone(int milliseconds);

    /// Measures the main thread while `work` is done and until the screen rests again.
    WatchedStep watch(const std::string& step, const std::function<void()>& work);

  private:
    void setWatchdog();

    std::unique_ptr<ViewController> controller_;
    std::unique_ptr<Watchdog> watchdog_;
};

/// Prints what korvane-bench reads.
void print(const WatchedStep& step);
void print(const char* name, double value);

}  // namespace korvane::bench
