#include "app/WindowIcon.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

namespace korvane {
namespace {

/// Coordinates are those of the drawing in korvane.svg, 128 by 128.
constexpr qreal drawingSize = 128;

void fillRound(QPainter& painter, const QRectF& rect, qreal radius, const QBrush& brush) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush);
    painter.drawRoundedRect(rect, radius, radius);
}

QPixmap drawn(int sizePx) {
    QPixmap pixmap(sizePx, sizePx);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(sizePx / drawingSize, sizePx / drawingSize);

    QLinearGradient ground(6, 6, 122, 122);
    ground.setColorAt(0, QColor(0x17, 0x2a, 0x5c));
    ground.setColorAt(1, QColor(0x0a, 0x12, 0x2b));
    fillRound(painter, {6, 6, 116, 116}, 28, ground);
    QLinearGradient picture(0, 20, 0, 108);
    picture.setColorAt(0, QColor(0x3d, 0x99, 0xff));
    picture.setColorAt(1, QColor(0x1f, 0x6b, 0xe0));
    fillRound(painter, {37, 20, 54, 88}, 12, picture);

    painter.setPen(QPen(Qt::white, 5, Qt::SolidLine, Qt::RoundCap));
    for (const auto& line :
         {QLineF(48, 44, 48, 56), QLineF(58, 36, 58, 64), QLineF(69, 41, 69, 59), QLineF(80, 46, 80, 54)})
        painter.drawLine(line);
    fillRound(painter, {45, 78, 15, 8}, 4, Qt::white);
    fillRound(painter, {64, 78, 19, 8}, 4, QColor(255, 255, 255, 140));
    fillRound(painter, {49, 91, 30, 8}, 4, Qt::white);
    return pixmap;
}

}  // namespace

QIcon windowIcon() {
    QIcon icon;
    for (const int sizePx : {16, 32, 48, 128})
        icon.addPixmap(drawn(sizePx));
    return icon;
}

}  // namespace korvane
