// The engines of this program, and which of them serves a locale.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/speech/SpeechRecognizer.h"

namespace korvane {

/// What an engine has for a locale.
struct SpeechSupport {
    bool installed = false;
    /// Installed: what serves the locale, such as "PocketSphinx, US English (pocketsphinx-en-us)".
    /// Not installed: a sentence that says what would have to be.
    std::string description;
};

/// One speech engine. It owns the threads that its recognisers' tasks work on, so it outlives them all.
class SpeechEngine {
  public:
    virtual ~SpeechEngine() = default;
    /// \return null when nothing is installed for the locale.
    virtual std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) = 0;
    /// Looks at the disk, loads nothing.
    virtual SpeechSupport support(const Locale& locale) const = 0;
};

/// Made once at the top of a program and handed down; outlives every recogniser that it makes. Any thread.
class SpeechRecognizerRegistry {
  public:
    /// \param engines  in order of preference; may be empty.
    explicit SpeechRecognizerRegistry(std::vector<std::unique_ptr<SpeechEngine>> engines);

    /// \return the first engine's recogniser for `locale`, null when no engine has one.
    std::unique_ptr<SpeechRecognizer> makeRecognizer(const Locale& locale) const;

    /// The first engine that has something installed; else what each would need, a sentence each.
    SpeechSupport support(const Locale& locale) const;

  private:
    std::vector<std::unique_ptr<SpeechEngine>> engines_;
};

}  // namespace korvane
