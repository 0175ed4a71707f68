// What VideoProcessor fails with, in the user's words.
#pragma once

#include <exception>
#include <string>

namespace korvane {

/// A plain value: two are equal when case and message are. what() is the sentence to show.
class ProcessingError : public std::exception {
  public:
    enum class Case { exportFailed, noAudioTrack };

    static ProcessingError exportFailed(std::string message);
    static ProcessingError noAudioTrack();

    Case errorCase() const { return case_; }
    /// What exportFailed carries, without its prefix; empty for noAudioTrack.
    const std::string& message() const { return message_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const ProcessingError& a, const ProcessingError& b) {
        return a.case_ == b.case_ && a.message_ == b.message_;
    }

  private:
    ProcessingError(Case errorCase, std::string message, std::string description);

    Case case_;
    std::string message_;
    std::string description_;
};

}  // namespace korvane
