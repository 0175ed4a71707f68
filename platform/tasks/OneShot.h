// How a task of the main thread waits for something that answers through a callback.
//
//     OneShot<bool> sought(queue);
//     player.seek(to, sought.answer());
//     const bool finished = co_await sought;
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <utility>

#include "platform/tasks/Cancellation.h"
#include "platform/tasks/MainTask.h"

namespace korvane {

/// One answer, awaited once by a MainTask, which goes on exactly once: with the answer, or with
/// CancellationError once it is cancelled, whatever comes of the callback afterwards. Lives in the task's
/// frame; main thread only.
template <class T>
class OneShot {
  public:
    /// \param queue  wakes a task that was cancelled; must outlive the task and every handle of it.
    explicit OneShot(MainQueue& queue) : queue_(queue) {}
    OneShot(const OneShot&) = delete;
    OneShot& operator=(const OneShot&) = delete;

    /// For whoever calls back, on the main thread: also before the task waits, again, or after the task is
    /// gone. The first call counts; the task goes on inside of it.
    std::function<void(T)> answer() const {
        return [waiting = std::weak_ptr<State>(state_)](T value) {
            const auto state = waiting.lock();
            if (!state || state->value)
                return;
            state->value.emplace(std::move(value));
            state->goOn();
        };
    }

    bool await_ready() const noexcept { return false; }
    bool await_suspend(MainTask::Frame frame) {
        stop_ = frame.promise().stop.get_token();
        if (state_->value)
            return false;
        state_->frame = frame;
        // Through the queue: whoever cancels is not to find the task ended while still calling.
        forward_.emplace(stop_, [this, waiting = std::weak_ptr<State>(state_)] {
            queue_.post([waiting] {
                if (const auto state = waiting.lock())
                    state->goOn();
            });
        });
        return true;
    }
    /// \return the answer. \throws CancellationError when a stop was requested, even if the answer is there.
    T await_resume() {
        checkCancelled(stop_);
        return std::move(*state_->value);
    }

  private:
    struct State {
        std::optional<T> value;
        MainTask::Frame frame;  ///< null unless it stands still

        void goOn() {
            if (frame)
                MainTask::resume(std::exchange(frame, nullptr));
        }
    };

    MainQueue& queue_;
    std::shared_ptr<State> state_ = std::make_shared<State>();  // weak elsewhere
    std::stop_token stop_;
    std::optional<std::stop_callback<std::function<void()>>> forward_;
};

/// Gives a task its own stop token, without waiting:
///     OwnStop own;
///     const std::stop_token stop = co_await own;
class OwnStop {
  public:
    bool await_ready() const noexcept { return false; }
    bool await_suspend(MainTask::Frame frame) {
        stop_ = frame.promise().stop.get_token();
        return false;
    }
    std::stop_token await_resume() { return std::move(stop_); }

  private:
    std::stop_token stop_;
};

}  // namespace korvane
