#include "IconShapes.h"

#include <QHash>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

#include "ContinuousCorner.h"
#include "IconPen.h"

namespace korvane {

namespace {

const QPointF middle(iconBox / 2, iconBox / 2);

QPainterPath bubble(const QRectF& body, qreal radius) {
    QPainterPath tail(QPointF(body.left() + 4, body.bottom() - 1.5));
    tail.lineTo(body.left() + 4, body.bottom() + 3.2);
    tail.lineTo(body.left() + 9.4, body.bottom() - 1.5);
    tail.closeSubpath();
    return continuousRectangle(body, radius).united(tail);
}

void textBubble(IconPen& pen) {
    pen.stroke(bubble({2.4, 3.4, 19.2, 14.4}, 4.4));
    pen.bar({7.2, 8.6}, {16.8, 8.6}, 1.7);
    pen.bar({7.2, 12.6}, {13.6, 12.6}, 1.7);
}

void captionsBubble(IconPen& pen) {
    const QPainterPath body = bubble({2.2, 3.2, 19.6, 14.8}, 4.6);
    pen.fill(body);
    pen.stroke(body, 1.2);
    pen.cutting();
    pen.bar({6.4, 9}, {11.2, 9}, 1.7);
    pen.bar({14.6, 9}, {17.6, 9}, 1.7);
    pen.bar({6.4, 13}, {9.2, 13}, 1.7);
    pen.bar({12.6, 13}, {17.6, 13}, 1.7);
}

void playRectangle(IconPen& pen) {
    pen.fill(continuousRectangle({1.4, 4.2, 21.2, 15.6}, 3.8));
    pen.cutting().solid({{10.2, 8.9}, {10.2, 15.1}, {15.3, 12}}, 1.4);
}

void xmarkCircle(IconPen& pen) {
    pen.dot(middle, 10);
    pen.cutting();
    pen.line({{8.6, 8.6}, {15.4, 15.4}});
    pen.line({{15.4, 8.6}, {8.6, 15.4}});
}

void playCircle(IconPen& pen) {
    pen.circle(9.05);
    pen.solid({{10.2, 8.7}, {10.2, 15.3}, {15.5, 12}}, 1.4);
}

void arrowDownCircle(IconPen& pen) {
    pen.dot(middle, 10);
    pen.cutting();
    pen.line({{12, 7.1}, {12, 16.6}});
    pen.line({{8.1, 12.9}, {12, 16.8}, {15.9, 12.9}});
}

void warningTriangle(IconPen& pen) {
    pen.solid({{12, 4.1}, {20.6, 19.1}, {3.4, 19.1}}, 3.6);
    pen.cutting();
    pen.line({{12, 8.9}, {12, 13.6}}, 2);
    pen.dot({12, 17.2}, 1.25);
}

void film(IconPen& pen) {
    pen.box({2.2, 4.2, 19.6, 15.6}, 3);
    pen.bar({7.1, 4.4}, {7.1, 19.6}, 1.6);
    pen.bar({16.9, 4.4}, {16.9, 19.6}, 1.6);
    pen.bar({7.1, 12}, {16.9, 12}, 1.6);
    for (const qreal y : {9.2, 14.8}) {
        pen.bar({2.4, y}, {7, y}, 1.6);
        pen.bar({17, y}, {21.6, y}, 1.6);
    }
}

void waveform(IconPen& pen) {
    constexpr qreal halves[] = {1.4, 4.6, 8.6, 3.4, 6.6, 2.2};
    // Bars a whole number of pixels apart: one gap wider than its neighbours would be seen at once.
    const qreal pitch = std::max(2.0, std::round(3.7 * pen.pixels())) / pen.pixels();
    const qreal first = pen.onGrid(iconBox / 2 - 2.5 * pitch, iconWeight);
    for (int i = 0; const qreal half : halves) {
        const qreal x = first + pitch * i++;
        pen.line({{x, 12 - half}, {x, 12 + half}}, pen.onGridWidth(iconWeight));
    }
}

void stop(IconPen& pen) {
    pen.fill(continuousRectangle({4.2, 4.2, 15.6, 15.6}, 3.4));
}

void globe(IconPen& pen) {
    pen.circle(9.05);
    QPainterPath meridian;
    meridian.addEllipse(middle, 4.1, 9.05);
    pen.stroke(meridian, 1.6);
    pen.line({{3.2, 12}, {20.8, 12}}, 1.6);
}

void chevronUpDown(IconPen& pen) {
    pen.line({{7.4, 9}, {12, 4.6}, {16.6, 9}}, 2.2);
    pen.line({{7.4, 15}, {12, 19.4}, {16.6, 15}}, 2.2);
}

void chevronDown(IconPen& pen) {
    pen.line({{5, 8.6}, {12, 15.6}, {19, 8.6}}, 2.2);
}

void magnifier(IconPen& pen) {
    pen.stroke(IconPen::disc({10.2, 10.2}, 6.9));
    pen.line({{15.4, 15.4}, {20.6, 20.6}}, 2.3);
}

void eyedropper(IconPen& pen) {
    QPainter& painter = pen.painter();
    painter.save();
    painter.translate(middle);
    painter.rotate(45);
    // Upright: bulb above, collar, then the tube with its point.
    pen.fill(continuousRectangle({-2.9, -12.6, 5.8, 8.6}, 2.9));
    pen.line({{-4.4, -3.6}, {4.4, -3.6}}, 2.2);
    QPainterPath tube(QPointF(-2.4, -3.2));
    tube.lineTo(-2.4, 6.6);
    tube.cubicTo(-2.4, 8.4, 0, 9.2, 0, 11.8);
    tube.cubicTo(0, 9.2, 2.4, 8.4, 2.4, 6.6);
    tube.lineTo(2.4, -3.2);
    pen.stroke(tube, 1.7);
    painter.restore();
}

void checkmark(IconPen& pen) {
    pen.line({{4.4, 12.9}, {9.5, 18.2}, {19.6, 5.8}}, 2.3);
}

void xmark(IconPen& pen) {
    pen.line({{5.4, 5.4}, {18.6, 18.6}}, 2.1);
    pen.line({{18.6, 5.4}, {5.4, 18.6}}, 2.1);
}

void minus(IconPen& pen) {
    pen.bar({4.4, 12}, {19.6, 12}, 2.1);
}

void square(IconPen& pen) {
    pen.box({4.2, 4.2, 15.6, 15.6}, 3.2);
}

void squareOnSquare(IconPen& pen) {
    pen.box({2.9, 7.9, 13.2, 13.2}, 2.8);
    QPainterPath behind(QPointF(7.9, 4.9));
    behind.cubicTo(7.9, 3.6, 8.8, 2.9, 10.2, 2.9);
    behind.lineTo(18, 2.9);
    behind.cubicTo(20, 2.9, 21.1, 4, 21.1, 6);
    behind.lineTo(21.1, 13.8);
    behind.cubicTo(21.1, 15.2, 20.4, 16.1, 19.1, 16.1);
    pen.stroke(behind);
}

void folder(IconPen& pen) {
    QPainterPath outline(QPointF(2.4, 7));
    outline.cubicTo(2.4, 5.2, 3.4, 4.4, 5, 4.4);
    outline.lineTo(8.3, 4.4);
    outline.cubicTo(9.3, 4.4, 9.8, 4.7, 10.4, 5.4);
    outline.lineTo(11.3, 6.3);
    outline.cubicTo(11.7, 6.8, 12.1, 7, 12.9, 7);
    outline.lineTo(18.8, 7);
    outline.cubicTo(20.7, 7, 21.6, 8, 21.6, 9.8);
    outline.lineTo(21.6, 16.8);
    outline.cubicTo(21.6, 18.7, 20.6, 19.6, 18.8, 19.6);
    outline.lineTo(5.2, 19.6);
    outline.cubicTo(3.4, 19.6, 2.4, 18.7, 2.4, 16.8);
    outline.closeSubpath();
    pen.stroke(outline);
    pen.bar({2.6, 10.6}, {21.4, 10.6}, 1.6);
}

void info(IconPen& pen) {
    pen.circle(9.05);
    pen.dot({12, 7.9}, 1.25);
    pen.line({{12, 11.6}, {12, 16.4}});
}

using Shape = void (*)(IconPen&);

const QHash<QString, Shape>& shapes() {
    static const QHash<QString, Shape> all{
        {QStringLiteral("text.bubble"), textBubble},
        {QStringLiteral("play.rectangle.fill"), playRectangle},
        {QStringLiteral("xmark.circle.fill"), xmarkCircle},
        {QStringLiteral("play.circle"), playCircle},
        {QStringLiteral("arrow.down.circle.fill"), arrowDownCircle},
        {QStringLiteral("captions.bubble.fill"), captionsBubble},
        {QStringLiteral("exclamationmark.triangle.fill"), warningTriangle},
        {QStringLiteral("film"), film},
        {QStringLiteral("waveform"), waveform},
        {QStringLiteral("stop.fill"), stop},
        {QStringLiteral("globe"), globe},
        {QStringLiteral("chevron.up.chevron.down"), chevronUpDown},
        {QStringLiteral("chevron.down"), chevronDown},
        {QStringLiteral("magnifyingglass"), magnifier},
        {QStringLiteral("eyedropper"), eyedropper},
        {QStringLiteral("checkmark"), checkmark},
        {QStringLiteral("xmark"), xmark},
        {QStringLiteral("minus"), minus},
        {QStringLiteral("square"), square},
        {QStringLiteral("square.on.square"), squareOnSquare},
        {QStringLiteral("folder"), folder},
        {QStringLiteral("info.circle"), info},
    };
    return all;
}

}  // namespace

QStringList iconNames() {
    QStringList names = shapes().keys();
    names.sort();
    return names;
}

bool drawIcon(QPainter& painter, const QString& name, const QColor& color) {
    const Shape shape = shapes().value(name, nullptr);
    if (shape == nullptr) {
        return false;
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    IconPen pen(painter, color);
    shape(pen);
    painter.restore();
    return true;
}

}  // namespace korvane
