// How a service tells its progress: through the main queue, never falling, nothing after a stop.
#pragma once

#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

#include "platform/tasks/MainQueue.h"

namespace korvane {

/// One for each operation; made and closed on the thread that runs it. `onProgress` is called by the queue
/// only, so it needs no lock, and it may be called after the operation has returned. The queue must outlive
/// this.
class ProgressReporter {
  public:
    /// \param onProgress  receives fractions from 0 to 1; may be empty.
    ProgressReporter(MainQueue& queue, std::function<void(double)> onProgress, std::stop_token stop)
        : queue_(queue), state_(std::make_shared<State>(std::move(onProgress), std::move(stop))) {}

    /// Any thread. Every value is delivered as it is, except one that is smaller than one delivered before
    /// or is no number, and except what the queue has not delivered yet when a stop is requested.
    void report(double fraction) {
        queue_.post([state = state_, fraction] { state->deliver(fraction); });
    }

    /// Ends a successful operation: exactly 1.0, even if a stop is requested from now on.
    void finish() {
        queue_.post([state = state_] { state->deliverLast(); });
    }

  private:
    /// What the queued calls share. `last` lives on the main thread, which makes the order of delivery the
    /// order that counts.
    struct State {
        State(std::function<void(double)> callback, std::stop_token token)
            : onProgress(std::move(callback)), stop(std::move(token)) {}

        void deliver(double fraction) {
            if (stop.stop_requested() || !(fraction >= last))
                return;
            last = fraction;
            if (onProgress)
                onProgress(fraction);
        }
        void deliverLast() {
            last = 1.0;
            if (onProgress)
                onProgress(1.0);
        }

        const std::function<void(double)> onProgress;
        const std::stop_token stop;
        double last = 0.0;
    };

    MainQueue& queue_;
    std::shared_ptr<State> state_;
};

}  // namespace korvane
