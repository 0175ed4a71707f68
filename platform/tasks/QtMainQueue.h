// The main queue of a program with a Qt event loop. It belongs to the thread that makes it, which must run
// the loop for anything posted to happen.
#pragma once

#include <QObject>
#include <memory>

#include "platform/tasks/MainQueue.h"

namespace korvane {

/// Made and destroyed on the main thread, after the application object and before it goes. Keep it until
/// every worker that posts to it has been joined; call stop() earlier when posted work must no longer run.
class QtMainQueue final : public MainQueue {
  public:
    QtMainQueue();
    ~QtMainQueue() override;
    QtMainQueue(const QtMainQueue&) = delete;
    QtMainQueue& operator=(const QtMainQueue&) = delete;

    /// Any thread. What was posted first runs first.
    void post(std::function<void()> work) override;

    /// Main thread only. Nothing runs any more, neither what waits already nor what is posted later.
    void stop();

  private:
    struct Door;
    std::shared_ptr<Door> door_;
};

}  // namespace korvane
