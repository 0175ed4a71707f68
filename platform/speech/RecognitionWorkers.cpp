#include "platform/speech/RecognitionWorkers.h"

#include <condition_variable>
#include <optional>
#include <utility>

#include "platform/tasks/BackgroundTask.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {
namespace {

using Segments = std::vector<RecognizedSegment>;

/// Where a worker leaves what it came to. Shared, because after a cancellation the worker outlives the task.
class Mailbox {
  public:
    void put(Outcome<Segments> outcome) {
        {
            const std::lock_guard lock(mutex_);
            outcome_.emplace(std::move(outcome));
        }
        arrived_.notify_one();
    }
    /// Waits. \throws CancellationError when the stop came first, or what the worker threw.
    Segments take(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        arrived_.wait(lock, stop, [this] { return outcome_.has_value(); });
        if (!outcome_)
            throw CancellationError();
        return outcome_->take();
    }

  private:
    std::mutex mutex_;
    std::condition_variable_any arrived_;
    std::optional<Outcome<Segments>> outcome_;
};

void answer(Mailbox& mailbox, const std::stop_token& stop, const RecognitionHandler& handler) {
    std::optional<RecognitionResult> result;
    std::exception_ptr error;
    try {
        result = RecognitionResult{true, mailbox.take(stop)};
    } catch (...) {
        error = std::current_exception();
    }
    handler(std::move(result), error);
}

class WorkerTask final : public RecognitionTask {
  public:
    WorkerTask(std::shared_ptr<Mailbox> mailbox, std::stop_source worker, RecognitionHandler handler)
        : worker_(std::move(worker)),
          answering_([mailbox = std::move(mailbox), handler = std::move(handler)](
                         const std::stop_token& stop) { answer(*mailbox, stop, handler); }) {}
    ~WorkerTask() override { WorkerTask::cancel(); }
    WorkerTask(const WorkerTask&) = delete;
    WorkerTask& operator=(const WorkerTask&) = delete;

    void cancel() override {
        worker_.request_stop();
        answering_.request_stop();
    }

  private:
    std::stop_source worker_;
    std::jthread answering_;
};

}  // namespace

RecognitionWorkers::~RecognitionWorkers() {
    for (auto& worker : workers_)
        worker.thread.request_stop();
    for (auto& worker : workers_)
        worker.thread.join();
}

std::unique_ptr<RecognitionTask> RecognitionWorkers::start(Work work, RecognitionHandler handler) {
    joinFinished();
    auto mailbox = std::make_shared<Mailbox>();
    auto finished = std::make_shared<bool>(false);
    std::jthread thread([this, mailbox, finished, work = std::move(work)](const std::stop_token& stop) {
        mailbox->put(Outcome<Segments>::of([&] { return work(stop); }));
        const std::lock_guard lock(mutex_);
        *finished = true;
    });
    auto stopWorker = thread.get_stop_source();
    {
        const std::lock_guard lock(mutex_);
        workers_.push_back({finished, std::move(thread)});
    }
    return std::make_unique<WorkerTask>(std::move(mailbox), std::move(stopWorker), std::move(handler));
}

void RecognitionWorkers::joinFinished() {
    std::list<Worker> done;  // joined after the lock is released, on the way out
    const std::lock_guard lock(mutex_);
    for (auto worker = workers_.begin(); worker != workers_.end();) {
        const auto next = std::next(worker);
        if (*worker->finished)
            done.splice(done.end(), workers_, worker);
        worker = next;
    }
}

}  // namespace korvane
