#include "app/ControlAccessibility.h"

#include <QtQuick/private/qaccessiblequickitem_p.h>

#include <QAccessible>
#include <QQuickItem>

namespace korvane {
namespace {

class ControlAccessible final : public QAccessibleQuickItem {
  public:
    using QAccessibleQuickItem::QAccessibleQuickItem;

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleQuickItem::state();
        state.disabled = !item()->isEnabled();
        // Texts that are read can't be reached by Tab.
        if (role() == QAccessible::StaticText || role() == QAccessible::Heading)
            state.focusable = false;
        return state;
    }
};

QAccessibleInterface* describe(const QString& className, QObject* object) {
    auto* item = qobject_cast<QQuickItem*>(object);
    return item && className == QLatin1String("QQuickItem") ? new ControlAccessible(item) : nullptr;
}

}  // namespace

void installControlAccessibility() {
    QAccessible::installFactory(describe);
}

}  // namespace korvane
