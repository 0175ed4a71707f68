// What the symbols are drawn with: strokes and areas in one colour, and holes in those. Internal to
// IconShapes.
#pragma once

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>
#include <initializer_list>

#include "IconShapes.h"

namespace korvane {

constexpr qreal iconWeight = 1.9;  ///< of every line that carries a symbol, in units of its box

class IconPen {
  public:
    IconPen(QPainter& painter, const QColor& color) : painter_(painter), color_(color) {}

    void stroke(const QPainterPath& path, qreal width = iconWeight) {
        painter_.strokePath(path, QPen(color_, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    void line(std::initializer_list<QPointF> points, qreal width = iconWeight) {
        stroke(through(points), width);
    }
    /// An upright or level line whose edges fall on whole pixels.
    void bar(const QPointF& from, const QPointF& to, qreal width = iconWeight) {
        if (from.x() == to.x()) {
            const qreal x = onGrid(from.x(), width);
            line({{x, from.y()}, {x, to.y()}}, onGridWidth(width));
        } else {
            const qreal y = onGrid(from.y(), width);
            line({{from.x(), y}, {to.x(), y}}, onGridWidth(width));
        }
    }
    /// The outline of a rectangle, its edges on whole pixels likewise.
    void box(const QRectF& r, qreal radius, qreal width = iconWeight) {
        const QPointF topLeft(onGrid(r.left(), width), onGrid(r.top(), width));
        const QPointF bottomRight(onGrid(r.right(), width), onGrid(r.bottom(), width));
        // Plain arcs: at a dozen pixels a slow bend would blur the whole edge.
        QPainterPath path;
        path.addRoundedRect(QRectF(topLeft, bottomRight), radius, radius);
        stroke(path, onGridWidth(width));
    }
    qreal pixels() const { return painter_.worldTransform().m11(); }
    /// Whole pixels where that is nearly the width anyway; else the set would lose its one weight.
    qreal onGridWidth(qreal width) const {
        const qreal whole = std::max(1.0, std::round(width * pixels()));
        return std::abs(whole - width * pixels()) < 0.3 ? whole / pixels() : width;
    }
    /// Where the middle of a line must lie for its edges to fall on whole pixels.
    qreal onGrid(qreal middleLine, qreal width) const {
        const qreal at = middleLine * pixels();
        return (std::lround(width * pixels()) % 2 == 1 ? std::floor(at) + 0.5 : std::round(at)) / pixels();
    }
    void fill(const QPainterPath& path) { painter_.fillPath(path, color_); }
    /// A filled polygon with corners as round as `width`.
    void solid(std::initializer_list<QPointF> points, qreal width = iconWeight) {
        QPainterPath path = through(points);
        path.closeSubpath();
        fill(path);
        stroke(path, width);
    }
    void circle(qreal radius) { stroke(disc(QPointF(iconBox / 2, iconBox / 2), radius)); }
    void dot(const QPointF& centre, qreal radius) { fill(disc(centre, radius)); }

    /// What is drawn after this is cut out.
    IconPen& cutting() {
        painter_.setCompositionMode(QPainter::CompositionMode_DestinationOut);
        color_ = Qt::black;
        return *this;
    }

    static QPainterPath disc(const QPointF& centre, qreal radius) {
        QPainterPath path;
        path.addEllipse(centre, radius, radius);
        return path;
    }
    static QPainterPath through(std::initializer_list<QPointF> points) {
        QPainterPath path(*points.begin());
        for (const QPointF& point : points) {
            path.lineTo(point);
        }
        return path;
    }
    QPainter& painter() { return painter_; }

  private:
    QPainter& painter_;
    QColor color_;
};

}  // namespace korvane
