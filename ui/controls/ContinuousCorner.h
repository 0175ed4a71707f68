// The outline of every pill and token: a rectangle whose corners have no kink in their curvature. Pure; any
// thread.
#pragma once

#include <QPainterPath>
#include <QRectF>

namespace korvane {

/// A rounded rectangle whose corner bends in slowly, keeps `radius` in its middle and straightens out slowly.
///
/// A corner takes continuousCornerExtent(radius) of each edge. Where the rectangle is too small for that the
/// slow parts shrink, down to a plain arc of the half height.
QPainterPath continuousRectangle(const QRectF& rectangle, qreal radius);

/// What a corner takes of each edge where there is room, in the unit of `radius`.
qreal continuousCornerExtent(qreal radius);

}  // namespace korvane
