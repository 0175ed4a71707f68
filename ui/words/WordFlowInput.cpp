// Pointer and keyboard of the token area.
#include <QAccessible>
#include <QDeadlineTimer>
#include <QKeyEvent>
#include <algorithm>

#include "ui/words/WordFlow.h"

namespace korvane {
namespace {

/// Space left between the current token and the edge of what is seen, so its focus ring is whole.
constexpr double kRevealMargin = 4.0;

bool isPlain(const QKeyEvent& event) {
    return (event.modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier)) == Qt::NoModifier;
}

}  // namespace

void WordFlow::setReactive(bool reactive) {
    if (reactive_ == reactive)
        return;
    reactive_ = reactive;
    if (!reactive_) {
        setHovered(-1);
        mouseUngrabEvent();
    }
    Q_EMIT reactiveChanged();
}

void WordFlow::toggle(int index) {
    if (!reactive_ || index < 0 || index >= count())
        return;
    Q_EMIT toggled(index);
}

void WordFlow::keyPressEvent(QKeyEvent* event) {
    if (count() == 0 || !isPlain(*event)) {
        event->ignore();
        return;
    }
    const int last = count() - 1;
    switch (event->key()) {
        case Qt::Key_Left:
            moveTo(current_ - 1);
            break;
        case Qt::Key_Right:
            moveTo(current_ + 1);
            break;
        case Qt::Key_Up:
            moveLines(-1);
            break;
        case Qt::Key_Down:
            moveLines(1);
            break;
        case Qt::Key_Home:
            moveTo(0);
            break;
        case Qt::Key_End:
            moveTo(last);
            break;
        case Qt::Key_PageUp:
            moveLines(pageTarget(-1));
            break;
        case Qt::Key_PageDown:
            moveLines(pageTarget(1));
            break;
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Select:
            reveal(current_);
            // A held key would turn the word on and off.
            if (!event->isAutoRepeat())
                toggle(current_);
            break;
        default:
            event->ignore();
            return;
    }
    setShowsFocus(true);
    event->accept();
}

void WordFlow::moveTo(int index) {
    goalX_ = -1.0;
    setCurrent(std::clamp(index, 0, count() - 1));
    reveal(current_);
}

void WordFlow::moveLines(int by) {
    if (current_ >= places_.count())
        return;
    const double goal = goalX_ >= 0.0 ? goalX_ : places_.rect(current_).center().x();
    const int line = std::clamp(places_.lineOf(current_) + by, 0, places_.lineCount() - 1);
    if (line != places_.lineOf(current_))
        setCurrent(places_.nearest(line, goal));
    goalX_ = goal;
    reveal(current_);
}

/// How many lines a page is, from the current line on; at least one, so the key always does something.
int WordFlow::pageTarget(int direction) const {
    if (current_ >= places_.count())
        return 0;
    const int line = places_.lineOf(current_);
    const double page = viewportHeight_ - (places_.bottom(line) - places_.top(line));
    const int target = places_.lineBelow(places_.top(line) + direction * page);
    return direction > 0 ? std::max(1, target - line) : std::min(-1, target - line);
}

void WordFlow::reveal(int index) {
    if (index >= places_.count()) {
        toReveal_ = index;
        return;
    }
    toReveal_ = -1;
    const QRectF& place = places_.rect(index);
    const double top = place.top() - kRevealMargin;
    const double bottom = place.bottom() + kRevealMargin;
    if (top >= viewportY_ && bottom <= viewportY_ + viewportHeight_)
        return;
    requestScroll(top < viewportY_ ? top : bottom - viewportHeight_);
    keepAnchor();
}

void WordFlow::setCurrent(int index) {
    if (current_ == index)
        return;
    current_ = index;
    updateCurrentToken();
    Q_EMIT currentChanged();
    Q_EMIT currentRectChanged();
    announceCurrent();
}

void WordFlow::updateCurrentToken() {
    for (const auto& [index, token] : live_)
        token->setCurrent(index == current_ && hasActiveFocus());
}

void WordFlow::announceCurrent() {
    WordTokenItem* token = tokenOf(current_);
    if (!token || !hasActiveFocus() || !QAccessible::isActive())
        return;
    QAccessibleEvent event(token, QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

void WordFlow::mousePressEvent(QMouseEvent* event) {
    const int index = places_.wordAt(event->position());
    if (!reactive_ || index < 0) {
        event->ignore();
        return;
    }
    // A mouse that wanders while pressed does not scroll; a finger does.
    setKeepMouseGrab(event->pointerType() != QPointingDevice::PointerType::Finger);
    setPressed(index);
    event->accept();
}

void WordFlow::mouseMoveEvent(QMouseEvent* event) {
    if (WordTokenItem* token = tokenOf(pressed_))
        token->setPressed(places_.wordAt(event->position()) == pressed_);
}

void WordFlow::mouseReleaseEvent(QMouseEvent* event) {
    const int index = pressed_;
    mouseUngrabEvent();
    if (index < 0 || index != places_.wordAt(event->position()))
        return;
    goalX_ = -1.0;
    forceActiveFocus(Qt::MouseFocusReason);
    setShowsFocus(false);
    setCurrent(index);
    toggle(index);
}

/// The second click of a quick pair is a click like any other; its press has been delivered already.
void WordFlow::mouseDoubleClickEvent(QMouseEvent* event) {
    event->setAccepted(pressed_ >= 0);
}

void WordFlow::mouseUngrabEvent() {
    setKeepMouseGrab(false);
    setPressed(-1);
}

void WordFlow::setPressed(int index) {
    if (WordTokenItem* token = tokenOf(pressed_))
        token->setPressed(false);
    pressed_ = index;
    if (WordTokenItem* token = tokenOf(pressed_))
        token->setPressed(true);
}

void WordFlow::hoverMoveEvent(QHoverEvent* event) {
    setHovered(reactive_ ? places_.wordAt(event->position()) : -1);
}

void WordFlow::hoverLeaveEvent(QHoverEvent*) {
    setHovered(-1);
}

void WordFlow::setHovered(int index) {
    if (hovered_ == index)
        return;
    if (WordTokenItem* token = tokenOf(hovered_))
        token->setHovered(false);
    hovered_ = index;
    if (WordTokenItem* token = tokenOf(hovered_))
        token->setHovered(true);
}

void WordFlow::focusInEvent(QFocusEvent* event) {
    QQuickItem::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    const bool byKeyboard =
        reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason || reason == Qt::ShortcutFocusReason;
    // Coming back to the window shows what was shown before.
    if (reason != Qt::ActiveWindowFocusReason)
        setShowsFocus(byKeyboard);
    else
        Q_EMIT showsFocusChanged();
    if (byKeyboard && current_ >= 0)
        reveal(current_);
    updateCurrentToken();
    announceCurrent();
}

void WordFlow::focusOutEvent(QFocusEvent* event) {
    QQuickItem::focusOutEvent(event);
    Q_EMIT showsFocusChanged();
    updateCurrentToken();
}

void WordFlow::setShowsFocus(bool shows) {
    showsFocus_ = shows;
    Q_EMIT showsFocusChanged();
}

}  // namespace korvane
