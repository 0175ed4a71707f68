// A symbol of ours as an item, crisp at every scale. Main thread.
//
//     Icon { name: "captions.bubble.fill"; color: Theme.accent; size: 16 }
//
// Decoration only: who uses it as a button names the button for assistive tools.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QString>

#include "PixelItem.h"

namespace korvane {

class Icon : public korvane::PixelItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(qreal size READ size WRITE setSize NOTIFY sizeChanged)

  public:
    explicit Icon(QQuickItem* parent = nullptr);

    /// One of iconNames(); empty draws nothing, an unknown one too and says so once.
    QString name() const { return name_; }
    void setName(const QString& name);
    QColor color() const { return color_; }
    void setColor(const QColor& color);
    /// Points of the square box; the item's implicit size.
    qreal size() const { return size_; }
    void setSize(qreal size);

  Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

  protected:
    QImage picture(const QSize& size, qreal ratio) const override;
    QByteArray pictureKey() const override;

  private:
    QString name_;
    QColor color_{Qt::white};
    qreal size_ = 14;
};

}  // namespace korvane
