#include "ContinuousRectangle.h"

#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ContinuousCorner.h"

namespace korvane {

void ContinuousRectangle::setRadius(qreal radius) {
    if (radius == radius_) {
        return;
    }
    radius_ = radius;
    repaint();
    Q_EMIT radiusChanged();
}

void ContinuousRectangle::setColor(const QColor& color) {
    if (color == color_) {
        return;
    }
    color_ = color;
    repaint();
    Q_EMIT colorChanged();
}

void ContinuousRectangle::setGradientFrom(const QColor& color) {
    if (color == gradientFrom_) {
        return;
    }
    gradientFrom_ = color;
    repaint();
    Q_EMIT gradientFromChanged();
}

void ContinuousRectangle::setGradientTo(const QColor& color) {
    if (color == gradientTo_) {
        return;
    }
    gradientTo_ = color;
    repaint();
    Q_EMIT gradientToChanged();
}

void ContinuousRectangle::setBorderColor(const QColor& color) {
    if (color == borderColor_) {
        return;
    }
    borderColor_ = color;
    repaint();
    Q_EMIT borderColorChanged();
}

void ContinuousRectangle::setBorderWidth(qreal width) {
    if (width == borderWidth_) {
        return;
    }
    borderWidth_ = width;
    repaint();
    Q_EMIT borderWidthChanged();
}

QSize ContinuousRectangle::pictureSize(const QSize& pixels, qreal ratio) const {
    if (hasGradient()) {
        return pixels;
    }
    const int ends = 2 * qCeil(continuousCornerExtent(radius_ * ratio)) + 1;
    return {std::min(pixels.width(), ends), pixels.height()};
}

QByteArray ContinuousRectangle::pictureKey() const {
    if (hasGradient()) {
        return {};
    }
    return QByteArray::number(color_.rgba64(), 16) + ' ' + QByteArray::number(borderColor_.rgba64(), 16) +
           ' ' + QByteArray::number(radius_) + ' ' + QByteArray::number(borderWidth_);
}

QImage ContinuousRectangle::picture(const QSize& size, qreal ratio) const {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);

    const QRectF bounds{QPointF(), QSizeF(size)};
    const QPainterPath outline = continuousRectangle(bounds, radius_ * ratio);
    if (hasGradient()) {
        QLinearGradient gradient(bounds.topLeft(), bounds.bottomRight());
        gradient.setColorAt(0, gradientFrom_);
        gradient.setColorAt(1, gradientTo_);
        painter.fillPath(outline, gradient);
    } else {
        painter.fillPath(outline, color_);
    }

    if (borderWidth_ <= 0 || borderColor_.alpha() == 0) {
        return image;
    }
    const qreal border = std::max(1.0, std::floor(borderWidth_ * ratio + 0.01));
    const QRectF inside = bounds.adjusted(border, border, -border, -border);
    QPainterPath ring = outline;
    ring.addPath(continuousRectangle(inside, std::max(0.0, radius_ * ratio - border)));
    ring.setFillRule(Qt::OddEvenFill);
    painter.fillPath(ring, borderColor_);
    return image;
}

}  // namespace korvane
