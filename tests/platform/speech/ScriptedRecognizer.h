// A recogniser that does what a test tells it: for tests of what stands above it, and to show that the
// contract's tests are about the contract.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

#include "platform/speech/RecognitionWorkers.h"
#include "platform/speech/SpeechRecognizerRegistry.h"
#include "platform/tasks/Cancellation.h"

namespace korvane {

/// What an engine's recogniser does with a request; the token is stopped by cancel().
using Script = std::function<std::vector<RecognizedSegment>(const FileRecognitionRequest&, std::stop_token)>;

/// Waits until the task is cancelled.
inline std::vector<RecognizedSegment> waitForCancellation(const std::stop_token& stop) {
    std::mutex mutex;
    std::condition_variable_any changed;
    std::unique_lock lock(mutex);
    changed.wait(lock, stop, [] { return false; });
    throw CancellationError();
}

class ScriptedEngine final : public SpeechEngine {
  public:
    ScriptedEngine(Locale serves, Script script) : serves_(std::move(serves)), script_(std::move(script)) {}

    bool isAvailable = true;

    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) override {
        if (!(locale == serves_))
            return nullptr;
        return std::make_unique<Recognizer>(*this);
    }
    SpeechSupport support(const Locale& locale) const override {
        if (locale == serves_)
            return {true, "Script, " + locale.identifier};
        return {false, "Write a script for " + locale.identifier + "."};
    }

  private:
    class Recognizer final : public SpeechRecognizer {
      public:
        explicit Recognizer(ScriptedEngine& engine) : engine_(engine) {}
        const Locale& locale() const override { return engine_.serves_; }
        bool isAvailable() const override { return engine_.isAvailable; }
        std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest& request,
                                                         RecognitionHandler handler) override {
            return engine_.workers_.start(
                [request, script = engine_.script_](std::stop_token stop) {
                    return script(request, std::move(stop));
                },
                std::move(handler));
        }

      private:
        ScriptedEngine& engine_;
    };

    const Locale serves_;
    const Script script_;
    RecognitionWorkers workers_;
};

}  // namespace korvane
