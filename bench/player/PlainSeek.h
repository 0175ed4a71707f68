// Going to a picture with nothing but libav: back to the key picture before it, then decoding up to it.
#pragma once

#include <memory>
#include <string>

namespace korvane::bench {

class PlainSeek {
  public:
    /// \param threads  that decode. \throws std::runtime_error when the video can't be opened
    PlainSeek(const std::string& video, int threads);
    ~PlainSeek();
    PlainSeek(const PlainSeek&) = delete;
    PlainSeek& operator=(const PlainSeek&) = delete;

    /// Decodes the picture that is seen at `seconds`. \return its time, in seconds
    /// \throws std::runtime_error when there is none
    double to(double seconds);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane::bench
