// The palette that every card and button shares, and the sizes that keep the screen in one rhythm. Constants.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <QObject>

namespace korvane {

/// In QML the singleton Theme; in C++ its static functions. Colours are sRGB and opaque; lengths are points.
class Theme : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    Q_PROPERTY(QColor bgTop READ bgTop CONSTANT)
    Q_PROPERTY(QColor bgBottom READ bgBottom CONSTANT)
    Q_PROPERTY(QColor accent READ accent CONSTANT)
    Q_PROPERTY(QColor accentLo READ accentLo CONSTANT)
    Q_PROPERTY(QColor stopHi READ stopHi CONSTANT)
    Q_PROPERTY(QColor stopLo READ stopLo CONSTANT)
    Q_PROPERTY(QColor successGreen READ successGreen CONSTANT)
    Q_PROPERTY(QColor cardFill READ cardFill CONSTANT)
    Q_PROPERTY(QColor orange READ orange CONSTANT)
    Q_PROPERTY(QColor popupFill READ popupFill CONSTANT)
    Q_PROPERTY(qreal cardRadius MEMBER cardRadius CONSTANT)
    Q_PROPERTY(qreal controlRadius MEMBER controlRadius CONSTANT)
    Q_PROPERTY(qreal controlHeight MEMBER controlHeight CONSTANT)
    Q_PROPERTY(qreal gap MEMBER gap CONSTANT)

  public:
    using QObject::QObject;

    static QColor bgTop() { return QColor::fromRgbF(0.04F, 0.07F, 0.17F); }
    static QColor bgBottom() { return QColor::fromRgbF(0.07F, 0.12F, 0.24F); }
    static QColor accent() { return QColor::fromRgbF(0.24F, 0.6F, 1.0F); }
    static QColor accentLo() { return QColor::fromRgbF(0.12F, 0.42F, 0.88F); }
    static QColor stopHi() { return QColor::fromRgbF(0.95F, 0.34F, 0.34F); }
    static QColor stopLo() { return QColor::fromRgbF(0.72F, 0.16F, 0.16F); }
    static QColor successGreen() { return QColor::fromRgbF(0.25F, 0.85F, 0.55F); }
    static QColor cardFill() { return QColor::fromRgbF(0.1F, 0.16F, 0.32F); }
    /// Something stopped or failed part-way.
    static QColor orange() { return QColor::fromRgbF(1.0F, 0.62F, 0.04F); }
    /// The opaque ground of menus, tool tips and choosers, which lie above cards.
    static QColor popupFill() { return QColor::fromRgbF(0.1F, 0.145F, 0.255F); }
    /// The application's font with all its families, which controls from templates do not take by themselves.
    Q_INVOKABLE static QFont font(int pixelSize, int weight = QFont::Normal) {
        QFont font = QGuiApplication::font();
        font.setPixelSize(pixelSize);
        font.setWeight(static_cast<QFont::Weight>(weight));
        return font;
    }
    /// White at an opacity, which is how everything faint on this screen is drawn.
    Q_INVOKABLE static QColor white(qreal opacity) {
        return QColor::fromRgbF(1.0F, 1.0F, 1.0F, static_cast<float>(opacity));
    }
    /// A colour at an opacity.
    Q_INVOKABLE static QColor faded(const QColor& color, qreal opacity) {
        QColor faint = color;
        faint.setAlphaF(static_cast<float>(opacity));
        return faint;
    }
    /// The same under the pointer: whiter, and less see-through.
    Q_INVOKABLE static QColor brighter(const QColor& color) {
        const auto up = [](float part, float by) { return part + (1.0F - part) * by; };
        return QColor::fromRgbF(up(color.redF(), 0.25F), up(color.greenF(), 0.25F), up(color.blueF(), 0.25F),
                                up(color.alphaF(), 0.35F));
    }

    qreal cardRadius = 16;
    qreal controlRadius = 6;   ///< quiet fields, tokens, swatches
    qreal controlHeight = 26;  ///< quiet fields and swatches
    qreal gap = 12;            ///< between cards, and between cards and the window's edge
};

}  // namespace korvane
