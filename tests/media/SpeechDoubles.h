// Stand-ins for everything around the speech service, each driven by the test by hand.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>
#include <vector>

#include "media/TickClock.h"
#include "platform/speech/SpeechAuthorization.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/tasks/MainQueue.h"

namespace korvane {

/// Keeps what is posted until the test runs it.
class KeepingQueue final : public MainQueue {
  public:
    void post(std::function<void()> work) override {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    void runAll() {
        std::vector<std::function<void()>> due;
        {
            const std::lock_guard lock(mutex_);
            due.swap(waiting_);
        }
        for (const auto& work : due)
            work();
    }
    std::size_t count() {
        const std::lock_guard lock(mutex_);
        return waiting_.size();
    }

  private:
    std::mutex mutex_;
    std::vector<std::function<void()>> waiting_;
};

/// Time that passes only while somebody sleeps and the test lets them.
class ManualClock final : public TickClock {
  public:
    std::chrono::duration<double> now() override {
        const std::lock_guard lock(mutex_);
        return now_;
    }
    bool sleepFor(std::chrono::nanoseconds time, const std::stop_token& stop) override {
        std::unique_lock lock(mutex_);
        sleeping_ = true;
        changed_.notify_all();
        changed_.wait(lock, stop, [this] { return granted_ > 0; });
        sleeping_ = false;
        if (granted_ == 0)
            return false;
        --granted_;
        now_ += time;
        return true;
    }
    /// Waits until somebody sleeps, then lets that many sleeps pass and waits for the next to begin.
    void letPass(int sleeps) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return sleeping_; });
        for (; sleeps > 0; --sleeps) {
            granted_ = 1;
            sleeping_ = false;
            changed_.notify_all();
            changed_.wait(lock, [this] { return sleeping_; });
        }
    }
    bool isSomebodySleeping() {
        const std::lock_guard lock(mutex_);
        return sleeping_;
    }

  private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::chrono::duration<double> now_{1234.5};
    int granted_ = 0;
    bool sleeping_ = false;
};

class FixedAuthorization final : public SpeechAuthorization {
  public:
    using Answer = std::function<void(const std::function<void(SpeechAuthorizationStatus)>&)>;
    explicit FixedAuthorization(Answer answer) : answer_(std::move(answer)) {}
    explicit FixedAuthorization(SpeechAuthorizationStatus status)
        : answer_([status](const auto& completion) { completion(status); }) {}
    void request(std::function<void(SpeechAuthorizationStatus)> completion) override { answer_(completion); }

  private:
    Answer answer_;
};

/// An engine whose recogniser calls back when and as the test says. Serves "en-US" only.
class ManualEngine final : public SpeechEngine {
  public:
    /// What happens when a task is started, on the starting thread. Empty: nothing.
    std::function<void(const FileRecognitionRequest&, const RecognitionHandler&)> onStart;
    /// What cancel() does, on the cancelling thread. Empty: nothing.
    std::function<void(const RecognitionHandler&)> onCancel;
    bool isAvailable = true;
    int started = 0;

    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override {
        if (locale.identifier != "en-US")
            return nullptr;
        return std::make_unique<Recognizer>(*this);
    }
    SpeechSupport support(const Locale&) const override { return {}; }

    /// Waits until a task has been started. \return its handler.
    RecognitionHandler handler() {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [this] { return static_cast<bool>(handler_); });
        return handler_;
    }

  private:
    class Task final : public RecognitionTask {
      public:
        Task(ManualEngine& engine, RecognitionHandler handler)
            : engine_(engine), handler_(std::move(handler)) {}
        void cancel() override {
            if (engine_.onCancel)
                engine_.onCancel(handler_);
        }

      private:
        ManualEngine& engine_;
        const RecognitionHandler handler_;
    };
    class Recognizer final : public SpeechRecognizer {
      public:
        explicit Recognizer(ManualEngine& engine) : engine_(engine) {}
        const Locale& locale() const override { return locale_; }
        bool isAvailable() const override { return engine_.isAvailable; }
        std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest& request,
                                                         RecognitionHandler handler) override {
            ++engine_.started;
            if (engine_.onStart)
                engine_.onStart(request, handler);
            {
                const std::lock_guard lock(engine_.mutex_);
                engine_.handler_ = handler;
            }
            engine_.changed_.notify_all();
            return std::make_unique<Task>(engine_, std::move(handler));
        }

      private:
        ManualEngine& engine_;
        const Locale locale_{"en-US"};
    };

    std::mutex mutex_;
    std::condition_variable changed_;
    RecognitionHandler handler_;
};

}  // namespace korvane
