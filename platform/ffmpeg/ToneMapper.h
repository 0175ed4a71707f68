// Brings linear light of high dynamic range into the range of a standard screen.
#pragma once

#include <memory>

struct AVFrame;

namespace korvane {

/// One thread at a time.
class ToneMapper {
  public:
    /// \param peak  brightest value that occurs, in units of reference white.
    /// \throws MediaError when the filter library can't do it.
    ToneMapper(int width, int height, double peak);
    ~ToneMapper();

    /// \param linear  planar 32-bit float RGB (G, B, R), 1.0 is reference white.
    /// \return the same form with values of 0 to 1.
    std::shared_ptr<AVFrame> map(const std::shared_ptr<AVFrame>& linear);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
