// One recognised word with its time span in the source video.
#pragma once

#include <string>
#include <utility>

namespace korvane {

/// A plain value without identity: words are told apart by their index in the transcript, so two equal
/// segments at different indices are different words. Nothing enforces start <= end; consumers take what
/// comes.
class SpeechSegment {
  public:
    /// \param start,end  seconds from the beginning of the source video.
    SpeechSegment(std::string text, double start, double end)
        : text_(std::move(text)), start_(start), end_(end) {}

    const std::string& text() const { return text_; }
    double start() const { return start_; }
    double end() const { return end_; }

  private:
    std::string text_;
    double start_;
    double end_;
};

}  // namespace korvane
