#include "RangeControl.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace korvane {

namespace {

constexpr qreal echo = 1e-6;

}  // namespace

RangeControl::RangeControl(QQuickItem* parent) : KeyFocusItem(parent) {
    setAcceptedMouseButtons(Qt::LeftButton);
    setAcceptHoverEvents(true);
    setKeepMouseGrab(true);  // a scrolling area around it must not take the drag over
}

void RangeControl::setFrom(qreal from) {
    if (from == from_) {
        return;
    }
    from_ = from;
    Q_EMIT rangeChanged();
    Q_EMIT valueChanged();
}

void RangeControl::setTo(qreal to) {
    if (to == to_) {
        return;
    }
    to_ = to;
    Q_EMIT rangeChanged();
    Q_EMIT valueChanged();
}

qreal RangeControl::value() const {
    return std::clamp(value_, from_, std::max(from_, to_));
}

void RangeControl::setValue(qreal value) {
    if (!std::isfinite(value) || std::abs(value - value_) <= echo) {
        return;
    }
    // Kept as given: the range may be set after the value.
    value_ = value;
    Q_EMIT valueChanged();
}

qreal RangeControl::position() const {
    return to_ > from_ ? (value() - from_) / (to_ - from_) : 0;
}

qreal RangeControl::step() const {
    if (nudge_ > 0) {
        return nudge_;
    }
    return stepSize_ > 0 ? stepSize_ : (to_ - from_) / 100;
}

qreal RangeControl::snapped(qreal value) const {
    const qreal inside = std::clamp(value, from_, std::max(from_, to_));
    if (stepSize_ <= 0) {
        return inside;
    }
    const qreal last = std::floor((to_ - from_) / stepSize_ + echo);
    return from_ + stepSize_ * std::clamp(std::round((inside - from_) / stepSize_), 0.0, last);
}

void RangeControl::moveTo(qreal value) {
    const qreal there = snapped(value);
    if (!std::isfinite(there) || there == value_) {
        return;
    }
    value_ = there;
    Q_EMIT valueChanged();
    Q_EMIT moved(there);
}

void RangeControl::stepBy(int steps) {
    moveTo(value() + steps * step());
}

qreal RangeControl::along(const QPointF& point) const {
    return orientation_ == Qt::Horizontal ? point.x() : height() - point.y();
}

qreal RangeControl::travel() const {
    return std::max(1.0, (orientation_ == Qt::Horizontal ? width() : height()) - handle_);
}

void RangeControl::dragTo(const QPointF& point) {
    const qreal part = (along(point) - grip_ - handle_ / 2) / travel();
    moveTo(from_ + std::clamp(part, 0.0, 1.0) * (to_ - from_));
}

void RangeControl::mousePressEvent(QMouseEvent* event) {
    forceActiveFocus(Qt::MouseFocusReason);
    setVisualFocus(false);
    setPressed(true);
    // Taken by its handle the handle stays where it is; elsewhere it comes to the pointer.
    const qreal off = along(event->position()) - handle_ / 2 - position() * travel();
    grip_ = std::abs(off) <= handle_ / 2 ? off : 0;
    if (grip_ == 0) {
        dragTo(event->position());
    }
    event->accept();
}

void RangeControl::mouseMoveEvent(QMouseEvent* event) {
    dragTo(event->position());
}

void RangeControl::mouseReleaseEvent(QMouseEvent*) {
    setPressed(false);
}

void RangeControl::mouseUngrabEvent() {
    setPressed(false);
}

void RangeControl::wheelEvent(QWheelEvent* event) {
    const QPoint angle = event->angleDelta();
    const int turned = angle.y() != 0 ? angle.y() : -angle.x();
    if (turned == 0) {
        event->ignore();
        return;
    }
    // Fine wheels and touch pads turn by less than a notch at a time.
    if ((turned > 0) != (wheelTurned_ > 0)) {
        wheelTurned_ = 0;
    }
    wheelTurned_ += turned;
    const int notches = wheelTurned_ / QWheelEvent::DefaultDeltasPerStep;
    wheelTurned_ -= notches * QWheelEvent::DefaultDeltasPerStep;
    if (notches != 0) {
        stepBy(notches);
    }
    event->accept();
}

void RangeControl::keyPressEvent(QKeyEvent* event) {
    const qreal page = page_ > 0 ? page_ : std::max((to_ - from_) / 10, step());
    const bool byPage = event->modifiers().testFlag(Qt::ShiftModifier);
    switch (event->key()) {
        case Qt::Key_Left:
        case Qt::Key_Down:
            moveTo(value() - (byPage ? page : step()));
            break;
        case Qt::Key_Right:
        case Qt::Key_Up:
            moveTo(value() + (byPage ? page : step()));
            break;
        // Where a plus is typed with Shift it is still one step.
        case Qt::Key_Minus:
            stepBy(-1);
            break;
        case Qt::Key_Plus:
            stepBy(1);
            break;
        case Qt::Key_PageDown:
            moveTo(value() - page);
            break;
        case Qt::Key_PageUp:
            moveTo(value() + page);
            break;
        case Qt::Key_Home:
            moveTo(from_);
            break;
        case Qt::Key_End:
            moveTo(to_);
            break;
        default:
            QQuickItem::keyPressEvent(event);
            return;
    }
    setVisualFocus(true);
    event->accept();
}

void RangeControl::hoverEnterEvent(QHoverEvent*) {
    setHovered(true);
}

void RangeControl::hoverLeaveEvent(QHoverEvent*) {
    setHovered(false);
}

void RangeControl::itemChange(ItemChange change, const ItemChangeData& data) {
    QQuickItem::itemChange(change, data);
    if (change == ItemEnabledHasChanged && !data.boolValue) {
        setPressed(false);
        setHovered(false);
    }
}

void RangeControl::setPressed(bool pressed) {
    if (pressed == pressed_) {
        return;
    }
    pressed_ = pressed;
    Q_EMIT pressedChanged();
}

void RangeControl::setHovered(bool hovered) {
    if (hovered == hovered_) {
        return;
    }
    hovered_ = hovered;
    Q_EMIT hoveredChanged();
}

}  // namespace korvane
