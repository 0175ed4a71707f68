#include "ContinuousCorner.h"

#include <QList>
#include <algorithm>
#include <cmath>
#include <numbers>

namespace korvane {

namespace {

constexpr double quarterTurn = std::numbers::pi / 2;
// Each slow part turns by a quarter of the corner: bends softly, and two corners of 10 fit a height of 32.
constexpr double fullRamp = quarterTurn / 4;
constexpr int steps = 32;

// The tangent's angle after `s` along a corner of radius 1 whose curvature rises from 0 to 1 while the
// tangent turns by `ramp`, stays, and falls to 0 again in the same way.
double angleAt(double s, double ramp) {
    const double rampLength = 2 * ramp;
    const double length = quarterTurn + rampLength;
    if (s < rampLength) {
        return s * s / (2 * rampLength);
    }
    if (s <= length - rampLength) {
        return s - rampLength / 2;
    }
    const double left = length - s;
    return quarterTurn - (rampLength > 0 ? left * left / (2 * rampLength) : 0);
}

// The corner from (0, 0), heading along x, to (e, e), heading along y.
QList<QPointF> unitCorner(double ramp) {
    const double length = quarterTurn + 2 * ramp;
    const double step = length / steps;
    QList<QPointF> points{QPointF(0, 0)};
    points.reserve(steps + 1);
    for (int i = 0; i < steps; ++i) {
        const double angle = angleAt((i + 0.5) * step, ramp);
        points.append(points.last() + step * QPointF(std::cos(angle), std::sin(angle)));
    }
    return points;
}

double unitExtent(double ramp) {
    return unitCorner(ramp).last().x();
}

double rampFor(double room) {
    static const double fullExtent = unitExtent(fullRamp);
    if (room >= fullExtent) {
        return fullRamp;
    }
    double low = 0;
    double high = fullRamp;
    for (int i = 0; i < 16; ++i) {
        const double middle = (low + high) / 2;
        (unitExtent(middle) <= room ? low : high) = middle;
    }
    return low;
}

}  // namespace

qreal continuousCornerExtent(qreal radius) {
    static const double fullExtent = unitExtent(fullRamp);
    return radius * fullExtent;
}

QPainterPath continuousRectangle(const QRectF& rectangle, qreal radius) {
    QPainterPath path;
    const double half = std::min(rectangle.width(), rectangle.height()) / 2;
    if (half <= 0) {
        return path;
    }
    if (radius <= 0) {
        path.addRect(rectangle);
        return path;
    }
    const double fitting = std::min<double>(radius, half);
    const QList<QPointF> corner = unitCorner(rampFor(half / fitting));
    // Rounding of the summed steps must not carry a corner past the middle of its edge.
    const double scale = std::min(fitting, half / corner.last().x());
    const double extent = scale * corner.last().x();

    const struct {
        QPointF start, along, across;
    } corners[] = {
        {rectangle.topRight() + QPointF(-extent, 0), {1, 0}, {0, 1}},
        {rectangle.bottomRight() + QPointF(0, -extent), {0, 1}, {-1, 0}},
        {rectangle.bottomLeft() + QPointF(extent, 0), {-1, 0}, {0, -1}},
        {rectangle.topLeft() + QPointF(0, extent), {0, -1}, {1, 0}},
    };
    path.moveTo(corners[0].start);
    for (const auto& [start, along, across] : corners) {
        for (const QPointF& point : corner) {
            path.lineTo(start + scale * (point.x() * along + point.y() * across));
        }
    }
    path.closeSubpath();
    return path;
}

}  // namespace korvane
