#include "platform/defaults/DeferredUserDefaults.h"

#include <utility>

namespace korvane {

DeferredUserDefaults::~DeferredUserDefaults() {
    flush();
}

std::optional<QByteArray> DeferredUserDefaults::data(const std::string& key) const {
    {
        const std::lock_guard lock(mutex_);
        if (const auto found = waiting_.find(key); found != waiting_.end())
            return found->second;
        if (onItsWay_ && onItsWay_->first == key)
            return onItsWay_->second;
    }
    const std::lock_guard lock(storeMutex_);
    return store_.data(key);
}

bool DeferredUserDefaults::setData(const QByteArray& data, const std::string& key) {
    put(key, data.isNull() ? QByteArray("") : data);
    return true;
}

bool DeferredUserDefaults::remove(const std::string& key) {
    put(key, std::nullopt);
    return true;
}

void DeferredUserDefaults::flush() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return waiting_.empty() && !onItsWay_; });
}

void DeferredUserDefaults::put(const std::string& key, Value value) {
    const std::lock_guard lock(mutex_);
    waiting_[key] = std::move(value);
    if (!worker_.joinable())
        worker_ = std::jthread([this](const std::stop_token& stop) { storeAll(stop); });
    changed_.notify_all();
}

void DeferredUserDefaults::storeAll(const std::stop_token& stop) {
    for (;;) {
        {
            std::unique_lock lock(mutex_);
            if (!changed_.wait(lock, stop, [this] { return !waiting_.empty(); }))
                return;
        }
        const std::lock_guard storing(storeMutex_);
        std::unique_lock lock(mutex_);
        onItsWay_ = *waiting_.begin();
        waiting_.erase(waiting_.begin());
        const auto [key, value] = *onItsWay_;
        lock.unlock();
        value ? store_.setData(*value, key) : store_.remove(key);
        lock.lock();
        onItsWay_.reset();
        changed_.notify_all();
    }
}

}  // namespace korvane
