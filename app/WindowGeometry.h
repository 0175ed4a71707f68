// The arithmetic of a window's size and place, apart from any window. Lengths are points.
#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

namespace korvane {

/// The window's size at the start and at the least, where the screen has room for them.
inline constexpr QSize comfortableSize{1180, 800};
inline constexpr QSize smallestSize{960, 680};

/// \param available  the screen without panels and docks; of no size: nothing is known of it.
QSize fittedSize(const QSize& wished, const QSize& available);

/// What becomes of a window when the pointer has moved by `by` since it took hold of `edges`. The opposite
/// edges stay where they are, also once the window is as small as it gets.
QRect resized(const QRect& start, Qt::Edges edges, const QPoint& by, const QSize& smallest);

/// Whether a window stands edge to edge with the screen's free area, as one that a desktop has tiled does.
bool looksTiled(const QRect& window, const QRect& available);

}  // namespace korvane
