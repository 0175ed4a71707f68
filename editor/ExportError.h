// What VideoEditor fails with, in the user's words.
#pragma once

#include <exception>
#include <string>

namespace korvane {

/// A plain value: two are equal when case and message are. what() is the sentence to show.
class ExportError : public std::exception {
  public:
    enum class Case { exportFailed, noSegmentsSelected, noVideoTrack, compositionFailed, noContentInserted };

    static ExportError exportFailed(std::string message);
    static ExportError noSegmentsSelected();
    static ExportError noVideoTrack();
    static ExportError compositionFailed();
    static ExportError noContentInserted();

    Case errorCase() const { return case_; }
    /// What exportFailed carries, without its prefix; empty for the other cases.
    const std::string& message() const { return message_; }
    const char* what() const noexcept override { return description_.c_str(); }

    friend bool operator==(const ExportError& a, const ExportError& b) {
        return a.case_ == b.case_ && a.message_ == b.message_;
    }

  private:
    ExportError(Case errorCase, std::string message);

    Case case_;
    std::string message_;
    std::string description_;
};

}  // namespace korvane
