// A main queue that a test empties by hand: nothing runs before runAll().
#pragma once

#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/tasks/MainQueue.h"

namespace korvane {

class CollectingMainQueue final : public MainQueue {
  public:
    void post(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        work_.push_back(std::move(work));
    }

    /// Runs what was posted, in order, on the calling thread. \return how much that was.
    std::size_t runAll() {
        std::vector<std::function<void()>> work;
        {
            const std::lock_guard lock(mutex_);
            work.swap(work_);
        }
        for (const auto& call : work)
            call();
        return work.size();
    }

  private:
    std::mutex mutex_;
    std::vector<std::function<void()>> work_;
};

}  // namespace korvane
