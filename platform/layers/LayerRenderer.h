// Draws what a layer tree shows above the video. One renderer serves one reader; calls come from one thread
// at a time, which may be any thread (no display, no main thread needed; a QGuiApplication must exist).
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/layers/Layer.h"

namespace korvane {

/// A picture of one layer, drawn for one scale: premultiplied BGRA in memory order (QImage's
/// Format_ARGB32_Premultiplied on little-endian), 8 bit, sRGB/BT.709 R'G'B' values, rows of `strideBytes`.
struct OverlayBitmap {
    int width = 0;
    int height = 0;
    int strideBytes = 0;
    std::vector<std::uint8_t> pixels;
};

/// `bitmap`'s top left corner stands at (x, y) of the canvas, y down; it may reach beyond the canvas.
/// The same picture is the same `bitmap` object from frame to frame, so that who blends can keep a
/// conversion.
struct PlacedOverlay {
    int x = 0;
    int y = 0;
    double opacity = 1.0;  ///< multiplies every pixel; > 0
    std::shared_ptr<const OverlayBitmap> bitmap;
};

class LayerRenderer {
  public:
    /// \param videoLayer  the layer the video is drawn into; what stands above it in the tree is drawn.
    /// \param renderSize  size of the tree's root, in its own units.
    /// \param canvasScale  canvas pixels per unit: 1 for the export, less for a smaller preview.
    /// \throws FontError when there is text in the tree and no font is installed.
    LayerRenderer(std::shared_ptr<const Layer> parentLayer, std::shared_ptr<const Layer> videoLayer,
                  Size renderSize, double canvasScale = 1.0);
    ~LayerRenderer();

    /// Bottom to top, only what is visible at `seconds` of composition time. Text is laid out once per layer
    /// and drawn anew for each distinct scale; a layer's bitmaps are let go once the layer is no longer
    /// visible.
    std::vector<PlacedOverlay> overlaysAt(double seconds);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace korvane
