// Permission on a Linux desktop: granted, unless the administrator, the sandbox or the person has refused.
#pragma once

#include <filesystem>

#include "platform/folders/StandardFolders.h"
#include "platform/speech/SpeechAuthorization.h"

namespace korvane {

/// A refusal is the word "denied" or "restricted" in one of three places:
/// - the variable KORVANE_SPEECH_RECOGNITION, which a sandbox or a session sets,
/// - korvane/speech-recognition below the system's configuration folder, the administrator's,
/// - korvane/speech-recognition below the person's configuration folder.
/// The strictest of the three counts. "authorized", nothing at all or no such file refuse nothing. A word
/// that nobody knows or a file that can't be read counts as "denied": whoever put it there meant to refuse.
class SystemSpeechAuthorization final : public SpeechAuthorization {
  public:
    explicit SystemSpeechAuthorization(Environment environment = processEnvironment());
    SystemSpeechAuthorization(Environment environment, StandardFolders folders);

    /// Any thread. Looks anew each time and calls `completion` before it returns.
    void request(std::function<void(SpeechAuthorizationStatus)> completion) override;

  private:
    SpeechAuthorizationStatus status() const;

    Environment environment_;
    StandardFolders folders_;
};

}  // namespace korvane
