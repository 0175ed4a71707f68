// The ground of the whole window: a gradient from Theme.bgTop at the top-left corner to Theme.bgBottom at the
// bottom-right one, dithered, transparent outside rounded corners. Main thread.
#pragma once

#include <QtQml/qqmlregistration.h>

#include "PixelItem.h"

namespace korvane {

class WindowBackground : public korvane::PixelItem {
    Q_OBJECT
    QML_ELEMENT
    /// Points; 0 (square) where the window fills the screen or nothing composes windows.
    Q_PROPERTY(qreal cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY cornerRadiusChanged)

  public:
    using PixelItem::PixelItem;

    qreal cornerRadius() const { return cornerRadius_; }
    void setCornerRadius(qreal radius);

  Q_SIGNALS:
    void cornerRadiusChanged();

  protected:
    QImage picture(const QSize& size, qreal ratio) const override;

  private:
    qreal cornerRadius_ = 0;
};

}  // namespace korvane
