// An item that Tab reaches and that knows whether its focus came by the keyboard, so that only then a ring
// shows it. For what is not a button: the templates' controls tell assistive tools their own role, whatever
// is set. Main thread.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QQuickItem>

namespace korvane {

class KeyFocusItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool visualFocus READ hasVisualFocus NOTIFY visualFocusChanged)

  public:
    explicit KeyFocusItem(QQuickItem* parent = nullptr);

    bool hasVisualFocus() const { return visualFocus_; }
    /// For what happens while it has the focus: a key shows the ring, a press of the pointer hides it.
    Q_INVOKABLE void setVisualFocus(bool visualFocus);

  Q_SIGNALS:
    void visualFocusChanged();

  protected:
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    bool visualFocus_ = false;
};

}  // namespace korvane
