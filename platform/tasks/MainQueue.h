// The one door to the main thread. Services report through it from any thread; what is posted runs later, in
// order, on the thread that owns the queue.
#pragma once

#include <functional>

namespace korvane {

class MainQueue {
  public:
    virtual ~MainQueue() = default;
    /// Queues `work` and returns at once. Callable from any thread, also after the queue's owner stopped
    /// looking (the work is then dropped). `work` must not throw.
    virtual void post(std::function<void()> work) = 0;
};

}  // namespace korvane
