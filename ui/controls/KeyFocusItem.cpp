#include "KeyFocusItem.h"

#include <QFocusEvent>

namespace korvane {

KeyFocusItem::KeyFocusItem(QQuickItem* parent) : QQuickItem(parent) {
    setActiveFocusOnTab(true);
}

void KeyFocusItem::setVisualFocus(bool visualFocus) {
    if (visualFocus == visualFocus_) {
        return;
    }
    visualFocus_ = visualFocus;
    Q_EMIT visualFocusChanged();
}

void KeyFocusItem::focusInEvent(QFocusEvent* event) {
    QQuickItem::focusInEvent(event);
    const Qt::FocusReason reason = event->reason();
    setVisualFocus(reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
                   reason == Qt::ShortcutFocusReason);
}

void KeyFocusItem::focusOutEvent(QFocusEvent* event) {
    QQuickItem::focusOutEvent(event);
    setVisualFocus(false);
}

}  // namespace korvane
