// Steps of the main thread that wait for workers, strung together as a coroutine. Whoever owns the task owns
// its frame: destroying it stops what it waits for, joins it, and unwinds the frame, so that nothing ever
// runs on. Main thread only.
//
// Await named variables only, each in a statement of its own:
//     auto call = onWorker<int>(queue, work);
//     const int result = co_await call;
// g++ 12 destroys temporaries of a statement that awaits twice; tools/check_awaits looks for such statements.
#pragma once

#include <coroutine>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <list>
#include <optional>
#include <stop_token>
#include <utility>

#include "platform/tasks/BackgroundTask.h"

namespace korvane {

/// Cancels a task that somebody else owns, and may outlive it. Copies cancel the same task. Any thread.
class TaskHandle {
  public:
    explicit TaskHandle(std::stop_source stop) : stop_(std::move(stop)) {}
    /// Only a request: what the task waits for notices it and ends with CancellationError.
    void cancel() { stop_.request_stop(); }
    bool isCancelled() const { return stop_.stop_requested(); }

  private:
    std::stop_source stop_;
};

/// What a coroutine of the main thread returns. It stands still until start(). An exception that leaves its
/// body stops the program, because nobody awaits it: the body handles what it can fail with.
class [[nodiscard]] MainTask {
  public:
    struct promise_type;
    using Frame = std::coroutine_handle<promise_type>;

    struct promise_type {
        std::stop_source stop;
        bool isRunning = false;

        MainTask get_return_object() { return MainTask(Frame::from_promise(*this)); }
        std::suspend_always initial_suspend() noexcept { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() noexcept { std::terminate(); }
    };

    MainTask(MainTask&& other) noexcept : frame_(std::exchange(other.frame_, nullptr)) {}
    MainTask& operator=(MainTask&&) = delete;

    /// Not from within the task itself, which can't be unwound while it runs: that stops the program.
    ~MainTask() {
        if (!frame_)
            return;
        if (frame_.promise().isRunning) {
            std::fputs("Fatal error: a task was destroyed by one of its own steps\n", stderr);
            std::abort();
        }
        frame_.promise().stop.request_stop();
        frame_.destroy();
    }

    /// Runs up to where it first waits. Once.
    void start() { resume(frame_); }
    bool isDone() const { return !frame_.promise().isRunning && frame_.done(); }
    TaskHandle handle() const { return TaskHandle(frame_.promise().stop); }

    /// For what a task waits for: goes on where `frame` stands still.
    static void resume(Frame frame) {
        // At its end the frame stays until the owner lets go of it, so it can be looked at afterwards.
        frame.promise().isRunning = true;
        frame.resume();
        frame.promise().isRunning = false;
    }

  private:
    explicit MainTask(Frame frame) : frame_(frame) {}
    Frame frame_;
};

/// One call of a blocking function on a worker, to be awaited once by a MainTask. Cancelling the task
/// requests a stop of the function; destroying the frame also waits for it to return.
template <class T>
class WorkerCall {
  public:
    WorkerCall(MainQueue& queue, typename BackgroundTask<T>::Work work)
        : queue_(queue), work_(std::move(work)) {}
    WorkerCall(const WorkerCall&) = delete;
    WorkerCall& operator=(const WorkerCall&) = delete;

    bool await_ready() const noexcept { return false; }
    void await_suspend(MainTask::Frame frame) {
        task_.emplace(queue_, std::move(work_), [this, frame](Outcome<T> outcome) {
            outcome_.emplace(std::move(outcome));
            MainTask::resume(frame);
        });
        // A function is called even when the stop came before: it alone knows what to leave behind.
        forward_.emplace(frame.promise().stop.get_token(), [this] { task_->requestStop(); });
    }
    /// \return what the function returned. \throws what it threw, with its own type.
    T await_resume() { return outcome_->take(); }

  private:
    MainQueue& queue_;
    typename BackgroundTask<T>::Work work_;
    std::optional<Outcome<T>> outcome_;
    std::optional<BackgroundTask<T>> task_;
    std::optional<std::stop_callback<std::function<void()>>> forward_;
};

template <class T>
[[nodiscard]] WorkerCall<T> onWorker(MainQueue& queue, typename BackgroundTask<T>::Work work) {
    return WorkerCall<T>(queue, std::move(work));
}

/// Keeps tasks until they are done, also those whose handles were given up. Destroying it stops, joins and
/// unwinds what still waits.
class TaskScope {
  public:
    /// Takes the task over and starts it.
    void start(MainTask task) {
        tasks_.remove_if([](const MainTask& other) { return other.isDone(); });
        tasks_.push_back(std::move(task));
        tasks_.back().start();
    }

    /// Ends everything now.
    void clear() { tasks_.clear(); }

  private:
    std::list<MainTask> tasks_;
};

}  // namespace korvane
