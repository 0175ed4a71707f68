#include "tests/platform/layers/RenderedPicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace korvane::layertest {
namespace {

std::shared_ptr<Layer> layerOf(const Line& line) {
    auto layer = std::make_shared<Layer>();
    const double begin = line.begin <= 0.0 ? kBeginTimeAtZero : line.begin;
    layer->frame = line.frame;
    layer->opacity = 0.0;
    layer->text = TextContent{line.text, line.font, line.fontSize, line.color};
    layer->shadow = line.shadow;
    layer->animations["visibility"] = BasicAnimation{"opacity", 1.0, 1.0, begin, line.duration};
    if (line.popping)
        layer->animations["pop"] =
            KeyframeAnimation{"transform.scale",
                              {0.78, 1.08, 1.0},
                              {0.0, 0.55, 1.0},
                              {TimingFunction::easeOut(), TimingFunction::easeInEaseOut()},
                              begin,
                              std::min(0.35, line.duration)};
    return layer;
}

/// Where the summed coverage of a row or column profile reaches half of a full pixel, from either end.
std::pair<double, double> edgesOf(const std::vector<int>& largest) {
    const auto inked = [](int alpha) { return alpha >= 128; };
    const auto first = std::find_if(largest.begin(), largest.end(), inked);
    if (first == largest.end())
        return {0.0, 0.0};
    const auto last = std::find_if(largest.rbegin(), largest.rend(), inked);
    // A neighbour's partial coverage tells how far into it the edge reaches.
    const double before = first == largest.begin() ? 0.0 : *std::prev(first) / 255.0;
    const double after = last == largest.rbegin() ? 0.0 : *std::prev(last) / 255.0;
    return {static_cast<double>(first - largest.begin()) + 1.0 - *first / 255.0 - before,
            static_cast<double>(largest.size()) - static_cast<double>(last - largest.rbegin()) - 1.0 +
                *last / 255.0 + after};
}

}  // namespace

Tree treeOf(const std::vector<Line>& lines) {
    const Rect whole{0.0, 0.0, kCanvas.width, kCanvas.height};
    auto parent = std::make_shared<Layer>();
    parent->frame = whole;
    parent->beginTime = kBeginTimeAtZero;
    auto video = std::make_shared<Layer>();
    video->frame = whole;
    auto overlay = std::make_shared<Layer>();
    overlay->frame = whole;
    overlay->geometryFlipped = true;
    for (const auto& line : lines)
        overlay->sublayers.push_back(layerOf(line));
    parent->sublayers = {video, overlay};
    return {parent, video};
}

QImage imageOf(const PlacedOverlay& overlay) {
    const auto& bitmap = *overlay.bitmap;
    return QImage(bitmap.pixels.data(), bitmap.width, bitmap.height, bitmap.strideBytes,
                  QImage::Format_ARGB32_Premultiplied);
}

PlacedOverlay rendered(const Line& line, double seconds, double canvasScale) {
    const auto tree = treeOf({line});
    LayerRenderer renderer(tree.parent, tree.video, kCanvas, canvasScale);
    const auto overlays = renderer.overlaysAt(seconds);
    EXPECT_EQ(overlays.size(), 1U) << line.text;
    if (overlays.size() == 1)
        return overlays.front();
    return {0, 0, 1.0, std::make_shared<OverlayBitmap>()};
}

Box inkBox(const PlacedOverlay& overlay) {
    const QImage image = imageOf(overlay);
    std::vector<int> columns(static_cast<std::size_t>(image.width()), 0);
    std::vector<int> rows(static_cast<std::size_t>(image.height()), 0);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const int alpha = qAlpha(image.pixel(x, y));
            auto& column = columns[static_cast<std::size_t>(x)];
            auto& row = rows[static_cast<std::size_t>(y)];
            column = std::max(column, alpha);
            row = std::max(row, alpha);
        }
    }
    const auto [left, right] = edgesOf(columns);
    const auto [top, bottom] = edgesOf(rows);
    return {overlay.x + left, overlay.y + top, overlay.x + right, overlay.y + bottom};
}

int inkBands(const PlacedOverlay& overlay) {
    const QImage image = imageOf(overlay);
    int bands = 0;
    bool inside = false;
    for (int y = 0; y < image.height(); ++y) {
        bool inked = false;
        for (int x = 0; x < image.width() && !inked; ++x)
            inked = qAlpha(image.pixel(x, y)) >= 128;
        bands += inked && !inside ? 1 : 0;
        inside = inked;
    }
    return bands;
}

int colorfulPixels(const PlacedOverlay& overlay) {
    const QImage image = imageOf(overlay);
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb pixel = image.pixel(x, y);
            const auto [low, high] = std::minmax({qRed(pixel), qGreen(pixel), qBlue(pixel)});
            count += qAlpha(pixel) > 200 && high - low > 80 ? 1 : 0;
        }
    }
    return count;
}

}  // namespace korvane::layertest
