#include "platform/tasks/QtMainQueue.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QThread>
#include <mutex>
#include <utility>

namespace korvane {

// Shared with the posted work: work that waits when the queue stops finds the door closed instead of a
// destroyed queue.
struct QtMainQueue::Door {
    std::mutex mutex;
    std::unique_ptr<QObject> receiver;  // lives on the main thread; null once stopped
};

QtMainQueue::QtMainQueue() : door_(std::make_shared<Door>()) {
    Q_ASSERT(QCoreApplication::instance() != nullptr);
    Q_ASSERT(QThread::currentThread() == QCoreApplication::instance()->thread());
    door_->receiver = std::make_unique<QObject>();
}

QtMainQueue::~QtMainQueue() {
    stop();
}

void QtMainQueue::post(std::function<void()> work) {
    // The lock keeps the receiver alive between the look and the call; queueing itself runs nothing.
    const std::lock_guard lock(door_->mutex);
    if (door_->receiver)
        QMetaObject::invokeMethod(door_->receiver.get(), std::move(work), Qt::QueuedConnection);
}

void QtMainQueue::stop() {
    std::unique_ptr<QObject> receiver;
    {
        const std::lock_guard lock(door_->mutex);
        receiver = std::move(door_->receiver);
    }
    // Destroying the receiver takes the calls that wait for it out of the event queue. If this very call
    // comes from posted work, Qt finishes that work first and drops the rest.
}

}  // namespace korvane
