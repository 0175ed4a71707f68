#include "Icon.h"

#include <QDebug>
#include <QPainter>
#include <QSet>
#include <algorithm>

#include "IconShapes.h"

namespace korvane {

namespace {

void warnOnce(const QString& name) {
    static QSet<QString> warned;  // main thread only, like the items
    if (warned.contains(name)) {
        return;
    }
    warned.insert(name);
    qWarning().noquote() << "No icon is named" << name;
}

}  // namespace

Icon::Icon(QQuickItem* parent) : PixelItem(parent) {
    setImplicitSize(size_, size_);
}

void Icon::setName(const QString& name) {
    if (name == name_) {
        return;
    }
    name_ = name;
    if (!name.isEmpty() && !iconNames().contains(name)) {
        warnOnce(name);
    }
    repaint();
    Q_EMIT nameChanged();
}

void Icon::setColor(const QColor& color) {
    if (color == color_) {
        return;
    }
    color_ = color;
    repaint();
    Q_EMIT colorChanged();
}

void Icon::setSize(qreal size) {
    if (size == size_) {
        return;
    }
    size_ = size;
    setImplicitSize(size, size);
    Q_EMIT sizeChanged();
}

QByteArray Icon::pictureKey() const {
    return name_.toUtf8() + ' ' + QByteArray::number(color_.rgba64(), 16);
}

QImage Icon::picture(const QSize& size, qreal) const {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const qreal box = std::min(size.width(), size.height());
    painter.translate((size.width() - box) / 2, (size.height() - box) / 2);
    painter.scale(box / iconBox, box / iconBox);
    drawIcon(painter, name_, color_);
    return image;
}

}  // namespace korvane
