// What a speech recogniser is to the rest of the program: an audio file goes in, timed words come out, once.
// Engines implement these interfaces, each in its own folder.
#pragma once

#include <exception>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/locale/Locale.h"

namespace korvane {

/// One word. Segments of a result come in order, never overlap, have a positive duration and lie within the
/// recording.
struct RecognizedSegment {
    std::string substring;
    double timestamp = 0.0;  ///< seconds from the beginning of the file
    double duration = 0.0;   ///< seconds
};

struct RecognitionResult {
    bool isFinal = false;
    std::vector<RecognizedSegment> segments;  ///< empty when nothing was said
};

struct FileRecognitionRequest {
    std::filesystem::path path;
    bool shouldReportPartialResults = false;  ///< an engine may ignore the wish, but never report unasked
};

/// Exactly one call carries a final result or an error; none follows it.
using RecognitionHandler = std::function<void(std::optional<RecognitionResult>, std::exception_ptr)>;

/// The engine itself failed: its model can't be loaded, the library gave up. One sentence for a person.
class RecognitionError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One running recognition. Destroying it cancels and waits until the handler has returned; never destroy it
/// from within the handler.
class RecognitionTask {
  public:
    virtual ~RecognitionTask() = default;

    /// Any thread, any number of times, also after the end. Returns at once. Unless the final call has been
    /// made, the handler gets CancellationError within 0.3 s.
    virtual void cancel() = 0;
};

/// Turns files of one language into words. Any thread; several tasks may run at once.
class SpeechRecognizer {
  public:
    virtual ~SpeechRecognizer() = default;

    virtual const Locale& locale() const = 0;

    /// Whether a task started now has what it needs.
    virtual bool isAvailable() const = 0;

    /// Starts recognising and returns at once; never null. The handler runs on a worker thread, possibly
    /// before this returns. It gets what went wrong as MediaError (the file), RecognitionError (the engine)
    /// or CancellationError.
    virtual std::unique_ptr<RecognitionTask> recognitionTask(const FileRecognitionRequest& request,
                                                             RecognitionHandler handler) = 0;
};

}  // namespace korvane
