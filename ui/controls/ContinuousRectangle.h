// A rounded rectangle with continuous corners: one colour, or a gradient from its top-left to its
// bottom-right. A border lies inside the shape, over the fill. Main thread.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>

#include "PixelItem.h"

namespace korvane {

class ContinuousRectangle : public korvane::PixelItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(QColor gradientFrom READ gradientFrom WRITE setGradientFrom NOTIFY gradientFromChanged)
    Q_PROPERTY(QColor gradientTo READ gradientTo WRITE setGradientTo NOTIFY gradientToChanged)
    Q_PROPERTY(QColor borderColor READ borderColor WRITE setBorderColor NOTIFY borderColorChanged)
    Q_PROPERTY(qreal borderWidth READ borderWidth WRITE setBorderWidth NOTIFY borderWidthChanged)

  public:
    using PixelItem::PixelItem;

    qreal radius() const { return radius_; }
    void setRadius(qreal radius);
    /// Used while no gradient is set. Cheap to animate: rectangles of equal looks share a texture.
    QColor color() const { return color_; }
    void setColor(const QColor& color);
    /// A gradient is drawn once both its colours are set.
    QColor gradientFrom() const { return gradientFrom_; }
    void setGradientFrom(const QColor& color);
    QColor gradientTo() const { return gradientTo_; }
    void setGradientTo(const QColor& color);
    QColor borderColor() const { return borderColor_; }
    void setBorderColor(const QColor& color);
    /// Points; drawn as whole pixels. 0: none.
    qreal borderWidth() const { return borderWidth_; }
    void setBorderWidth(qreal width);

  Q_SIGNALS:
    void radiusChanged();
    void colorChanged();
    void gradientFromChanged();
    void gradientToChanged();
    void borderColorChanged();
    void borderWidthChanged();

  protected:
    QImage picture(const QSize& size, qreal ratio) const override;
    QSize pictureSize(const QSize& pixels, qreal ratio) const override;
    QByteArray pictureKey() const override;

  private:
    bool hasGradient() const { return gradientFrom_.isValid() && gradientTo_.isValid(); }

    qreal radius_ = 0;
    QColor color_{Qt::transparent};
    QColor gradientFrom_;
    QColor gradientTo_;
    QColor borderColor_{Qt::transparent};
    qreal borderWidth_ = 0;
};

}  // namespace korvane
