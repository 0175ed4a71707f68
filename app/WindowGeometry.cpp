#include "app/WindowGeometry.h"

#include <algorithm>

namespace korvane {

QSize fittedSize(const QSize& wished, const QSize& available) {
    return available.isEmpty() ? wished : wished.boundedTo(available);
}

QRect resized(const QRect& start, Qt::Edges edges, const QPoint& by, const QSize& smallest) {
    QRect rect = start;
    if (edges & Qt::LeftEdge)
        rect.setLeft(std::min(start.left() + by.x(), start.right() - smallest.width() + 1));
    if (edges & Qt::RightEdge)
        rect.setRight(std::max(start.right() + by.x(), start.left() + smallest.width() - 1));
    if (edges & Qt::TopEdge)
        rect.setTop(std::min(start.top() + by.y(), start.bottom() - smallest.height() + 1));
    if (edges & Qt::BottomEdge)
        rect.setBottom(std::max(start.bottom() + by.y(), start.top() + smallest.height() - 1));
    return rect;
}

bool looksTiled(const QRect& window, const QRect& available) {
    if (available.isEmpty())
        return false;
    const bool fillsHeight = window.top() <= available.top() && window.bottom() >= available.bottom();
    const bool fillsWidth = window.left() <= available.left() && window.right() >= available.right();
    return fillsHeight || fillsWidth;
}

}  // namespace korvane
