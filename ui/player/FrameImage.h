// Turns a player's picture into what a texture is made of: copied once, the corners cut round on the way. One
// thread at a time.
#pragma once

#include <QImage>
#include <array>
#include <cstddef>

#include "platform/ffmpeg/DisplayPicture.h"

namespace korvane {

class FrameImage {
  public:
    /// The picture in premultiplied colours, transparent beyond continuous corners.
    /// \param radius  of the corners in the picture's pixels; 0: none are cut.
    QImage made(const DisplayPicture& picture, double radius);

  private:
    QImage& freeImage(const QSize& size);
    void prepareCorner(double radius, const QSize& size);

    /// Made in turn: one may still be shown while the next is written. Fresh memory for each picture would
    /// cost more than the copy.
    std::array<QImage, 3> images_;
    std::size_t last_ = 0;

    double radius_ = -1.0;
    QSize size_;
    QImage corner_;  ///< coverage of the top left corner, 8 bit
};

}  // namespace korvane
