// Pictures as a player hands them out, and a source that remembers what a view asked it for.
#pragma once

#include <QColor>
#include <QSize>
#include <functional>
#include <memory>
#include <vector>

#include "ui/player/PreviewSource.h"

namespace korvane {

/// \param colorAt  of the pixel in column x and row y.
PlayerFrame pictureOf(const QSize& size, const std::function<QColor(int x, int y)>& colorAt);
PlayerFrame pictureOf(const QSize& size, const QColor& color);

class RecordingSource : public PreviewSource {
  public:
    void setFrameConsumer(std::shared_ptr<FrameConsumer> given) override { consumers.push_back(given); }
    void setFrameSize(int width, int height) override { sizes.push_back({width, height}); }

    FrameConsumer& consumer() { return *consumers.back(); }

    std::vector<std::shared_ptr<FrameConsumer>> consumers;
    std::vector<QSize> sizes;
};

}  // namespace korvane
