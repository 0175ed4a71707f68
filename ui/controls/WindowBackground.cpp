#include "WindowBackground.h"

#include <QPainter>
#include <algorithm>

#include "DitheredGradient.h"
#include "Theme.h"

namespace korvane {

void WindowBackground::setCornerRadius(qreal radius) {
    if (radius == cornerRadius_) {
        return;
    }
    cornerRadius_ = radius;
    repaint();
    Q_EMIT cornerRadiusChanged();
}

QImage WindowBackground::picture(const QSize& size, qreal ratio) const {
    QImage image = ditheredGradient(size, Theme::bgTop(), Theme::bgBottom());
    const int radius = qRound(std::min(cornerRadius_ * ratio, std::min(size.width(), size.height()) / 2.0));
    if (radius <= 0) {
        // Opaque, as every pixel is, and said to be: what lies behind needn't be drawn.
        image.reinterpretAsFormat(QImage::Format_RGB32);
        return image;
    }
    QImage disc(2 * radius, 2 * radius, QImage::Format_ARGB32_Premultiplied);
    disc.fill(Qt::transparent);
    QPainter round(&disc);
    round.setRenderHint(QPainter::Antialiasing);
    round.setPen(Qt::NoPen);
    round.setBrush(Qt::black);
    round.drawEllipse(disc.rect());
    round.end();

    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    const int right = size.width() - radius;
    const int bottom = size.height() - radius;
    painter.drawImage(0, 0, disc, 0, 0, radius, radius);
    painter.drawImage(right, 0, disc, radius, 0, radius, radius);
    painter.drawImage(0, bottom, disc, 0, radius, radius, radius);
    painter.drawImage(right, bottom, disc, radius, radius, radius, radius);
    return image;
}

}  // namespace korvane
