#include "ui/words/WordTokenItem.h"

#include <QEasingCurve>
#include <algorithm>

#include "ui/controls/Theme.h"
#include "ui/words/WordMetrics.h"

namespace korvane {
namespace {

constexpr int kChangeMs = 120;
constexpr double kHoverLift = 1.3;     ///< how much denser the ground is under the pointer
constexpr double kPressedShare = 0.7;  ///< and how much fainter while held down

/// Between two colours as premultiplied light, so that a way to "clear" does not pass through grey.
QColor between(const QColor& a, const QColor& b, double share) {
    const auto t = static_cast<float>(share);
    const float alpha = a.alphaF() * (1 - t) + b.alphaF() * t;
    if (alpha <= 0.0F)
        return QColor(Qt::transparent);
    const auto mix = [&](float from, float to) {
        return std::clamp((from * a.alphaF() * (1 - t) + to * b.alphaF() * t) / alpha, 0.0F, 1.0F);
    };
    return QColor::fromRgbF(mix(a.redF(), b.redF()), mix(a.greenF(), b.greenF()), mix(a.blueF(), b.blueF()),
                            alpha);
}

QEasingCurve easeInOut() {
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment({0.42, 0.0}, {0.58, 1.0}, {1.0, 1.0});
    return curve;
}

}  // namespace

WordTokenItem::WordTokenItem(QQuickItem* parent) : QQuickItem(parent) {}

void WordTokenItem::show(int index, const QString& text, bool selected) {
    index_ = index;
    hovered_ = false;
    pressed_ = false;
    setText(text);
    if (animation_)
        animation_->stop();
    if (selected_ != selected) {
        selected_ = selected;
        Q_EMIT selectedChanged();
    }
    setShare(selected ? 1.0 : 0.0);
}

void WordTokenItem::setText(const QString& text) {
    if (text_ == text)
        return;
    text_ = text;
    Q_EMIT textChanged();
}

void WordTokenItem::setSelected(bool selected) {
    if (selected_ == selected)
        return;
    selected_ = selected;
    Q_EMIT selectedChanged();
    const double target = selected ? 1.0 : 0.0;
    if (!isComponentComplete()) {
        setShare(target);
        return;
    }
    if (!animation_) {
        animation_ = new QVariantAnimation(this);
        animation_->setDuration(kChangeMs);
        animation_->setEasingCurve(easeInOut());
        connect(animation_, &QVariantAnimation::valueChanged, this,
                [this](const QVariant& value) { setShare(value.toDouble()); });
    }
    animation_->stop();
    animation_->setStartValue(share_);
    animation_->setEndValue(target);
    animation_->start();
}

void WordTokenItem::setCurrent(bool current) {
    if (current_ == current)
        return;
    current_ = current;
    Q_EMIT currentChanged();
}

void WordTokenItem::setHovered(bool hovered) {
    if (hovered_ == hovered)
        return;
    hovered_ = hovered;
    Q_EMIT looksChanged();
}

void WordTokenItem::setPressed(bool pressed) {
    if (pressed_ == pressed)
        return;
    pressed_ = pressed;
    Q_EMIT looksChanged();
}

void WordTokenItem::setShare(double share) {
    share_ = share;
    Q_EMIT looksChanged();
}

QFont WordTokenItem::font() const {
    return WordMetrics::font();
}

QColor WordTokenItem::textColor() const {
    return between(Theme::white(0.4), Theme::white(1.0), share_);
}

QColor WordTokenItem::fillColor() const {
    QColor fill = between(Theme::white(0.06), Theme::faded(Theme::accent(), 0.28), share_);
    const double held = pressed_ ? kPressedShare : 1.0;
    fill.setAlphaF(static_cast<float>(fill.alphaF() * (hovered_ ? kHoverLift : 1.0) * held));
    return fill;
}

QColor WordTokenItem::borderColor() const {
    return between(QColor(Qt::transparent), Theme::faded(Theme::accent(), 0.55), share_);
}

}  // namespace korvane
