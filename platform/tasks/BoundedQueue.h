// Hands values from one thread to another, holding only a few.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <stop_token>

#include "platform/tasks/Cancellation.h"

namespace korvane {

/// One producer, one consumer.
template <class T>
class BoundedQueue {
  public:
    explicit BoundedQueue(std::size_t capacity) : capacity_(capacity) {}

    /// Waits for room. \throws CancellationError once stop is requested.
    void push(T value, const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, stop, [&] { return items_.size() < capacity_; });
        checkCancelled(stop);
        items_.push_back(std::move(value));
        changed_.notify_all();
    }

    /// No more values come.
    void close() {
        const std::scoped_lock lock(mutex_);
        closed_ = true;
        changed_.notify_all();
    }

    /// Waits for a value; none once the queue is closed and empty. \throws CancellationError once stop is
    /// requested.
    std::optional<T> pop(const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, stop, [&] { return closed_ || !items_.empty(); });
        checkCancelled(stop);
        if (items_.empty())
            return std::nullopt;
        std::optional<T> value(std::move(items_.front()));
        items_.pop_front();
        changed_.notify_all();
        return value;
    }

  private:
    std::size_t capacity_;
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::deque<T> items_;
    bool closed_ = false;
};

}  // namespace korvane
