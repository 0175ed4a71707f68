// A dark gradient in eight bits without visible bands. Pure; any thread.
#pragma once

#include <QColor>
#include <QImage>
#include <QSize>

namespace korvane {

/// An opaque linear gradient from the top-left corner to the bottom-right one, premultiplied.
///
/// Between two neighbouring colours of eight bits each pixel takes the upper one as often as the exact colour
/// lies towards it, spread evenly, so that no edge between two areas is seen. \param size  pixels; not empty.
QImage ditheredGradient(const QSize& size, const QColor& from, const QColor& to);

}  // namespace korvane
