#include "app/ControlAccessibility.h"

#include <QtQuick/private/qaccessiblequickitem_p.h>

#include <QAccessible>
#include <QQuickItem>

#include "ui/controls/RangeControl.h"

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

    void* interface_cast(QAccessible::InterfaceType type) override {
        // The toolkit tells the value of what can be moved only.
        if (type == QAccessible::ValueInterface && role() == QAccessible::ProgressBar)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleQuickItem::interface_cast(type);
    }

    void setCurrentValue(const QVariant& value) override {
        // Set as a property it would cut the slider off from what it shows, and nobody would hear of it.
        if (auto* slider = qobject_cast<RangeControl*>(item()); slider && slider->isEnabled())
            slider->moveTo(value.toReal());
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
