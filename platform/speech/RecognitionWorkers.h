// The threads that an engine recognises on. The libraries that do the work can't be interrupted in some of
// their calls, so a task answers a cancellation at once by itself while its worker comes back to look.
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <stop_token>
#include <thread>
#include <vector>

#include "platform/speech/SpeechRecognizer.h"

namespace korvane {

/// Owned by an engine, outlives its tasks. Destroying it stops the workers and waits for them.
class RecognitionWorkers {
  public:
    /// Recognises on a worker: blocks, looks at the token often, throws what went wrong.
    using Work = std::function<std::vector<RecognizedSegment>(std::stop_token)>;

    RecognitionWorkers() = default;
    ~RecognitionWorkers();
    RecognitionWorkers(const RecognitionWorkers&) = delete;
    RecognitionWorkers& operator=(const RecognitionWorkers&) = delete;

    /// Any thread. Runs `work` and hands what came of it to `handler`, once, on a thread of the task.
    std::unique_ptr<RecognitionTask> start(Work work, RecognitionHandler handler);

  private:
    struct Worker {
        std::shared_ptr<const bool> finished;  ///< guarded by mutex_
        std::jthread thread;
    };

    void joinFinished();

    std::mutex mutex_;
    std::list<Worker> workers_;
};

}  // namespace korvane
