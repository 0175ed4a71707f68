// The colour in a colour chooser, as hue, saturation and brightness. A grey has no hue and black no
// saturation: those stay what they were, so that a drag through the dark comes back in the same colour. Main
// thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>
#include <QString>

namespace korvane {

/// Picked colours are opaque and whole 8-bit ones: what the hex field shows is exactly what is stored.
class ColorState : public QObject {
    Q_OBJECT
    QML_ELEMENT
    /// Set from outside. The echo of what was picked here moves nothing.
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    Q_PROPERTY(qreal hue READ hue NOTIFY colorChanged)  // 0 to 1, red at both ends
    Q_PROPERTY(qreal saturation READ saturation NOTIFY colorChanged)
    Q_PROPERTY(qreal brightness READ brightness NOTIFY colorChanged)
    Q_PROPERTY(QColor hueColor READ hueColor NOTIFY colorChanged)  // the hue at its fullest
    Q_PROPERTY(QString hexText READ hexText NOTIFY colorChanged)   // "#3D99FF"
    Q_PROPERTY(QString description READ description NOTIFY colorChanged)

  public:
    using QObject::QObject;

    QColor color() const { return color_; }
    void setColor(const QColor& color);
    qreal hue() const { return hue_; }
    qreal saturation() const { return saturation_; }
    qreal brightness() const { return brightness_; }
    QColor hueColor() const;
    QString hexText() const;
    /// For those who hear it: "Hue 212°, saturation 76%, brightness 100%".
    QString description() const;

    /// A point of the field, both 0 to 1; beyond its edges counts as on them.
    Q_INVOKABLE void pickInField(qreal saturation, qreal brightness);
    /// A place on the strip, 0 to 1; beyond its ends counts as at them.
    Q_INVOKABLE void pickHue(qreal hue);
    /// Takes "#rgb" or "#rrggbb", with or without the "#", in either case and with blanks around it.
    /// \return false, changing nothing, for any other text.
    Q_INVOKABLE bool pickHex(const QString& text);
    /// The same while the text is being typed: taken once all six digits are there, as three may be half of
    /// them. \return false when no further typing makes it a colour.
    Q_INVOKABLE bool typeHex(const QString& text);

  Q_SIGNALS:
    void colorChanged();
    void picked(const QColor& color);  ///< by the person

  private:
    void pick(qreal hue, qreal saturation, qreal brightness);

    QColor color_ = QColor(Qt::white);
    qreal hue_ = 0.0;
    qreal saturation_ = 0.0;
    qreal brightness_ = 1.0;
};

}  // namespace korvane
