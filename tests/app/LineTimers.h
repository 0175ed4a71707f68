// Who looks for the line of a preview: the timers that tick as often as that is done. Counts while it stands.
#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <QTimerEvent>
#include <set>

namespace korvane {

class LineTimers final : public QObject {
  public:
    LineTimers() { QCoreApplication::instance()->installEventFilter(this); }

    std::set<QObject*> seen;
    int ticks = 0;  ///< of all of them

    bool eventFilter(QObject* object, QEvent* event) override {
        const auto* timer = qobject_cast<QTimer*>(object);
        if (event->type() == QEvent::Timer && timer && timer->interval() == 50) {
            seen.insert(object);
            ++ticks;
        }
        return false;
    }
};

}  // namespace korvane
