// Something that is done on every way out of a scope.
#pragma once

#include <utility>

namespace korvane {

/// `action` must not throw.
template <class Action>
class [[nodiscard]] OnLeaving {
  public:
    explicit OnLeaving(Action action) : action_(std::move(action)) {}
    ~OnLeaving() { action_(); }
    OnLeaving(const OnLeaving&) = delete;
    OnLeaving& operator=(const OnLeaving&) = delete;

  private:
    Action action_;
};

}  // namespace korvane
