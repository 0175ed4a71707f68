#include "ui/player/FrameImage.h"

#include <QPainter>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "ui/controls/ContinuousCorner.h"

namespace korvane {
namespace {

/// A pixel of the given coverage; two components at a time, rounded.
QRgb covered(QRgb pixel, std::uint32_t coverage) {
    const auto scaledPair = [coverage](std::uint32_t pair) {
        const std::uint32_t product = pair * coverage + 0x00800080U;
        return ((product + ((product >> 8) & 0x00FF00FFU)) >> 8) & 0x00FF00FFU;
    };
    return scaledPair(pixel & 0x00FF00FFU) | (scaledPair((pixel >> 8) & 0x00FF00FFU) << 8);
}

void cutCorners(QImage& image, const QImage& corner) {
    for (int y = 0; y < corner.height(); ++y) {
        const uchar* coverage = corner.constScanLine(y);
        for (const int row : {y, image.height() - 1 - y}) {
            auto* pixels = reinterpret_cast<QRgb*>(image.scanLine(row));
            for (int x = 0; x < corner.width(); ++x) {
                pixels[x] = covered(pixels[x], coverage[x]);
                QRgb& opposite = pixels[image.width() - 1 - x];
                opposite = covered(opposite, coverage[x]);
            }
        }
    }
}

}  // namespace

QImage FrameImage::made(const DisplayPicture& picture, double radius) {
    const QSize size(picture.width, picture.height);
    QImage& image = freeImage(size);
    const auto rowBytes = static_cast<std::size_t>(picture.width) * 4;
    for (int y = 0; y < picture.height; ++y) {
        std::memcpy(image.scanLine(y), picture.data + static_cast<std::ptrdiff_t>(y) * picture.strideBytes,
                    rowBytes);
    }
    if (radius > 0.0) {
        prepareCorner(radius, size);
        cutCorners(image, corner_);
    }
    return image;
}

QImage& FrameImage::freeImage(const QSize& size) {
    for (std::size_t i = 1; i <= images_.size(); ++i) {
        const std::size_t next = (last_ + i) % images_.size();
        if (images_[next].size() != size)
            images_[next] = QImage(size, QImage::Format_ARGB32_Premultiplied);
        else if (!images_[next].isDetached())
            continue;
        last_ = next;
        return images_[next];
    }
    // All are held by others, which keep theirs.
    last_ = (last_ + 1) % images_.size();
    images_[last_] = QImage(size, QImage::Format_ARGB32_Premultiplied);
    return images_[last_];
}

void FrameImage::prepareCorner(double radius, const QSize& size) {
    if (radius == radius_ && size == size_)
        return;
    radius_ = radius;
    size_ = size;
    const int extent = static_cast<int>(std::ceil(continuousCornerExtent(radius)));
    // Never past the middle, where the opposite corner begins.
    corner_ = QImage(std::min(extent, size.width() / 2), std::min(extent, size.height() / 2),
                     QImage::Format_Alpha8);
    corner_.fill(Qt::transparent);
    QPainter painter(&corner_);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(continuousRectangle(QRectF(QPointF(), QSizeF(size)), radius), Qt::black);
}

}  // namespace korvane
