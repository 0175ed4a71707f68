// Runs one blocking function on its own thread and brings what came of it back to the main thread.
#pragma once

#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>
#include <variant>

#include "platform/tasks/MainQueue.h"

namespace korvane {

/// What a function came to: its value or the exception that it threw.
template <class T>
class Outcome {
  public:
    /// Calls `work` and keeps its value or exception. Never throws what `work` throws.
    template <class Work>
    static Outcome of(Work&& work) {
        Outcome outcome;
        try {
            if constexpr (std::is_void_v<T>)
                work();
            else
                outcome.value_.emplace(work());
        } catch (...) {
            outcome.error_ = std::current_exception();
        }
        return outcome;
    }

    /// Returns the value, or rethrows the exception with its own type. Once.
    T take() {
        if (error_)
            std::rethrow_exception(std::exchange(error_, nullptr));
        if constexpr (!std::is_void_v<T>)
            return std::move(*value_);
    }

  private:
    using Value = std::conditional_t<std::is_void_v<T>, std::monostate, T>;
    std::optional<Value> value_;
    std::exception_ptr error_;
};

/// Owned by whoever started it. Destroying it requests a stop and waits for the function to return;
/// `finished` is then not called any more. Made and destroyed on the main thread.
template <class T>
class BackgroundTask {
  public:
    using Work = std::function<T(std::stop_token)>;
    using Finished = std::function<void(Outcome<T>)>;

    /// Starts at once.
    /// \param work      runs on the task's thread; may block and throw.
    /// \param finished  runs once, through `queue`, after everything that `work` posted to it.
    BackgroundTask(MainQueue& queue, Work work, Finished finished)
        : listener_(std::make_shared<Finished>(std::move(finished))),
          thread_([&queue, work = std::move(work),
                   listener = std::weak_ptr<Finished>(listener_)](const std::stop_token& stop) {
              auto outcome = std::make_shared<Outcome<T>>(Outcome<T>::of([&] { return work(stop); }));
              queue.post([outcome, listener] {
                  // The copy outlives a `finished` that destroys the task.
                  if (const auto call = listener.lock())
                      (*call)(std::move(*outcome));
              });
          }) {}

    ~BackgroundTask() {
        listener_.reset();
        thread_.request_stop();
    }
    BackgroundTask(const BackgroundTask&) = delete;
    BackgroundTask& operator=(const BackgroundTask&) = delete;

    /// Any thread, any number of times.
    void requestStop() { thread_.request_stop(); }

  private:
    std::shared_ptr<Finished> listener_;
    std::jthread thread_;
};

}  // namespace korvane
