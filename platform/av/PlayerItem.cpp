#include "platform/av/PlayerItem.h"

#include <algorithm>

namespace korvane {

PlayerItemStatus PlayerItem::status() const {
    const std::scoped_lock lock(mutex_);
    return status_;
}

std::exception_ptr PlayerItem::error() const {
    const std::scoped_lock lock(mutex_);
    return error_;
}

// Posting happens under the lock, so that every observer hears the changes in their order; a queue only takes
// note of what it is given.
Observation PlayerItem::observeStatus(MainQueue& queue, std::function<void(PlayerItemStatus)> observer) {
    auto shared = std::make_shared<Observer>(std::move(observer));
    const std::scoped_lock lock(mutex_);
    std::erase_if(observers_, [](const Registered& known) { return known.observer.expired(); });
    observers_.push_back({&queue, shared});
    postToObserver<PlayerItemStatus>(queue, std::weak_ptr(shared), status_);
    return Observation(std::move(shared));
}

void PlayerItem::becomeReady() {
    const std::scoped_lock lock(mutex_);
    if (status_ == PlayerItemStatus::unknown)
        change(PlayerItemStatus::readyToPlay);
}

void PlayerItem::fail(std::exception_ptr error) {
    const std::scoped_lock lock(mutex_);
    if (status_ == PlayerItemStatus::failed)
        return;
    error_ = std::move(error);
    change(PlayerItemStatus::failed);
}

void PlayerItem::change(PlayerItemStatus status) {
    status_ = status;
    for (const Registered& known : observers_)
        postToObserver<PlayerItemStatus>(*known.queue, known.observer, status);
}

}  // namespace korvane
