// Who wants to hear of something, and how they stop hearing of it. Observers are called on the main queue
// only, and their handles live on the main thread.
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/tasks/MainQueue.h"

namespace korvane {

/// Keeps one observer registered. Once it is gone or invalidated, the observer is not called any more, not
/// even by what was posted before; also from within the observer itself. Main thread only.
class Observation {
  public:
    Observation() = default;
    explicit Observation(std::shared_ptr<void> observer) : observer_(std::move(observer)) {}
    void invalidate() { observer_.reset(); }

  private:
    std::shared_ptr<void> observer_;
};

/// Any thread: calls `observer` on the main queue, if it is still registered then.
template <class... Values>
void postToObserver(MainQueue& queue, std::weak_ptr<std::function<void(Values...)>> observer,
                    Values... values) {
    queue.post([observer = std::move(observer), values...] {
        // The copy outlives an observer that removes itself.
        if (const auto call = observer.lock())
            (*call)(values...);
    });
}

/// The observers of one thing. Holds none of them alive.
template <class... Values>
class ObserverList {
  public:
    using Observer = std::function<void(Values...)>;

    /// Any thread. \return what keeps `observer` registered.
    [[nodiscard]] Observation add(Observer observer) {
        auto shared = std::make_shared<Observer>(std::move(observer));
        const std::scoped_lock lock(mutex_);
        std::erase_if(observers_, [](const auto& known) { return known.expired(); });
        observers_.push_back(shared);
        return Observation(std::move(shared));
    }

    /// Any thread: calls everyone registered now, in order, on the main queue.
    void notify(MainQueue& queue, Values... values) const {
        const std::scoped_lock lock(mutex_);
        for (const std::weak_ptr<Observer>& observer : observers_)
            postToObserver<Values...>(queue, observer, values...);
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::weak_ptr<Observer>> observers_;
};

}  // namespace korvane
