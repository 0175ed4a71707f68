// One plan of the scaling library: from a picture of one form to a picture of another.
#pragma once

#include <memory>
#include <optional>

#include "platform/ffmpeg/ColorDescription.h"
#include "platform/geometry/Geometry.h"

struct AVFrame;

namespace korvane {

/// Size, sample layout and colour of pictures at one end of a ScalingGraph.
struct ImageForm {
    int width = 0;
    int height = 0;
    int format = -1;  ///< the media libraries' pixel format
    ColorDescription colors;
    std::optional<Rect> seen;  ///< the part that is used, in pixels, fractions allowed; none: all

    static ImageForm of(const AVFrame& frame, const ColorDescription& colors);
    static ImageForm yuv420(int width, int height);
    static ImageForm yuv444(int width, int height);
    static ImageForm linearRgb(int width,
                               int height);  ///< 32-bit float, BT.709 primaries, 1.0 is reference white
    ImageForm cropped(Rect part) const;
};

/// One thread at a time.
class ScalingGraph {
  public:
    /// \throws MediaError when the library knows no way between the two.
    ScalingGraph(const ImageForm& from, const ImageForm& to);
    ~ScalingGraph();

    /// Converts `from` into `to`, or into a picture of the graph's own when `to` is null, which the next run
    /// overwrites. \return the picture written.
    std::shared_ptr<AVFrame> run(const AVFrame& from, std::shared_ptr<AVFrame> to);

    /// A picture of the input's form, for who has to fill it first; the same at each call.
    std::shared_ptr<AVFrame> inputFrame();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
