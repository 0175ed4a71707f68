// The progress of one phase of a longer operation, brought to the main thread.
#pragma once

#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "platform/tasks/MainQueue.h"

namespace korvane {

/// Made and destroyed on the main thread. Destroying it ends the phase: reports that arrive later, and
/// those that still wait in the queue, are dropped.
template <class Report>
class PhaseReports {
  public:
    /// \param apply  called on the main thread only, as long as this stands.
    /// \param queue  must outlive every copy of callback().
    PhaseReports(MainQueue& queue, std::function<void(Report)> apply)
        : queue_(queue), apply_(std::make_shared<Apply>(std::move(apply))) {}

    /// For a service: callable from any thread, at any time, also after this is gone. Reports that come on
    /// the main thread are applied at once.
    std::function<void(Report)> callback() const {
        return [&queue = queue_, main = std::this_thread::get_id(),
                listener = std::weak_ptr<Apply>(apply_)](Report report) {
            const auto deliver = [listener, report] {
                if (const auto apply = listener.lock())
                    (*apply)(report);
            };
            if (std::this_thread::get_id() == main)
                deliver();
            else
                queue.post(deliver);
        };
    }

  private:
    using Apply = std::function<void(Report)>;
    MainQueue& queue_;
    std::shared_ptr<Apply> apply_;  // weak elsewhere, and locked on the main thread only
};

/// The share that is done, from 0 to 1.
using PhaseProgress = PhaseReports<double>;

}  // namespace korvane
