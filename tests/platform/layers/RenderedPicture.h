// Draws text layers as subtitles have them onto one picture and measures what came out.
#pragma once

#include <QImage>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/layers/LayerRenderer.h"

namespace korvane::layertest {

inline constexpr Size kCanvas{1080.0, 1920.0};

/// What a subtitle layer is made of; visible in [begin, begin + duration).
struct Line {
    std::string text;
    std::string font = "Inter-Bold";
    double fontSize = 72.0;
    Color color = Color::white();
    std::optional<Shadow> shadow = std::nullopt;
    Rect frame{75.6, 816.0, 928.8, 288.0};
    double begin = 0.0;
    double duration = 1.0;
    bool popping = false;
};

struct Tree {
    std::shared_ptr<const Layer> parent;
    std::shared_ptr<const Layer> video;
};
Tree treeOf(const std::vector<Line>& lines);

/// One overlay as an image; the pixels are shared with it.
QImage imageOf(const PlacedOverlay& overlay);

/// The only overlay of a single line at `seconds`; fails the test when there isn't exactly one.
PlacedOverlay rendered(const Line& line, double seconds = 0.5, double canvasScale = 1.0);

/// The box of all pixels that are at least half opaque, with edges to a fraction of a pixel, on the canvas.
struct Box {
    double left = 0.0;
    double top = 0.0;
    double right = 0.0;
    double bottom = 0.0;
    double width() const { return right - left; }
    double height() const { return bottom - top; }
    double centerX() const { return (left + right) / 2.0; }
    double centerY() const { return (top + bottom) / 2.0; }
};
Box inkBox(const PlacedOverlay& overlay);

/// Number of stretches of rows that hold ink: lines of text, when their letters don't reach into each other.
int inkBands(const PlacedOverlay& overlay);

/// Pixels that are opaque and clearly neither grey nor white.
int colorfulPixels(const PlacedOverlay& overlay);

}  // namespace korvane::layertest
