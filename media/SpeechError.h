// What SpeechService fails with, in the user's words.
#pragma once

#include <exception>
#include <string>

#include "platform/locale/Locale.h"

namespace korvane {

/// A plain value: two are equal when case and locale are. what() is the sentence to show.
class SpeechError : public std::exception {
  public:
    enum class Case { recognizerUnavailable, permissionDenied, permissionRestricted };

    static SpeechError recognizerUnavailable(Locale locale);
    static SpeechError permissionDenied();
    static SpeechError permissionRestricted();

    Case errorCase() const { return case_; }
    /// What recognizerUnavailable carries; empty for the other cases.
    const Locale& locale() const { return locale_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const SpeechError& a, const SpeechError& b) {
        return a.case_ == b.case_ && a.locale_ == b.locale_;
    }

  private:
    SpeechError(Case errorCase, Locale locale, std::string description);

    Case case_;
    Locale locale_;
    std::string description_;
};

}  // namespace korvane
