// One value or one error, handed from the thread that has it to the thread that waits for it.
#pragma once

#include <atomic>
#include <exception>
#include <future>

namespace korvane {

/// The first resume counts; later ones do nothing, whoever makes them. Shared by both sides, because a late
/// one may come when nobody waits any more.
template <class T>
class FirstAnswer {
  public:
    /// Any thread. Ends the wait with what `produce` returns or throws; `produce` runs for the first only.
    template <class Produce>
    void resume(Produce&& produce) {
        if (resumed_.exchange(true))
            return;
        try {
            promise_.set_value(produce());
        } catch (...) {
            promise_.set_exception(std::current_exception());
        }
    }

    /// Waits, once. \throws what `produce` threw.
    T wait() { return promise_.get_future().get(); }

  private:
    std::atomic<bool> resumed_ = false;
    std::promise<T> promise_;
};

}  // namespace korvane
