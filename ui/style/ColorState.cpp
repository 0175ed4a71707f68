#include "ui/style/ColorState.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <tuple>

namespace korvane {
namespace {

struct Hsv {
    qreal hue;
    qreal saturation;
    qreal value;
};

int eightBit(qreal component) {
    return static_cast<int>(std::lround(component * 255.0));
}

QColor colorOf(const Hsv& hsv) {
    // Each channel is a trapezium over the hue, a third of the circle apart.
    const auto channel = [&hsv](qreal shift) {
        const qreal k = std::fmod(shift + hsv.hue * 6.0, 6.0);
        const qreal dip = std::clamp(std::min(k, 4.0 - k), 0.0, 1.0);
        return eightBit(hsv.value * (1.0 - hsv.saturation * dip));
    };
    return QColor(channel(5.0), channel(3.0), channel(1.0));
}

/// Hue 0 for a grey, saturation 0 for black.
Hsv hsvOf(const QColor& color) {
    const QRgba64 rgb = color.rgba64();
    const std::array<qreal, 3> c{rgb.red() / 65535.0, rgb.green() / 65535.0, rgb.blue() / 65535.0};
    const auto largest = static_cast<std::size_t>(std::max_element(c.begin(), c.end()) - c.begin());
    const qreal value = c[largest];
    const qreal chroma = value - *std::min_element(c.begin(), c.end());
    if (chroma <= 0.0)
        return {0.0, 0.0, value};
    const qreal sixths =
        2.0 * static_cast<qreal>(largest) + (c[(largest + 1) % 3] - c[(largest + 2) % 3]) / chroma;
    return {std::fmod(sixths + 6.0, 6.0) / 6.0, chroma / value, value};
}

std::optional<QColor> hexColor(const QString& text) {
    static const QRegularExpression kForm(QStringLiteral("^\\s*#?([0-9a-fA-F]{3}|[0-9a-fA-F]{6})\\s*$"));
    const auto match = kForm.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    return QColor(QLatin1Char('#') + match.captured(1));
}

int percent(qreal fraction) {
    return static_cast<int>(std::lround(fraction * 100.0));
}

}  // namespace

void ColorState::setColor(const QColor& color) {
    const QColor opaque = QColor::fromRgba64(
        qRgba64(color.rgba64().red(), color.rgba64().green(), color.rgba64().blue(), 0xffff));
    if (!color.isValid() || opaque == color_)
        return;
    const Hsv hsv = hsvOf(opaque);
    color_ = opaque;
    brightness_ = hsv.value;
    if (hsv.value > 0.0)
        saturation_ = hsv.saturation;
    if (hsv.saturation > 0.0)
        hue_ = hsv.hue;
    Q_EMIT colorChanged();
}

QColor ColorState::hueColor() const {
    return colorOf({hue_, 1.0, 1.0});
}

QString ColorState::hexText() const {
    return color_.name().toUpper();
}

QString ColorState::description() const {
    return QStringLiteral("Hue %1°, saturation %2%, brightness %3%")
        .arg(std::lround(hue_ * 360.0))
        .arg(percent(saturation_))
        .arg(percent(brightness_));
}

void ColorState::pickInField(qreal saturation, qreal brightness) {
    pick(hue_, saturation, brightness);
}

void ColorState::pickHue(qreal hue) {
    pick(hue, saturation_, brightness_);
}

bool ColorState::pickHex(const QString& text) {
    const auto color = hexColor(text);
    if (!color)
        return false;
    const QColor before = color_;
    setColor(*color);
    if (color_ != before)
        Q_EMIT picked(color_);
    return true;
}

bool ColorState::typeHex(const QString& text) {
    static const QRegularExpression kBegun(QStringLiteral("^\\s*#?[0-9a-fA-F]{0,6}\\s*$"));
    static const QRegularExpression kWhole(QStringLiteral("[0-9a-fA-F]{6}"));
    if (!kBegun.match(text).hasMatch())
        return false;
    if (kWhole.match(text).hasMatch())
        pickHex(text);
    return true;
}

void ColorState::pick(qreal hue, qreal saturation, qreal brightness) {
    const auto before = std::tuple(hue_, saturation_, brightness_);
    hue_ = std::clamp(hue, 0.0, 1.0);
    saturation_ = std::clamp(saturation, 0.0, 1.0);
    brightness_ = std::clamp(brightness, 0.0, 1.0);
    if (std::tuple(hue_, saturation_, brightness_) == before)
        return;
    const QColor mixed = colorOf({hue_, saturation_, brightness_});
    const bool otherColor = mixed != color_;
    color_ = mixed;
    Q_EMIT colorChanged();
    if (otherColor)
        Q_EMIT picked(color_);
}

}  // namespace korvane
